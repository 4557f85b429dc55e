#include "base/kernel/Kernel.h"

#include "base/io/XFileIO.h"
#include "base/io/XPaths.h"
#include "base/log/Logger.h"

#include <QFile>
#include <QMutex>
#include <atomic>
#include <new>

namespace tav {

namespace {
Kernel* gKernel = nullptr;
std::atomic<bool> gReboot{false};
std::atomic<bool> gGenerateAlways{false};
std::atomic<bool> gDebug{false};
const char* kRootType = "TalvoEngine";
const char* kAppType = "Application";
}

Kernel::Kernel(const QString& engineName, const QString& commandName, const QStringList& args)
    : engineName_(engineName), commandName_(commandName), commandLine_(args) {
    // Tests and tools that make a kernel name files as the program does.
    install_file_name_codec();
    gKernel = this;
    loadNodes();
}

Kernel::~Kernel() {
    if (gKernel == this) gKernel = nullptr;
}

Kernel* Kernel::instance() { return gKernel; }

TalvoEngine* Kernel::getNodeRoot() {
    if (!root_) return nullptr;
    if (!engine_ || engine_->node() != root_.get()) engine_ = std::make_unique<TalvoEngine>(root_.get());
    return engine_.get();
}

XNode* Kernel::getCreateNodeApplication() {
    if (!root_) root_ = XNode::createRoot(QLatin1String(kRootType));
    return root_->getCreateNode(QLatin1String(kAppType));
}

QString Kernel::nodeFilePath() {
    return get_absolute_config_file_path(QStringLiteral("talvofinder.xml")).absoluteFilePath();
}

bool Kernel::loadNodes() {
    root_ = XNode::createRoot(QLatin1String(kRootType));
    engine_.reset();
    if (gGenerateAlways) {
        log(tav::LOG_TRACE, "Kernel::loadNodes, generate config always");
        return true;
    }
    const QString path = nodeFilePath();
    if (!QFile::exists(path)) return true;
    QString err;
    auto loaded = XNode::loadFromXml(path, &err);
    if (!loaded || loaded->type() != QLatin1String(kRootType)) {
        log(tav::LOG_ERROR, "Kernel::loadNodes, <<<$>>> cannot be read ($), starting with defaults", path,
            loaded ? QStringLiteral("unexpected root <%1>").arg(loaded->type()) : err);
        moveAside(path);
        return false;
    }
    root_ = std::move(loaded);
    return true;
}

bool Kernel::saveNodes() {
    if (resetRequested_) {
        const QString path = nodeFilePath();
        log(tav::LOG_TRACE, "Kernel::saveNodes, configuration reset - <<<$>>> removed", path);
        QFile::remove(path);
        return true;
    }
    if (!root_) return false;
    return root_->saveNodeToXml(nodeFilePath());
}

void Kernel::save() {
    if (!resetRequested_) eventSave_.fire();
    saveNodes();
}

void Kernel::set_generate_config_always(bool on) { gGenerateAlways = on; }
void Kernel::setRebootProgram(bool on) { gReboot = on; }
bool Kernel::isRebootProgram() { return gReboot; }
void Kernel::set_config_to_initial_state() { resetRequested_ = true; }
bool Kernel::isDebug() { return gDebug; }
void Kernel::setDebug(bool on) { gDebug = on; }

// ---- TalvoEngine -------------------------------------------------------------------
QString TalvoEngine::get_lang() const { return root_ ? root_->getString(QStringLiteral("lang"), QStringLiteral("en")) : QStringLiteral("en"); }
void TalvoEngine::set_lang(const QString& lang) { if (root_) root_->setString(QStringLiteral("lang"), lang); }
int TalvoEngine::fontScale() const { return root_ ? root_->getInt(QStringLiteral("fontScale"), 100) : 100; }
void TalvoEngine::setFontScale(int percent) { if (root_) root_->setInt(QStringLiteral("fontScale"), percent); }
bool TalvoEngine::isStyleDark() const { return root_ && root_->isBool(QStringLiteral("styleDark"), false); }
void TalvoEngine::setStyleDark(bool dark) { if (root_) root_->setBool(QStringLiteral("styleDark"), dark); }

void TalvoEngine::set_lang(TalvoEngine* engine, const QString& lang) {
    if (!X_ASSERT_MSG(engine, "nEngine == NULL")) return;
    engine->set_lang(lang);
}
void TalvoEngine::setFontScale(TalvoEngine* engine, int percent) {
    if (!X_ASSERT_MSG(engine, "nEngine == NULL")) return;
    engine->setFontScale(percent);
}
void TalvoEngine::set_config_to_initial_state() {
    if (Kernel* k = Kernel::instance()) k->set_config_to_initial_state();
}

// ---- library list -------------------------------------------------------------------
namespace {
QMutex& libMutex() { static QMutex m; return m; }
QStringList& libList() { static QStringList l; return l; }
QStringList& infoList() { static QStringList l; return l; }
}
void TavLibraries::addLib(int id, const QString& name) {
    QMutexLocker l(&libMutex());
    libList() << QStringLiteral("%1 %2").arg(id).arg(name);
}
QStringList TavLibraries::libs() { QMutexLocker l(&libMutex()); return libList(); }
bool XAdditionalLibInfos::addLibInfo(const QString& line, bool unique) {
    QMutexLocker l(&libMutex());
    if (unique && infoList().contains(line)) return false;
    infoList() << line;
    return true;
}
QStringList XAdditionalLibInfos::infos() { QMutexLocker l(&libMutex()); return infoList(); }

void signal_handler_memory_alarm() {
    std::set_new_handler([] {
        Logger::printToCerr(QStringLiteral("memory alarm: allocation failed"));
        std::set_new_handler(nullptr);
        throw std::bad_alloc();
    });
}

} // namespace tav
