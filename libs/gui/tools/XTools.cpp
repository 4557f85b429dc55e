#include "gui/tools/XTools.h"

#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/kernel/Kernel.h"
#include "base/log/Logger.h"
#include "base/thread/XThread.h"
#include "base/util/Format.h"
#include "gui/kernel/KernelGUI.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QLibraryInfo>
#include <QTranslator>
#include <QCoreApplication>
#include <QMutex>
#include <QRegularExpression>
#include <QScreen>
#include <QWidget>
#include <atomic>
#include <memory>

namespace tav {

namespace {
struct LangState {
    QMutex mutex;
    QString resourcePath = QStringLiteral(":/tf/lang/lang.xml");
    QString lang = QStringLiteral("en");
    std::unique_ptr<XNode> catalogue;
    QHash<QString, XNode*> index;   // normalized English -> Message
};
LangState& S() {
    static LangState s;
    return s;
}
std::atomic<uint32_t> gModifiers{0};

void rebuildIndex(LangState& s) {
    s.index.clear();
    if (!s.catalogue) return;
    for (XNode* m : s.catalogue->children_by_Type(QStringLiteral("Message"))) {
        XNode* en = m->query(QStringLiteral("en"));
        if (!en) continue;
        const QString key = XTools::normalizeKey(en->getText());
        if (!key.isEmpty() && !s.index.contains(key)) s.index.insert(key, m);
    }
}

// Continuation lines of a catalogue text carry the file's indentation; drop it.
QString stripIndentation(const QString& text) {
    if (!text.contains(QLatin1Char('\n'))) return text.trimmed();
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& l : lines) l = l.trimmed();
    while (!lines.isEmpty() && lines.first().isEmpty()) lines.removeFirst();
    while (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    return lines.join(QLatin1Char('\n'));
}
}

// ---- language ------------------------------------------------------------------------
void XTools::set_lang_path(const QString& resourcePath) {
    QMutexLocker l(&S().mutex);
    S().resourcePath = resourcePath;
}
QString XTools::lang_path() {
    QMutexLocker l(&S().mutex);
    return S().resourcePath;
}

namespace {
// The user's catalogue overrides the built-in one text by text: a language the
// user edited replaces that language of the message, everything the user's
// file lacks (texts added in a later version among them) stays built in.
void mergeUserCatalogue(XNode* builtIn, const XNode* user) {
    QHash<QString, XNode*> byKey;
    for (XNode* m : builtIn->children_by_Type(QStringLiteral("Message"))) {
        XNode* en = m->query(QStringLiteral("en"));
        const QString key = en ? XTools::normalizeKey(en->getText()) : QString();
        if (!key.isEmpty() && !byKey.contains(key)) byKey.insert(key, m);
    }
    for (XNode* um : user->children_by_Type(QStringLiteral("Message"))) {
        XNode* en = um->query(QStringLiteral("en"));
        const QString key = en ? XTools::normalizeKey(en->getText()) : QString();
        if (key.isEmpty()) continue;
        XNode* target = byKey.value(key);
        if (!target) {
            byKey.insert(key, builtIn->addNode(um, true));
            continue;
        }
        for (XNode* text : um->children()) {
            if (text->type() == QLatin1String("en") || text->getText().trimmed().isEmpty()) continue;
            if (XNode* old = target->query(text->type())) target->removeNode(old, true);
            target->addNode(text, true);
        }
    }
}
}

bool XTools::lang_ini(bool reload) {
    LangState& s = S();
    QMutexLocker l(&s.mutex);
    if (s.catalogue && !reload) return true;
    std::unique_ptr<XNode> cat;
    {
        QString err;
        cat = XNode::loadFromXml(s.resourcePath, &err);
        if (!cat) log(tav::LOG_ERROR, "XTools::lang_ini, catalogue <<<$>>> missing ($)", s.resourcePath, err);
    }
    if (!cat) cat = XNode::createRoot(QStringLiteral("GUI"));
    const QFileInfo user = get_absolute_config_file_path(QStringLiteral("lang.xml"));
    if (user.exists() || user.isSymLink()) {
        QString err;
        std::unique_ptr<XNode> mine = XNode::loadFromXml(user.absoluteFilePath(), &err);
        if (mine && mine->type() == QLatin1String("GUI")) {
            mergeUserCatalogue(cat.get(), mine.get());
        } else {
            if (mine) err = QStringLiteral("unexpected root <%1>").arg(mine->type());
            log(tav::LOG_ERROR, "XTools::lang_ini, <<<$>>> cannot be read ($), using the built-in catalogue", user.absoluteFilePath(), err);
            // The editor would save over it: keep the user's work aside.
            moveAside(user.absoluteFilePath());
        }
    }
    s.catalogue = std::move(cat);
    rebuildIndex(s);
    return true;
}

namespace {
std::atomic<bool> gQtTranslations{false};

// Qt's catalogues of a language (Debian's qttranslations5-l10n), swapped with the language.
void installQtTranslations(const QString& lang) {
    static std::vector<std::unique_ptr<QTranslator>> installed;
    if (!QCoreApplication::instance()) return;
    for (auto& t : installed) QCoreApplication::removeTranslator(t.get());
    installed.clear();
    gQtTranslations = false;
    if (lang == QLatin1String("en")) return;
    const QString dir = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
    for (const char* base : {"qt_", "qtbase_"}) {
        auto t = std::make_unique<QTranslator>();
        if (t->load(QLatin1String(base) + lang, dir)) {
            QCoreApplication::installTranslator(t.get());
            installed.push_back(std::move(t));
            gQtTranslations = true;
            break;   // qt_LANG includes qtbase_LANG and the other modules
        }
    }
    if (!gQtTranslations) log(tav::LOG_REJECTED, "XTools::set_lang, no Qt translations for '$' in $", lang, dir);
}
}

void XTools::set_lang(const QString& lang) {
    LangState& s = S();
    QString now;
    {
        QMutexLocker l(&s.mutex);
        s.lang = lang.trimmed().isEmpty() ? QStringLiteral("en") : lang.trimmed();
        rebuildIndex(s);   // the catalogue may have been edited in place
        now = s.lang;
    }
    installQtTranslations(now);
    // The engine's own words (size units, filter summaries) follow the catalogue too.
    setTextTranslator([](const QString& english) { return xt(english); });
}

bool XTools::qtTranslationsLoaded() { return gQtTranslations.load(); }

QString XTools::lang() {
    QMutexLocker l(&S().mutex);
    return S().lang;
}

XNode* XTools::nGUI() {
    LangState& s = S();
    {
        QMutexLocker l(&s.mutex);
        if (s.catalogue) return s.catalogue.get();
    }
    lang_ini(false);
    QMutexLocker l(&s.mutex);
    return s.catalogue.get();
}

void XTools::set_catalogue_content(const XNode* catalogue) {
    if (!X_ASSERT_MSG(catalogue, "nLang == NULL")) return;
    XNode* live = nGUI();
    LangState& s = S();
    QMutexLocker l(&s.mutex);
    // The index points into the old content; it is rebuilt before the lock goes.
    live->removeChildren();
    for (XNode* c : catalogue->children()) live->addNode(c, true);
    rebuildIndex(s);
}

QStringList XTools::get_ar_lang_from_node(XNode* catalogue) {
    QStringList out;
    if (!catalogue) return out;
    for (XNode* m : catalogue->children_by_Type(QStringLiteral("Message")))
        for (XNode* c : m->children())
            if (!out.contains(c->type())) out << c->type();
    return out;
}

QStringList XTools::get_ar_lang() { return get_ar_lang_from_node(nGUI()); }

QString XTools::normalizeKey(const QString& text) {
    static const QRegularExpression breaks(QStringLiteral("\\s*\\n\\s*"));
    QString t = text;
    t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    t.replace(breaks, QStringLiteral(" "));
    return t.trimmed();
}

QString XTools::translate(const QString& english) { return translateTo(english, QString()); }

QString XTools::translateTo(const QString& english, const QString& language) {
    LangState& s = S();
    QMutexLocker l(&s.mutex);
    const QString lang = language.isEmpty() ? s.lang : language;
    if (lang == QLatin1String("en") || english.isEmpty()) return english;
    if (!s.catalogue) {
        // Console commands start without the catalogue; the first text to translate loads it.
        l.unlock();
        lang_ini(false);
        l.relock();
        if (!s.catalogue) return english;
    }
    auto it = s.index.constFind(normalizeKey(english));
    if (it == s.index.constEnd()) return english;
    XNode* tr = (*it)->query(lang);
    if (!tr) return english;
    const QString text = stripIndentation(tr->getText());
    return text.isEmpty() ? english : text;
}

QString xt(const QString& english) { return XTools::translate(english); }

// ---- modifiers ---------------------------------------------------------------------------
static constexpr uint32_t kModMask = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
void XTools::set_modifier(uint32_t bits) { gModifiers = bits; }
uint32_t XTools::get_modifier() { return gModifiers; }
bool XTools::is_modifier(uint32_t bits) {
    bits &= kModMask;
    return bits != 0 && (gModifiers.load() & kModMask) == bits;
}
bool XTools::is_modifier_control() { return (gModifiers.load() & Qt::ControlModifier) != 0; }
bool XTools::is_modifier_shift() { return (gModifiers.load() & Qt::ShiftModifier) != 0; }

// ---- misc --------------------------------------------------------------------------------
bool XTools::isDebug() { return Kernel::isDebug(); }
void XTools::setDebug(bool on) { Kernel::setDebug(on); }
bool XTools::isTavStyleDark() { return KernelGUI::isTavStyleDark(); }
void XTools::run_in_gui_thread(std::function<void()> f, int delayMs) { tav::run_in_gui_thread(std::move(f), delayMs); }

QDir XTools::get_absolute_config_dir() { return tav::get_absolute_config_dir(); }
QFileInfo XTools::get_absolute_config_file_path(const QString& name) { return tav::get_absolute_config_file_path(name); }
QDir XTools::get_create_cache_dir() { return tav::get_create_cache_dir(); }
bool XTools::empty_out_cache_dir() { return tav::empty_out_cache_dir(); }

void XTools::centerOnScreen(QWidget* w, int width, int height) {
    if (!X_ASSERT_MSG(w, "widget == NULL")) return;
    QScreen* screen = w->screen() ? w->screen() : QGuiApplication::primaryScreen();
    const QRect avail = screen ? screen->availableGeometry() : QRect(0, 0, 1920, 1080);
    width = qMin(width, avail.width());
    height = qMin(height, avail.height());
    w->setGeometry(avail.x() + (avail.width() - width) / 2, avail.y() + (avail.height() - height) / 2, width, height);
}

void XTools::centerOnScreenPart(QWidget* w, double part, int minWidth, int minHeight) {
    if (!X_ASSERT_MSG(w, "widget == NULL")) return;
    QScreen* screen = w->screen() ? w->screen() : QGuiApplication::primaryScreen();
    const QRect avail = screen ? screen->availableGeometry() : QRect(0, 0, 1500, 750);
    centerOnScreen(w, std::max(minWidth, int(avail.width() * part)), std::max(minHeight, int(avail.height() * part)));
}

} // namespace tav
