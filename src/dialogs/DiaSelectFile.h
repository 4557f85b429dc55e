#pragma once
// A file-open dialog with a live preview of the entry under the cursor. It
// keeps its folder, its splitter and the previews' settings in a node.
#include "gui/window/XDialog.h"

#include <QString>
#include <functional>

namespace tav {
class Preview;
class XNode;
class XSplitter;
}

namespace tavFinder {

class XContainerPreviews;
class XFileDialogHelper;

class DiaSelectFile : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaSelectFile(QWidget* parent = nullptr);
    ~DiaSelectFile() override;

    // Runs the dialog; the selected path, or empty when cancelled. 'customize'
    // gets the dialog after its set-up (to add previews, filters...).
    static QString getSelectedFile(tav::XNode* node, std::function<void(DiaSelectFile&)> customize = nullptr);
    // The path the cursor reached last; empty after a cancel.
    static QString selectedPath();

    void setup(tav::XNode* node);
    // Adds a preview of the caller's (taken over) to the container.
    void add_preview(tav::Preview* preview);

    XFileDialogHelper* fileDialog() const { return fileDialog_; }
    XContainerPreviews* container() const { return panPreview_; }
    tav::XSplitter* splitter() const { return splitter_; }

private:
    void on_current_path(const QString& path);
    void on_finished(int result);

    XFileDialogHelper* fileDialog_ = nullptr;
    XContainerPreviews* panPreview_ = nullptr;
    tav::XSplitter* splitter_ = nullptr;
    tav::XNode* node_ = nullptr;
};

} // namespace tavFinder
