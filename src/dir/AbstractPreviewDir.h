#pragma once
// The base of the directory previews: a preview for folders with the operations
// the main window needs beyond the plain preview, and its listener lists.
#include "gui/previews/Preview.h"

#include <QFileInfo>
#include <functional>
#include <unordered_set>

namespace tavFinder {

class ContextPreviews;

class AbstractPreviewDir : public tav::Preview {
public:
    using FileListener = std::function<void(const QFileInfo&)>;
    using PreviewListener = std::function<void(tav::Preview*)>;

    unsigned get_category() const override { return CATEGORY_DIRECTORY; }
    bool can_handle_file(const QFileInfo& fi) override { return fi.isDir(); }
    // A folder holds no file open, and the folder stays known for refresh(): the
    // preview inside a directory preview closes the current one, which may be this.
    void close_preview() override {}
    // Tables and pages of folders keep the application's font; the monospace font
    // every preview is given before it opens is meant for file contents.
    void set_font(const QFont& font) override { font_ = font; }

    virtual void set_text_file_extensions(const std::unordered_set<QString>& ext) = 0;
    virtual void set_show_hidden(bool on) = 0;
    virtual bool show_hidden() const = 0;
    // The context that serves the preview's own entry list (none for the simple page).
    virtual ContextPreviews* context() = 0;
    // Counts the folder recursively (or cancels a count that runs).
    virtual void onDeepInfo() = 0;

    // A preview became visible inside this one (its inner container).
    tav::XEventListener<PreviewListener>& eventInnerPreview() { return evInnerPreview_; }
    // An entry was selected (a click in the table or on a thumbnail).
    tav::XEventListener<FileListener>& eventFileSelected() { return evSelected_; }
    // An entry was activated (double click, Return).
    tav::XEventListener<FileListener>& eventFileActivated() { return evActivated_; }
    // A context menu was asked for an entry.
    tav::XEventListener<FileListener>& eventContextMenu() { return evContext_; }
    // The mouse is over an entry.
    tav::XEventListener<FileListener>& eventHover() { return evHover_; }

private:
    tav::XEventListener<PreviewListener> evInnerPreview_;
    tav::XEventListener<FileListener> evSelected_;
    tav::XEventListener<FileListener> evActivated_;
    tav::XEventListener<FileListener> evContext_;
    tav::XEventListener<FileListener> evHover_;
};

} // namespace tavFinder
