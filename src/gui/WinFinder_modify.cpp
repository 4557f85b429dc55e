// Renaming and deleting from the main window. Both ask first, let go of the
// previewed file before touching it, and select the parent folder afterwards.
#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "gui/previews/Preview.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XMenu.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "src/dir/ContextPreviews.h"
#include "src/gui/WinFinder.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QAction>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLocale>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <ftw.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tavFinder {

using tav::log;
using tav::xt;

namespace {
constexpr int kModifyActionId = 200;
}

void WinFinder::add_modify_entries(tav::XMenu& menu, const QFileInfo& fi) {
    if (cfg().flag_tf_read_only) return;
    menu.addSeparator();
    QAction* rename = menu.createAction(xt("Rename"), false, false, true, kModifyActionId);
    connect(rename, &QAction::triggered, this, [this, fi]() { rename_file(fi); });
    QAction* del = menu.createAction(xt("Delete"), false, false, true, kModifyActionId);
    connect(del, &QAction::triggered, this, [this, fi]() { on_delete(fi); });
}

void WinFinder::on_rename() {
    log(tav::LOG_TRACE, "WinFinder::on_rename");
    tav::Preview* p = ContextPreviews::currentPreview();
    if (!p) return;
    rename_file(p->file_info());
}

namespace {
// Selects 'folder' in the tree, or shows it again when the tree is already there.
void selectParent(WinFinder* win, const QString& folder) {
    if (win->treeView()->selectedFile().absoluteFilePath() == QFileInfo(folder).absoluteFilePath())
        win->on_treeView_selectFile(QFileInfo(folder));
    else
        win->treeView()->selectFile(folder, true);
}
}

namespace {
// Why a rename or delete failed, in the user's words.
QString reasonOf(int err) {
    switch (err) {
    case EEXIST:
    case ENOTEMPTY: return xt("a file or folder with this name already exists");
    case EACCES:
    case EPERM: return xt("permission denied");
    case EROFS: return xt("read-only file system");
    case ENOENT: return xt("the file or folder no longer exists");
    case ENAMETOOLONG: return xt("the name is too long");
    case EBUSY: return xt("the file or folder is in use");
    default: return QString::fromLocal8Bit(std::strerror(err));
    }
}

// Renames without ever replacing an existing entry, also when one appears
// between a check and the rename.
int renameNoReplace(const QString& from, const QString& to) {
    const QByteArray a = QFile::encodeName(from), b = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, a.constData(), AT_FDCWD, b.constData(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
    struct stat st;
    if (::lstat(b.constData(), &st) == 0) return EEXIST;
    return ::rename(a.constData(), b.constData()) == 0 ? 0 : errno;
}

// Removes a file or a folder tree for good; the first failure's errno and path.
int removeForGood(const QString& path, QString* failedPath) {
    static thread_local int firstErr;
    static thread_local std::string firstPath;
    firstErr = 0;
    firstPath.clear();
    const QByteArray p = QFile::encodeName(path);
    auto remove = [](const char* f, const struct stat*, int, struct FTW*) -> int {
        if (::remove(f) != 0 && firstErr == 0) {
            firstErr = errno;
            firstPath = f;
        }
        return 0;   // go on: remove what can be removed
    };
    if (::nftw(p.constData(), remove, 32, FTW_DEPTH | FTW_PHYS) != 0 && firstErr == 0) {
        firstErr = errno;
        firstPath = p.constData();
    }
    if (failedPath) *failedPath = QFile::decodeName(QByteArray::fromStdString(firstPath));
    return firstErr;
}

// Files below a folder, counted up to a limit so a huge tree does not stall the question.
qint64 countFiles(const QString& dir, qint64 limit, bool* more) {
    qint64 n = 0;
    *more = false;
    QDirIterator it(dir, QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        if (++n >= limit) {
            *more = it.hasNext();
            break;
        }
    }
    return n;
}
}

QString WinFinder::check_new_name(const QString& name) {
    if (name == QLatin1String(".") || name == QLatin1String("..") || name.contains(QLatin1Char('/')) || name.contains(QChar(0)))
        return xt("A name cannot contain '/' and cannot be '.' or '..'.");
    if (QFile::encodeName(name).size() > NAME_MAX) return reasonOf(ENAMETOOLONG);
    return QString();
}

void WinFinder::rename_file(const QFileInfo& fi) {
    const QString name = tav::XBoxInput::get_text(this, xt("Rename"), QString(), fi.fileName());
    if (name.isEmpty()) return;
    // A separator would move the file into another folder: only a name is taken.
    QString why = check_new_name(name);
    const QString newPath = fi.absolutePath() + QLatin1Char('/') + name;
    if (why.isEmpty()) {
        const int err = name == fi.fileName() ? EEXIST : renameNoReplace(fi.absoluteFilePath(), newPath);
        if (err != 0) why = reasonOf(err);
    }
    if (!why.isEmpty()) {
        log(tav::LOG_ERROR, "WinFinder::rename_file, <<<$>>> to '$': $", fi, name, why);
        tav::XBox::warn(this, xt("Error"), tav::fill("$\n$\n$", xt("Cannot rename file"), fi.absoluteFilePath(), why));
        return;
    }
    selectParent(this, fi.absolutePath());
}

void WinFinder::on_delete(const QFileInfo& fi) {
    const bool isDir = fi.isDir() && !fi.isSymLink();
    QString question = tav::fill("$\n$", isDir ? xt("Do you really want to delete directory ?")
                                                : xt("Do you really want to delete file ?"),
                                 fi.absoluteFilePath());
    if (isDir) {
        bool more = false;
        const qint64 n = countFiles(fi.absoluteFilePath(), 100000, &more);
        question += QLatin1Char('\n') + tav::fill(xt("…and everything in it ($ files)"),
                                                  QLocale().toString(n) + (more ? QStringLiteral("+") : QString()));
    }
    if (!tav::XBox::ask_yes_no(this, isDir ? xt("Delete Directory") : xt("Delete File"), question)) return;
    // The preview must not hold the file open while it goes.
    if (tav::Preview* p = ContextPreviews::currentPreview()) {
        p->close_preview();
        log(tav::LOG_NAVIGATION, "WinFinder_modify::on_delete, Preview-Open-Counter:$", tav::Preview::open_counter());
    }
    const QString path = fi.absoluteFilePath();
    if (!fi.exists() && !fi.isSymLink()) {
        tav::XBox::warn(this, xt("Error"), tav::fill("$\n$\n$", isDir ? xt("Cannot Delete Directory") : xt("Cannot Delete File"),
                                                     path, reasonOf(ENOENT)));
        return;
    }
    // The trash first, so a mistake can be undone; without one, a second question.
    if (trash_enabled() && QFile::moveToTrash(path)) {
        log(tav::LOG_NAVIGATION, "WinFinder_modify::on_delete, <<<$>>> moved to the trash", path);
        selectParent(this, fi.absolutePath());
        return;
    }
    log(tav::LOG_NAVIGATION, "WinFinder_modify::on_delete, no trash for <<<$>>>", path);
    if (!tav::XBox::ask_yes_no(this, isDir ? xt("Delete Directory") : xt("Delete File"),
                               tav::fill("$\n$", xt("This cannot be moved to a trash. Delete it for good?"), path)))
        return;
    QString failed;
    const int err = removeForGood(path, &failed);
    if (err != 0) {
        log(tav::LOG_ERROR, "WinFinder::on_delete, <<<$>>>: $", failed, reasonOf(err));
        tav::XBox::warn(this, xt("Error"), tav::fill("$\n$\n$", isDir ? xt("Cannot Delete Directory") : xt("Cannot Delete File"),
                                                     failed.isEmpty() ? path : failed, reasonOf(err)));
        if (!QFileInfo::exists(path)) selectParent(this, fi.absolutePath());
        return;
    }
    selectParent(this, fi.absolutePath());
}

namespace {
std::atomic<bool> gTrash{true};
}
void WinFinder::set_trash_enabled(bool on) { gTrash = on; }
bool WinFinder::trash_enabled() { return gTrash; }

} // namespace tavFinder
