#include "src/gui/WinProperties.h"

#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/util/Format.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QTimer>
#include <QCheckBox>
#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {

QString dateText(const QFileInfo& fi) { return fi.lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm")); }

// A label that reports clicks (the algorithm name toggles its switch).
class ClickLabel : public QLabel {
public:
    ClickLabel(const QString& text, QWidget* parent, std::function<void()> f) : QLabel(text, parent), f_(std::move(f)) {}

protected:
    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton && f_) f_();
        QLabel::mousePressEvent(e);
    }

private:
    std::function<void()> f_;
};

QToolButton* copyButton(tav::XPanel* panel, const QString& text, const QString& tip, std::function<void()> f) {
    QToolButton* b = panel->createImageButton(WindowBase::icon(QStringLiteral("copy.svg")), tip, std::move(f), false, 16);
    b->setText(text);
    b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return b;
}

} // namespace

WinProperties::WinProperties(tav::XNode* nWin, QWidget* parent) : WindowBase(parent) {
    initWindow(nWin, xt("Properties"), QString());
    setWindowIcon(QIcon(QIcon(QStringLiteral(":/tf/icons/find3.svg")).pixmap(64, 64)));
    threads_ = {&calcMd5_, &calcSha1_, &calcSha256_};
    setup();
    eventClose().add([this]() { on_close(); });
    addHotKeyMethod(QKeySequence(Qt::Key_Escape), [this]() { close(); });
}

WinProperties::~WinProperties() {
    timer_.stop();
    for (ThreadCalc* t : threads_) t->keepRunning = false;
}

QString WinProperties::windowName() const {
    return xName().isEmpty() ? QStringLiteral("WinProperties") : tav::fill("WinProperties@$", xName());
}

WinProperties* WinProperties::open_window(const QFileInfo& fi) {
    if (!fi.isFile()) return nullptr;
    tav::Kernel* k = tav::Kernel::instance();
    tav::XNode* nApp = k ? k->getCreateNodeApplication() : nullptr;
    if (!X_ASSERT_MSG(nApp, "nApp == NULL")) return nullptr;
    tav::XNode* nWin = nApp->getCreateNode(QStringLiteral("GUI"))->getCreateNode(QStringLiteral("Properties"));
    auto* w = new WinProperties(nWin);
    w->setupTray();
    tav::XTools::centerOnScreen(w, 900, 500);
    w->restoreStateFromXml();
    w->set_file(fi);
    w->show();
    return w;
}

void WinProperties::setup() {
    auto* content = new tav::XPanel(this, tav::XPanel::VERTICAL, QStringLiteral("content"));
    setCentralWidget(content);

    tav::XPanel* rowFile = content->createPanel(tav::XPanel::HORIZONTAL);
    QLabel* labelFile = rowFile->createLabel(xt("File"));
    labelFile->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    labelFile->setMinimumWidth(100);
    editPath_ = rowFile->createLineEdit();
    editPath_->setObjectName(QStringLiteral("path"));
    editPath_->setReadOnly(true);
    editPath_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    editSize_ = rowFile->createLineEdit();
    editSize_->setObjectName(QStringLiteral("size"));
    editSize_->setReadOnly(true);
    editSize_->setMaximumWidth(120);
    editDate_ = rowFile->createLineEdit();
    editDate_->setObjectName(QStringLiteral("date"));
    editDate_->setReadOnly(true);
    editDate_->setMaximumWidth(160);

    tav::XNode* nWin = nodeWin();
    tav::XNode* nSums = nWin ? nWin->getCreateNode(QStringLiteral("CHECKSUMS")) : nullptr;
    for (ThreadCalc* t : threads_) create_crc_panel(content, 100, nSums, *t);

    tav::XPanel* rowButtons = content->createPanel(tav::XPanel::HORIZONTAL);
    buttonCalc_ = rowButtons->createButton(xt("Calculate checksum"), [this]() {
        log(tav::LOG_TRACE, "WinProperties::setup - calc all");
        on_calc_all();
    }, QIcon(QStringLiteral(":/tf/icons/calc.svg")));
    buttonCalc_->setObjectName(QStringLiteral("calc"));
    copyButton(rowButtons, xt("Copy all"), xt("Copy all to Clipboard"), [this]() { on_copy_all(); })
        ->setObjectName(QStringLiteral("copyAll"));
    spacer_ = rowButtons->add(new QWidget(rowButtons), 1);
    spacer_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    progress_ = rowButtons->add(new QProgressBar(rowButtons), 1);
    progress_->setRange(0, 100);
    progress_->setValue(0);
    progress_->hide();
    rowButtons->createButton(xt("File Manager"), [this]() {
        log(tav::LOG_TRACE, "WinProperties::setup - explorer <$>", fi_);
        tav::XTools::showFolderInFileManager(fi_.absoluteFilePath());
    }, icon(QStringLiteral("fileManager1.svg")));
    content->addSpacer();

    timer_.setInterval(100);
    connect(&timer_, &QTimer::timeout, this, [this]() { on_timer_check_progress(); });
}

void WinProperties::create_crc_panel(tav::XPanel* panel, int labelWidth, tav::XNode* node, ThreadCalc& t) {
    const QString name = t.algoName();
    tav::XPanel* row = panel->createPanel(tav::XPanel::HORIZONTAL);
    Row r;
    auto* label = row->add(new ClickLabel(name, row, [&r = rows_, i = rows_.size()]() {
        if (i < r.size() && r[i].check) r[i].check->toggle();
    }));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(labelWidth);
    r.check = row->add(new QCheckBox(row));
    r.check->setObjectName(QStringLiteral("check_") + name);
    r.check->setChecked(node ? node->isBool(name, true) : true);
    t.enabled = r.check->isChecked();
    r.field = row->createLineEdit();
    r.field->setObjectName(QStringLiteral("crc_") + name);
    r.field->setReadOnly(true);
    r.field->setMinimumWidth(900);
    r.field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    r.field->setFont(tav::XTools::getMonoFont(font().pointSize()));
    QPointer<QLineEdit> field = r.field;
    copyButton(row, xt("Copy"), xt("Copy to Clipboard"), [field]() {
        if (field) tav::XClipboard::setText(field->text());
    });
    connect(r.check, &QCheckBox::toggled, this, [&t, field, node, name](bool on) {
        t.enabled = on;
        if (!on && field) field->clear();
        if (node) node->setBool(name, on);
    });
    t.addListener([&t, field]() {
        log(tav::LOG_TRACE, "WinProperties::create_crc_panel - FINISHED");
        if (!field) return;
        if (t.hasResult() && !t.wasCancelled()) field->setText(t.toString(false));
        else field->clear();
    });
    rows_.push_back(r);
}

void WinProperties::set_file(const QFileInfo& fi) {
    fi_ = fi;
    fi_.refresh();
    editPath_->setText(fi_.absoluteFilePath());
    editSize_->setText(tav::formatBytes(uint64_t(qMax<qint64>(0, fi_.size()))));
    editDate_->setText(dateText(fi_));
    setWindowTitle(tav::fill("$ - $", xt("Properties"), fi_.fileName()));
    for (size_t i = 0; i < threads_.size(); ++i) {
        threads_[i]->set_file(fi_);
        // The fields belong to the file shown; a result of the previous one must go.
        if (!isCalculating()) rows_[i].field->clear();
    }
    // MB as everywhere in the program (sizes shown, size filters): 1024 × 1024 bytes.
    const uint64_t limit = uint64_t(cfg().max_file_size_auto_calc_checksums) * 1024ull * 1024ull;
    const bool flagAutoCalc = cfg().flagPropAutoLoad && fi_.isFile() && uint64_t(fi_.size()) <= limit;
    log(tav::LOG_TRACE, "WinProperties::set_file, max_file_size_auto_calc_checksums:$", cfg().max_file_size_auto_calc_checksums);
    log(tav::LOG_TRACE, "WinProperties::set_file, flagAutoCalc:$", flagAutoCalc);
    updateTrayAction(isVisible());
    if (flagAutoCalc) on_calc_all();
}

bool WinProperties::isAnyThreadRunning() const {
    return std::any_of(threads_.begin(), threads_.end(), [](const ThreadCalc* t) { return t->isRunning(); });
}

void WinProperties::showIdle() {
    progress_->setValue(0);
    progress_->hide();
    spacer_->show();
}

void WinProperties::on_calc_all() {
    if (std::none_of(threads_.begin(), threads_.end(), [](const ThreadCalc* t) { return t->enabled.load(); })) return;
    if (!timer_.isActive()) {
        timer_.start();
        log(tav::LOG_TRACE, "WinProperties::on_calc_all");
        spacer_->hide();
        progress_->setValue(0);
        progress_->show();
        // A cancelled run leaves within one block; never run one object twice, and
        // never hold the GUI thread for it: try again a moment later.
        if (std::any_of(threads_.begin(), threads_.end(), [](const ThreadCalc* t) { return t->enabled.load() && t->isActive(); })) {
            timer_.stop();
            log(tav::LOG_TRACE, "WinProperties::on_calc_all, a cancelled run is still leaving");
            QPointer<WinProperties> self(this);
            QTimer::singleShot(20, this, [self]() {
                if (self) self->on_calc_all();
            });
            return;
        }
        for (size_t i = 0; i < threads_.size(); ++i) {
            ThreadCalc* t = threads_[i];
            if (!t->enabled) continue;
            t->reset();
            rows_[i].field->clear();
            t->keepRunning = true;
            t->percent = 0;
            tav::XThreadPool::start_global(t, false);
        }
        return;
    }
    for (ThreadCalc* t : threads_) {
        if (!t->isRunning()) continue;
        t->keepRunning = false;
        t->percent = 0;
    }
    timer_.stop();
    showIdle();
}

void WinProperties::on_timer_check_progress() {
    log(tav::LOG_TRACE, "WinProperties::on_timer_check_progress");
    int v = 0;
    bool running = false;
    for (ThreadCalc* t : threads_) {
        if (!t->isRunning()) continue;
        running = true;
        const int p = t->percent;
        log(tav::LOG_TRACE, "WinProperties::on_timer_check_progress, percent:$", p);
        if (v == 0 || p < v) v = p;
    }
    if (!running) {
        timer_.stop();
        showIdle();
        return;
    }
    progress_->setValue(v);
}

void WinProperties::on_copy_all() {
    log(tav::LOG_TRACE, "WinProperties::on_copy_all");
    QFileInfo fi(fi_.absoluteFilePath());
    if (!fi.exists() || !fi.isFile()) return;
    const uint64_t size = uint64_t(fi.size());
    QString text = fi.absoluteFilePath() + QLatin1Char('\n');
    text += tav::formatBytes(size) + QStringLiteral(" - ") + tav::format1000(size) + QStringLiteral(" bytes\n");
    text += dateText(fi) + QLatin1Char('\n');
    if (!isCalculating() && !isAnyThreadRunning()) {
        int longest = 0;
        for (ThreadCalc* t : threads_)
            if (t->enabled) longest = std::max(longest, int(t->algoName().length()));
        for (ThreadCalc* t : threads_) {
            if (!t->enabled) continue;
            const QString name = t->algoName();
            text += tav::createSpace(longest - int(name.length())) + name + QStringLiteral(": ") + t->toString(false) +
                    QLatin1Char('\n');
        }
    }
    tav::XClipboard::setText(text);
}

void WinProperties::on_close() {
    log(tav::LOG_TRACE, "WinProperties::on_close");
    tav::XNode* nWin = nodeWin();
    X_ASSERT_MSG(nWin, "nWin == NULL");
    if (isCalculating()) on_calc_all();
    saveStateToXml();
}

} // namespace tavFinder
