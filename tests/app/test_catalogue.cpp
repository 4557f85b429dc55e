// The language catalogue against the sources: every text the program passes
// to xt as a literal has an entry, and every entry is complete. When this
// fails after you added a text, the output lists the missing entries ready to
// paste into res/lang/lang.xml (then translate them).
#include "common/TestEnv.h"

#include "base/util/Format.h"
#include "common/XtLiterals.h"

#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "gui/tools/XTools.h"

#include <QtTest>
#include <map>

class TestCatalogue : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    static QString sourceDir() { return qEnvironmentVariable("TF_TEST_SOURCE_DIR"); }

    static std::unique_ptr<tav::XNode> shipped() {
        QString err;
        auto cat = tav::XNode::loadFromXml(sourceDir() + QStringLiteral("/res/lang/lang.xml"), &err);
        if (!cat) qWarning("%s", qPrintable(err));
        return cat;
    }

private slots:
    void scannerFindsWhatTheProgramTranslates() {
        const QString src = QStringLiteral(
            "auto a = xt(\"One\");\n"
            "auto b = tav::xt(QStringLiteral(\"Two\\nlines\"));\n"
            "// xt(\"commented out\")\n"
            "auto c = text(\"not a call\"); auto d = setXt(\"no\");\n"
            "auto e = xt(\"Joined \"\n   \"over lines\");\n"
            "auto f = xt(variable); auto g = \"xt(\\\"in a string\\\")\";\n"
            "/* xt(\"block comment\") */ auto h = xt( \"Quote \\\" inside\" );\n"
            "auto i = xt(\"Copy \\u2192 Search\");\n");
        QStringList found;
        for (const tftest::XtLiteral& l : tftest::xtLiteralsOfSource(src, QStringLiteral("x.cpp"))) found << l.text;
        QCOMPARE(found, (QStringList{QStringLiteral("One"), QStringLiteral("Two\nlines"),
                                     QStringLiteral("Joined over lines"), QStringLiteral("Quote \" inside"),
                                     QStringLiteral("Copy \u2192 Search")}));
        const auto lines = tftest::xtLiteralsOfSource(src, QStringLiteral("x.cpp"));
        QCOMPARE(lines.at(2).line, 5);
        QCOMPARE(lines.at(3).line, 8);
    }

    void everyTranslatedLiteralHasAnEntry() {
        auto cat = shipped();
        QVERIFY(cat);
        QSet<QString> keys;
        for (tav::XNode* m : cat->children_by_Type(QStringLiteral("Message")))
            if (tav::XNode* en = m->query(QStringLiteral("en"))) keys.insert(tav::XTools::normalizeKey(en->getText()));

        const auto literals = tftest::xtLiterals(sourceDir(), {QStringLiteral("src"), QStringLiteral("srcTesting"),
                                                               QStringLiteral("libs/gui")});
        QVERIFY2(literals.size() > 50, "the scan found too few texts - wrong source folder?");
        QStringList missing;
        QSet<QString> reported;
        for (const tftest::XtLiteral& l : literals) {
            const QString key = tav::XTools::normalizeKey(l.text);
            if (key.isEmpty() || keys.contains(key) || reported.contains(key)) continue;
            reported.insert(key);
            missing << QStringLiteral("  <!-- %1:%2 -->\n  <Message>\n    <en>%3</en>\n    <de></de>\n    <ru></ru>\n  </Message>")
                           .arg(l.file).arg(l.line).arg(l.text);
        }
        if (!missing.isEmpty())
            QFAIL(qPrintable(QStringLiteral("%1 text(s) passed to xt have no catalogue entry:\n%2")
                                 .arg(missing.size()).arg(missing.join(QLatin1Char('\n')))));
    }

    void everyEntryIsCompleteAndConsistent() {
        auto cat = shipped();
        QVERIFY(cat);
        QCOMPARE(cat->type(), QStringLiteral("GUI"));
        const auto messages = cat->children_by_Type(QStringLiteral("Message"));
        QVERIFY2(messages.size() >= 197, qPrintable(QString::number(messages.size())));
        QCOMPARE(int(messages.size()), cat->countChildren());

        std::map<QString, int> count;
        QStringList problems;
        for (tav::XNode* m : messages) {
            QStringList langs;
            for (tav::XNode* c : m->children()) langs << c->type();
            const QString en = m->query(QStringLiteral("en")) ? m->query(QStringLiteral("en"))->getText() : QString();
            ++count[tav::XTools::normalizeKey(en)];
            if (langs != QStringList{QStringLiteral("en"), QStringLiteral("de"), QStringLiteral("ru")}) {
                problems << QStringLiteral("'%1': languages %2").arg(en, langs.join(QLatin1Char(',')));
                continue;
            }
            for (const QString& l : {QStringLiteral("de"), QStringLiteral("ru")}) {
                const QString t = m->query(l)->getText();
                if (t.trimmed().isEmpty()) problems << QStringLiteral("'%1': empty <%2>").arg(en, l);
                // Placeholders are filled by position; a lost one drops a value.
                if (t.count(QLatin1Char('$')) != en.count(QLatin1Char('$')))
                    problems << QStringLiteral("'%1': <%2> has another number of $").arg(en, l);
                // An accelerator in English keeps one in the translation.
                static const QRegularExpression accel(QStringLiteral("&[^ &]"));
                if (en.contains(accel) && !t.contains(accel))
                    problems << QStringLiteral("'%1': <%2> lost its & accelerator").arg(en, l);
                if (t.count(QLatin1Char('\n')) != en.count(QLatin1Char('\n')))
                    problems << QStringLiteral("'%1': <%2> has another number of lines").arg(en, l);
            }
        }
        // Two English keys are in the catalogue twice on purpose; any other twin
        // is an entry that can never be found.
        for (auto& [key, n] : count)
            if (n > 1 && key != QLatin1String("Delete") && key != QLatin1String("Font Size Hex-View"))
                problems << QStringLiteral("'%1' is in the catalogue %2 times").arg(key).arg(n);
        QCOMPARE(count[QStringLiteral("Delete")], 2);
        QCOMPARE(count[QStringLiteral("Font Size Hex-View")], 2);
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }

    void builtInCatalogueIsTheSourceFile() {
        QFile res(QStringLiteral(":/tf/lang/lang.xml"));
        QFile src(sourceDir() + QStringLiteral("/res/lang/lang.xml"));
        QVERIFY(res.open(QIODevice::ReadOnly) && src.open(QIODevice::ReadOnly));
        QCOMPARE(res.readAll(), src.readAll());
    }

    void translationsAreFoundWithTheirAccelerators() {
        tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
        QVERIFY(tav::XTools::lang_ini(true));
        tav::XTools::set_lang(QStringLiteral("de"));
        QCOMPARE(tav::xt("&add"), QStringLiteral("&hinzufügen"));
        QCOMPARE(tav::xt("Some options will work only after restart!\nDo you want to restart Talvo Finder ?"),
                 QStringLiteral("Einige Einstellungen wirken erst nach einem Neustart!\nMöchten Sie Talvo Finder neu starten?"));
        tav::XTools::set_lang(QStringLiteral("ru"));
        QCOMPARE(tav::fill(tav::xt("'$' already exists!"), QStringLiteral("fr")), QStringLiteral("'fr' уже существует!"));
        tav::XTools::set_lang(QStringLiteral("en"));
        QCOMPARE(tav::xt("&clear"), QStringLiteral("&clear"));
    }

    void qtAndEngineTextsFollowTheLanguage() {
        tav::XTools::set_lang_path(QStringLiteral(":/tf/lang/lang.xml"));
        QVERIFY(tav::XTools::lang_ini(true));
        // Qt's own texts (standard buttons, file dialogs) come from Qt's catalogues.
        tav::XTools::set_lang(QStringLiteral("de"));
        QVERIFY(tav::XTools::qtTranslationsLoaded());
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen"));
        QCOMPARE(QCoreApplication::translate("QFileDialog", "Look in:"), QStringLiteral("Suchen in:"));
        // The engine's words go through our catalogue.
        QCOMPARE(tav::formatBytes(3), QStringLiteral("3 Bytes"));
        tav::XTools::set_lang(QStringLiteral("ru"));
        QVERIFY(tav::XTools::qtTranslationsLoaded());
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Отмена"));
        QCOMPARE(tav::formatBytes(3), QStringLiteral("3 байт"));
        tav::XTools::set_lang(QStringLiteral("en"));
        QVERIFY(!tav::XTools::qtTranslationsLoaded());
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancel"));
        QCOMPARE(tav::formatBytes(3), QStringLiteral("3 bytes"));
    }
};

QTEST_MAIN(TestCatalogue)
#include "test_catalogue.moc"
