#include "src/gui/stats/Stats.h"

#include "base/log/Logger.h"
#include "gui/previews/PreviewAscii.h"
#include "base/thread/XThread.h"
#include "gui/panel/XPanel.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XTypedComboBox.h"
#include "src/gui/stats/StatsCounter.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <atomic>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
// One run's flag, shared with its pool task: a stopped or replaced run never
// shows its page, even when it finishes later.
struct Run {
    std::atomic<bool> running{true};
};
}

struct Stats::Private {
    tav::XPanel* panel = nullptr;
    tav::XBrowser* browser = nullptr;
    QLineEdit* editShow = nullptr;
    QCheckBox* checkAll = nullptr;
    tav::XTypedComboBox<unsigned>* comboLen = nullptr;
    QPushButton* buttonGo = nullptr;
    QFileInfo fi;
    std::shared_ptr<Run> run;
    std::shared_ptr<int> alive = std::make_shared<int>(0);

    QString background() const { return browser->palette().color(QPalette::Base).name(); }
    QString text() const { return browser->palette().color(QPalette::Text).name(); }
    void stop() {
        if (run) run->running = false;
        run.reset();
    }
};

Stats::Stats() : d(std::make_unique<Private>()) {}

Stats::~Stats() { d->stop(); }

void Stats::ini() {
    if (d->panel) return;
    d->panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL, QStringLiteral("Stats"));
    d->panel->setTight();
    tav::XPanel* row = d->panel->createPanel(tav::XPanel::HORIZONTAL);
    row->setMargins(4, 4, 4, 4);
    row->createLabel(xt("Show"));
    d->editShow = row->createLineEdit(QStringLiteral("50"));
    d->editShow->setMaximumWidth(60);
    d->checkAll = row->add(new QCheckBox(xt("All"), row));
    QObject::connect(d->checkAll, &QCheckBox::toggled, d->editShow, [this](bool on) { d->editShow->setEnabled(!on); });
    row->createLabel(xt("Word length"));
    d->comboLen = row->add(new tav::XTypedComboBox<unsigned>(row));
    for (unsigned i = 1; i <= 20; ++i) d->comboLen->addItem(i);
    d->comboLen->setSelected(3);
    d->comboLen->setToolTip(xt("1: statistics of characters"));
    d->buttonGo = row->createButton(xt("Create word len statistics"), [this]() { on_go(); });
    row->addSpacer();
    d->browser = d->panel->createBrowser();
    set_widget(d->panel);
    set_file_extensions(tav::PreviewAscii::get_text_file_extensions());
}

bool Stats::can_handle_file(const QFileInfo& fi) { return tav::Preview::can_handle_file(fi); }

bool Stats::open_file(const QFileInfo& fi) {
    log(tav::LOG_TRACE, "Stats::open_file, <<<$>>>", fi);
    log(tav::LOG_TRACE, "private_Stats::open_file, fi:$", fi);
    if (!d->panel) ini();
    // A run for the previous file must not show its page over this one.
    if (d->run) {
        d->stop();
        d->buttonGo->setText(xt("Create word len statistics"));
    }
    d->fi = fi;
    fileInfo_ = fi;
    d->browser->setHtml(StatsCounter::page_head(d->background(), d->text()) + StatsCounter::file_header(fi) +
                        StatsCounter::page_end());
    return fi.isFile();
}

void Stats::cancel_loading() {
    if (!d->run) return;
    d->stop();
    if (d->buttonGo) d->buttonGo->setText(xt("Create word len statistics"));
}

bool Stats::isRunning() const { return d->run && d->run->running.load(); }

void Stats::on_go() {
    if (!d->panel) return;
    if (isRunning()) {
        d->stop();
        d->buttonGo->setText(xt("Go"));
        d->browser->setHtml(StatsCounter::stopped_page(d->fi, d->background(), d->text()));
        return;
    }
    const QString showText = d->checkAll->isChecked() ? QStringLiteral("0") : d->editShow->text().trimmed();
    const unsigned wordLen = d->comboLen->selected();
    bool ok = false;
    const unsigned countShow = showText.toUInt(&ok, 10);
    if (!ok) {
        log(tav::LOG_TRACE, "private_Stats::ini, <<<$>>> is not a valid number", showText);
        return;
    }
    d->buttonGo->setText(xt("Cancel..."));
    auto run = std::make_shared<Run>();
    d->run = run;
    log(tav::LOG_TRACE, "private_Stats::on_go, countShow:$, len:$, excludeDelims:$", countShow, wordLen, true);
    const QFileInfo fi = d->fi;
    const QString bg = d->background(), fg = d->text();
    std::weak_ptr<int> alive = d->alive;
    tav::XThreadPool::start_global([this, run, fi, countShow, wordLen, bg, fg, alive]() {
        const QString page = StatsCounter::statistics(run->running, fi, countShow, wordLen, bg, fg);
        tav::run_in_gui_thread([this, run, page, alive]() {
            if (alive.expired() || d->run != run || !run->running) return;
            d->browser->setHtml(page);
            d->buttonGo->setText(xt("Create word len statistics"));
            d->run.reset();
        });
    });
}

tav::XBrowser* Stats::browser() const { return d->browser; }
QLineEdit* Stats::editShow() const { return d->editShow; }
QCheckBox* Stats::checkAll() const { return d->checkAll; }
tav::XTypedComboBox<unsigned>* Stats::comboWordLen() const { return d->comboLen; }
QPushButton* Stats::buttonGo() const { return d->buttonGo; }

} // namespace tavFinder
