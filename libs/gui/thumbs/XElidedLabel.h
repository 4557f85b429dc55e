#pragma once
// A label whose lines are shortened with "…" in the middle to fit its width.
#include <QFrame>

namespace tav {

class XElidedLabel : public QFrame {
    Q_OBJECT
public:
    explicit XElidedLabel(const QString& text = QString(), QWidget* parent = nullptr);
    void setText(const QString& text);
    const QString& text() const { return text_; }
    // The lines as they are painted at the current width.
    QStringList shownLines() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    QString text_;
};

} // namespace tav
