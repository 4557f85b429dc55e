#include "gui/panel/XPanel.h"

#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XComboBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>

namespace tav {

XPanel::XPanel(QWidget* parent, Orientation o, const QString& name)
    : QWidget(parent),
      layout_(new QBoxLayout(o == VERTICAL ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, this)),
      orientation_(o) {
    if (!name.isEmpty()) setObjectName(name);
    layout_->setContentsMargins(4, 4, 4, 4);
    layout_->setSpacing(4);
}

void XPanel::setMargins(int left, int top, int right, int bottom) { layout_->setContentsMargins(left, top, right, bottom); }
void XPanel::setSpacing(int spacing) { layout_->setSpacing(spacing); }
void XPanel::setTight() {
    setMargins(0, 0, 0, 0);
    setSpacing(0);
}
void XPanel::addSpacer() { layout_->addStretch(1); }
void XPanel::addFixedSpace(int pixels) { layout_->addSpacing(pixels); }

XPanel* XPanel::createPanel(Orientation o, const QString& name) {
    auto* p = new XPanel(this, o, name);
    p->setMargins(0, 0, 0, 0);
    return add(p);
}

QLabel* XPanel::createLabel(const QString& text) { return add(new QLabel(text, this)); }
QLineEdit* XPanel::createLineEdit(const QString& text) { return add(new QLineEdit(text, this)); }

QPushButton* XPanel::createButton(const QString& text, std::function<void()> f, const QIcon& icon) {
    auto* b = add(new QPushButton(icon, text, this));
    connect(b, &QPushButton::clicked, this, [f = std::move(f)]() { if (f) f(); });
    return b;
}

QToolButton* XPanel::createImageButton(const QIcon& icon, const QString& toolTip, std::function<void()> f,
                                       bool checkable, int size) {
    auto* b = add(new QToolButton(this));
    b->setIcon(icon);
    b->setIconSize(QSize(size, size));
    b->setToolTip(toolTip);
    b->setAutoRaise(true);
    b->setCheckable(checkable);
    if (f) connect(b, &QToolButton::clicked, this, [f = std::move(f)]() { f(); });
    return b;
}

XComboBox* XPanel::createComboBox(bool editable) {
    auto* c = add(new XComboBox(this));
    c->setEditable(editable);
    return c;
}

XBrowser* XPanel::createBrowser() { return add(new XBrowser(this), 1); }

QSlider* XPanel::createSliderVertical(int min, int max, int value) {
    auto* s = add(new QSlider(Qt::Vertical, this), 1);
    s->setRange(min, max);
    s->setValue(value);
    return s;
}

} // namespace tav
