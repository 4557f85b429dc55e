#pragma once
// A stand-alone window that shows one file in preview tabs (text with search
// layers, XML, image, hex, statistics), chooses the tab that suits the file and
// offers a small toolbar.
#include "src/find/FileResult.h"
#include "src/gui/WindowBase.h"

#include <QFileInfo>
#include <vector>

class QToolButton;

namespace tav {
class XNode;
class XPanel;
class XPanelStacked;
class XTabWidget;
namespace find {
class XContentFilter;
class XRamLayer;
}
}

namespace tavFinder {

class PanPreview;
class PanPreviewAsc;
class PanPreviewHex;
class PanPreviewImg;
class PanPreviewXml;
class PanStats;

class WinDetails : public WindowBase {
    Q_OBJECT
public:
    // 'nWin' keeps the window state and the text panel's settings (not owned).
    explicit WinDetails(tav::XNode* nWin, QWidget* parent = nullptr);
    ~WinDetails() override;

    // A details window with the state node "View" under "GUI": the file, and the
    // hits when the layer has any; tray entry, shown. Null for anything but a file.
    static WinDetails* open_window(const QFileInfo& fi, const tav::find::XRamLayer& layer,
                                   const tav::find::XContentFilter& filter, bool stats = false);

    // A member or document found through its extracted text: that text with the hits
    // (the other tabs show the file that holds it).
    static WinDetails* open_extracted(const FileResult& r, const QByteArray& text, const std::vector<int64_t>& pageStarts,
                                      const tav::find::XContentFilter& filter);

    QString windowName() const override;
    QFileInfo getCurrentFile() const override { return fi_; }

    void set_file(const QFileInfo& fi, bool stats);
    void set_file_result(const FileResult& r, const tav::find::XContentFilter& filter);
    void on_tab_changed(tav::XPanel* panel);
    void on_zoom(bool in);
    void on_close();

    tav::XTabWidget* tabs() const { return tabs_; }
    PanPreview* currentPanel() const;
    PanPreviewAsc* panelText() const { return panText_; }
    PanPreviewXml* panelXml() const { return panXml_; }
    PanPreviewImg* panelImage() const { return panImg_; }
    PanPreviewHex* panelHex() const { return panHex_; }
    PanStats* panelStats() const { return panStats_; }
    tav::XPanelStacked* toolbarStack() const { return stackToolbar_; }
    tav::XPanel* toolbarTextPage() const { return pageText_; }
    QToolButton* buttonPattern() const { return buttonPattern_; }
    QToolButton* buttonFullScreen() const { return buttonFullScreen_; }

protected:
    void changeEvent(QEvent* e) override;

private:
    void setup();
    void setup_toolbar(tav::XPanel* bar);
    void on_return();

    QFileInfo fi_;
    tav::XTabWidget* tabs_ = nullptr;
    std::vector<PanPreview*> panels_;
    PanPreviewAsc* panText_ = nullptr;
    PanPreviewXml* panXml_ = nullptr;
    PanPreviewImg* panImg_ = nullptr;
    PanPreviewHex* panHex_ = nullptr;
    PanStats* panStats_ = nullptr;
    tav::XPanelStacked* stackToolbar_ = nullptr;
    tav::XPanel* pageText_ = nullptr;
    tav::XPanel* pageOther_ = nullptr;
    QToolButton* buttonPattern_ = nullptr;
    QToolButton* buttonFullScreen_ = nullptr;
};

} // namespace tavFinder
