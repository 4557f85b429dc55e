#include "base/util/Format.h"

#include <atomic>

#include <QMutex>
#include <QRegularExpression>
#include <chrono>
#include <random>
#include <thread>

namespace tav {

QString format1000(uint64_t v) {
    QString digits = QString::number(v);
    QString out;
    out.reserve(digits.size() + digits.size() / 3);
    const int n = digits.size();
    for (int i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0) out += QLatin1Char(',');
        out += digits[i];
    }
    return out;
}

QString format1000(int64_t v) {
    if (v < 0) return QLatin1Char('-') + format1000(uint64_t(-(v + 1)) + 1);
    return format1000(uint64_t(v));
}

namespace {
std::atomic<TextTranslator> gTranslator{nullptr};
}

void setTextTranslator(TextTranslator translator) { gTranslator = translator; }

QString trText(const char* english) {
    const QString en = QString::fromUtf8(english);
    const TextTranslator t = gTranslator.load();
    return t ? t(en) : en;
}

QString formatBytes(uint64_t bytes) {
    static const char* units[] = {"KB", "MB", "GB", "TB", "PB"};
    if (bytes < 1024) return QStringLiteral("%1 ").arg(bytes) + trText("bytes");
    double v = double(bytes);
    int u = -1;
    while (v >= 1024.0 && u < 4) { v /= 1024.0; ++u; }
    const int decimals = v < 10 ? 2 : (v < 100 ? 1 : 0);
    return QStringLiteral("%1 %2").arg(v, 0, 'f', decimals).arg(QLatin1String(units[u]));
}

QString formatMicrosecond_as_Sec(int64_t micro) {
    return QString::number(double(micro) / 1e6, 'f', 3);
}

int64_t getMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

unsigned long get_bytes_number(const QString& text) {
    static const QRegularExpression re(QStringLiteral("^\\s*(\\d+(?:\\.\\d*)?|\\.\\d+)\\s*([kmgt]?)b?\\s*$"),
                                       QRegularExpression::CaseInsensitiveOption);
    const auto m = re.match(text);
    if (!m.hasMatch()) return 0;
    const double num = m.captured(1).toDouble();
    const QString unit = m.captured(2).toLower();
    double factor = 1;
    if (unit == QLatin1String("k")) factor = 1024.0;
    else if (unit == QLatin1String("m")) factor = 1024.0 * 1024.0;
    else if (unit == QLatin1String("g")) factor = 1024.0 * 1024.0 * 1024.0;
    else if (unit == QLatin1String("t")) factor = 1024.0 * 1024.0 * 1024.0 * 1024.0;
    const double r = num * factor;
    if (r >= 1.8e19) return 0;
    return static_cast<unsigned long>(r + 0.5);
}

QString get_string_number(const QString& text, int width) {
    if (width < 1) width = 1;
    int i = text.size();
    while (i > 0 && text[i - 1].isDigit()) --i;
    const QString stem = text.left(i);
    const QString digits = text.mid(i);
    if (digits.isEmpty()) return stem + QStringLiteral("%1").arg(1, width, 10, QLatin1Char('0'));
    bool ok = false;
    const qulonglong n = digits.toULongLong(&ok);
    if (!ok) return text + QStringLiteral("%1").arg(1, width, 10, QLatin1Char('0'));
    return stem + QStringLiteral("%1").arg(n + 1, qMax(width, digits.size()), 10, QLatin1Char('0'));
}

QString createSpace(int n) { return n > 0 ? QString(n, QLatin1Char(' ')) : QString(); }

unsigned count_hardware_threads(unsigned fallback) {
    const unsigned n = std::thread::hardware_concurrency();
    return n == 0 ? fallback : n;
}

struct MersenneTwister::Impl {
    std::mt19937 gen;
    QMutex mutex;
};

MersenneTwister::MersenneTwister(bool deterministic, uint32_t seed) : d(new Impl) {
    if (deterministic) d->gen.seed(seed);
    else d->gen.seed(std::random_device{}() ^ uint32_t(getMicroseconds()));
}
MersenneTwister::~MersenneTwister() { delete d; }
uint32_t MersenneTwister::next() { QMutexLocker l(&d->mutex); return d->gen(); }
uint32_t MersenneTwister::next(uint32_t below) {
    if (below == 0) return 0;
    QMutexLocker l(&d->mutex);
    return std::uniform_int_distribution<uint32_t>(0, below - 1)(d->gen);
}
QString MersenneTwister::randString(int length) {
    static const char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    QString s;
    s.reserve(length);
    for (int i = 0; i < length; ++i) s += QLatin1Char(alphabet[next(sizeof(alphabet) - 1)]);
    return s;
}

} // namespace tav
