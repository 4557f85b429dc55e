#pragma once
// The statistics preview: how often each character, or each word of at least a
// chosen length, occurs in a text file, as an HTML page. The counting runs on
// the global pool and can be stopped.
#include "gui/previews/Preview.h"

#include <QString>
#include <memory>

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace tav {
class XBrowser;
template <typename T>
class XTypedComboBox;
}

namespace tavFinder {

class Stats : public tav::Preview {
public:
    Stats();
    ~Stats() override;

    unsigned get_category() const override { return CATEGORY_OTHER; }
    void ini() override;
    bool can_handle_file(const QFileInfo& fi) override;
    bool open_file(const QFileInfo& fi) override;
    QString type() override { return QStringLiteral("Stats"); }
    QString name() override { return QStringLiteral("Statistics"); }
    void cancel_loading() override;

    // The start button: starts a run, or stops the running one.
    void on_go();
    bool isRunning() const;

    tav::XBrowser* browser() const;
    QLineEdit* editShow() const;
    QCheckBox* checkAll() const;
    tav::XTypedComboBox<unsigned>* comboWordLen() const;
    QPushButton* buttonGo() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace tavFinder
