#pragma once
// A table of items with its user gestures as listener lists: header clicks,
// row clicks and double clicks, context menus and the row under the mouse.
#include "base/core/XEventListener.h"

#include <QTableWidget>
#include <functional>

namespace tav {

class XTableWidget : public QTableWidget {
    Q_OBJECT
public:
    explicit XTableWidget(QWidget* parent = nullptr);

    // Whole-row single selection, no editing, fixed row height.
    void setupRows(int rowHeight);

    XEventListener<std::function<void(int)>>& eventHeaderClicked() { return evHeader_; }
    XEventListener<std::function<void(int)>>& eventRowClicked() { return evRow_; }
    XEventListener<std::function<void(int)>>& eventRowDoubleClicked() { return evRowDouble_; }
    XEventListener<std::function<void(int)>>& eventContextMenu() { return evContext_; }
    XEventListener<std::function<void(int)>>& eventHover() { return evHover_; }
    // The row under the mouse, -1 when none.
    int hoveredRow() const { return hovered_; }

protected:
    void contextMenuEvent(QContextMenuEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    int hovered_ = -1;
    XEventListener<std::function<void(int)>> evHeader_;
    XEventListener<std::function<void(int)>> evRow_;
    XEventListener<std::function<void(int)>> evRowDouble_;
    XEventListener<std::function<void(int)>> evContext_;
    XEventListener<std::function<void(int)>> evHover_;
};

} // namespace tav
