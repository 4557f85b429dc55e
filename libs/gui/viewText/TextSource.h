#pragma once
// The bytes a viewer shows: a file mapped into memory (any size, nothing is
// copied) or a block held in memory. Shared between a view and its background
// indexer, so the bytes outlive whichever lets go first.
#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <memory>

namespace tav {
namespace viewText {

class TextSource {
public:
    // Maps a regular file. Files that cannot be mapped (e.g. /proc files that
    // report size 0) are read into memory up to 'readLimit' bytes instead.
    // Null with 'error' set when the file cannot be shown at all.
    static std::shared_ptr<TextSource> openFile(const QString& path, QString* error = nullptr,
                                                qint64 readLimit = 64LL * 1024 * 1024);
    static std::shared_ptr<TextSource> fromBytes(const QByteArray& bytes, const QString& name);

    ~TextSource();
    TextSource(const TextSource&) = delete;
    TextSource& operator=(const TextSource&) = delete;

    const char* data() const { return data_; }
    int64_t size() const { return size_; }
    const QString& path() const { return path_; }
    bool isMapped() const { return map_ != nullptr; }
    // True when only the first part of a file could be read.
    bool isTruncated() const { return truncated_; }
    // A mapped file that became shorter than its mapping (a log truncated by its
    // rotation): touching the lost pages would kill the process, so a view that
    // sees this opens the file again before it reads any byte.
    bool shrunk() const;

    unsigned char at(int64_t i) const { return static_cast<unsigned char>(data_[i]); }
    // Position of the next '\n' in [from, to), or -1.
    int64_t findNewline(int64_t from, int64_t to) const;
    // Position of the last '\n' in [from, to), or -1.
    int64_t findNewlineBack(int64_t from, int64_t to) const;

private:
    TextSource() = default;
    QString path_;
    QFile file_;
    uchar* map_ = nullptr;
    QByteArray bytes_;
    const char* data_ = "";
    int64_t size_ = 0;
    bool truncated_ = false;
};

using TextSourcePtr = std::shared_ptr<TextSource>;

} // namespace viewText
} // namespace tav
