#pragma once
// A layout that places its items left to right and wraps to the next row when
// the width is used up, like words in a paragraph.
#include <QLayout>
#include <QList>

namespace tav {

class XFlowLayout : public QLayout {
public:
    explicit XFlowLayout(QWidget* parent = nullptr, int spacing = 6);
    ~XFlowLayout() override;

    void addItem(QLayoutItem* item) override;
    int count() const override { return items_.size(); }
    QLayoutItem* itemAt(int index) const override { return items_.value(index); }
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return place(QRect(0, 0, width, 0), false); }
    void setGeometry(const QRect& rect) override;
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSize() const override;

private:
    // Places (or only measures) the items in 'rect'; returns the height used.
    int place(const QRect& rect, bool apply) const;
    QList<QLayoutItem*> items_;
    int spacing_;
};

} // namespace tav
