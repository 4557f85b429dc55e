#include "gui/viewText/TextSource.h"

#include "base/log/Logger.h"

#include <QFileInfo>
#include <cstring>

namespace tav {
namespace viewText {

std::shared_ptr<TextSource> TextSource::openFile(const QString& path, QString* error, qint64 readLimit) {
    auto fail = [error](const QString& why) {
        if (error) *error = why;
        return std::shared_ptr<TextSource>();
    };
    const QFileInfo fi(path);
    if (!fi.exists()) return fail(QStringLiteral("file does not exist"));
    // FIFOs, sockets and devices would block or never end.
    if (!fi.isFile()) return fail(QStringLiteral("not a regular file"));

    std::shared_ptr<TextSource> s(new TextSource());
    s->path_ = fi.absoluteFilePath();
    s->file_.setFileName(s->path_);
    if (!s->file_.open(QIODevice::ReadOnly)) return fail(s->file_.errorString());
    const qint64 size = s->file_.size();
    if (size > 0) {
        s->map_ = s->file_.map(0, size);
        if (s->map_) {
            s->data_ = reinterpret_cast<const char*>(s->map_);
            s->size_ = size;
            return s;
        }
        log(tav::LOG_ERROR, "TextSource::openFile, <<<$>>> cannot be mapped ($), reading $ bytes at most", s->path_,
            s->file_.errorString(), readLimit);
    }
    // Not mappable, or a file that reports size 0 but has content (/proc): read it.
    s->bytes_ = s->file_.read(readLimit);
    s->truncated_ = !s->file_.atEnd() && s->bytes_.size() >= readLimit;
    s->file_.close();
    s->data_ = s->bytes_.constData();
    s->size_ = s->bytes_.size();
    return s;
}

std::shared_ptr<TextSource> TextSource::fromBytes(const QByteArray& bytes, const QString& name) {
    std::shared_ptr<TextSource> s(new TextSource());
    s->path_ = name;
    s->bytes_ = bytes;
    s->data_ = s->bytes_.constData();
    s->size_ = s->bytes_.size();
    return s;
}

bool TextSource::shrunk() const { return map_ && QFileInfo(path_).size() < size_; }

TextSource::~TextSource() {
    if (map_) file_.unmap(map_);
}

int64_t TextSource::findNewline(int64_t from, int64_t to) const {
    if (from < 0) from = 0;
    if (to > size_) to = size_;
    if (from >= to) return -1;
    const void* p = std::memchr(data_ + from, '\n', size_t(to - from));
    return p ? static_cast<const char*>(p) - data_ : -1;
}

int64_t TextSource::findNewlineBack(int64_t from, int64_t to) const {
    if (from < 0) from = 0;
    if (to > size_) to = size_;
    if (from >= to) return -1;
#ifdef __GLIBC__
    const void* p = memrchr(data_ + from, '\n', size_t(to - from));
    return p ? static_cast<const char*>(p) - data_ : -1;
#else
    for (int64_t i = to - 1; i >= from; --i)
        if (data_[i] == '\n') return i;
    return -1;
#endif
}

} // namespace viewText
} // namespace tav
