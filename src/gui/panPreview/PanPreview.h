#pragma once
// A panel that embeds one framework preview, as a tab of the details window.
// The panel type name is also the panel's object name.
#include "gui/panel/XPanel.h"

namespace tav {
class Preview;
}

namespace tavFinder {

class PanPreview : public tav::XPanel {
    Q_OBJECT
public:
    PanPreview(QWidget* parent, const QString& typeName);

    const QString& typeName() const { return typeName_; }

    virtual tav::Preview* preview() = 0;
    virtual void ini() = 0;
    // A panel chosen only when no other can show the file.
    virtual bool is_fallback() const { return false; }
    // Runs the search whose input has the keyboard focus, if any.
    virtual void search_focused() {}
    virtual void on_zoom(bool in) = 0;

protected:
    // Zero margins, the preview built and its widget added with stretch.
    void embed(tav::Preview& p);

private:
    QString typeName_;
};

} // namespace tavFinder
