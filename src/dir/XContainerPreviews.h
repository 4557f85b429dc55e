#pragma once
// The preview container: a stack that owns one preview of each kind, a table
// from file extension to preview, and the directory preview; it shows one
// preview's widget at a time.
#include "base/core/XProp.h"
#include "gui/panel/XPanelStacked.h"

#include <QFileInfo>
#include <QHash>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <unordered_set>
#include <vector>

namespace tav {
class Preview;
class XNode;
}

namespace tavFinder {

class AbstractPreviewDir;

class XContainerPreviews : public tav::XPanelStacked {
    Q_OBJECT
public:
    explicit XContainerPreviews(QWidget* parent = nullptr);
    ~XContainerPreviews() override;

    // Registers a preview (taken over): once per extension it declares; 'ini' builds
    // its widgets, 'addWidget' puts its widget into the stack.
    void addPreview(tav::Preview* p, bool ini, bool addWidget);
    // The hex, XML, text and image previews, in this order; once.
    virtual void addStandardPreviews();
    // Adds 'f' to the preview event of the preview of every table entry.
    virtual void addPreviewListener(std::function<void(tav::Preview*)> f);
    // The directory preview, made on first use.
    virtual AbstractPreviewDir* previewDirectory();
    virtual void from_node(tav::XNode* node);
    virtual void to_node();

    tav::Preview* previewByExtension(const QString& ext) const;
    tav::Preview* previewByWidget(QWidget* w) const;
    tav::Preview* hexPreview() const { return hex_; }
    // The first text preview in distinctPreviews() order.
    tav::Preview* textPreview() const;
    // Every preview of the table once, ordered by identity.
    std::set<tav::Preview*> distinctPreviews() const;
    void cancelVisibleLoading();
    // The directory preview if it was made, without making it.
    AbstractPreviewDir* existingPreviewDirectory() const { return dir_.get(); }

    // Shows a preview's widget.
    void showPreview(tav::Preview* p);
    // A preview is about to appear in this container (told by the contexts before they open a file).
    tav::XEventListener<std::function<void(tav::Preview*)>>& eventPreviewAppears() { return eventAppears_; }

    // Text extensions (for the recursive count of the directory previews).
    void setTextFileExtensions(const std::unordered_set<QString>& ext);
    const std::unordered_set<QString>& textFileExtensions() const { return textExtensions_; }
    void setShowHidden(bool on);
    bool showHidden() const { return showHidden_; }

    // The text the user sends from the text preview to the content search.
    tav::XProp<QString>& copyToSearch() { return copyToSearch_; }
    // Assigns with the log lines of the menu action; listeners hear of a change only.
    void set_copy_to_search(const QString& text);
    // Request to open a preview's file in a window of its own (the preview was activated).
    tav::XEventListener<std::function<void(const QFileInfo&)>>& eventOpenStandAlone() { return eventStandAlone_; }
    tav::XNode* stateNode() const { return node_; }

protected:
    // Makes the directory preview; the limited container makes a simple one.
    virtual AbstractPreviewDir* createPreviewDirectory();
    void adoptPreviewDirectory(AbstractPreviewDir* p);

private:
    std::multimap<QString, tav::Preview*> table_;
    std::vector<std::unique_ptr<tav::Preview>> owned_;
    tav::Preview* hex_ = nullptr;
    std::unique_ptr<AbstractPreviewDir> dir_;
    tav::XNode* node_ = nullptr;
    std::unordered_set<QString> textExtensions_;
    bool showHidden_ = false;
    tav::XProp<QString> copyToSearch_;
    tav::XEventListener<std::function<void(tav::Preview*)>> eventAppears_;
    tav::XEventListener<std::function<void(const QFileInfo&)>> eventStandAlone_;
};

} // namespace tavFinder
