#include "gui/kernel/KernelGUI.h"

#include "base/log/Logger.h"
#include "gui/kernel/GuiResources.h"
#include "gui/tools/XTools.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QFont>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <atomic>

namespace tav {

std::function<bool(KernelGUI&)> KernelGUIConfig::lang_ini;

namespace {
KernelGUI* gKernelGui = nullptr;
std::atomic<bool> gDark{false};
int gBasePointSize = 0;
int gScale = 100;

bool isModifierKey(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr;
}

uint32_t modifierOfKey(int key) {
    switch (key) {
    case Qt::Key_Shift: return Qt::ShiftModifier;
    case Qt::Key_Control: return Qt::ControlModifier;
    case Qt::Key_Alt: return Qt::AltModifier;
    case Qt::Key_Meta: return Qt::MetaModifier;
    default: return 0;
    }
}

// Watches input events for the modifier keys: remembers the modifiers of the
// last input event and fires the kernel's modifier events.
class ModifierWatch : public QObject {
public:
    explicit ModifierWatch(KernelGUI* k) : QObject(nullptr), kernel_(k) {}
    bool eventFilter(QObject* o, QEvent* e) override {
        switch (e->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            auto* ke = static_cast<QKeyEvent*>(e);
            // A key event reaches several objects on its way; count it once.
            // Events are often built at the same address one after the other,
            // so the address alone does not tell; it is forgotten once the
            // event loop turns, and type and key must match as well.
            if (ke == last_ && e->type() == lastType_ && ke->key() == lastKey_) break;
            last_ = ke;
            lastType_ = e->type();
            lastKey_ = ke->key();
            if (!resetQueued_) {
                resetQueued_ = true;
                QMetaObject::invokeMethod(this, [this]() {
                    last_ = nullptr;
                    resetQueued_ = false;
                }, Qt::QueuedConnection);
            }
            // The event's own modifiers may or may not include the key that
            // changed; count it in on press and out on release.
            uint32_t mods = uint32_t(ke->modifiers());
            const uint32_t own = modifierOfKey(ke->key());
            mods = e->type() == QEvent::KeyPress ? (mods | own) : (mods & ~own);
            XTools::set_modifier(mods);
            if (isModifierKey(ke->key()) && !ke->isAutoRepeat())
                kernel_->eventModifier(e->type() == QEvent::KeyPress ? 0 : 1).fire();
            break;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            XTools::set_modifier(uint32_t(static_cast<QInputEvent*>(e)->modifiers()));
            break;
        default:
            break;
        }
        return QObject::eventFilter(o, e);
    }

private:
    KernelGUI* kernel_;
    const QEvent* last_ = nullptr;
    QEvent::Type lastType_ = QEvent::None;
    int lastKey_ = 0;
    bool resetQueued_ = false;
};

QPalette darkPalette() {
    QPalette p;
    const QColor base(0x2d, 0x33, 0x39), window(0x23, 0x27, 0x2b), text(0xef, 0xef, 0xef);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, QColor(0x35, 0x3b, 0x42));
    p.setColor(QPalette::ToolTipBase, base);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, window);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, Qt::red);
    p.setColor(QPalette::Link, QColor(0x5e, 0xb0, 0xef));
    p.setColor(QPalette::Highlight, QColor(0x00, 0x59, 0x86));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x80));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
    return p;
}

bool haveWidgets() { return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr; }
}

KernelGUI::KernelGUI(const QString& engineName, const QString& commandName, const QStringList& args, bool withDisplay)
    : Kernel(engineName, commandName, args), withDisplay_(withDisplay && haveWidgets()) {
    gKernelGui = this;
    initGuiResources();
    if (withDisplay_) {
        modifierWatch_ = new ModifierWatch(this);
        qApp->installEventFilter(modifierWatch_);
        applyStartSettings();
    }
    if (KernelGUIConfig::lang_ini) KernelGUIConfig::lang_ini(*this);
}

KernelGUI::~KernelGUI() {
    if (modifierWatch_) {
        if (QCoreApplication::instance()) QCoreApplication::instance()->removeEventFilter(modifierWatch_);
        delete modifierWatch_;
    }
    if (gKernelGui == this) gKernelGui = nullptr;
}

KernelGUI& KernelGUI::kernelGui() {
    Q_ASSERT(gKernelGui);
    return *gKernelGui;
}
KernelGUI* KernelGUI::instanceGui() { return gKernelGui; }

int KernelGUI::exec() { return QCoreApplication::exec(); }

void KernelGUI::applyStartSettings() {
    TalvoEngine* e = getNodeRoot();
    if (e && e->isStyleDark()) setTavStyleNewDark();
    else setTavStyleNewStandard();
    setFontScale(e ? e->fontScale() : 100);
}

void KernelGUI::setTavStyleNewDark() {
    gDark = true;
    if (haveWidgets()) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(darkPalette());
    }
    if (gKernelGui && gKernelGui->getNodeRoot()) gKernelGui->getNodeRoot()->setStyleDark(true);
}

void KernelGUI::setTavStyleNewStandard() {
    gDark = false;
    if (haveWidgets()) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(QApplication::style()->standardPalette());
    }
    if (gKernelGui && gKernelGui->getNodeRoot()) gKernelGui->getNodeRoot()->setStyleDark(false);
}

bool KernelGUI::isTavStyleDark() { return gDark; }

void KernelGUI::setTavStyleAtNextStart(bool dark) {
    if (gKernelGui && gKernelGui->getNodeRoot()) gKernelGui->getNodeRoot()->setStyleDark(dark);
}

bool KernelGUI::tavStyleAtNextStart() {
    return gKernelGui && gKernelGui->getNodeRoot() ? gKernelGui->getNodeRoot()->isStyleDark() : gDark.load();
}

void KernelGUI::setFontScale(int percent) {
    if (percent < 50 || percent > 400) percent = 100;
    gScale = percent;
    if (gKernelGui && gKernelGui->getNodeRoot()) gKernelGui->getNodeRoot()->setFontScale(percent);
    if (!haveWidgets()) return;
    QFont f = QApplication::font();
    if (gBasePointSize <= 0) gBasePointSize = f.pointSize() > 0 ? f.pointSize() : 10;
    f.setPointSizeF(gBasePointSize * percent / 100.0);
    QApplication::setFont(f);
}

int KernelGUI::fontScale() { return gScale; }

} // namespace tav
