#include "base/checksum/CheckSum.h"

#include "base/log/Logger.h"

#include <QCryptographicHash>
#include <QFile>
#include <memory>

namespace tav {

namespace {
bool toQtAlgo(int algo, QCryptographicHash::Algorithm& out) {
    switch (algo) {
    case CheckSum::MD5_ALGO: out = QCryptographicHash::Md5; return true;
    case CheckSum::SHA1_ALGO: out = QCryptographicHash::Sha1; return true;
    case CheckSum::SHA256_ALGO: out = QCryptographicHash::Sha256; return true;
    default: return false;
    }
}
constexpr qint64 kBlock = 1 << 20;
}

QString CheckSum::algo_as_string(int algo) {
    switch (algo) {
    case MD5_ALGO: return QStringLiteral("MD5");
    case SHA1_ALGO: return QStringLiteral("SHA-1");
    case SHA256_ALGO: return QStringLiteral("SHA-256");
    default: return QString();
    }
}
QString CheckSum::algo_as_string() const { return algo_as_string(algo_); }

void CheckSum::reset() {
    result_.clear();
    cancelled_ = false;
}

bool CheckSum::calc(XAtomic<bool>& keepRunning, XAtomic<int>& percent) {
    reset();
    percent = 0;
    QCryptographicHash::Algorithm qa;
    if (!toQtAlgo(algo_, qa)) {
        log(tav::LOG_ERROR, "CheckSum::calc, unknown algorithm $", algo_);
        return false;
    }
    QFile f(file_.absoluteFilePath());
    if (!f.open(QIODevice::ReadOnly)) {
        log(tav::LOG_ERROR, "CheckSum::calc, cannot read <<<$>>>", file_.absoluteFilePath());
        return false;
    }
    QCryptographicHash hash(qa);
    const qint64 total = f.size();
    qint64 done = 0;
    std::unique_ptr<char[]> buf(new char[kBlock]);
    while (true) {
        if (!keepRunning.load()) {
            cancelled_ = true;
            percent = 0;
            return false;
        }
        const qint64 n = f.read(buf.get(), kBlock);
        if (n < 0) {
            log(tav::LOG_ERROR, "CheckSum::calc, read error in <<<$>>>", file_.absoluteFilePath());
            return false;
        }
        if (n == 0) break;
        hash.addData(buf.get(), int(n));
        done += n;
        if (total > 0) percent = int(qMin<qint64>(100, done * 100 / total));
    }
    result_ = hash.result();
    percent = 100;
    return true;
}

QString CheckSum::toString(bool upper) const {
    const QString s = QString::fromLatin1(result_.toHex());
    return upper ? s.toUpper() : s;
}

QByteArray CheckSum::ofBytes(int algo, const QByteArray& data) {
    QCryptographicHash::Algorithm qa;
    if (!toQtAlgo(algo, qa)) return QByteArray();
    return QCryptographicHash::hash(data, qa);
}

QString MD5::ofFile(const QString& path) {
    CheckSum c;
    c.set_algo(CheckSum::MD5_ALGO);
    c.set_file(QFileInfo(path));
    XAtomic<bool> run(true);
    XAtomic<int> pct(0);
    return c.calc(run, pct) ? c.toString(false) : QString();
}

QString MD5::ofBytes(const QByteArray& data) {
    return QString::fromLatin1(CheckSum::ofBytes(CheckSum::MD5_ALGO, data).toHex());
}

} // namespace tav
