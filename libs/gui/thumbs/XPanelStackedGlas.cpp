#include "gui/thumbs/XPanelStackedGlas.h"

#include <QMouseEvent>
#include <QStackedLayout>

namespace tav {

class XPanelStackedGlas::Glass : public QLabel {
public:
    explicit Glass(XPanelStackedGlas* owner) : QLabel(owner), owner_(owner) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        setAttribute(Qt::WA_TranslucentBackground);
    }

protected:
    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton) owner_->evClicked_.fire();
        else if (e->button() == Qt::RightButton) owner_->evContext_.fire();
    }
    void mouseDoubleClickEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton) owner_->evDoubleClicked_.fire();
    }

private:
    XPanelStackedGlas* owner_;
};

XPanelStackedGlas::XPanelStackedGlas(QWidget* parent, const QString& name)
    : XPanelStacked(parent, name), glass_(new Glass(this)) {
    if (auto* l = qobject_cast<QStackedLayout*>(layout())) l->setStackingMode(QStackedLayout::StackAll);
    addPanel(glass_);
    setCurrentWidget(glass_);
}

int XPanelStackedGlas::addUnderGlass(QWidget* w) {
    const int i = addPanel(w);
    setCurrentWidget(glass_);   // the current page is the one on top
    glass_->raise();
    return i;
}

} // namespace tav
