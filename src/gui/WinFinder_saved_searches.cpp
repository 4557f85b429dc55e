// Saved searches in the window: the whole filter of the search panel kept under
// a name, a menu that lists them (choosing one fills the panel and starts it),
// and a small editor that renames and deletes them.
#include "base/find/XFileFilter.h"
#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/find/SavedSearches.h"
#include "src/gui/WinFinder.h"

#include <QDateEdit>
#include <QDateTime>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
int64_t midnight(const QDate& d) { return QDateTime(d, QTime(0, 0)).toMSecsSinceEpoch(); }
QDate dateOf(int64_t ms) { return QDateTime::fromMSecsSinceEpoch(ms).date(); }
}

SavedSearch WinFinder::saved_search_from_GUI(const QString& name) const {
    SavedSearch s;
    s.name = name.trimmed();
    QFileInfo folder = treeView_->selectedFile();
    if (folder.exists() && !folder.isDir()) folder = QFileInfo(folder.absolutePath());
    s.folder = folder.absoluteFilePath();
    const uint32_t bits = filterFlags_.flags();
    if (bits & FILTER_PATTERN) s.pattern = comboPattern_->currentText().trimmed();
    if (bits & FILTER_NOT_PATTERN) s.notPattern = comboNotPattern_->currentText().trimmed();
    if (bits & FILTER_TIME) {
        s.timeArea = comboTimeArea_->selected();
        s.time1 = midnight(date1_->date());
        s.time2 = midnight(date2_->date());
    }
    if (bits & FILTER_SIZE) {
        s.sizeArea = comboSizeArea_->selected();
        s.size1 = uint64_t(tav::get_bytes_number(size1_->text().trimmed()));
        s.size2 = uint64_t(tav::get_bytes_number(size2_->text().trimmed()));
    }
    s.hidden = treeView_->isHiddenFiles();
    s.textFiles = bits & FILTER_TEXT_FILES;
    if (bits & FILTER_CONTENT) s.content = comboContent_->currentText().trimmed();
    s.regex = propRegEx_.value();
    s.scope = comboScope_->selected();
    s.wholeWords = buttonWholeWords_->isChecked();
    s.matchCase = buttonMatchCase_->isChecked();
    s.documents = buttonDocuments_->isChecked();
    s.ignoreFiles = buttonIgnoreFiles_->isChecked();
    return s;
}

void WinFinder::apply_saved_search(const SavedSearch& s) {
    log(tav::LOG_NAVIGATION, "WinFinder::apply_saved_search '$' in <<<$>>>", s.name, s.folder);
    uint32_t bits = 0;
    if (!s.pattern.isEmpty()) bits |= FILTER_PATTERN;
    if (!s.notPattern.isEmpty()) bits |= FILTER_NOT_PATTERN;
    if (s.timeArea != tav::XFileFilter::NONE) bits |= FILTER_TIME;
    if (s.sizeArea != tav::XFileFilter::NONE) bits |= FILTER_SIZE;
    if (s.textFiles) bits |= FILTER_TEXT_FILES;
    if (s.hidden) bits |= FILTER_HIDDEN;
    if (!s.content.isEmpty()) bits |= FILTER_CONTENT;
    comboPattern_->setEditText(s.pattern);
    comboNotPattern_->setEditText(s.notPattern);
    comboTimeArea_->setSelected(s.timeArea);
    date1_->setDate(dateOf(s.time1));
    date2_->setDate(dateOf(s.time2));
    comboSizeArea_->setSelected(s.sizeArea);
    size1_->setText(s.sizeArea ? QString::number(s.size1) : QString());
    size2_->setText(s.sizeArea == tav::XFileFilter::BETWEEN ? QString::number(s.size2) : QString());
    comboContent_->setEditText(s.content);
    propRegEx_.set(s.regex);
    comboScope_->setSelected(s.scope);
    buttonWholeWords_->setChecked(s.wholeWords);
    buttonMatchCase_->setChecked(s.matchCase);
    buttonDocuments_->setChecked(s.documents);
    buttonIgnoreFiles_->setChecked(s.ignoreFiles);
    filterFlags_.set_flags(bits);
    if (!s.folder.isEmpty() && QFileInfo(s.folder).isDir()) treeView_->selectFile(s.folder, true);
    else set_status_text(tav::fill(xt("The folder $ does not exist"), s.folder));
    on_find();
}

void WinFinder::fill_saved_searches_menu(QMenu& menu) {
    menu.addAction(xt("Save search..."), this, [this]() {
        bool ok = false;
        const QString name = QInputDialog::getText(this, xt("Save search..."), xt("Name"), QLineEdit::Normal,
                                                   comboContent_->currentText().trimmed(), &ok);
        if (!ok || name.trimmed().isEmpty()) return;
        save_search(name);
    });
    const QList<SavedSearch> all = SavedSearches::load();
    if (!all.isEmpty()) menu.addSeparator();
    for (const SavedSearch& s : all) {
        QAction* a = menu.addAction(s.name, this, [this, s]() { apply_saved_search(s); });
        a->setToolTip(s.folder + QLatin1Char('\n') + s.content);
    }
    if (!all.isEmpty()) {
        menu.addSeparator();
        menu.addAction(xt("Edit saved searches..."), this, [this]() { edit_saved_searches(); });
    }
}

bool WinFinder::save_search(const QString& name) {
    QList<SavedSearch> all = SavedSearches::load();
    SavedSearches::put(all, saved_search_from_GUI(name));
    const bool ok = SavedSearches::save(all);
    set_status_text(ok ? tav::fill(xt("Search saved as '$'"), name.trimmed()) : tav::fill(xt("Cannot write $"), SavedSearches::storePath()));
    return ok;
}

void WinFinder::edit_saved_searches() {
    QDialog dlg(this);
    dlg.setWindowTitle(xt("Edit saved searches..."));
    auto* list = new QListWidget(&dlg);
    const auto refill = [list]() {
        list->clear();
        for (const SavedSearch& s : SavedSearches::load()) list->addItem(s.name);
        if (list->count() > 0) list->setCurrentRow(0);
    };
    refill();
    auto* rename = new QPushButton(xt("Rename"), &dlg);
    auto* remove = new QPushButton(xt("Delete"), &dlg);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, &dlg);
    connect(buttons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
    connect(rename, &QPushButton::clicked, &dlg, [&]() {
        if (!list->currentItem()) return;
        const QString from = list->currentItem()->text();
        bool ok = false;
        const QString to = QInputDialog::getText(&dlg, xt("Rename"), xt("Name"), QLineEdit::Normal, from, &ok);
        QList<SavedSearch> all = SavedSearches::load();
        if (ok && SavedSearches::rename(all, from, to)) SavedSearches::save(all);
        refill();
    });
    connect(remove, &QPushButton::clicked, &dlg, [&]() {
        if (!list->currentItem()) return;
        QList<SavedSearch> all = SavedSearches::load();
        if (SavedSearches::remove(all, list->currentItem()->text())) SavedSearches::save(all);
        refill();
    });
    auto* side = new QVBoxLayout;
    side->addWidget(rename);
    side->addWidget(remove);
    side->addStretch();
    auto* row = new QHBoxLayout;
    row->addWidget(list, 1);
    row->addLayout(side);
    auto* layout = new QVBoxLayout(&dlg);
    layout->addLayout(row);
    layout->addWidget(buttons);
    dlg.resize(420, 300);
    dlg.exec();
}

} // namespace tavFinder
