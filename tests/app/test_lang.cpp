// The language editor and the first-run message with real widgets: what is
// edited, the rules for adding and removing languages, the saved catalogue and
// its use at the next start, and the first-run choices in the configuration node.
#include "common/ModalDriver.h"
#include "common/TestEnv.h"

#include "base/env/Env.h"
#include "base/io/XFileIO.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/tools/XTools.h"
#include "gui/widgets/XBox.h"
#include "gui/widgets/XBrowser.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XPlainTextEdit.h"
#include "src/FindApplication.h"
#include "src/gui/dia/DiaFirstMessage.h"
#include "src/gui/lang/DiaAddLang.h"
#include "src/gui/lang/PanelLang.h"
#include "src/gui/lang/PanelMessage.h"
#include "src/gui/lang/WinLang.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

using tavFinder::DiaAddLang;
using tavFinder::DiaFirstMessage;
using tavFinder::PanelMessage;
using tavFinder::WinLang;

namespace {
// A small catalogue, deliberately unsorted; one message has no English text.
const char* kCatalogue = R"(<?xml version="1.0" encoding="UTF-8"?>
<GUI>
  <Message><en>Zeta</en><de>Zeta de</de><ru>Зета</ru></Message>
  <Message><en>beta</en><de>beta de</de><ru>бета</ru></Message>
  <Message><en></en><de>leer</de><ru>пусто</ru></Message>
  <Message><en>&add</en><de>&hinzufügen</de><ru>&добавить</ru></Message>
  <Message><en>Alpha</en><de>Alpha de</de><ru>Альфа</ru></Message>
</GUI>
)";

QString userCatalogue() { return tav::XTools::get_absolute_config_file_path(QStringLiteral("lang.xml")).absoluteFilePath(); }

QStringList englishOfRows(WinLang& w) {
    QStringList out;
    for (PanelMessage* r : w.panel()->rows()) out << r->editEnglish()->toPlainText();
    return out;
}
PanelMessage* rowOf(WinLang& w, const QString& english) {
    for (PanelMessage* r : w.panel()->rows())
        if (r->editEnglish()->toPlainText() == english) return r;
    return nullptr;
}
QString textOf(tav::XNode* catalogue, const QString& english, const QString& lang) {
    for (tav::XNode* m : catalogue->children_by_Type(QStringLiteral("Message")))
        if (m->query(QStringLiteral("en")) && m->query(QStringLiteral("en"))->getText() == english)
            return m->query(lang) ? m->query(lang)->getText() : QStringLiteral("<missing>");
    return QStringLiteral("<no message>");
}
}

class TestLang : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    std::unique_ptr<tav::XNode> small;

    void loadShipped() {
        QFile::remove(userCatalogue());
        tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
        QVERIFY(tav::XTools::lang_ini(true));
    }

private slots:
    void init() {
        small = tav::XNode::fromXml(kCatalogue);
        QVERIFY(small);
        tav::XBox::setScriptedAnswer(-1);
        loadShipped();
        tav::XTools::set_lang(QStringLiteral("en"));
    }
    void cleanup() {
        tav::XBox::setScriptedAnswer(-1);
        tav::XTools::set_lang(QStringLiteral("en"));
    }

    void editorEditsGermanWhenTheInterfaceIsEnglish();
    void addingLanguages();
    void removingLanguages();
    void savingWritesTheSortedCatalogueUsedAtTheNextStart();
    void cancelKeepsEverything();
    void firstRunMessageDialog();
    void firstRunMessageAtStart();
};

void TestLang::editorEditsGermanWhenTheInterfaceIsEnglish() {
    WinLang w;
    QVERIFY(WinLang::isOpen());
    w.set_lang_root(tav::XTools::nGUI());
    QCOMPARE(w.langToEdit(), QStringLiteral("de"));
    QCOMPARE(w.comboLang()->get_string_items(), (QStringList{QStringLiteral("de"), QStringLiteral("ru")}));
    QCOMPARE(w.comboLang()->currentText(), QStringLiteral("de"));

    // One row per message, sorted by English text by code units.
    const QStringList rows = englishOfRows(w);
    QCOMPARE(rows.size(), int(tav::XTools::nGUI()->children_by_Type(QStringLiteral("Message")).size()));
    QStringList sorted = rows;
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(rows, sorted);
    PanelMessage* quit = rowOf(w, QStringLiteral("Quit"));
    QVERIFY(quit);
    QVERIFY(quit->editEnglish()->isReadOnly());
    QVERIFY(!quit->editLang()->isReadOnly());
    QCOMPARE(quit->editLang()->toPlainText(), QStringLiteral("Beenden"));

    // The row with the focus grows, the one that lost it shrinks again.
    w.show();
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    PanelMessage* other = rowOf(w, QStringLiteral("Quit Talvo Finder"));
    QCOMPARE(quit->editLang()->height(), PanelMessage::HEIGHT);
    quit->editLang()->setFocus();
    QTRY_COMPARE(quit->editLang()->maximumHeight(), PanelMessage::HEIGHT_ACTIVE);
    QCOMPARE(quit->editEnglish()->maximumHeight(), PanelMessage::HEIGHT_ACTIVE);
    other->editLang()->setFocus();
    QTRY_COMPARE(other->editLang()->maximumHeight(), PanelMessage::HEIGHT_ACTIVE);
    QCOMPARE(quit->editLang()->maximumHeight(), PanelMessage::HEIGHT);

    // A German edit survives switching to Russian; the live catalogue stays as it is.
    quit->editLang()->setPlainText(QStringLiteral("Schluss"));
    w.comboLang()->setCurrentText(QStringLiteral("ru"));
    QCOMPARE(w.langToEdit(), QStringLiteral("ru"));
    QCOMPARE(rowOf(w, QStringLiteral("Quit"))->editLang()->toPlainText(), QStringLiteral("Выход"));
    QCOMPARE(textOf(w.workingCopy(), QStringLiteral("Quit"), QStringLiteral("de")), QStringLiteral("Schluss"));
    tav::XTools::set_lang(QStringLiteral("de"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
    tav::XTools::set_lang(QStringLiteral("en"));

    // Messages without English text get no row.
    tftest::LogCapture logs;
    w.set_lang_root(small.get());
    QCOMPARE(englishOfRows(w), (QStringList{QStringLiteral("&add"), QStringLiteral("Alpha"), QStringLiteral("Zeta"),
                                            QStringLiteral("beta")}));
    QVERIFY(logs.contains(QStringLiteral("count nodes:5")));
    w.close();
}

void TestLang::addingLanguages() {
    WinLang w;
    w.set_lang_root(small.get());
    const int boxes = tav::XBox::countShown();
    tftest::LogCapture logs;

    // Upper case, blanks and digits are refused silently: the dialog stays open.
    QStringList stayedOpen;
    auto watch = tftest::onModal<DiaAddLang>([&stayedOpen](DiaAddLang* d) {
        for (const QString& bad : {QStringLiteral("EN"), QStringLiteral("e n"), QStringLiteral("fr1")}) {
            d->lineEdit()->setText(bad);
            d->buttonOk()->click();
            if (d->isVisible() && d->result() != QDialog::Accepted) stayedOpen << bad;
        }
        d->lineEdit()->setText(QStringLiteral(" fr "));
        d->buttonOk()->click();
    });
    w.on_add_lang();
    QVERIFY(watch->ran);
    QCOMPARE(stayedOpen, (QStringList{QStringLiteral("EN"), QStringLiteral("e n"), QStringLiteral("fr1")}));
    QCOMPARE(logs.count(QStringLiteral("WinLang::on_ok, vorbidden char")), 3);
    QCOMPARE(tav::XBox::countShown(), boxes);

    // "fr" gives every message an empty French text and becomes the language edited.
    for (tav::XNode* m : w.workingCopy()->children_by_Type(QStringLiteral("Message"))) {
        QVERIFY(m->query(QStringLiteral("fr")));
        QCOMPARE(m->query(QStringLiteral("fr"))->getText(), QString());
    }
    QCOMPARE(w.langToEdit(), QStringLiteral("fr"));
    QCOMPARE(w.comboLang()->currentText(), QStringLiteral("fr"));
    QCOMPARE(rowOf(w, QStringLiteral("Alpha"))->editLang()->toPlainText(), QString());
    // The original catalogue is not touched.
    QCOMPARE(textOf(small.get(), QStringLiteral("Alpha"), QStringLiteral("fr")), QStringLiteral("<missing>"));

    // An existing language warns and changes nothing.
    rowOf(w, QStringLiteral("Alpha"))->editLang()->setPlainText(QStringLiteral("Alpha fr"));
    tav::XBox::setScriptedAnswer(1);
    watch = tftest::onModal<DiaAddLang>([](DiaAddLang* d) {
        d->lineEdit()->setText(QStringLiteral("ru"));
        d->buttonOk()->click();
    });
    w.on_add_lang();
    QVERIFY(watch->ran);
    QCOMPARE(tav::XBox::countShown(), boxes + 1);
    QVERIFY(logs.contains(QStringLiteral("XBox::warn, title:'Already exists'")));
    QCOMPARE(w.workingCopy()->children_by_Type(QStringLiteral("Message")).front()->children_by_Type(QStringLiteral("ru")).size(), size_t(1));
    QCOMPARE(w.langToEdit(), QStringLiteral("fr"));

    // Cancel adds nothing; adding another language keeps the French text typed so far.
    watch = tftest::onModal<DiaAddLang>([](DiaAddLang* d) {
        d->lineEdit()->setText(QStringLiteral("it"));
        d->buttonCancel()->click();
    });
    w.on_add_lang();
    QCOMPARE(w.comboLang()->count(), 3);
    watch = tftest::onModal<DiaAddLang>([](DiaAddLang* d) {
        d->lineEdit()->setText(QStringLiteral("uk"));
        d->buttonOk()->click();
    });
    w.on_add_lang();
    QCOMPARE(w.langToEdit(), QStringLiteral("uk"));
    QCOMPARE(textOf(w.workingCopy(), QStringLiteral("Alpha"), QStringLiteral("fr")), QStringLiteral("Alpha fr"));
    // Letters of other scripts count as lower case letters too.
    QVERIFY(DiaAddLang::isAllowedName(QStringLiteral("ελ")));
    QVERIFY(!DiaAddLang::isAllowedName(QStringLiteral("fr-ch")));
    w.close();
}

void TestLang::removingLanguages() {
    WinLang w;
    w.set_lang_root(small.get());
    tftest::LogCapture logs;
    tav::XBox::setScriptedAnswer(1);
    const int boxes = tav::XBox::countShown();

    w.on_remove_lang(QStringLiteral("de"));
    QCOMPARE(tav::XBox::countShown(), boxes + 1);
    QVERIFY(logs.contains(QStringLiteral("XBox::warn, title:'Not allowed'")));
    QCOMPARE(textOf(w.workingCopy(), QStringLiteral("Alpha"), QStringLiteral("de")), QStringLiteral("Alpha de"));

    // "No" keeps the language.
    tav::XBox::setScriptedAnswer(0);
    w.on_remove_lang(QStringLiteral("ru"));
    QCOMPARE(textOf(w.workingCopy(), QStringLiteral("Alpha"), QStringLiteral("ru")), QStringLiteral("Альфа"));
    QVERIFY(w.comboLang()->get_string_items().contains(QStringLiteral("ru")));

    // "Yes" removes it everywhere, edits German and switches the interface to German.
    w.comboLang()->setCurrentText(QStringLiteral("ru"));
    tav::XBox::setScriptedAnswer(1);
    w.buttonRemove()->click();
    for (tav::XNode* m : w.workingCopy()->children_by_Type(QStringLiteral("Message"))) QVERIFY(!m->query(QStringLiteral("ru")));
    QCOMPARE(w.comboLang()->get_string_items(), QStringList{QStringLiteral("de")});
    QCOMPARE(w.langToEdit(), QStringLiteral("de"));
    QCOMPARE(rowOf(w, QStringLiteral("Alpha"))->editLang()->toPlainText(), QStringLiteral("Alpha de"));
    QCOMPARE(tav::XTools::lang(), QStringLiteral("de"));
    w.close();
}

void TestLang::savingWritesTheSortedCatalogueUsedAtTheNextStart() {
    tav::XNode::atomicWriteFullEmptyTags = true;
    // The editor is opened on the live catalogue; make the small one live.
    tav::XTools::set_catalogue_content(small.get());
    QPointer<WinLang> w = new WinLang;
    w->set_lang_root(tav::XTools::nGUI());
    rowOf(*w, QStringLiteral("Alpha"))->editLang()->setPlainText(QStringLiteral("Alpha neu & mehr"));
    w->comboLang()->setCurrentText(QStringLiteral("ru"));
    rowOf(*w, QStringLiteral("beta"))->editLang()->setPlainText(QString());
    w->buttonOk()->click();
    QTRY_VERIFY(w.isNull());
    QVERIFY(!WinLang::isOpen());
    QCOMPARE(tav::XTools::lang(), QStringLiteral("en"));   // the language at opening

    // The file: sorted by English, accelerators and ampersands as typed, empty texts in full form.
    QFile f(userCatalogue());
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QString xml = QString::fromUtf8(f.readAll());
    QVERIFY(xml.startsWith(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")));
    QVERIFY(xml.contains(QStringLiteral("<en>&add</en>")));
    QVERIFY(xml.contains(QStringLiteral("<de>&hinzufügen</de>")));
    QVERIFY(xml.contains(QStringLiteral("<de>Alpha neu & mehr</de>")));
    QVERIFY(!xml.contains(QStringLiteral("&amp;")));
    QVERIFY(xml.contains(QStringLiteral("<ru></ru>")));
    const int a = xml.indexOf(QStringLiteral("<en>&add</en>")), b = xml.indexOf(QStringLiteral("<en>Alpha</en>")),
              c = xml.indexOf(QStringLiteral("<en>Zeta</en>")), d = xml.indexOf(QStringLiteral("<en>beta</en>"));
    QVERIFY(a > 0 && a < b && b < c && c < d);

    // The live catalogue has the new texts at once.
    tav::XTools::set_lang(QStringLiteral("de"));
    QCOMPARE(tav::xt("Alpha"), QStringLiteral("Alpha neu & mehr"));
    QCOMPARE(tav::xt("&add"), QStringLiteral("&hinzufügen"));

    // The next start merges the saved file over the built-in catalogue: the
    // user's texts win, texts the file lacks (as after an update) stay built in.
    const size_t builtIn = [] {
        auto cat = tav::XNode::loadFromXml(QStringLiteral(":/tf/lang/lang.xml"));
        return cat ? cat->children_by_Type(QStringLiteral("Message")).size() : size_t(0);
    }();
    QVERIFY(builtIn >= 197);
    tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
    QVERIFY(tav::XTools::lang_ini(true));
    // Zeta, beta and Alpha are new; "&add" is a built-in text; one without English is no text.
    QCOMPARE(tav::XTools::nGUI()->children_by_Type(QStringLiteral("Message")).size(), builtIn + 3);
    QCOMPARE(tav::xt("Alpha"), QStringLiteral("Alpha neu & mehr"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
    tav::XTools::set_lang(QStringLiteral("ru"));
    QCOMPARE(tav::xt("beta"), QStringLiteral("beta"));   // emptied: the English text again
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Выход"));
    // A built-in text the user translated differently is the user's.
    QVERIFY(tav::writeFileAtomic(userCatalogue(),
                                 "<GUI><Message><en>Quit</en><de>Schluss</de><ru></ru></Message></GUI>"));
    QVERIFY(tav::XTools::lang_ini(true));
    QCOMPARE(tav::XTools::nGUI()->children_by_Type(QStringLiteral("Message")).size(), builtIn);
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Выход"));   // an empty text does not hide the built-in one
    tav::XTools::set_lang(QStringLiteral("de"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Schluss"));

    // A file that does not parse: the built-in catalogue, a log line, and the
    // user's file kept aside (the editor would otherwise save over it).
    tftest::LogCapture logs;
    tav::takeMovedAside();
    QVERIFY(tav::writeFileAtomic(userCatalogue(), "<GUI><Message><en>broken"));
    QVERIFY(tav::XTools::lang_ini(true));
    QCOMPARE(tav::XTools::nGUI()->children_by_Type(QStringLiteral("Message")).size(), builtIn);
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
    QVERIFY(logs.contains(QStringLiteral("XTools::lang_ini")));
    QVERIFY(!QFile::exists(userCatalogue()));
    const std::vector<tav::MovedAside> moved = tav::takeMovedAside();
    QCOMPARE(moved.size(), size_t(1));
    QCOMPARE(moved[0].path, userCatalogue());
    QVERIFY(QFile::exists(moved[0].copy));
}

void TestLang::cancelKeepsEverything() {
    QPointer<WinLang> w = new WinLang;
    w->set_lang_root(tav::XTools::nGUI());
    rowOf(*w, QStringLiteral("Quit"))->editLang()->setPlainText(QStringLiteral("Schluss"));
    w->buttonCancel()->click();
    QTRY_VERIFY(w.isNull());
    QVERIFY(!QFile::exists(userCatalogue()));
    tav::XTools::set_lang(QStringLiteral("de"));
    QCOMPARE(tav::xt("Quit"), QStringLiteral("Beenden"));
}

void TestLang::firstRunMessageDialog() {
    tav::setEnv(QStringLiteral("TAVFINDER_VERSION"), QStringLiteral("1.00.16"));
    tav::XTools::set_lang(QStringLiteral("de"));
    DiaFirstMessage d;
    QCOMPARE(d.windowTitle(), QStringLiteral("Hinweis"));
    // The current language's button is chosen; the page starts in English.
    QVERIFY(d.group().button(DiaFirstMessage::German)->isChecked());
    QVERIFY(d.browser()->toPlainText().contains(QStringLiteral("Talvo Finder - v1.00.16")));
    QVERIFY(d.browser()->toPlainText().contains(QStringLiteral("First time usage hints")));
    QVERIFY(!d.browser()->openLinks());
    tftest::LogCapture logs;
    d.group().button(DiaFirstMessage::Russian)->click();
    QVERIFY(logs.containsLine(QStringLiteral("russisch")));
    QVERIFY(d.browser()->toPlainText().contains(QStringLiteral("Подсказки для первого запуска")));
    QVERIFY(d.browser()->toPlainText().contains(QStringLiteral("Talvo Finder - v1.00.16")));
    // The page names the buttons as they read in its language, and speaks of no other system.
    QCOMPARE(d.buttonOkSave()->text(), QStringLiteral("ОК + сохранить"));
    QVERIFY(d.browser()->toPlainText().contains(d.buttonOkSave()->text()));
    QVERIFY(d.browser()->toPlainText().contains(d.buttonOk()->text()));
    QVERIFY(!d.browser()->toPlainText().contains(QStringLiteral("Windows")));
    d.group().button(DiaFirstMessage::German)->click();
    QVERIFY(logs.containsLine(QStringLiteral("deutsch")));
    QVERIFY(d.browser()->toPlainText().contains(QStringLiteral("Viel Spaß!")));
    QCOMPARE(d.buttonOkSave()->text(), QStringLiteral("OK + speichern"));
    QVERIFY(d.browser()->toPlainText().contains(d.buttonOkSave()->text()));
    QVERIFY(!d.browser()->toPlainText().contains(QStringLiteral("Windows")));
    // The style sheet beside the pages is found.
    QVERIFY(d.browser()->loadResource(QTextDocument::StyleSheetResource, QUrl(QStringLiteral("css/base.css"))).isValid());

    // An interface language without a button selects none and reads as English.
    tav::XTools::set_lang(QStringLiteral("fr"));
    DiaFirstMessage e;
    QVERIFY(logs.contains(QStringLiteral("XButtonGroupTyped<TYPE>::select, bt with ID:-1 does not exist")));
    QCOMPARE(e.selected_lang(), DiaFirstMessage::English);
    QCOMPARE(DiaFirstMessage::lang_short_name(7), QString());
}

void TestLang::firstRunMessageAtStart() {
    auto root = tav::XNode::createRoot(QStringLiteral("TalvoEngine"));
    tftest::LogCapture logs;

    // Closed without a button: nothing changes, it comes again.
    auto watch = tftest::onModal<DiaFirstMessage>([](DiaFirstMessage* d) {
        d->group().button(DiaFirstMessage::German)->click();
        d->reject();
    });
    tavFinder::FindApplication::first_run_message(root.get());
    QVERIFY(watch->ran);
    QCOMPARE(tav::XTools::lang(), QStringLiteral("en"));
    QVERIFY(!root->hasAttribute(QStringLiteral("lang")) && !root->hasAttribute(QStringLiteral("flagSeeIniMessage")));
    QVERIFY(logs.contains(QStringLiteral("CANCEL")));

    // "OK": this run only.
    watch = tftest::onModal<DiaFirstMessage>([](DiaFirstMessage* d) {
        d->group().button(DiaFirstMessage::German)->click();
        d->buttonOk()->click();
    });
    tavFinder::FindApplication::first_run_message(root.get());
    QVERIFY(watch->ran);
    QCOMPARE(tav::XTools::lang(), QStringLiteral("de"));
    QVERIFY(!root->hasAttribute(QStringLiteral("lang")) && root->isBool(QStringLiteral("flagSeeIniMessage"), true));
    QVERIFY(logs.containsLine(QStringLiteral("OK, return:1")));
    QVERIFY(logs.containsLine(QStringLiteral("sLang:de")));

    // "OK + save": stored, and the message is off.
    watch = tftest::onModal<DiaFirstMessage>([](DiaFirstMessage* d) {
        d->group().button(DiaFirstMessage::Russian)->click();
        d->buttonOkSave()->click();
    });
    tavFinder::FindApplication::first_run_message(root.get());
    QVERIFY(watch->ran);
    QCOMPARE(tav::XTools::lang(), QStringLiteral("ru"));
    QCOMPARE(root->getString(QStringLiteral("lang")), QStringLiteral("ru"));
    QVERIFY(!root->isBool(QStringLiteral("flagSeeIniMessage"), true));

    // Switched off: no dialog at all.
    watch = tftest::onModal<DiaFirstMessage>([](DiaFirstMessage* d) { d->buttonOk()->click(); }, 300);
    tavFinder::FindApplication::first_run_message(root.get());
    QTest::qWait(400);
    QVERIFY(!watch->ran && !watch->rejected);
    watch->stop();
    tavFinder::FindApplication::first_run_message(nullptr);
}

QTEST_MAIN(TestLang)
#include "test_lang.moc"
