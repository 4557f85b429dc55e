#pragma once
// The preview container: a stack that owns the previews and shows one of them.
// Until the previews exist it shows a short page about the selected entry.
#include "base/core/XProp.h"
#include "gui/panel/XPanelStacked.h"

#include <QFileInfo>
#include <functional>
#include <set>
#include <unordered_set>

namespace tav {
class Preview;
class XNode;
class XBrowser;
}

namespace tavFinder {

class AbstractPreviewDir;

class XContainerPreviews : public tav::XPanelStacked {
    Q_OBJECT
public:
    explicit XContainerPreviews(QWidget* parent = nullptr);
    ~XContainerPreviews() override;

    void addPreview(tav::Preview* p, bool ini, bool addWidget);
    virtual void addStandardPreviews();
    virtual void addPreviewListener(std::function<void(tav::Preview*)> f);
    virtual AbstractPreviewDir* previewDirectory();
    virtual void from_node(tav::XNode* node);
    virtual void to_node();

    tav::Preview* previewByExtension(const QString& ext) const;
    tav::Preview* previewByWidget(QWidget* w) const;
    tav::Preview* hexPreview() const { return nullptr; }
    tav::Preview* textPreview() const { return nullptr; }
    std::set<tav::Preview*> distinctPreviews() const { return {}; }
    void cancelVisibleLoading();

    // Text extensions for the directory preview; hidden entries shown or not.
    void setTextFileExtensions(const std::unordered_set<QString>& ext) { textExtensions_ = ext; }
    void setShowHidden(bool on) { showHidden_ = on; }
    bool showHidden() const { return showHidden_; }

    tav::XProp<QString>& copyToSearch() { return copyToSearch_; }
    // Request to open a preview's file in a window of its own.
    tav::XEventListener<std::function<void(const QFileInfo&)>>& eventOpenStandAlone() { return eventStandAlone_; }

    // The page shown while no preview is built: the entry's name, size and date.
    void showInfoPage(const QFileInfo& fi);
    tav::XNode* stateNode() const { return node_; }

private:
    tav::XBrowser* infoPage_;
    tav::XNode* node_ = nullptr;
    std::unordered_set<QString> textExtensions_;
    bool showHidden_ = false;
    tav::XProp<QString> copyToSearch_;
    tav::XEventListener<std::function<void(const QFileInfo&)>> eventStandAlone_;
};

} // namespace tavFinder
