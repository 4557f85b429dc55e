#include "gui/thumbs/XFlowLayout.h"

#include <QWidget>
#include <algorithm>

namespace tav {

XFlowLayout::XFlowLayout(QWidget* parent, int spacing) : QLayout(parent), spacing_(spacing) {
    setContentsMargins(spacing, spacing, spacing, spacing);
}

XFlowLayout::~XFlowLayout() {
    while (QLayoutItem* item = takeAt(0)) delete item;
}

void XFlowLayout::addItem(QLayoutItem* item) { items_.append(item); }

QLayoutItem* XFlowLayout::takeAt(int index) {
    if (index < 0 || index >= items_.size()) return nullptr;
    return items_.takeAt(index);
}

void XFlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    place(rect, true);
}

QSize XFlowLayout::minimumSize() const {
    QSize s;
    for (const QLayoutItem* item : items_) s = s.expandedTo(item->minimumSize());
    const QMargins m = contentsMargins();
    return s + QSize(m.left() + m.right(), m.top() + m.bottom());
}

int XFlowLayout::place(const QRect& rect, bool apply) const {
    const QMargins m = contentsMargins();
    const QRect area = rect.adjusted(m.left(), m.top(), -m.right(), -m.bottom());
    int x = area.x(), y = area.y(), rowHeight = 0;
    for (QLayoutItem* item : items_) {
        if (item->widget() && !item->widget()->isVisibleTo(item->widget()->parentWidget())) continue;
        const QSize hint = item->sizeHint();
        if (x + hint.width() > area.right() + 1 && rowHeight > 0) {
            x = area.x();
            y += rowHeight + spacing_;
            rowHeight = 0;
        }
        if (apply) item->setGeometry(QRect(QPoint(x, y), hint));
        x += hint.width() + spacing_;
        rowHeight = std::max(rowHeight, hint.height());
    }
    return y + rowHeight - rect.y() + m.bottom();
}

} // namespace tav
