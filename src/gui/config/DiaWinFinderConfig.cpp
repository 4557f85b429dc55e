#include "src/gui/config/DiaWinFinderConfig.h"

#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/WindowBase.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
constexpr unsigned kSeparator = 0x40000000;
constexpr unsigned kCtrl = 0x04000000;
constexpr unsigned kShift = 0x02000000;
constexpr unsigned kAlt = 0x08000000;

// The favourite-filter boxes, in the order of the filter panel's menu.
struct FavoriteRow {
    unsigned bit;
    const char* label;
};
const FavoriteRow kFavorites[] = {
    {2, "File Name Pattern"}, {4, "File Name NOT Pattern"}, {8, "File Time Stamp"}, {16, "File Size"},
    {64, "Hidden Files ( .xy )"}, {kSeparator, ""}, {32, "Text Files only"}, {128, "Content"},
};

// 'values' plus 'current' (so a stored value that is not offered survives OK), ascending.
std::vector<unsigned> withCurrent(std::vector<unsigned> values, unsigned current) {
    if (std::find(values.begin(), values.end(), current) == values.end()) values.push_back(current);
    std::sort(values.begin(), values.end());
    return values;
}

void fillCombo(tav::XTypedComboBox<unsigned>* combo, const std::vector<unsigned>& values, unsigned current) {
    for (unsigned v : withCurrent(values, current)) combo->addItem(v);
    combo->setSelected(current);
}

std::vector<unsigned> range(unsigned from, unsigned to, unsigned step) {
    std::vector<unsigned> v;
    for (unsigned i = from; i <= to; i += step) v.push_back(i);
    return v;
}

int sanitizeFontSize(int size) { return size < 10 || size > 64 ? 16 : size; }

tav::TalvoEngine* engine() {
    tav::KernelGUI* k = tav::KernelGUI::instanceGui();
    return k ? k->getNodeRoot() : nullptr;
}
}

DiaTavFinderConfig::DiaTavFinderConfig(QWidget* parent) : tav::XDialog(parent), groupLiPos_(this, QStringLiteral("int")) {
    setWindowTitle(xt("Tav Finder -  Configuraton"));
    setWindowIcon(WindowBase::icon(QStringLiteral("wheel.svg")));
    auto* layout = new QVBoxLayout(this);
    tabs_ = new QTabWidget(this);
    layout->addWidget(tabs_, 1);
    auto* buttons = new tav::XPanel(this, tav::XPanel::HORIZONTAL);
    buttons->setMargins(0, 0, 0, 0);
    layout->addWidget(buttons);
    buttonOk_ = buttons->createButton(xt("OK"), [this]() {
        set_cfg_from_gui();
        accept();
    }, QIcon(QStringLiteral(":/res/icons/apply-ok.svg")));
    buttonCancel_ = buttons->createButton(xt("Cancel"), [this]() { reject(); }, QIcon(QStringLiteral(":/res/icons/apply-cancel.svg")));
    buttons->addSpacer();
    buttonOk_->setDefault(true);
}

DiaTavFinderConfig::~DiaTavFinderConfig() = default;

tav::XPanel* DiaTavFinderConfig::add_row(tav::XPanel* page, const QString& label, const QString& explanation,
                                         bool explanationDisabled) {
    tav::XPanel* row = page->createPanel(tav::XPanel::HORIZONTAL);
    QLabel* l = row->createLabel(label);
    l->setMinimumWidth(140);
    rowLabels_.push_back(l);
    // The control goes in front of the spacer, the explanation after it.
    row->addSpacer();
    if (!explanation.isEmpty()) {
        QLabel* e = row->createLabel(explanation);
        e->setEnabled(!explanationDisabled);
    }
    return row;
}

// Inserts a widget into a row made by add_row, before its spacer.
template <typename W>
static W* insertControl(tav::XPanel* row, W* w) {
    row->boxLayout()->insertWidget(1, w);
    return w;
}

QCheckBox* DiaTavFinderConfig::add_check_in_row(tav::XPanel* row, const QString& text) {
    return insertControl(row, new QCheckBox(text, row));
}

QString DiaTavFinderConfig::select_directory() {
    return QFileDialog::getExistingDirectory(this, xt("Select a Directory"), QString(), QFileDialog::ShowDirsOnly);
}

QCheckBox* DiaTavFinderConfig::checkFilterBit(unsigned bit) const {
    for (auto& [b, c] : filterBits_)
        if (b == bit) return c;
    return nullptr;
}

int DiaTavFinderConfig::fontScale() const { return comboScale_ ? int(comboScale_->selected()) : 100; }

void DiaTavFinderConfig::set_gui_from_cfg(const WinFinderConfig& config) {
    cfg_ = config;
    while (tabs_->count() > 0) {
        QWidget* w = tabs_->widget(0);
        tabs_->removeTab(0);
        delete w;
    }
    filterBits_.clear();
    const std::pair<const char*, void (DiaTavFinderConfig::*)(QWidget*)> pages[] = {
        {"General", &DiaTavFinderConfig::setup_general},
        {"Tree", &DiaTavFinderConfig::setup_tree},
        {"Filter", &DiaTavFinderConfig::setup_filter},
        {"Text View", &DiaTavFinderConfig::setup_text_view},
    };
    for (auto& [title, setup] : pages) {
        auto* page = new tav::XPanel(tabs_, tav::XPanel::VERTICAL);
        rowLabels_.clear();
        (this->*setup)(page);
        page->addSpacer();
        // Translated labels differ in length; the controls of a page stay in one column.
        int width = 140;
        for (QLabel* l : rowLabels_) width = std::max(width, l->sizeHint().width());
        for (QLabel* l : rowLabels_) l->setMinimumWidth(width);
        rowLabels_.clear();
        tabs_->addTab(page, xt(title));
    }
}

void DiaTavFinderConfig::setup_general(QWidget* w) {
    auto* page = static_cast<tav::XPanel*>(w);

    tav::XPanel* row = add_row(page, xt("Threads"), xt("Full Text Search - Multiple Parallel Tasks"));
    comboThreads_ = insertControl(row, new tav::XTypedComboBox<unsigned>(row));
    std::vector<unsigned> threads = range(1, 7, 1);
    for (unsigned v : range(8, 14, 2)) threads.push_back(v);
    for (unsigned v : range(16, 32, 4)) threads.push_back(v);
    fillCombo(comboThreads_, threads, cfg_.countThreads);

    row = add_row(page, xt("Scaling"), xt("Scale Fonts + Icons"), true);
    comboScale_ = insertControl(row, new tav::XTypedComboBox<unsigned>(row));
    const tav::TalvoEngine* e = engine();
    fillCombo(comboScale_, range(100, 300, 10), unsigned(e ? e->fontScale() : tav::KernelGUI::fontScale()));

    row = add_row(page, xt("Font Size Hex-View"), xt("Font Size Hex Viewer"));
    comboFontHex_ = insertControl(row, new tav::XTypedComboBox<unsigned>(row));
    fillCombo(comboFontHex_, range(10, 31, 1), unsigned(sanitizeFontSize(cfg_.fontSizeHexView)));

    row = add_row(page, xt("Status Bar"), xt("Show/Hide Statusbar"));
    checkStatusBar_ = add_check_in_row(row, QString());
    checkStatusBar_->setChecked(cfg_.flagStatusBar);
    connect(checkStatusBar_, &QCheckBox::toggled, this, [this](bool on) { cfg_.flagStatusBar = on; });

    row = add_row(page, xt("Property Autoload"), xt("max auto load (mb)"), true);
    checkPropAutoLoad_ = add_check_in_row(row, QString());
    comboAutoLoad_ = new tav::XTypedComboBox<unsigned>(row);
    row->boxLayout()->insertWidget(2, comboAutoLoad_);
    fillCombo(comboAutoLoad_, {1, 2, 3, 4, 5, 10, 20, 50, 100, 200}, cfg_.max_file_size_auto_calc_checksums);
    checkPropAutoLoad_->setChecked(cfg_.flagPropAutoLoad);
    comboAutoLoad_->setEnabled(cfg_.flagPropAutoLoad);
    connect(checkPropAutoLoad_, &QCheckBox::toggled, comboAutoLoad_, &QWidget::setEnabled);

    row = add_row(page, xt("Dark Theme"), xt("Theme of Talvo Finder"), true);
    checkDark_ = add_check_in_row(row, QString());
    checkDark_->setChecked(cfg_.flagDarkTheme);
    connect(checkDark_, &QCheckBox::toggled, this, [this](bool on) { cfg_.flagDarkTheme = on; });

    row = add_row(page, xt("Cycle Previews"), xt("Key Combination"));
    checkAlt_ = add_check_in_row(row, xt("ALT"));
    checkShift_ = add_check_in_row(row, xt("SHIFT"));
    checkCtrl_ = add_check_in_row(row, xt("CTRL"));
    checkCtrl_->setChecked(cfg_.HotkeyCyclePreviews & kCtrl);
    checkShift_->setChecked(cfg_.HotkeyCyclePreviews & kShift);
    checkAlt_->setChecked(cfg_.HotkeyCyclePreviews & kAlt);

    row = add_row(page, xt("Read-Only"), xt("Delete,rename - not allowed"));
    checkReadOnly_ = add_check_in_row(row, QString());
    checkReadOnly_->setChecked(cfg_.flag_tf_read_only);

    row = add_row(page, xt("Language"), xt("Choose display language"));
    comboLang_ = insertControl(row, new QComboBox(row));
    QStringList langs = tav::XTools::get_ar_lang();
    if (!langs.contains(tav::XTools::lang())) langs << tav::XTools::lang();
    comboLang_->addItems(langs);
    comboLang_->setCurrentText(tav::XTools::lang());

    row = add_row(page, xt("Confirm quit"), xt("Confirm quitting program"));
    checkConfirmQuit_ = add_check_in_row(row, QString());
    checkConfirmQuit_->setChecked(cfg_.flagConfirmQuit);

    for (QComboBox* c : {static_cast<QComboBox*>(comboThreads_), static_cast<QComboBox*>(comboScale_),
                         static_cast<QComboBox*>(comboFontHex_), static_cast<QComboBox*>(comboAutoLoad_), comboLang_})
        c->setMinimumWidth(70);
}

void DiaTavFinderConfig::setup_tree(QWidget* w) {
    auto* page = static_cast<tav::XPanel*>(w);

    auto* show = page->add(new QGroupBox(xt("Show"), page));
    auto* showPanel = new tav::XPanel(show, tav::XPanel::VERTICAL);
    (new QVBoxLayout(show))->addWidget(showPanel);
    auto check = [&](const QString& label, const QString& text, bool value, bool WinFinderConfig::*member) {
        tav::XPanel* row = add_row(showPanel, label);
        QCheckBox* c = add_check_in_row(row, text);
        c->setChecked(value);
        connect(c, &QCheckBox::toggled, this, [this, member](bool on) { cfg_.*member = on; });
        return c;
    };
    checkDateSize_ = check(xt("Tree: Details - Time Stamp and Size"), xt("Date + Size"), cfg_.flagTreeDateSize,
                           &WinFinderConfig::flagTreeDateSize);
    checkMouseOver_ = check(xt("Tree: Mouse Over Info (Fullpath, Date+Size)"), xt("Mouse Over Info"),
                            cfg_.flagTreeMouseOverInfo, &WinFinderConfig::flagTreeMouseOverInfo);
    checkDirsOnly_ = check(xt("Tree: Directories only or Directories and Files"), xt("Directories only"),
                           cfg_.flagTreeDirOnly, &WinFinderConfig::flagTreeDirOnly);

    auto* hide = page->add(new QGroupBox(xt("Hide"), page));
    auto* frame = new QFrame(hide);
    frame->setObjectName(QStringLiteral("filter"));
    frame->setStyleSheet(tav::fill(".QFrame#filter{border-style:solid;border-width:1px;border-color:$;}",
                                   tav::XTools::isTavStyleDark() ? QStringLiteral("#777a7d") : QStringLiteral("gray")));
    (new QVBoxLayout(hide))->addWidget(frame);
    auto* hidePanel = new tav::XPanel(frame, tav::XPanel::VERTICAL);
    (new QVBoxLayout(frame))->addWidget(hidePanel);
    tav::XPanel* row = add_row(hidePanel, xt("Filter for Directory Tree"));
    checkUseFilter_ = add_check_in_row(row, xt("Use Filter"));
    checkUseFilter_->setChecked(cfg_.flagUseFilter);
    connect(checkUseFilter_, &QCheckBox::toggled, this, [this](bool on) { cfg_.flagUseFilter = on; });
    textFilter_ = hidePanel->add(new QPlainTextEdit(hidePanel));
    textFilter_->setPlainText(cfg_.filter_to_string());
    textFilter_->setMaximumHeight(60);
    auto* add = new QPushButton(xt("&add"), row);
    auto* clear = new QPushButton(xt("&clear"), row);
    row->boxLayout()->insertWidget(2, add);
    row->boxLayout()->insertWidget(3, clear);
    connect(add, &QPushButton::clicked, this, [this]() {
        const QString dir = select_directory();
        if (dir.isEmpty()) return;
        QString t = textFilter_->toPlainText().trimmed();
        if (!t.isEmpty() && !t.endsWith(QLatin1Char(';'))) t += QLatin1Char(';');
        textFilter_->setPlainText(t + dir);
    });
    connect(clear, &QPushButton::clicked, textFilter_, &QPlainTextEdit::clear);

    auto folderGroup = [&](const QString& title, const QString& checkText, bool use, const QString& path,
                           QCheckBox** box, QLineEdit** edit) {
        auto* g = page->add(new QGroupBox(title, page));
        auto* p = new tav::XPanel(g, tav::XPanel::HORIZONTAL);
        (new QVBoxLayout(g))->addWidget(p);
        *box = p->add(new QCheckBox(checkText, p));
        (*box)->setChecked(use);
        QLineEdit* e = new QLineEdit(path, p);
        p->createButton(xt("select"), [this, e]() {
            const QString dir = select_directory();
            if (!dir.isEmpty()) e->setText(dir);
        });
        *edit = p->add(e, 1);
    };
    folderGroup(xt("Start Folder for Talvo Finder"), xt("Use Start Folder"), cfg_.flagUseStartFolder, cfg_.sStartFolder,
                &checkStart_, &editStart_);
    folderGroup(xt("Root Folder for Talvo Finder"), xt("Use Root Folder"), cfg_.flagUseRootFolder, cfg_.sRootFolder,
                &checkRoot_, &editRoot_);
}

void DiaTavFinderConfig::setup_filter(QWidget* w) {
    auto* page = static_cast<tav::XPanel*>(w);
    tav::XPanel* row = page->createPanel(tav::XPanel::HORIZONTAL);
    QLabel* l = row->createLabel(xt("Favorite Filter"));
    l->setMinimumWidth(140);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    tav::XPanel* boxes = row->createPanel(tav::XPanel::VERTICAL);
    row->addSpacer();
    for (const FavoriteRow& f : kFavorites) {
        if (f.bit == kSeparator) {
            auto* line = boxes->add(new QFrame(boxes));
            line->setFrameShape(QFrame::HLine);
            line->setFrameShadow(QFrame::Sunken);
            continue;
        }
        QCheckBox* c = boxes->add(new QCheckBox(xt(f.label), boxes));
        c->setChecked(cfg_.filterBits & f.bit);
        filterBits_.emplace_back(f.bit, c);
    }
    page->addFixedSpace(10);
    row = add_row(page, xt("Scope"), xt("Scope of searching"), true);
    comboScope_ = insertControl(row, new tav::XTypedComboBox<unsigned>(row));
    comboScope_->addItem(0, xt("File"));
    comboScope_->addItem(1, xt("Paragraph"));
    comboScope_->addItem(2, xt("Sentence"));
    comboScope_->setMinimumWidth(70);
    if (!comboScope_->setSelected(cfg_.scope)) comboScope_->setSelected(1);
}

void DiaTavFinderConfig::setup_text_view(QWidget* w) {
    auto* page = static_cast<tav::XPanel*>(w);
    tav::XPanel* row = page->createPanel(tav::XPanel::HORIZONTAL);
    QLabel* l = row->createLabel(xt("File Extensions\nfor Text Files\nASCII + UTF8"));
    l->setMinimumWidth(140);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    textExt_ = row->add(new QPlainTextEdit(row), 1);
    // A blank after each comma lets long lists wrap between extensions.
    textExt_->setPlainText(cfg_.ext_to_string(true).replace(QLatin1Char(','), QLatin1String(", ")));
    textExt_->setMinimumHeight(120);
    textExt_->setMaximumHeight(200);

    row = add_row(page, xt("Font Size"), xt("Text Viewer Default Font Size"), true);
    comboFont_ = insertControl(row, new tav::XTypedComboBox<unsigned>(row));
    std::vector<unsigned> sizes = range(10, 31, 1);
    for (unsigned v : range(32, 64, 4)) sizes.push_back(v);
    fillCombo(comboFont_, sizes, unsigned(sanitizeFontSize(cfg_.fontSize)));
    comboFont_->setMinimumWidth(70);

    row = add_row(page, xt("Ruler"), xt("Ruler for Text Viewer"), true);
    checkRuler_ = add_check_in_row(row, QString());
    checkRuler_->setChecked(cfg_.flagRuler);

    row = add_row(page, xt("Auto Wrap"), xt("Wraps if 3 byte seq UTF8 detected"), true);
    checkAutoWrap_ = add_check_in_row(row, QString());
    checkAutoWrap_->setChecked(cfg_.flagAutoWrap);

    row = add_row(page, xt("Line Info Pos"));
    int at = 1;
    for (auto [value, text] : {std::pair<int, const char*>{0, "Off"}, {1, "Top Right"}, {2, "Bottom Right"}}) {
        auto* b = new QRadioButton(xt(text), row);
        row->boxLayout()->insertWidget(at++, b);
        groupLiPos_.addButton(b, value);
    }
    groupLiPos_.select(cfg_.li_pos);
}

void DiaTavFinderConfig::set_cfg_from_gui() {
    // General tab.
    cfg_.countThreads = comboThreads_->selected();
    cfg_.flagDarkTheme = checkDark_->isChecked();
    // Font sizes, kept in the range the views can show.
    cfg_.fontSize = sanitizeFontSize(int(comboFont_->selected()));
    cfg_.fontSizeHexView = sanitizeFontSize(int(comboFontHex_->selected()));
    // Text view tab.
    cfg_.flagRuler = checkRuler_->isChecked();
    cfg_.flagAutoWrap = checkAutoWrap_->isChecked();
    cfg_.flagStatusBar = checkStatusBar_->isChecked();
    cfg_.flagConfirmQuit = checkConfirmQuit_->isChecked();
    cfg_.flag_tf_read_only = checkReadOnly_->isChecked();
    cfg_.flagPropAutoLoad = checkPropAutoLoad_->isChecked();
    cfg_.max_file_size_auto_calc_checksums = comboAutoLoad_->selected();
    cfg_.flagUseStartFolder = checkStart_->isChecked();
    cfg_.sStartFolder = editStart_->text().trimmed();
    cfg_.flagUseRootFolder = checkRoot_->isChecked();
    cfg_.sRootFolder = editRoot_->text().trimmed();
    // The language takes effect at the next start.
    tav::TalvoEngine::set_lang(engine(), comboLang_->currentText());
    // Text extensions: only adds - an extension deleted here stays until the configuration is reset
    QString ext = textExt_->toPlainText();
    ext.replace(QLatin1Char('\n'), QLatin1Char(','));
    cfg_.ext_from_string(ext);
    // Folders filtered at the top of the tree.
    cfg_.filter_from_string(textFilter_->toPlainText().replace(QLatin1Char('\n'), QLatin1Char(';')));
    // Where the text view shows its status line.
    cfg_.li_pos = groupLiPos_.currentEnum();
    // The modifier keys that cycle the previews.
    unsigned keys = 0;
    if (checkCtrl_->isChecked()) keys += kCtrl;
    if (checkShift_->isChecked()) keys += kShift;
    if (checkAlt_->isChecked()) keys += kAlt;
    cfg_.HotkeyCyclePreviews = keys;
    // The favourite filter bits.
    unsigned bits = 0;
    for (auto& [bit, box] : filterBits_)
        if (box->isChecked()) bits |= bit;
    cfg_.filterBits = bits;
    cfg_.scope = comboScope_->selected();
    cfg_.flagRegEx = true;
    log(tav::LOG_TRACE, "DiaWinFinderConfig::set_cfg_from_gui, cfg.li_pos:$", cfg_.li_pos);
}

} // namespace tavFinder
