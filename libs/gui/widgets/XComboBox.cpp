#include "gui/widgets/XComboBox.h"

#include <QSignalBlocker>

namespace tav {

XComboBox::XComboBox(QWidget* parent) : QComboBox(parent) {}

void XComboBox::add_to_history(const QString& text, int maxItems) {
    const QString t = text.trimmed();
    if (t.isEmpty()) return;
    QSignalBlocker block(this);
    const int i = findText(t, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (i >= 0) removeItem(i);
    insertItem(0, t);
    while (maxItems > 0 && count() > maxItems) removeItem(count() - 1);
    QComboBox::setCurrentIndex(0);
    if (isEditable()) setEditText(t);
}

QStringList XComboBox::get_string_items() const {
    QStringList out;
    for (int i = 0; i < count(); ++i) out << itemText(i);
    return out;
}

void XComboBox::set_data(const QStringList& items) {
    QSignalBlocker block(this);
    clear();
    QStringList seen;
    for (const QString& s : items) {
        if (s.trimmed().isEmpty() || seen.contains(s)) continue;
        seen << s;
        addItem(s);
    }
}

void XComboBox::setCurrentIndex(int index, bool notify) {
    if (notify) {
        QComboBox::setCurrentIndex(index);
        return;
    }
    QSignalBlocker block(this);
    QComboBox::setCurrentIndex(index);
}

} // namespace tav
