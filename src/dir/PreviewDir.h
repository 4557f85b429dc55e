#pragma once
// The main window's directory preview: the entries of a folder as a sortable
// table or as thumbnails, beside a limited preview container that shows the
// entry clicked.
#include "src/dir/AbstractPreviewDir.h"

#include <memory>

namespace tav {
class XTableWidget;
}

namespace tavFinder {

class LimitedPreviewContainer;
class PanelThumbs;
class ThumbLoader;
class private_PreviewDir;

class PreviewDir : public AbstractPreviewDir {
public:
    enum View { VIEW_TABLE = 0, VIEW_THUMB = 1 };

    PreviewDir();
    ~PreviewDir() override;

    void from_node(tav::XNode* node) override;
    void to_node() override;
    void ini() override;
    bool open_file(const QFileInfo& fi) override;
    QString type() override { return QStringLiteral("PreviewDir"); }
    QString name() override { return QStringLiteral("dirViewer"); }
    QString toString() override;
    void refresh() override;
    void cancel_loading() override;

    void set_text_file_extensions(const std::unordered_set<QString>& ext) override;
    void set_show_hidden(bool on) override;
    bool show_hidden() const override;
    ContextPreviews* context() override;
    void onDeepInfo() override;

    // 0 the table, 1 the thumbnails; other values change nothing. The folder is shown again.
    void on_active_win_view(int view);
    int activeView() const;

    tav::XTableWidget* table() const;
    PanelThumbs* thumbPanel() const;
    ThumbLoader& loader();
    LimitedPreviewContainer* limitedContainer() const;
    // The entries in the order shown.
    const QList<QFileInfo>& entries() const;
    // The table entry under the mouse (empty when none).
    QFileInfo hoveredEntry() const;

private:
    std::unique_ptr<private_PreviewDir> d;
};

} // namespace tavFinder
