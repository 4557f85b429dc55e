#include "src/gui/PanelResults.h"

#include "gui/panel/XPanelStacked.h"
#include "gui/panel/XSplitter.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XTableViewClassic.h"
#include "src/dir/ContextPreviews.h"
#include "src/dir/XContainerPreviews.h"

namespace tavFinder {

PanelResults::PanelResults(QWidget* parent)
    : tav::XPanel(parent, VERTICAL, QStringLiteral("findResults")), context_(std::make_unique<ContextPreviews>(QStringLiteral("CONTEXT-RESULT"))) {
    setTight();
    stack_ = new tav::XPanelStacked(this);
    tableResult_ = new tav::XTableViewClassic(this);
    tableResult_->setObjectName(QStringLiteral("tableResult"));
    tableResult_->set_args(1, 1);
    container_ = new XContainerPreviews(stack_);
    context_->ini(tableResult_, container_);
    summary_ = new tav::XPanel(stack_, VERTICAL, QStringLiteral("resultSummary"));
    summary_->setTight();
    browser_ = summary_->createBrowser();
    stack_->addPanel(container_);
    stack_->addPanel(summary_);
    splitter_ = new tav::XSplitter(Qt::Horizontal, this);
    splitter_->addWidget(tableResult_);
    splitter_->addWidget(stack_);
    add(splitter_, 1);
}

PanelResults::~PanelResults() = default;

void PanelResults::showStack(int which) {
    if (which == 0) stack_->showPanel(summary_);
    else if (which == 1) stack_->showPanel(container_);
}

} // namespace tavFinder
