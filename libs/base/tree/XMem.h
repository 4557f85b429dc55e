#pragma once
// A memory block: the binary image of a value tree (see XTree.h for the
// layout), read from and written to files whole. Its error state (XError)
// tells whether the image was built or read.
#include "base/core/XError.h"

#include <QByteArray>
#include <QString>

namespace tav {

class XMem : public XError {
public:
    // Files and unpacked images larger than this are refused rather than read.
    static constexpr qint64 kMaxSize = qint64(512) * 1024 * 1024;

    XMem() = default;
    explicit XMem(QByteArray bytes) : bytes_(std::move(bytes)) {}

    const QByteArray& bytes() const { return bytes_; }
    void setBytes(QByteArray b) { bytes_ = std::move(b); }
    qint64 size() const { return bytes_.size(); }

    // Reads the whole file; false (block emptied, error set) when it cannot.
    bool loadMem(const QString& path);
    // Writes the block whole and atomically; 'flags' is reserved, pass 0.
    bool saveToFile(const QString& path, int flags) const;

private:
    QByteArray bytes_;
};

} // namespace tav
