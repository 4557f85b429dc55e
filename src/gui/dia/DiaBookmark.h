#pragma once
// Edits one bookmark: its title; the path is shown but never changed.
#include "gui/window/XDialog.h"
#include "src/gui/Bookmarks.h"

class QLineEdit;

namespace tavFinder {

class DiaBookmark : public tav::XDialog {
    Q_OBJECT
public:
    explicit DiaBookmark(QWidget* parent = nullptr);

    // Stores the pair and builds the content (once; later calls refill it).
    void set_bookmark(const Bookmark& bm);
    Bookmark get_bookmark() const { return bm_; }

    QLineEdit* editTitle() const { return editTitle_; }
    QLineEdit* editPath() const { return editPath_; }

private:
    void on_ok();

    Bookmark bm_;
    QLineEdit* editTitle_ = nullptr;
    QLineEdit* editPath_ = nullptr;
};

} // namespace tavFinder
