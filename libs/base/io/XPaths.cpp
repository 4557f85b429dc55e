#include "base/io/XPaths.h"

#include "base/log/Logger.h"

#include <QStandardPaths>
#include <QTextCodec>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tav {

namespace {
const char* kFolder = "talvofinder";
}

int openPath(const char* path, int flags) {
    const size_t len = std::strlen(path);
    if (len < PATH_MAX || path[0] != '/') return ::open(path, flags, 0);
    // The longest piece that ends at a '/' and stays below the limit.
    auto piece = [](const char* p, size_t n) -> size_t {
        size_t cut = std::min<size_t>(n, PATH_MAX - 1);
        while (cut > 0 && p[cut] != '/') --cut;
        return cut;
    };
    const int dirFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    size_t cut = piece(path, len);
    if (cut == 0) {
        errno = ENAMETOOLONG;   // a single name past the limit
        return -1;
    }
    int dir = ::open(std::string(path, cut).c_str(), dirFlags);
    const char* rest = path + cut + 1;
    size_t restLen = len - cut - 1;
    while (dir >= 0 && restLen >= PATH_MAX) {
        cut = piece(rest, restLen);
        if (cut == 0) {
            ::close(dir);
            errno = ENAMETOOLONG;
            return -1;
        }
        const int next = ::openat(dir, std::string(rest, cut).c_str(), dirFlags);
        const int err = errno;
        ::close(dir);
        errno = err;
        dir = next;
        rest += cut + 1;
        restLen -= cut + 1;
    }
    if (dir < 0) return -1;
    const int fd = ::openat(dir, rest, flags, 0);
    const int err = errno;
    ::close(dir);
    errno = err;
    return fd;
}

QDir get_absolute_config_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(tav::LOG_ERROR, "get_absolute_config_dir, cannot create <<<$>>>", d.absolutePath());
    return d;
}

QFileInfo get_absolute_config_file_path(const QString& name) {
    return QFileInfo(get_absolute_config_dir().absoluteFilePath(name));
}

QDir get_create_cache_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists() && !QDir().mkpath(d.absolutePath())) log(tav::LOG_ERROR, "get_create_cache_dir, cannot create <<<$>>>", d.absolutePath());
    return d;
}

bool empty_out_cache_dir() {
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir d(base + QLatin1Char('/') + QLatin1String(kFolder));
    if (!d.exists()) return true;
    return d.removeRecursively();
}

QString get_exe_path(bool withName) {
    const QFileInfo exe(QStringLiteral("/proc/self/exe"));
    const QString target = exe.symLinkTarget();
    if (target.isEmpty()) return QDir::currentPath();
    return withName ? target : QFileInfo(target).absolutePath();
}

QString decodePath(const char* bytes, size_t size) {
    // Valid UTF-8 (the common case) the usual way.
    const auto* b = reinterpret_cast<const unsigned char*>(bytes);
    bool plain = true;
    for (size_t i = 0; i < size && plain; ++i) plain = b[i] < 0x80;
    if (plain) return QString::fromLatin1(bytes, int(size));
    QString out;
    out.reserve(int(size));
    size_t i = 0;
    while (i < size) {
        const unsigned char c = b[i];
        size_t len = c < 0x80 ? 1 : (c & 0xE0) == 0xC0 ? 2 : (c & 0xF0) == 0xE0 ? 3 : (c & 0xF8) == 0xF0 ? 4 : 0;
        uint32_t cp = len == 1 ? c : len == 2 ? (c & 0x1F) : len == 3 ? (c & 0x0F) : (c & 0x07);
        bool ok = len > 0 && i + len <= size;
        for (size_t k = 1; ok && k < len; ++k) {
            ok = (b[i + k] & 0xC0) == 0x80;
            cp = (cp << 6) | (b[i + k] & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are not UTF-8 either.
        if (ok) ok = !(len == 2 && cp < 0x80) && !(len == 3 && cp < 0x800) && !(len == 4 && (cp < 0x10000 || cp > 0x10FFFF)) &&
                     !(cp >= 0xD800 && cp <= 0xDFFF);
        if (!ok) {
            out += QChar(ushort(0xDC00 + c));
            ++i;
            continue;
        }
        if (cp >= 0x10000) {
            out += QChar(QChar::highSurrogate(cp));
            out += QChar(QChar::lowSurrogate(cp));
        } else {
            out += QChar(ushort(cp));
        }
        i += len;
    }
    return out;
}

QByteArray encodePath(const QString& path) {
    bool escaped = false;
    for (const QChar c : path)
        if (c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF) {
            escaped = true;
            break;
        }
    if (!escaped) return path.toUtf8();
    QByteArray out;
    out.reserve(path.size() * 2);
    for (int i = 0; i < path.size(); ++i) {
        const ushort u = path[i].unicode();
        const bool lone = u >= 0xDC80 && u <= 0xDCFF && !(i > 0 && QChar::isHighSurrogate(path[i - 1].unicode()));
        if (lone) {
            out += char(u - 0xDC00);
            continue;
        }
        int n = 1;
        if (QChar::isHighSurrogate(u) && i + 1 < path.size() && QChar::isLowSurrogate(path[i + 1].unicode())) n = 2;
        out += path.mid(i, n).toUtf8();
        i += n - 1;
    }
    return out;
}

namespace {
// UTF-8 with the bytes outside it kept as U+DC80..U+DCFF (see decodePath). A text
// that comes in pieces may cut a character: its first bytes wait in the state.
class FileNameCodec : public QTextCodec {
public:
    // Its own name: a lookup of "UTF-8" (files read as text) still gets Qt's codec.
    QByteArray name() const override { return QByteArrayLiteral("x-utf-8-file-names"); }
    int mibEnum() const override { return -4106; }

protected:
    QString convertToUnicode(const char* in, int length, ConverterState* state) const override {
        QByteArray bytes;
        if (state && state->remainingChars > 0) {
            for (int k = 0; k < state->remainingChars; ++k) bytes += char(state->state_data[k]);
            state->remainingChars = 0;
        }
        bytes.append(in, length);
        if (state && !(state->flags & QTextCodec::IgnoreHeader) && state->invalidChars == 0 && bytes.startsWith("\xEF\xBB\xBF") &&
            state->state_data[2] == 0)
            bytes.remove(0, 3);   // a byte order mark at the very start is no text
        if (state) {
            state->state_data[2] = 1;
            // An unfinished character at the end waits for the next piece.
            const int n = bytes.size();
            for (int k = 1; k <= 3 && k <= n; ++k) {
                const auto c = static_cast<unsigned char>(bytes[n - k]);
                if ((c & 0xC0) == 0x80) continue;
                const int len = c >= 0xF0 && c < 0xF8 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
                if (len > k && c >= 0xC2 && c < 0xF5) {
                    for (int j = 0; j < k; ++j) state->state_data[j] = static_cast<unsigned char>(bytes[n - k + j]);
                    state->remainingChars = k;
                    bytes.chop(k);
                }
                break;
            }
        }
        return decodePath(bytes.constData(), size_t(bytes.size()));
    }
    QByteArray convertFromUnicode(const QChar* in, int length, ConverterState* state) const override {
        QString text;
        if (state && state->remainingChars > 0) {
            text += QChar(ushort(state->state_data[0]));
            state->remainingChars = 0;
        }
        text.append(in, length);
        // A pair cut between two pieces: its first half waits.
        if (state && !text.isEmpty() && QChar::isHighSurrogate(text.at(text.size() - 1).unicode())) {
            state->state_data[0] = text.at(text.size() - 1).unicode();
            state->remainingChars = 1;
            text.chop(1);
        }
        return encodePath(text);
    }
};
} // namespace

void install_file_name_codec() {
    static FileNameCodec* codec = nullptr;   // Qt keeps every codec made until the program ends
    if (codec) return;
    codec = new FileNameCodec;
    QTextCodec::setCodecForLocale(codec);
}

} // namespace tav
