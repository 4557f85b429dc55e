// Icons, fonts, windows, widget helpers and desktop services of XTools.
#include "gui/tools/XTools.h"

#include "base/log/Logger.h"
#include "gui/kernel/GuiResources.h"
#include "gui/window/AbstractWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QDrag>
#include <QToolTip>
#include <QFile>
#include <QFileIconProvider>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWidget>

namespace tav {

// ---- icons and fonts ---------------------------------------------------------------------
QString XTools::get_icon_path(const QString& name) {
    initGuiResources();
    const QString light = QStringLiteral(":/tf/icons/") + name;
    if (!isTavStyleDark()) return light;
    const QString dark = QStringLiteral(":/tf/icons/dark/") + name;
    return QFile::exists(dark) ? dark : light;
}

QIcon XTools::getIcon(const QString& name) {
    const QString path = get_icon_path(name);
    if (!QFile::exists(path)) {
        log(tav::LOG_ERROR, "XTools::getIcon, <<<$>>> 404", path);
        return QIcon();
    }
    QIcon svg(path);
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return svg;
    // The style greys disabled icons, which leaves light icons of the dark
    // style looking enabled; fade them instead. The SVG engine keeps one added
    // pixmap per mode only, so the icon is made of pixmaps of several sizes.
    QIcon icon;
    for (int size : {16, 24, 32, 48, 64}) {
        const QPixmap pm = svg.pixmap(size, size);
        QPixmap faded(pm.size());
        faded.fill(Qt::transparent);
        QPainter p(&faded);
        p.setOpacity(0.3);
        p.drawPixmap(0, 0, pm);
        p.end();
        icon.addPixmap(pm, QIcon::Normal);
        icon.addPixmap(faded, QIcon::Disabled);
    }
    return icon;
}

QFont XTools::getMonoFont(int pointSize) {
    QFont f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    f.setStyleHint(QFont::Monospace);
    f.setFixedPitch(true);
    // Without a platform theme (offscreen, some window managers) the "fixed"
    // system font is the ordinary sans font; then take a fixed-pitch family.
    if (!QFontInfo(f).fixedPitch()) {
        for (const char* family : {"Monospace", "DejaVu Sans Mono", "Liberation Mono", "Noto Sans Mono", "Courier New"}) {
            QFont m(QString::fromLatin1(family));
            m.setStyleHint(QFont::TypeWriter);
            m.setFixedPitch(true);
            if (QFontInfo(m).fixedPitch()) {
                f = m;
                break;
            }
        }
    }
    return get_font_resized(f, pointSize);
}

QFont XTools::get_font_resized(const QFont& font, int pointSize) {
    QFont f = font;
    f.setPointSize(qMax(4, pointSize));
    return f;
}

QIcon XTools::get_file_icon_association(const QFileInfo& fi) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return QIcon();
    static QFileIconProvider provider;
    if (!fi.exists()) return provider.icon(QFileIconProvider::File);
    return provider.icon(fi);
}

// ---- windows -------------------------------------------------------------------------------
std::vector<AbstractWindow*> XTools::getAbstractWindows(bool onlyTopLevel, bool includeHidden) {
    std::vector<AbstractWindow*> out;
    for (AbstractWindow* w : AbstractWindow::allWindows()) {
        QWidget* wid = w->widget();
        if (!wid) continue;
        if (onlyTopLevel && wid->parentWidget()) continue;
        if (!includeHidden && !wid->isVisible()) continue;
        out.push_back(w);
    }
    return out;
}

void XTools::closeAbstractWindow(AbstractWindow* w) {
    if (!X_ASSERT_MSG(w, "window == NULL")) return;
    if (w->widget()) w->widget()->close();
}

// ---- widgets ---------------------------------------------------------------------------------
void XTools::setBackgroundColor(QWidget* w, const QColor& c) {
    if (!X_ASSERT_MSG(w, "widget == NULL")) return;
    QPalette p = w->palette();
    p.setColor(QPalette::Window, c);
    p.setColor(QPalette::Base, c);
    w->setAutoFillBackground(true);
    w->setPalette(p);
}

void XTools::show_input_error(QWidget* field, const QString& message) {
    if (!X_ASSERT_MSG(field, "field == NULL")) return;
    log(tav::LOG_REJECTED, "XTools::show_input_error, $", message);
    // The reason stays on the field (its tooltip) until the next check, and shows now.
    field->setToolTip(message);
    field->setProperty("inputError", true);
    QToolTip::showText(field->mapToGlobal(QPoint(0, field->height())), message, field, QRect(), 6000);
    const QString oldSheet = field->styleSheet();
    field->setStyleSheet(QStringLiteral("background-color: #d32f2f; color: white;"));
    QPointer<QWidget> guard(field);
    QTimer::singleShot(600, field, [guard, oldSheet]() {
        if (guard) guard->setStyleSheet(oldSheet);
    });
}

void XTools::clear_input_error(QWidget* field) {
    if (!field || !field->property("inputError").toBool()) return;
    field->setToolTip(QString());
    field->setProperty("inputError", false);
    QToolTip::hideText();
}

void XTools::flash_combobox_editable(QComboBox* combo, int times) {
    if (!X_ASSERT_MSG(combo, "comboBox == NULL")) return;
    QLineEdit* edit = combo->lineEdit();
    QWidget* target = edit ? static_cast<QWidget*>(edit) : combo;
    target->setFocus();
    if (edit) edit->selectAll();
    const QString oldSheet = target->styleSheet();
    QPointer<QWidget> guard(target);
    const int steps = qMax(1, times) * 2;
    for (int i = 0; i < steps; ++i) {
        QTimer::singleShot(150 * i, target, [guard, i, oldSheet]() {
            if (!guard) return;
            guard->setStyleSheet(i % 2 == 0 ? QStringLiteral("background-color: #d32f2f; color: white;") : oldSheet);
        });
    }
    QTimer::singleShot(150 * steps, target, [guard, oldSheet]() {
        if (guard) guard->setStyleSheet(oldSheet);
    });
}

bool XTools::drop_file(QWidget* source, const QFileInfo& fi) {
    if (!X_ASSERT_MSG(source, "widget == NULL")) return false;
    if (!fi.exists()) {
        log(tav::LOG_ERROR, "XTools::drop_file, <<<$>>> 404", fi.absoluteFilePath());
        return false;
    }
    log(tav::LOG_TRACE, "XTools::drop_file, <<<$>>>", fi.absoluteFilePath());
    auto* mime = new QMimeData;
    mime->setUrls({QUrl::fromLocalFile(fi.absoluteFilePath())});
    mime->setText(fi.absoluteFilePath());
    auto* drag = new QDrag(source);
    drag->setMimeData(mime);
    drag->setPixmap(get_file_icon_association(fi).pixmap(32, 32));
    drag->exec(Qt::CopyAction | Qt::LinkAction, Qt::CopyAction);
    return true;
}

// ---- desktop -------------------------------------------------------------------------------------
bool XTools::open_file_with_default_program(const QFileInfo& fi) {
    if (!fi.exists()) {
        log(tav::LOG_ERROR, "XTools::open_file_with_default_program, <<<$>>> 404", fi.absoluteFilePath());
        return false;
    }
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(fi.absoluteFilePath()));
    if (!ok) log(tav::LOG_ERROR, "XTools::open_file_with_default_program, <<<$>>> failed", fi.absoluteFilePath());
    return ok;
}

bool XTools::showFolderInFileManager(const QString& path) {
    const QFileInfo fi(path);
    if (!fi.exists()) {
        log(tav::LOG_ERROR, "XTools::showFolderInFileManager, <<<$>>> 404", path);
        return false;
    }
    const QString service = QStringLiteral("org.freedesktop.FileManager1");
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && bus.interface() && bus.interface()->isServiceRegistered(service).value()) {
        QDBusMessage m = QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/FileManager1"), service,
                                                        QStringLiteral("ShowItems"));
        m << QStringList{QUrl::fromLocalFile(fi.absoluteFilePath()).toString()} << QString();
        if (bus.send(m)) return true;
    }
    const QString folder = fi.isDir() ? fi.absoluteFilePath() : fi.absolutePath();
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    if (!ok) log(tav::LOG_ERROR, "XTools::showFolderInFileManager, <<<$>>> failed", folder);
    return ok;
}

// ---- clipboard ---------------------------------------------------------------------------------------
void XClipboard::setText(const QString& text) {
    if (QClipboard* c = QGuiApplication::clipboard()) c->setText(text);
}
QString XClipboard::text() {
    QClipboard* c = QGuiApplication::clipboard();
    return c ? c->text() : QString();
}

} // namespace tav
