#pragma once
// Checksums of a file's content, read in blocks so a huge file shows progress
// and stops within a block when asked. 1 MD5, 2 SHA-1, 3 SHA-256.
#include "base/core/AtomicBits.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

namespace tav {

class CheckSum {
public:
    enum ALGO { NONE = 0, MD5_ALGO = 1, SHA1_ALGO = 2, SHA256_ALGO = 3 };

    void set_algo(int algo) { algo_ = algo; reset(); }
    int algo() const { return algo_; }
    // Display name: "MD5", "SHA-1", "SHA-256" (empty for an unknown number).
    QString algo_as_string() const;
    static QString algo_as_string(int algo);

    void set_file(const QFileInfo& fi) { file_ = fi; reset(); }
    const QFileInfo& file() const { return file_; }
    void reset();

    // Reads the file to the end or until keepRunning turns false, writing 0..100
    // into percent. True when a result is present (not cancelled, file readable).
    bool calc(XAtomic<bool>& keepRunning, XAtomic<int>& percent);
    bool hasResult() const { return !result_.isEmpty(); }
    bool wasCancelled() const { return cancelled_; }
    QByteArray result() const { return result_; }
    // Lower-case hex; upper case when asked. Empty without a result.
    QString toString(bool upper) const;

    static QByteArray ofBytes(int algo, const QByteArray& data);

private:
    int algo_ = NONE;
    QFileInfo file_;
    QByteArray result_;
    bool cancelled_ = false;
};

// MD5 of a file or of bytes, hex text; empty when the file cannot be read.
class MD5 {
public:
    static QString ofFile(const QString& path);
    static QString ofBytes(const QByteArray& data);
};

} // namespace tav
