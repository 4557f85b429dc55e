#pragma once
// A combo box that keeps a history of entered texts, newest first.
#include <QComboBox>
#include <QStringList>

namespace tav {

class XComboBox : public QComboBox {
    Q_OBJECT
public:
    explicit XComboBox(QWidget* parent = nullptr);

    // Puts 'text' first (moving it when present) and keeps at most 'maxItems';
    // an empty or blank text changes nothing. The edit text stays 'text'.
    void add_to_history(const QString& text, int maxItems = 30);
    QStringList get_string_items() const;
    // Replaces the items (duplicates and empty texts dropped, order kept).
    void set_data(const QStringList& items);
    // Sets the index with or without the index-changed signals.
    void setCurrentIndex(int index, bool notify);
    using QComboBox::setCurrentIndex;
};

} // namespace tav
