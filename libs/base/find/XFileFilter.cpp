#include "base/find/XFileFilter.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"

#include <QDateTime>
#include <algorithm>
#include <cstring>
#include <limits>
#include <sys/stat.h>

namespace tav {

QString XFileFilter::area_to_String(uint32_t area) {
    switch (area) {
    case NONE: return QStringLiteral("NONE");
    case LESS_EQUAL: return QStringLiteral("LESS_EQUAL");
    case EQUAL: return QStringLiteral("EQUAL");
    case BETWEEN: return QStringLiteral("BETWEEN");
    case GREATER_EQUAL: return QStringLiteral("GREATER_EQUAL");
    case YEAR: return QStringLiteral("YEAR");
    default: return fill("UNKNOWN($)", area);
    }
}

// ---- names ------------------------------------------------------------------------
void XFileFilter::foldName(const char* name, size_t len, std::string& out) {
    out.resize(len);
    bool ascii = true;
    for (size_t i = 0; i < len; ++i) {
        unsigned char c = static_cast<unsigned char>(name[i]);
        if (c >= 0x80) {
            ascii = false;
            break;
        }
        out[i] = char(c >= 'A' && c <= 'Z' ? c + 32 : c);
    }
    if (!ascii) out = QString::fromUtf8(name, int(len)).toCaseFolded().toUtf8().toStdString();
}

bool XFileFilter::wildcardMatch(const char* p, size_t plen, const char* s, size_t slen) {
    size_t pi = 0, si = 0;
    size_t starP = std::string::npos, starS = 0;
    auto charLen = [](unsigned char c) -> size_t { return c < 0x80 ? 1 : c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1; };
    while (si < slen) {
        if (pi < plen && p[pi] == '*') {
            starP = pi++;
            starS = si;
        } else if (pi < plen && p[pi] == '?') {
            ++pi;
            si = std::min(slen, si + charLen(static_cast<unsigned char>(s[si])));
        } else if (pi < plen && p[pi] == s[si]) {
            ++pi;
            ++si;
        } else if (starP != std::string::npos) {
            // Let the last star take one more character and try again.
            pi = starP + 1;
            starS = std::min(slen, starS + charLen(static_cast<unsigned char>(s[starS])));
            si = starS;
        } else {
            return false;
        }
    }
    while (pi < plen && p[pi] == '*') ++pi;
    return pi == plen;
}

static std::vector<std::string> splitPatterns(const QString& text) {
    std::vector<std::string> out;
    for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QString t = part.trimmed();
        if (t.isEmpty()) continue;
        const QByteArray u = t.toUtf8();
        std::string folded;
        XFileFilter::foldName(u.constData(), size_t(u.size()), folded);
        out.push_back(std::move(folded));
    }
    return out;
}

void XFileFilter::setPattern(const QString& text, bool isNot) {
    const QString t = text.trimmed();
    if (isNot) {
        sNotPattern_ = t;
        notPatterns_ = splitPatterns(t);
    } else {
        sPattern_ = t;
        patterns_ = splitPatterns(t);
    }
}

static bool anyMatch(const std::vector<std::string>& pats, const std::string& folded) {
    for (const std::string& p : pats)
        if (XFileFilter::wildcardMatch(p.data(), p.size(), folded.data(), folded.size())) return true;
    return false;
}

bool XFileFilter::Prepared::matchFileName(const char* name, size_t len) const {
    if (!include_.empty() || !exclude_.empty()) {
        thread_local std::string folded;
        foldName(name, len, folded);
        if (!include_.empty() && !anyMatch(include_, folded)) return false;
        if (!exclude_.empty() && anyMatch(exclude_, folded)) return false;
    }
    if (!ext_.empty()) {
        const char* dot = static_cast<const char*>(memrchr(name, '.', len));
        if (!dot) return false;
        const size_t elen = len - size_t(dot + 1 - name);
        thread_local std::string ext;
        foldName(dot + 1, elen, ext);
        if (!ext_.count(ext)) return false;
    }
    return true;
}

bool XFileFilter::Prepared::isExcludedFolder(const char* name, size_t len) const {
    if (exclude_.empty()) return false;
    thread_local std::string folded;
    foldName(name, len, folded);
    return anyMatch(exclude_, folded);
}

// ---- bounds ---------------------------------------------------------------------------
namespace {
// The last millisecond an upper bound stands for.
int64_t upperBound(int64_t t) {
    const QDateTime dt = QDateTime::fromMSecsSinceEpoch(t);
    if (dt.time() == QTime(0, 0)) return dt.date().addDays(1).startOfDay().toMSecsSinceEpoch() - 1;
    if (t % 1000 == 0) return t + 999;
    return t;
}
}

bool XFileFilter::Bounds::contains(uint64_t sizeBytes, int64_t mtimeMs) const {
    if (size && (sizeBytes < sizeLo || sizeBytes > sizeHi)) return false;
    if (time && (mtimeMs < timeLo || mtimeMs > timeHi)) return false;
    return true;
}

XFileFilter::Bounds XFileFilter::bounds() const {
    Bounds b;
    constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
    constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
    if (hasTimeCondition()) {
        b.time = true;
        switch (timeArea) {
        case LESS_EQUAL: b.timeLo = kMin; b.timeHi = upperBound(time1); break;
        case EQUAL: b.timeLo = time1; b.timeHi = upperBound(time1); break;
        case GREATER_EQUAL: b.timeLo = time1; b.timeHi = kMax; break;
        case BETWEEN:
            b.timeLo = std::min(time1, time2);
            b.timeHi = upperBound(std::max(time1, time2));
            break;
        default: b.time = false; break;
        }
    }
    if (hasSizeCondition()) {
        b.size = true;
        switch (sizeArea) {
        case LESS_EQUAL: b.sizeLo = 0; b.sizeHi = size1; break;
        case EQUAL: b.sizeLo = b.sizeHi = size1; break;
        case GREATER_EQUAL: b.sizeLo = size1; b.sizeHi = std::numeric_limits<uint64_t>::max(); break;
        case BETWEEN: b.sizeLo = std::min(size1, size2); b.sizeHi = std::max(size1, size2); break;
        default: b.size = false; break;
        }
    }
    return b;
}

XFileFilter::Prepared XFileFilter::prepare() const {
    Prepared p;
    p.include_ = patterns_;
    p.exclude_ = notPatterns_;
    for (const QString& e : textFileExtensions) {
        QString t = e.trimmed();
        if (t.startsWith(QLatin1Char('.'))) t.remove(0, 1);
        const QByteArray u = t.toUtf8();
        std::string folded;
        foldName(u.constData(), size_t(u.size()), folded);
        p.ext_.insert(std::move(folded));
    }
    p.bounds_ = bounds();
    p.needsStat_ = p.bounds_.time || p.bounds_.size;
    return p;
}

bool XFileFilter::match(const QFileInfo& fi) const {
    const Prepared p = prepare();
    const QByteArray name = fi.fileName().toUtf8();
    if (!p.matchFileName(name.constData(), size_t(name.size()))) return false;
    if (!p.needsStat()) return true;
    struct stat st;
    if (::lstat(QFile::encodeName(fi.absoluteFilePath()).constData(), &st) != 0) return false;
    return p.matchStat(uint64_t(st.st_size), int64_t(st.st_mtim.tv_sec) * 1000 + st.st_mtim.tv_nsec / 1000000);
}

// ---- text -------------------------------------------------------------------------------
static QString timeText(int64_t ms) {
    return QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("yyyy/MM/dd - hh:mm"));
}

static QString areaSign(uint32_t a) {
    switch (a) {
    case XFileFilter::LESS_EQUAL: return QStringLiteral("<=");
    case XFileFilter::EQUAL: return QStringLiteral("=");
    case XFileFilter::GREATER_EQUAL: return QStringLiteral(">=");
    case XFileFilter::BETWEEN: return QStringLiteral("between");
    default: return QString();
    }
}

QString XFileFilter::toString(bool verbose) const {
    if (verbose) {
        return fill("XFileFilter{pattern:'$', npattern:'$', time:$ $ $, size:$ $ $, ext:$}", sPattern_, sNotPattern_,
                    area_to_String(timeArea), time1, time2, area_to_String(sizeArea), size1, size2,
                    int(textFileExtensions.size()));
    }
    QStringList parts;
    if (hasPattern(false)) parts << sPattern_;
    if (hasPattern(true)) parts << fill("NOT $", sNotPattern_);
    if (hasTimeCondition()) {
        QString t = fill("time $ $", areaSign(timeArea), timeText(time1));
        if (timeArea == BETWEEN) t += fill(" and $", timeText(time2));
        parts << t;
    }
    if (hasSizeCondition()) {
        QString t = fill("size $ $", areaSign(sizeArea), formatBytes(size1));
        if (sizeArea == BETWEEN) t += fill(" and $", formatBytes(size2));
        parts << t;
    }
    if (!textFileExtensions.empty()) parts << trText("text files");
    return parts.join(QStringLiteral(" | "));
}

} // namespace tav
