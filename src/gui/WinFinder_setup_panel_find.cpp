// The filter panel above the tree: which inputs show follows the filter bits.
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanel.h"
#include "gui/panel/XPanelStacked.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/dir/XContainerPreviews.h"
#include "src/gui/WinFinder.h"
#include "src/gui/ExpressionError.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QDateEdit>
#include <QLocale>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
struct FilterRow {
    uint32_t flag;
    const char* label;
    const char* toolTip;
};
// The rows of the filter menu, in menu order.
const std::vector<FilterRow>& filterRows() {
    static const std::vector<FilterRow> rows{
        {WinFinder::FILTER_PATTERN, "File Name Pattern", "Comma separated Wildcard Patterns\nLike *bitmap*,MyFile*\n[ Alt+p ]"},
        {WinFinder::FILTER_NOT_PATTERN, "File Name NOT Pattern", "NOT Wildcard Patterns (exclude)[ Alt+n ]"},
        {WinFinder::FILTER_TIME, "File Time Stamp", "Time stamps supported: Before, After Between,... [ Alt+t ]"},
        {WinFinder::FILTER_SIZE, "File Size", "File size in bytes,kb,mb or gb [ Alt+s ]"},
        {WinFinder::FILTER_HIDDEN, "Hidden Files ( .xy )", "Hide/Show dot file names"},
        {WinFinder::FILTER_SEPARATOR, "-", ""},
        {WinFinder::FILTER_TEXT_FILES, "Text Files only", "Text file extensions like txt,xml,html,... [ Alt+e ]"},
        {WinFinder::FILTER_CONTENT, "Content", "Filter Strings inside File [ Alt+c ]"},
    };
    return rows;
}
}

void WinFinder::setup_panel_find() {
    if (panelFind_) return;
    const bool dark = tav::KernelGUI::isTavStyleDark();
    panelFind_ = new tav::XPanelStacked(content_, QStringLiteral("panelFind"));
    content_->boxLayout()->insertWidget(0, panelFind_);
    auto* page = new tav::XPanel(panelFind_, tav::XPanel::VERTICAL, QStringLiteral("pageFilter"));
    page->setMargins(2, 2, 2, 0);
    page->setSpacing(2);
    panelFind_->addPanel(page);
    panelFind_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);

    // content row
    tav::XPanel* content = page->createPanel(tav::XPanel::HORIZONTAL, QStringLiteral("rowContent"));
    rowContent_ = content;
    comboContent_ = content->createComboBox(true);
    comboContent_->setInsertPolicy(QComboBox::NoInsert);
    comboContent_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (comboContent_->lineEdit()) comboContent_->lineEdit()->setPlaceholderText(xt("Text to find"));
    buttonRegEx_ = content->createImageButton(WindowBase::icon(QStringLiteral("brackets.svg")), xt("Regular Expressions"), nullptr, true);
    buttonRegEx_->setObjectName(QStringLiteral("buttonRegEx"));
    connect(buttonRegEx_, &QToolButton::toggled, this, [this](bool on) { propRegEx_.set(on); });
    propRegEx_.addListener([this](bool on) {
        if (buttonRegEx_->isChecked() != on) buttonRegEx_->setChecked(on);
        on_regex_toggled(on);
    });
    // Both switches are kept in the window's node, like the filter bits.
    tav::XNode* nWin = nodeWin();
    buttonWholeWords_ = content->createImageButton(WindowBase::icon(QStringLiteral("whole_words.svg")),
                                                   xt("Whole words: no letter, digit or '_' right before or after a hit"), nullptr, true);
    buttonWholeWords_->setObjectName(QStringLiteral("buttonWholeWords"));
    buttonWholeWords_->setChecked(nWin && nWin->isBool(QStringLiteral("flagWholeWords"), false));
    buttonMatchCase_ = content->createImageButton(WindowBase::icon(QStringLiteral("match_case.svg")),
                                                  xt("Match case: upper and lower case letters differ"), nullptr, true);
    buttonMatchCase_->setObjectName(QStringLiteral("buttonMatchCase"));
    buttonMatchCase_->setChecked(nWin && nWin->isBool(QStringLiteral("flagMatchCase"), false));
    buttonDocuments_ = content->createImageButton(WindowBase::icon(QStringLiteral("layer.svg")),
                                                  xt("Documents and archives: search inside PDFs, office files, e-books, archives and compressed files"),
                                                  nullptr, true);
    buttonDocuments_->setObjectName(QStringLiteral("buttonDocuments"));
    buttonDocuments_->setChecked(nWin && nWin->isBool(QStringLiteral("flagDocuments"), false));
    buttonIgnoreFiles_ = content->createImageButton(WindowBase::icon(QStringLiteral("ignore_files.svg")),
                                                    xt("Respect .gitignore: leave out what .gitignore and .ignore files name"), nullptr, true);
    buttonIgnoreFiles_->setObjectName(QStringLiteral("buttonIgnoreFiles"));
    buttonIgnoreFiles_->setChecked(nWin && nWin->isBool(QStringLiteral("flagIgnoreFiles"), false));
    // Stop early: 0 means every file.
    spinMaxFiles_ = content->add(new QSpinBox(content));
    spinMaxFiles_->setObjectName(QStringLiteral("spinMaxFiles"));
    spinMaxFiles_->setRange(0, 1000000);
    spinMaxFiles_->setSpecialValueText(xt("all files"));
    spinMaxFiles_->setSuffix(QStringLiteral(" ") + xt("files"));
    spinMaxFiles_->setToolTip(xt("Stop after N files: the search ends once this many files with hits are found"));
    spinMaxFiles_->setValue(nWin ? int(nWin->getUInt(QStringLiteral("maxFiles"), 0)) : 0);
    QToolButton* saved = content->createImageButton(WindowBase::icon(QStringLiteral("find3.svg")), xt("Saved searches"), nullptr, false);
    saved->setObjectName(QStringLiteral("buttonSavedSearches"));
    saved->setPopupMode(QToolButton::InstantPopup);
    auto* savedMenu = new QMenu(saved);
    connect(savedMenu, &QMenu::aboutToShow, this, [this, savedMenu]() {
        savedMenu->clear();
        fill_saved_searches_menu(*savedMenu);
    });
    saved->setMenu(savedMenu);
    content->createLabel(QString())->setMinimumWidth(200);
    tav::XPanel* scope = content->createPanel(tav::XPanel::HORIZONTAL);
    scope->setMinimumWidth(180);
    scope->setMargins(10, 0, 0, 0);
    scope->createLabel(xt("Scope") + QLatin1Char(':'));
    comboScope_ = scope->add(new tav::XTypedComboBox<uint32_t>(scope));
    comboScope_->addItem(0, xt("File"));
    comboScope_->addItem(1, xt("Paragraph"));
    comboScope_->addItem(2, xt("Sentence"));
    comboScope_->setSelected(cfg().scope);
    // A hidden content row keeps its room: the panel keeps its height and the buttons stay put.
    QSizePolicy keep = rowContent_->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    rowContent_->setSizePolicy(keep);
    rowContent_->setVisible(false);

    // main row
    tav::XPanel* row = page->createPanel(tav::XPanel::HORIZONTAL, QStringLiteral("rowMain"));
    buttonFilter_ = row->createImageButton(QIcon(QStringLiteral(":/tf/icons/filter_plus.svg")), xt("Filter [ Alt+F ]"),
                                           [this]() { on_filter_menu(); });
    comboPattern_ = row->createComboBox(true);
    comboPattern_->setInsertPolicy(QComboBox::NoInsert);
    comboPattern_->setToolTip(xt("Filter: File Pattern"));
    if (comboPattern_->lineEdit()) comboPattern_->lineEdit()->setPlaceholderText(xt("Name pattern, e.g. *.cpp"));
    comboPattern_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    comboNotPattern_ = row->createComboBox(true);
    comboNotPattern_->setInsertPolicy(QComboBox::NoInsert);
    comboNotPattern_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (comboNotPattern_->lineEdit()) comboNotPattern_->lineEdit()->setPlaceholderText(xt("Exclude, e.g. build"));
    comboNotPattern_->setStyleSheet(tav::fill("QComboBox { background-color: $; }", dark ? "#57461A" : "#F3E2C6"));
    // The inputs take the width; the spacer only pushes the buttons right when they are hidden.
    row->boxLayout()->setStretchFactor(comboPattern_, 3);
    row->boxLayout()->setStretchFactor(comboNotPattern_, 2);

    tav::XPanel* time = row->createPanel(tav::XPanel::HORIZONTAL, QStringLiteral("rowTime"));
    rowTime_ = time;
    comboTimeArea_ = time->add(new tav::XTypedComboBox<uint32_t>(time));
    for (auto [code, text] : std::vector<std::pair<uint32_t, const char*>>{{1, "<="}, {2, "="}, {4, ">="}, {3, ">.<"}, {5, "year"}})
        comboTimeArea_->addItem(code, QString::fromLatin1(text));
    date1_ = time->add(new QDateEdit(QDate::currentDate(), time));
    date2_ = time->add(new QDateEdit(QDate::currentDate(), time));
    for (QDateEdit* d : {date1_, date2_}) {
        // Month names in the interface's language, not the system's.
        d->setLocale(QLocale(tav::XTools::lang()));
        d->setDisplayFormat(QStringLiteral("MMMM dd yyyy"));
    }
    date2_->setVisible(false);
    rowTime_->setVisible(false);
    connect(comboTimeArea_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int) { on_time_area(); });

    tav::XPanel* size = row->createPanel(tav::XPanel::HORIZONTAL, QStringLiteral("rowSize"));
    rowSize_ = size;
    comboSizeArea_ = size->add(new tav::XTypedComboBox<uint32_t>(size));
    for (auto [code, text] : std::vector<std::pair<uint32_t, const char*>>{{1, "<="}, {2, "="}, {4, ">="}, {3, "<.>"}})
        comboSizeArea_->addItem(code, QString::fromLatin1(text));
    size1_ = size->createLineEdit();
    size2_ = size->createLineEdit();
    for (QLineEdit* e : {size1_, size2_}) {
        e->setMaximumWidth(80);
        e->setToolTip(xt("Input: pure number as bytes, or number kb,mb or gb"));
    }
    size2_->setVisible(false);
    rowSize_->setVisible(false);
    connect(comboSizeArea_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int) { on_size_area(); });
    row->addSpacer();

    // tool buttons of the window
    row->createImageButton(WindowBase::icon(QStringLiteral("find.svg")), xt("Search for Files and Contents"), [this]() { on_find(); });
    row->createImageButton(WindowBase::icon(QStringLiteral("app.svg")), xt("Custom Applications"), [this]() { on_app_editor(this); })
        ->setObjectName(QStringLiteral("buttonApps"));
    row->createImageButton(WindowBase::icon(QStringLiteral("wheel.svg")), xt("Settings"), [this]() { on_settings_menu(); });

    // hidden files: the window node's choice goes to the tree and the previews first
    const bool hidden = nWin && nWin->isBool(QStringLiteral("flagHiddenFiles"), false);
    filterFlags_.setFlag(FILTER_HIDDEN, hidden);
    treeView_->setHiddenFiles(hidden);
    container_preview_->setShowHidden(hidden);

    on_regex_toggled(false);
    setup_panel_find_pages();
    setup_combo_menus();
    setup_status_bar();
    restoreSearchHistory();
}

void WinFinder::apply_filter_flags(uint32_t bits) {
    if (!panelFind_) return;
    comboPattern_->setVisible(bits & FILTER_PATTERN);
    comboNotPattern_->setVisible(bits & FILTER_NOT_PATTERN);
    on_hidden_files(bits & FILTER_HIDDEN);
    rowContent_->setVisible(bits & FILTER_CONTENT);
    rowTime_->setVisible(bits & FILTER_TIME);
    rowSize_->setVisible(bits & FILTER_SIZE);
    // The last set bit in this order keeps the focus.
    if (bits & FILTER_TIME) comboTimeArea_->setFocus();
    if (bits & FILTER_SIZE) comboSizeArea_->setFocus();
    if (bits & FILTER_PATTERN) comboPattern_->setFocus();
    if (bits & FILTER_NOT_PATTERN) comboNotPattern_->setFocus();
    if (bits & FILTER_CONTENT) comboContent_->setFocus();
    buttonFilter_->setIcon(QIcon(bits & FILTER_TEXT_FILES ? QStringLiteral(":/tf/icons/filter_plus_green.svg")
                                                          : QStringLiteral(":/tf/icons/filter_plus.svg")));
    buttonFilter_->setIconSize(QSize(16, 16));
}

void WinFinder::on_filter_menu() {
    tav::XMenu menu(this, true);
    for (const FilterRow& r : filterRows()) {
        if (r.flag == FILTER_SEPARATOR) {
            menu.addSeparator();
            continue;
        }
        const uint32_t flag = r.flag;
        QAction* a = menu.createCheckAction(xt(r.label), filterFlags_.isFlag(flag),
                                            [this, flag](bool on) { filterFlags_.set_flag(flag, on); }, xt(r.toolTip));
        a->setData(int(flag));
    }
    menu.addSeparator();
    menu.createAction(xt("Set to favorite filter"), [this]() { filterFlags_.set_flags(cfg().filterBits); });
    const QPoint at = buttonFilter_ && buttonFilter_->isVisible()
                          ? buttonFilter_->mapToGlobal(QPoint(0, buttonFilter_->height() + 10))
                          : mapToGlobal(QPoint(10, 10));
    menu.exec(at);
}

void WinFinder::on_time_area() {
    const uint32_t area = comboTimeArea_->selected();
    log(tav::LOG_TRACE, "WinFinder::setup_panel_find, time, area:$", tav::XFileFilter::area_to_String(area));
    date1_->setDisplayFormat(area == tav::XFileFilter::YEAR ? QStringLiteral("yyyy") : QStringLiteral("MMMM dd yyyy"));
    date2_->setVisible(area == tav::XFileFilter::BETWEEN);
}

void WinFinder::on_size_area() {
    const uint32_t area = comboSizeArea_->selected();
    log(tav::LOG_TRACE, "WinFinder::setup_panel_find, size, area:$", tav::XFileFilter::area_to_String(area));
    size2_->setVisible(area == tav::XFileFilter::BETWEEN);
}

void WinFinder::on_regex_toggled(bool on) {
    const bool dark = tav::KernelGUI::isTavStyleDark();
    QColor c;
    if (on) c = QColor(dark ? "#1a057b" : "#fcfbed");
    else c = dark ? QColor("#2d3339") : QColor(Qt::white);
    tav::XTools::setBackgroundColor(comboContent_, c);
    if (comboContent_->lineEdit()) tav::XTools::setBackgroundColor(comboContent_->lineEdit(), c);
    comboContent_->setToolTip(on ? xt("Type your regular expression") : xt("Type simple expression"));
}

tav::find::XFilter WinFinder::filter_from_GUI() {
    tav::find::XFilter filter;
    filter.pErrorWidget = nullptr;
    const uint32_t bits = filterFlags_.flags();
    tav::XFileFilter& ff = filter.fileFilter;

    if (bits & FILTER_PATTERN) {
        const QString text = comboPattern_->currentText().trimmed();
        if (!text.isEmpty()) ff.setPattern(text, false);
    }
    if (bits & FILTER_NOT_PATTERN) {
        const QString text = comboNotPattern_->currentText().trimmed();
        if (!text.isEmpty()) ff.setPattern(text, true);
    }
    if (bits & FILTER_TIME) {
        const uint32_t area = comboTimeArea_->selected();
        if (area != tav::XFileFilter::NONE) {
            auto midnight = [](const QDate& d) { return QDateTime(d, QTime(0, 0)).toMSecsSinceEpoch(); };
            const QDate d1 = date1_->date();
            ff.timeArea = area;
            ff.time1 = midnight(d1);
            if (area == tav::XFileFilter::YEAR) {
                ff.time1 = midnight(QDate(d1.year(), 1, 1));
                ff.time2 = midnight(QDate(d1.year() + 1, 1, 1)) - 1000;
                ff.timeArea = tav::XFileFilter::BETWEEN;
            } else if (area == tav::XFileFilter::BETWEEN) {
                ff.time2 = midnight(date2_->date());
            }
        }
    }
    if (bits & FILTER_SIZE) {
        const uint32_t area = comboSizeArea_->selected();
        if (area != tav::XFileFilter::NONE && area != tav::XFileFilter::YEAR) {
            const QString s1 = size1_->text().trimmed();
            if (s1.isEmpty()) {
                log(tav::LOG_REJECTED, "WinFinder::filter_from_GUI, size 1 - empty");
            } else {
                ff.sizeArea = area;
                ff.size1 = uint64_t(tav::get_bytes_number(s1));
                if (area == tav::XFileFilter::BETWEEN) {
                    const QString s2 = size2_->text().trimmed();
                    // Without the upper bound the whole condition goes (size1 stays set).
                    if (s2.isEmpty()) {
                        log(tav::LOG_REJECTED, "WinFinder::filter_from_GUI, size 2 - empty");
                        ff.sizeArea = tav::XFileFilter::NONE;
                    } else {
                        ff.size2 = uint64_t(tav::get_bytes_number(s2));
                    }
                }
            }
        }
    }
    if (bits & FILTER_CONTENT) {
        const QString text = comboContent_->currentText().trimmed();
        if (text.isEmpty()) {
            log(tav::LOG_REJECTED, "WinFinder::filter_from_GUI, search for text but text ist empty");
        } else {
            tav::find::XContentFilter cf;
            cf.setScope(comboScope_->selected());
            cf.setWholeWords(buttonWholeWords_->isChecked());
            cf.setMatchCase(buttonMatchCase_->isChecked());
            if (cf.createSymbols(text, propRegEx_.value())) {
                filter.contentFilter = cf;
            } else {
                filter.pErrorWidget = comboContent_;
                filter.sError = expression_error_text(cf);
                log(tav::LOG_REJECTED, "WinFinder::filter_from_GUI, problems with expression '$'", text);
                log(tav::LOG_REJECTED, "WinFinder::filter_from_GUI, $", cf.errorMessage());
            }
        }
    }
    if (bits & FILTER_TEXT_FILES) {
        ff.textFileExtensions = cfg().extSet();
        // With documents and archives on, their containers count as text to search.
        if (buttonDocuments_ && buttonDocuments_->isChecked())
            for (const char* e : {"pdf", "zip", "jar", "tar", "gz", "tgz", "bz2", "tbz2", "xz", "txz", "lzma", "zst", "7z", "cpio", "rar",
                                  "docx", "xlsx", "pptx", "odt", "ods", "odp", "epub"})
                ff.textFileExtensions.insert(QString::fromLatin1(e));
    }
    return filter;
}

} // namespace tavFinder
