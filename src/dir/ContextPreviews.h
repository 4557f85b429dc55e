#pragma once
// Binds a source widget (the tree, a result table, a folder table) to a preview
// container: what is selected there is shown in the container by the preview
// that suits it; the others that could show it are kept for cycling and for
// choosing by name.
#include "base/core/XProp.h"

#include <QFileInfo>
#include <functional>
#include <memory>
#include <QPointer>
#include <set>
#include <vector>

class QWidget;

namespace tav {
class Preview;
}

namespace tavFinder {

class XContainerPreviews;

class ContextPreviews : public tav::NameAble {
public:
    explicit ContextPreviews(const QString& name);
    ~ContextPreviews() override;

    void ini(QWidget* sourceWidget, XContainerPreviews* container);
    void select_file(const QFileInfo& fi);
    void cycle_previews();
    void set_preview(const QString& type);
    // The preview last made visible by any context's select_file.
    static tav::Preview* currentPreview();
    // Called when a preview is deleted: it is no longer the current one.
    static void forgetPreview(tav::Preview* p);
    bool ownsWidget(const QWidget* w) const { return w && w == sourceWidget_; }

    const QFileInfo& currentFile() const { return fiCurrent_; }
    XContainerPreviews* container() const { return container_; }
    QWidget* sourceWidget() const { return sourceWidget_; }
    const std::vector<tav::Preview*>& candidates() const { return candidates_; }
    int currentIndex() const { return index_; }
    const std::set<QString>& sourceTextExtensions() const { return sourceTextExtensions_; }
    // What decides "looks like text" (the first bytes of the file); tests put a slow one in.
    static std::function<bool(const QFileInfo&)>& textSniffer();

private:
    // Font and text options before a preview opens the file.
    void prepare(tav::Preview* p);
    // Tells the container's appear listeners and opens the current file.
    bool openIn(tav::Preview* p);
    // Whether the file's first bytes look like text, read on a pool thread. The
    // GUI thread waits for that at most kSniffWaitMs (a local file answers in
    // microseconds); a file that takes longer (a hung network share) is shown as
    // bytes at once and in the text preview when the answer comes, if it is
    // still the one selected. 1 text, 0 not, -1 not yet known.
    int sniffText(const QFileInfo& fi);
    static constexpr int kSniffWaitMs = 50;
    struct Sniffed {
        QString path;
        qint64 modified = 0;
        bool text = false;
    };
    Sniffed lastSniff_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);

    QFileInfo fiCurrent_;
    std::set<QString> sourceTextExtensions_;
    std::vector<tav::Preview*> candidates_;
    int index_ = -1;
    XContainerPreviews* container_ = nullptr;
    QWidget* sourceWidget_ = nullptr;
    QPointer<XContainerPreviews> containerGuard_;
    int copyListenerId_ = -1;
};

} // namespace tavFinder
