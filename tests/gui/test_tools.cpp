// Translation, web-search list, icons and resources, message boxes, window lists.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/kernel/GuiResources.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/tools/XSearchMachines.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XBrowser.h"
#include "gui/window/XDialog.h"
#include "gui/window/XMainWindow.h"

#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QtTest>
#include <algorithm>

class TestTools : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    QList<QUrl> opened;

public slots:
    void onUrl(const QUrl& u) { opened << u; }

private slots:
    void translationFallsBackToEnglish();
    void searchListFormatAndReread();
    void searchTriggersPercentEncodedUrl();
    void iconsAndLibraryResources();
    void scriptedBoxes();
    void windowListsFilterHiddenAndChildren();
    void windowsTakeAPartOfTheScreen();
};

void TestTools::translationFallsBackToEnglish() {
    tftest::TestDir dir;
    const QString cat = dir.file(QStringLiteral("lang.xml"), R"(<?xml version="1.0" encoding="UTF-8"?>
<GUI>
  <Message><en>Quit</en><de>Beenden</de></Message>
  <Message>
    <en>Reset Talvo Finder Configuration
        Confirm to bring Talvo Finder</en>
    <de>Konfiguration zuruecksetzen
        Bestaetigen</de>
  </Message>
  <Message><en>Only English</en></Message>
</GUI>
)");
    tav::XTools::set_lang_path(cat);
    // Nothing has loaded a catalogue yet, as in a console command: the first
    // text to translate loads it.
    tav::XTools::set_lang(QStringLiteral("de"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
    QVERIFY(tav::XTools::lang_ini(true));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
    // A missing entry, or an entry without this language, gives the English text.
    QCOMPARE(tav::xt("New Window"), QStringLiteral("New Window"));
    QCOMPARE(tav::xt("Only English"), QStringLiteral("Only English"));
    // Line breaks and indentation do not matter for the key; the translation
    // keeps its own line breaks without the file's indentation.
    QCOMPARE(tav::xt("Reset Talvo Finder Configuration\nConfirm to bring Talvo Finder"),
             QStringLiteral("Konfiguration zuruecksetzen\nBestaetigen"));
    QCOMPARE(tav::xt("Reset Talvo Finder Configuration Confirm to bring Talvo Finder"),
             QStringLiteral("Konfiguration zuruecksetzen\nBestaetigen"));
    // An unknown language gives English everywhere.
    tav::XTools::set_lang(QStringLiteral("fr"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Quit"));
    tav::XTools::set_lang(QStringLiteral("en"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Quit"));
}

void TestTools::searchListFormatAndReread() {
    const auto list = tav::XSearchMachines::parse(QStringLiteral(
        "# comment, with comma\n\n  Duck ,  https://d.example/?q=$  \n-\nComma, https://c.example/?a=1,2&q=$\n"
        "- more text\nbroken line without separator\n , https://no-title.example\n"));
    QCOMPARE(int(list.size()), 4);
    QCOMPARE(list[0].title, QStringLiteral("Duck"));
    QCOMPARE(list[0].url, QStringLiteral("https://d.example/?q=$"));
    QVERIFY(list[1].isSeparator());
    QCOMPARE(list[2].url, QStringLiteral("https://c.example/?a=1,2&q=$"));
    QVERIFY(list[3].isSeparator());

    // The user's copy in the configuration folder wins and is read again on request.
    const QString user = tav::XTools::get_absolute_config_file_path(QStringLiteral("search_machines.txt")).absoluteFilePath();
    auto write = [&](const QByteArray& text) {
        QFile f(user);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(text);
    };
    write("One, https://one.example/?q=$\n");
    QCOMPARE(int(tav::XSearchMachines::get_search_machines(false).size()), 1);
    write("One, https://one.example/?q=$\n-\nTwo, https://two.example/?q=$\n");
    QCOMPARE(int(tav::XSearchMachines::get_search_machines(true).size()), 1);   // cached
    const auto again = tav::XSearchMachines::get_search_machines(false);
    QCOMPARE(int(again.size()), 3);
    QCOMPARE(again[2].title, QStringLiteral("Two"));
    QFile::remove(user);
}

void TestTools::searchTriggersPercentEncodedUrl() {
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "onUrl");
    tav::XSearchMachine m;
    m.title = QStringLiteral("T");
    m.url = QStringLiteral("https://s.example/search?q=$&lang=$");
    QVERIFY(m.trigger_search_machine(QStringLiteral("a b&c#d/ü.txt")));
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened[0].toString(QUrl::FullyEncoded),
             QStringLiteral("https://s.example/search?q=a%20b%26c%23d%2F%C3%BC.txt&lang=a%20b%26c%23d%2F%C3%BC.txt"));
    tav::XSearchMachine sep;
    sep.separator = true;
    QVERIFY(!sep.trigger_search_machine(QStringLiteral("x")));
    QCOMPARE(opened.size(), 1);
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

void TestTools::iconsAndLibraryResources() {
    // The library's resources live in a static library; they must still be linked in.
    tav::initGuiResources();
    QVERIFY(QFile::exists(QStringLiteral(":/res/icons/apply-ok.svg")));
    QVERIFY(QFile::exists(QStringLiteral(":/res/icons/apply-cancel.svg")));

    tav::KernelGUI::setTavStyleNewStandard();
    QCOMPARE(tav::XTools::get_icon_path(QStringLiteral("find.svg")), QStringLiteral(":/tf/icons/find.svg"));
    tav::KernelGUI::setTavStyleNewDark();
    // Without a dark variant the light icon is used.
    QCOMPARE(tav::XTools::get_icon_path(QStringLiteral("find.svg")), QStringLiteral(":/tf/icons/find.svg"));
    tav::KernelGUI::setTavStyleNewStandard();

    QCOMPARE(tav::XBrowser::pageUrl(QStringLiteral(":tf/html/FirstMessage.html")).toString(),
             QStringLiteral("qrc:/tf/html/FirstMessage.html"));
    QCOMPARE(tav::XBrowser::pageUrl(QStringLiteral(":/tf/html/index.en.html")).toString(),
             QStringLiteral("qrc:/tf/html/index.en.html"));
    tav::XBrowser b;
    QVERIFY(!b.showPage(QStringLiteral(":/tf/html/missing.html")));

    const QFont mono = tav::XTools::getMonoFont(13);
    QCOMPARE(mono.pointSize(), 13);
    QVERIFY(mono.fixedPitch());
    QCOMPARE(tav::XTools::get_font_resized(mono, 2).pointSize(), 4);
}

void TestTools::scriptedBoxes() {
    tftest::LogCapture logs;
    const int before = tav::XBox::countShown();
    tav::XBox::setScriptedAnswer(1);
    QVERIFY(tav::XBox::ask_yes_no(nullptr, QStringLiteral("T"), QStringLiteral("Q")));
    bool ok = false;
    QCOMPARE(tav::XBoxInput::get_text(nullptr, QStringLiteral("T"), QStringLiteral("L"), QStringLiteral("abc"), &ok),
             QStringLiteral("abc"));
    QVERIFY(ok);
    tav::XBox::setScriptedAnswer(0);
    QVERIFY(!tav::XBox::ask_yes_no(nullptr, QStringLiteral("T"), QStringLiteral("Q")));
    QVERIFY(tav::XBoxInput::get_text(nullptr, QStringLiteral("T"), QStringLiteral("L"), QStringLiteral("abc"), &ok).isEmpty());
    QVERIFY(!ok);
    tav::XBox::info(nullptr, QStringLiteral("Info"), QStringLiteral("text"));
    tav::XBox::setScriptedAnswer(-1);
    QCOMPARE(tav::XBox::countShown() - before, 5);
    QVERIFY(logs.contains(QStringLiteral("XBox::info, title:'Info'")));
}

void TestTools::windowsTakeAPartOfTheScreen() {
    const QRect avail = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget w;
    tav::XTools::centerOnScreenPart(&w, 0.8, 100, 100);
    QCOMPARE(w.width(), int(avail.width() * 0.8));
    QCOMPARE(w.height(), int(avail.height() * 0.8));
    QVERIFY(std::abs(w.geometry().center().x() - avail.center().x()) <= 1);
    // A small screen still gets a usable window, never one larger than the screen.
    tav::XTools::centerOnScreenPart(&w, 0.1, avail.width() * 2, 50);
    QCOMPARE(w.width(), avail.width());
    QCOMPARE(w.height(), std::max(50, int(avail.height() * 0.1)));
}

void TestTools::windowListsFilterHiddenAndChildren() {
    auto count = [](bool top, bool hidden) { return int(tav::XTools::getAbstractWindows(top, hidden).size()); };
    const int base = count(false, true);
    auto* shown = new tav::XMainWindow;
    shown->show();
    auto* hidden = new tav::XMainWindow;
    auto* child = new tav::XDialog(shown);
    child->show();
    QCOMPARE(count(false, true), base + 3);
    QCOMPARE(count(true, true), base + 2);     // the dialog has a parent window
    QCOMPARE(count(true, false), base + 1);    // the hidden one drops out
    QCOMPARE(count(false, false), base + 2);

    // Closing a delete-on-close window takes it out of the list once it is deleted.
    shown->setDeleteOnClose(true);
    tav::XTools::closeAbstractWindow(shown);
    QTRY_COMPARE(count(false, true), base + 1);
    delete hidden;
    QCOMPARE(count(false, true), base);
}

QTEST_MAIN(TestTools)
#include "test_tools.moc"
