#pragma once
// A widget with a box layout and helpers that create children into it.
#include <QBoxLayout>
#include <QIcon>
#include <QWidget>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QToolButton;

namespace tav {

class XBrowser;
class XComboBox;

class XPanel : public QWidget {
    Q_OBJECT
public:
    enum Orientation { VERTICAL, HORIZONTAL };
    explicit XPanel(QWidget* parent = nullptr, Orientation o = VERTICAL, const QString& name = QString());

    QBoxLayout* boxLayout() const { return layout_; }
    Orientation orientation() const { return orientation_; }
    void setMargins(int left, int top, int right, int bottom);
    void setSpacing(int spacing);
    // No margins and no spacing.
    void setTight();

    // Adds an existing widget (taken over).
    template <typename W>
    W* add(W* w, int stretch = 0) {
        layout_->addWidget(w, stretch);
        return w;
    }
    void addSpacer();
    void addFixedSpace(int pixels);

    XPanel* createPanel(Orientation o, const QString& name = QString());
    QLabel* createLabel(const QString& text);
    QLineEdit* createLineEdit(const QString& text = QString());
    QPushButton* createButton(const QString& text, std::function<void()> f, const QIcon& icon = QIcon());
    // A flat 16 x 16 image button with a tooltip; 'checkable' buttons report
    // their state through 'toggled'.
    QToolButton* createImageButton(const QIcon& icon, const QString& toolTip, std::function<void()> f,
                                   bool checkable = false, int size = 16);
    XComboBox* createComboBox(bool editable);
    XBrowser* createBrowser();
    QSlider* createSliderVertical(int min, int max, int value);

private:
    QBoxLayout* layout_;
    Orientation orientation_;
};

} // namespace tav
