// Opens a large text file in the text view and in the hex view, offscreen, and
// reports: time to the first painted screen, indexing time, time to scroll to
// the end, time to set a million marks and repaint, paint times while paging
// through those marks, and peak memory. Reference figures from standard tools
// on the same file (wc -l, tail) are measured by run.sh beside it.
#include "base/find/XRamLayer.h"
#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/previews/XHexView.h"
#include "gui/viewText/XTextView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>

using namespace tav;

namespace {

QTextStream out(stdout);

double ms(qint64 ns) { return double(ns) / 1e6; }

// Peak and current resident memory of this process, in MiB.
void memory(double* peak, double* now) {
    QFile f(QStringLiteral("/proc/self/status"));
    *peak = *now = -1;
    if (!f.open(QIODevice::ReadOnly)) return;
    for (const QByteArray& l : f.readAll().split('\n')) {
        const QList<QByteArray> parts = l.simplified().split(' ');
        if (parts.size() < 2) continue;
        if (parts[0] == "VmHWM:") *peak = parts[1].toDouble() / 1024.0;
        if (parts[0] == "VmRSS:") *now = parts[1].toDouble() / 1024.0;
    }
}

bool generate(const QString& path, qint64 bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly)) return false;
    static const char* words[] = {"alpha", "beta", "gamma", "delta", "error", "warning", "connection", "timeout",
                                  "user", "request", "GET", "/api/v1/items", "200", "404", "took", "ms", "id=",
                                  "session", "cache", "miss", "hit", "\xc3\xa9t\xc3\xa9", "\xe6\x97\xa5\xe6\x9c\xac"};
    const int nWords = int(sizeof(words) / sizeof(words[0]));
    MersenneTwister rnd(true, 42);
    QByteArray buf;
    buf.reserve(8 << 20);
    qint64 written = 0, line = 0;
    while (written < bytes) {
        buf.clear();
        while (buf.size() < (8 << 20)) {
            buf += "2024-05-01 12:00:";
            buf += QByteArray::number(line % 60).rightJustified(2, '0');
            buf += " [" + QByteArray::number(line++) + "]";
            const int n = 3 + int(rnd.next(14));
            for (int i = 0; i < n; ++i) {
                buf += ' ';
                buf += words[rnd.next(nWords)];
            }
            buf += (line % 50 == 0) ? "\r\n" : "\n";
        }
        const qint64 w = std::min<qint64>(buf.size(), bytes - written);
        if (f.write(buf.constData(), w) != w) return false;
        written += w;
    }
    return true;
}

template <typename W>
qint64 untilPainted(W* w, QElapsedTimer& t) {
    const int before = w->paintCount();
    w->viewport()->repaint();
    while (w->paintCount() == before) QApplication::processEvents();
    return t.nsecsElapsed();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    Logger::setStderrEnabled(false);
    QString path = QStringLiteral("/tmp/tf_bench_textview_1g.log");
    qint64 genBytes = 1024LL * 1024 * 1024;
    bool generateOnly = false;
    for (int i = 1; i < argc; ++i) {
        const QString k = QString::fromLocal8Bit(argv[i]);
        const QString v = i + 1 < argc ? QString::fromLocal8Bit(argv[i + 1]) : QString();
        if (k == QLatin1String("--file")) path = v;
        else if (k == QLatin1String("--generate-mb")) genBytes = std::max<qint64>(1, v.toLongLong()) << 20;
        else if (k == QLatin1String("--generate-only")) generateOnly = true;
    }
    if (!QFileInfo::exists(path)) {
        out << "generating " << path << " (" << formatBytes(uint64_t(genBytes)) << ") ..." << Qt::endl;
        if (!generate(path, genBytes)) {
            out << "cannot write " << path << Qt::endl;
            return 2;
        }
    }
    if (generateOnly) return 0;
    const qint64 size = QFileInfo(path).size();
    double peak, now;
    memory(&peak, &now);
    const double baseRss = now;
    out << "file: " << path << ", " << formatBytes(uint64_t(size)) << Qt::endl;
    out << QStringLiteral("baseline RSS (Qt, widgets): %1 MiB").arg(now, 0, 'f', 1) << Qt::endl;

    // ---- text view ------------------------------------------------------------------------
    viewText::XTextView view;
    QFont f(QStringLiteral("DejaVu Sans Mono"));
    f.setPixelSize(14);
    view.setFont(f);
    view.resize(1200, 800);
    view.show();
    QApplication::processEvents();

    QElapsedTimer t;
    t.start();
    if (!view.openFile(path)) {
        out << "cannot open: " << view.errorString() << Qt::endl;
        return 2;
    }
    const qint64 tFirst = untilPainted(&view, t);
    const bool indexedAtFirst = view.lineIndex()->isDone();
    const QString firstRow = view.visibleRowTexts().value(0);
    while (view.isIndexing()) QApplication::processEvents(QEventLoop::AllEvents, 20);
    const qint64 tIndexed = t.nsecsElapsed();
    const int64_t lines = view.lineCount();
    const double indexMiB = double(view.lineIndex()->memoryBytes()) / (1024.0 * 1024.0);
    const size_t anchors = view.lineIndex()->anchorCount();

    t.restart();
    view.scrollToEnd();
    const qint64 tEnd = untilPainted(&view, t);
    const QString lastRow = view.visibleRowTexts().value(view.fullyVisibleRows() - 1);

    t.restart();
    view.set_wrap(true);
    view.scrollToEnd();
    const qint64 tEndWrap = untilPainted(&view, t);
    view.set_wrap(false);

    // A million marks spread over the whole file.
    t.restart();
    find::XRamLayer* layer = view.layers().add_layer(1000, 1);
    layer->set_color_background(qRgb(120, 220, 120));
    layer->reserve(1000000);
    const int64_t step = size / 1000000;
    for (int64_t i = 0; i < 1000000; ++i) layer->append_sorted(find::XRam(i * step, 5));
    view.set_active_layer(layer);
    layer->set_active_mark_index(500000);
    view.scrollToRam(*layer->active_mark());
    const qint64 tMarks = untilPainted(&view, t);

    // Paging with the marks in place: the paint time per screen.
    qint64 worst = 0, total = 0;
    const int pages = 300;
    for (int i = 0; i < pages; ++i) {
        view.scrollRows(view.fullyVisibleRows());
        QElapsedTimer p;
        p.start();
        view.viewport()->repaint();
        const qint64 e = p.nsecsElapsed();
        worst = std::max(worst, e);
        total += e;
    }
    memory(&peak, &now);
    const double textPeak = peak;

    // ---- hex view ----------------------------------------------------------------------------
    view.closeFile();
    XHexView hex;
    hex.setFont(f);
    hex.resize(1200, 800);
    hex.show();
    QApplication::processEvents();
    t.restart();
    hex.openFile(path);
    const qint64 tHexFirst = untilPainted(&hex, t);
    t.restart();
    hex.scrollToEnd();
    const qint64 tHexEnd = untilPainted(&hex, t);
    const QString hexLast = hex.rowText(hex.rowCount() - 1);
    memory(&peak, &now);

    out << "\ntext view\n";
    out << QStringLiteral("  first painted screen      %1 ms  (index done then: %2)  first row: %3")
               .arg(ms(tFirst), 0, 'f', 1).arg(indexedAtFirst ? "yes" : "no").arg(firstRow.left(40))
        << Qt::endl;
    out << QStringLiteral("  indexing done after       %1 ms  lines: %2  index: %3 MiB (%4 anchors)")
               .arg(ms(tIndexed), 0, 'f', 1).arg(format1000(lines)).arg(indexMiB, 0, 'f', 2)
               .arg(format1000(uint64_t(anchors)))
        << Qt::endl;
    out << QStringLiteral("  scroll to end + paint     %1 ms  last row: %2").arg(ms(tEnd), 0, 'f', 1).arg(lastRow.left(40))
        << Qt::endl;
    out << QStringLiteral("  same, wrapped             %1 ms").arg(ms(tEndWrap), 0, 'f', 1) << Qt::endl;
    out << QStringLiteral("  1,000,000 marks + paint   %1 ms").arg(ms(tMarks), 0, 'f', 1) << Qt::endl;
    out << QStringLiteral("  paging with marks         %1 ms per screen on average, %2 ms at worst (%3 screens)")
               .arg(ms(total / pages), 0, 'f', 2).arg(ms(worst), 0, 'f', 2).arg(pages)
        << Qt::endl;
    out << QStringLiteral("  peak RSS                  %1 MiB (baseline %2 MiB)").arg(textPeak, 0, 'f', 1).arg(baseRss, 0, 'f', 1)
        << Qt::endl;
    out << "\nhex view\n";
    out << QStringLiteral("  first painted screen      %1 ms").arg(ms(tHexFirst), 0, 'f', 1) << Qt::endl;
    out << QStringLiteral("  scroll to end + paint     %1 ms  last row: %2").arg(ms(tHexEnd), 0, 'f', 1).arg(hexLast.left(60))
        << Qt::endl;
    out << QStringLiteral("  peak RSS of the run       %1 MiB").arg(peak, 0, 'f', 1) << Qt::endl;

    const double limit = 1.5 * indexMiB + 100 + 0;
    out << "\ntargets\n";
    out << QStringLiteral("  first screen <= 300 ms            %1").arg(ms(tFirst) <= 300 ? "met" : "MISSED") << Qt::endl;
    out << QStringLiteral("  scroll to end <= 1000 ms          %1").arg(ms(tEnd) <= 1000 ? "met" : "MISSED") << Qt::endl;
    out << QStringLiteral("  peak - baseline <= 1.5 x index + 100 MiB (%1 MiB)   %2")
               .arg(limit, 0, 'f', 1).arg(peak - baseRss <= limit ? "met" : "MISSED")
        << Qt::endl;
    out << QStringLiteral("  peak <= 1.5 x index + 100 MiB, baseline included   %1").arg(peak <= limit ? "met" : "MISSED") << Qt::endl;
    // Machine-readable line for run.sh.
    out << QStringLiteral("RESULT index_ms=%1 first_ms=%2 end_ms=%3 marks_ms=%4 peak_mib=%5")
               .arg(ms(tIndexed), 0, 'f', 1).arg(ms(tFirst), 0, 'f', 1).arg(ms(tEnd), 0, 'f', 1)
               .arg(ms(tMarks), 0, 'f', 1).arg(peak, 0, 'f', 1)
        << Qt::endl;
    return 0;
}
