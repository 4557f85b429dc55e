// The headless command "stat": character or word statistics of a text file on
// standard output. Exit code: 0 done, 1 wrong treatment or unreadable file,
// 6 wrong arguments.
#include "base/kernel/CommandLine.h"
#include "base/log/Logger.h"
#include "base/text/XTokenizer.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "src/gui/stats/StatsCounter.h"

#include <QDir>
#include <atomic>

namespace tavFinder {

namespace {


constexpr uint64_t kLineLenMaxLimit = 2000000000ull;

void usage(const tav::CommandLine& cl) {
    cl.showExample(QStringList{
        QStringLiteral("Argument Problems"),
        QStringLiteral("scheme of stat command"),
        QStringLiteral("--file /tmp/bla.txt --show 10 --treat ( QChar | Word ) [--lineLenMax 1000 --filterDelimiter true "
                       "--wordLen 2 --logTrailler false --delim \",;:.+-\"]"),
        QStringLiteral("examples:"),
        QStringLiteral("stat --file /tmp/bla.txt --show 10 --treat QChar --filterDelimiter false --logTrailler false"),
        QStringLiteral("stat --file /tmp/bla.txt --show 10 --treat Word --wordLen 3 --logTrailler true"),
        QStringLiteral("stat --file /tmp/bla.txt --show 10 --treat Word --wordLen 3 --logTrailler false --delim \",;:.+-\""),
        QStringLiteral("optional parameter"),
        QStringLiteral("--lineLenMax value"),
        QStringLiteral("example: --lineLenMax 1000000"),
        QStringLiteral("--show 10"),
        QStringLiteral("example: --show 20"),
        QStringLiteral("example: --show all"),
        QStringLiteral("--filterDelimiter flag"),
        QStringLiteral("example: --filterDelimiter true"),
        QStringLiteral("example: --filterDelimiter false"),
        QStringLiteral("filterDelimiter works together with QChar only"),
        QStringLiteral("--wordLen 2"),
        QStringLiteral("example: --wordLen 3"),
        QStringLiteral("wordLen works together with Word only"),
    });
}

// An unsigned number, or 'def' when the key is absent; false for anything else.
bool readNumber(const tav::CommandLine& cl, const QString& key, uint64_t def, uint64_t& out) {
    if (!cl.hasKey(key)) {
        out = def;
        return true;
    }
    bool ok = false;
    out = cl.getString(key).trimmed().toULongLong(&ok);
    return ok;
}

bool readFlag(const tav::CommandLine& cl, const QString& key, bool def, bool& out) {
    if (!cl.hasKey(key)) {
        out = def;
        return true;
    }
    const QString v = cl.getString(key).trimmed().toLower();
    if (v == QLatin1String("true") || v == QLatin1String("1")) out = true;
    else if (v == QLatin1String("false") || v == QLatin1String("0")) out = false;
    else return false;
    return true;
}

int commandStat(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    uint64_t lineLenMax = 0, show = 0, wordLen = 0;
    bool filterDelimiter = true, logTrailler = true;
    const QString showText = cl.getString(QStringLiteral("show")).trimmed();
    const bool showAll = showText.compare(QLatin1String("all"), Qt::CaseInsensitive) == 0;
    if (!cl.checkKeys() || (!showAll && !readNumber(cl, QStringLiteral("show"), 0, show)) ||
        !readNumber(cl, QStringLiteral("wordLen"), 2, wordLen) ||
        !readNumber(cl, QStringLiteral("lineLenMax"), 1048576, lineLenMax) ||
        !readFlag(cl, QStringLiteral("filterDelimiter"), true, filterDelimiter) ||
        !readFlag(cl, QStringLiteral("logTrailler"), true, logTrailler) || show > UINT32_MAX || wordLen > UINT32_MAX) {
        usage(cl);
        return 6;
    }
    const QFileInfo fi(QDir::current(), cl.getString(QStringLiteral("file")));
    if (!fi.isFile()) {
        tav::Logger::printToCout(tav::fill("File '$' does not exist", cl.getString(QStringLiteral("file"))));
        return 6;
    }
    if (lineLenMax > kLineLenMaxLimit) {
        tav::Logger::printToCout(tav::fill("lineLenMax is too big, max is $ and we have here $",
                                           tav::format1000(kLineLenMaxLimit), tav::format1000(lineLenMax)));
        return 6;
    }
    const QString delim = cl.hasKey(QStringLiteral("delim")) ? cl.getString(QStringLiteral("delim")) : tav::XDelimiter::sDelimAll;
    tav::log(tav::LOG_TRACE, "will read: $", fi);
    tav::log(tav::LOG_TRACE, "max line length: $", lineLenMax);
    tav::log(tav::LOG_TRACE, "show: $", show);

    const QString treat = cl.getString(QStringLiteral("treat")).trimmed();
    StatsOptions o;
    o.lineLenMax = size_t(lineLenMax);
    if (treat == QLatin1String("QChar")) {
        o.words = false;
        o.filterDelimiter = filterDelimiter;
    } else if (treat == QLatin1String("Word")) {
        o.words = true;
        o.wordLen = unsigned(wordLen);
        o.delimiters = delim;
        tav::log(tav::LOG_TRACE, "wordLen '$'", wordLen);
        tav::log(tav::LOG_TRACE, "delim '$'", delim);
    } else {
        tav::Logger::printToCout(QStringLiteral("--treat must be QChar or Word"));
        return 1;
    }
    std::atomic<bool> running{true};
    const StatsResult r = StatsCounter::count(running, fi, o);
    if (!r.opened) {
        tav::Logger::printToCout(tav::fill("problems with '$'", fi));
        return 1;
    }
    for (const QString& line : StatsCounter::text_table(r, !o.words, unsigned(show))) tav::Logger::printToCout(line);
    if (logTrailler) tav::Logger::printToCout(StatsCounter::summary(r).trimmed());
    return 0;
}

const tav::TestGuiContextAdder kStat(&commandStat, QStringLiteral("stat"), QString(), true,
    // "delim" and "logTrailler" appear in the usage examples, so they must pass the check.
    {QStringLiteral("file=file,treat=QChar|Word"),
     QStringLiteral("lineLenMax,filterDelimiter=true|false,wordLen,show,delim,logTrailler=true|false"), true});

} // namespace
} // namespace tavFinder
