#pragma once
// The results of a search beside their own preview container. The search
// fills it; here it has its table, its container and its selection context.
#include "base/core/XEventListener.h"
#include "gui/panel/XPanel.h"

#include <QFileInfo>
#include <functional>
#include <memory>

namespace tav {
class XBrowser;
class XPanelStacked;
class XSplitter;
class XTableViewClassic;
}

namespace tavFinder {

class ContextPreviews;
class XContainerPreviews;

class PanelResults : public tav::XPanel {
    Q_OBJECT
public:
    explicit PanelResults(QWidget* parent = nullptr);
    ~PanelResults() override;

    // 0 the summary, 1 the preview container; other values change nothing.
    void showStack(int which);

    tav::XTableViewClassic* tableResult() const { return tableResult_; }
    XContainerPreviews* container() const { return container_; }
    ContextPreviews* context() const { return context_.get(); }

    tav::XEventListener<std::function<void(const QFileInfo&)>>& eventContextMenuFile() { return eventContextFile_; }
    tav::XEventListener<std::function<void(const QFileInfo&)>>& eventOpenFile() { return eventOpenFile_; }

    bool flagContent = true;
    int columnHeaderLast = -1;

private:
    tav::XTableViewClassic* tableResult_;
    tav::XPanelStacked* stack_;
    XContainerPreviews* container_;
    std::unique_ptr<ContextPreviews> context_;
    tav::XPanel* summary_;
    tav::XBrowser* browser_;
    tav::XSplitter* splitter_;
    tav::XEventListener<std::function<void(const QFileInfo&)>> eventContextFile_;
    tav::XEventListener<std::function<void(const QFileInfo&)>> eventOpenFile_;
};

} // namespace tavFinder
