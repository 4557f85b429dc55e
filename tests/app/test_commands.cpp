// Every registered command, run as its own process under the offscreen
// platform: with valid keys it opens its window (closed again by the
// program's auto-close) or does its work, and writes its log lines; with a
// mandatory key missing it prints its usage line and ends with its code.
#include "base/kernel/CommandRegistry.h"
#include "common/TestEnv.h"

#include <QImage>
#include <QProcess>
#include <QtTest>
#include <memory>

namespace {

struct Case {
    QString title;       // shown on failure
    QStringList args;    // command name first
    int exitCode = 0;
    QStringList expect;  // parts that must appear in the output
    QString window;      // class of a window the auto-close must find ("" none)
};

struct Run {
    Case c;
    std::unique_ptr<QProcess> p;
    QString out;
};

} // namespace

class TestCommands : public QObject {
    Q_OBJECT
    tftest::TestEnv env;
    tftest::TestDir data;

    static QString exe() { return tftest::TestEnv::programPath(); }

    QProcessEnvironment procEnv() const {
        QProcessEnvironment e = env.processEnvironment(true);
        e.insert(QStringLiteral("TAV_AUTO_CLOSE_MS"), QStringLiteral("700"));
        return e;
    }

    // Runs the cases a few at a time and checks each one.
    void runAll(const std::vector<Case>& cases) {
        const size_t batch = 3;
        for (size_t i = 0; i < cases.size(); i += batch) {
            std::vector<Run> runs;
            for (size_t k = i; k < std::min(cases.size(), i + batch); ++k) {
                Run r;
                r.c = cases[k];
                r.p = std::make_unique<QProcess>();
                r.p->setProcessEnvironment(procEnv());
                r.p->setProcessChannelMode(QProcess::MergedChannels);
                r.p->start(exe(), r.c.args);
                runs.push_back(std::move(r));
            }
            for (Run& r : runs) {
                QVERIFY2(r.p->waitForStarted(20000), qPrintable(exe() + QStringLiteral(" does not start")));
                const bool ended = r.p->waitForFinished(60000);
                if (!ended) r.p->kill();
                r.out = QString::fromUtf8(r.p->readAll());
                const QString where = r.c.title + QStringLiteral(": ") + r.out.right(1500);
                QVERIFY2(ended, qPrintable(QStringLiteral("did not end, ") + where));
                QVERIFY2(r.p->exitStatus() == QProcess::NormalExit, qPrintable(QStringLiteral("crashed, ") + where));
                QVERIFY2(r.p->exitCode() == r.c.exitCode,
                         qPrintable(QStringLiteral("exit code %1, ").arg(r.p->exitCode()) + where));
                for (const QString& part : r.c.expect)
                    QVERIFY2(r.out.contains(part), qPrintable(QStringLiteral("missing '%1', ").arg(part) + where));
                if (!r.c.window.isEmpty())
                    QVERIFY2(r.out.contains(QStringLiteral("auto-close: ") + r.c.window),
                             qPrintable(QStringLiteral("no window ") + r.c.window + QStringLiteral(", ") + where));
                QVERIFY2(!r.out.contains(QStringLiteral("not available yet")), qPrintable(where));
                QVERIFY2(!r.out.contains(QStringLiteral("refuse to close")), qPrintable(where));
            }
        }
    }

private slots:
    void initTestCase() {
        env.markFirstRunDone();
        data.file(QStringLiteral("a.txt"), "hallo welt\nhallo\n");
        data.file(QStringLiteral("b.txt"), "nichts\n");
        data.file(QStringLiteral("sub/c.md"), "x hallo\n");
        data.file(QStringLiteral(".hidden.txt"), "hallo hallo\n");   // not scanned without hidden files
        QImage img(32, 24, QImage::Format_RGB32);
        img.fill(Qt::darkBlue);
        QVERIFY(img.save(data.abs(QStringLiteral("pic.png"))));
    }

    void everyCommandRunsWithValidKeys() {
        const QString d = data.path();
        const QString a = data.abs(QStringLiteral("a.txt"));
        const std::vector<Case> cases = {
            {"app", {"app"}, 0, {}, "tavFinder::WinFinder"},
            {"completion", {"completion"}, 0, {"complete -F _talvofinder talvofinder talvofinder-app", "'find --scope')"}, ""},
            {"apps.edit", {"apps.edit"}, 0, {}, "tavFinder::WinEditorApps"},
            {"apps.run", {"apps.run"}, 0, {}, "tav::XTestWindow 'Run Program'"},
            {"dia.config", {"dia.config"}, 0, {"dialog cancelled"}, "tavFinder::DiaTavFinderConfig"},
            {"dia.editHist", {"dia.editHist"}, 0, {"dialog cancelled"}, "tavFinder::DiaHistory"},
            {"dia.selFile", {"dia.selFile"}, 0, {}, "tav::XTestWindow"},
            {"dia.showFirstMessage", {"dia.showFirstMessage"}, 0, {"CANCEL, return:0", "sLang:"}, "tavFinder::DiaFirstMessage"},
            {"dialogs.selectFile.pluginTest", {"dialogs.selectFile.pluginTest"}, 0, {}, "tav::XTestWindow"},
            {"dirInfo", {"dirInfo", "--open", d}, 0,
             {"Recursive scan <<<" + d + ">>>", "Recursive scan within:", "Copy of DirInfo in"}, ""},
            {"filterProxy", {"filterProxy"}, 0, {}, "tav::XTestWindow 'Filter Proxy'"},
            {"find", {"find", "--dir", d, "--find", "hallo"}, 0, {"2\t" + a, "match-total:3"}, ""},
            {"misc.dir_preview_simple", {"misc.dir_preview_simple", "--openDir", d}, 0, {}, "tav::XTestWindow 'Directory'"},
            {"misc.showShelp", {"misc.showShelp"}, 0, {}, "tav::XBrowserWindow"},
            {"preview.ascii", {"preview.ascii", "--file", a}, 0, {}, "tav::XTestWindow 'Text Preview'"},
            {"preview.dir", {"preview.dir", "--dir", d, "--hiddenFiles", "true"}, 0, {}, "tav::XTestWindow 'Directory Preview'"},
            {"preview.hex via memory", {"preview.hex", "--file", a, "--flagMemory", "TRUE"}, 0,
             {"load indirectly via XMem", "mem:17 bytes"}, "tav::XTestWindow 'Hex Preview'"},
            {"preview.hex direct", {"preview.hex", "--file", a}, 0, {"load directly via file"}, "tav::XTestWindow 'Hex Preview'"},
            {"preview.stats", {"preview.stats", "--file", a}, 0, {}, "tav::XTestWindow 'Stats'"},
            {"prog", {"prog"}, 0, {"MD5 sums are equal"}, ""},
            {"qtreeViewDirs", {"qtreeViewDirs"}, 0, {}, "tav::XTestWindow 'Folders'"},
            // Four files are searched (the hidden one is not scanned): two hold 3 hits.
            {"result_full_Window", {"result_full_Window", "--open", d, "--find", "hallo"}, 0,
             {"sDir <<<" + d + ">>>", "sFind <<<hallo>>>", "stats:files:4, lines:", "hits:3, match:2",
              d + ", 'hallo', 2 file hits, total hits:3"},
             "tav::XTestWindow 'Results'"},
            {"result_scan_Window",
             {"result_scan_Window", "--dir", d, "--sPattern", "*.txt,*.md", "--snPattern", "b*", "--flagTextFiles", "true"}, 0,
             {"dir <<<" + d + ">>>", "sPattern <<<*.txt,*.md>>>", "snPattern <<<b*>>>", "flagTextFiles <<<true>>>",
              "hits:2, match:2"},
             "tav::XTestWindow 'Scan Results'"},
            {"stat", {"stat", "--file", a, "--treat", "Word", "--show", "all"}, 0, {"hallo"}, ""},
            {"testThumbs", {"testThumbs", "--open", d}, 0, {"tiles:4", "visible tiles:4"}, "tav::XTestWindow 'Thumbnails'"},
            {"winLang", {"winLang", "--file", qEnvironmentVariable("TF_TEST_SOURCE_DIR") + "/res/lang/lang.xml"}, 0,
             {"PanelLang::set_lang_root"}, "tavFinder::WinLang"},
            {"winProperties", {"winProperties", "--file", a}, 0, {}, "tavFinder::WinProperties"},
            {"winView", {"winView", "--file", a, "--find", "hallo"}, 0, {}, "tavFinder::WinDetails"},
            {"xtree.writeReadTree2", {"xtree.writeReadTree2"}, 0, {"ramInfo:", "tree read back equals the tree written"}, ""},
        };
        // Every command the program has is in the list, and none is a placeholder.
        QStringList covered;
        for (const Case& c : cases) covered << c.args.first();
        for (const tav::CommandEntry& e : tav::CommandRegistry::all()) {
            QVERIFY2(!e.placeholder, qPrintable(e.name + QStringLiteral(" is not built")));
            QVERIFY2(covered.contains(e.name), qPrintable(e.name + QStringLiteral(" has no case here")));
        }
        runAll(cases);
    }

    void missingKeysAndMissingFilesAreRefused() {
        const QString gone = data.abs(QStringLiteral("gone.txt"));
        const std::vector<Case> cases = {
            {"dirInfo", {"dirInfo"}, 6, {"--open /data/myData"}, ""},
            {"find", {"find"}, 2, {"find: missing key --dir", "usage: talvofinder find --dir DIR"}, ""},
            {"result_full_Window", {"result_full_Window", "--open", data.path()}, 6, {"--open /data/myData --find hallo"}, ""},
            {"result_scan_Window", {"result_scan_Window"}, 6,
             {"--dir /data/myData [--sPattern *bla* --snPattern mist --flagTextFiles true]"}, ""},
            {"testThumbs", {"testThumbs"}, 6, {"--open /data/myData"}, ""},
            {"preview.ascii", {"preview.ascii"}, 6, {"--file /tmp/bla.txt"}, ""},
            {"preview.dir", {"preview.dir"}, 6, {"--dir /tmp --hiddenFiles true"}, ""},
            {"preview.hex", {"preview.hex"}, 6, {"--file /tmp/bla.txt --flagMemory TRUE"}, ""},
            {"preview.stats", {"preview.stats"}, 6, {"--file /tmp/bla.txt"}, ""},
            {"stat", {"stat"}, 6, {"Argument Problems", "scheme of stat command"}, ""},
            {"winProperties", {"winProperties"}, 6, {"--file /data/myData/hello.jpg [--find Vector3]"}, ""},
            {"winView", {"winView"}, 6, {"--file /data/myData/hello.jpg [--find Vector3]"}, ""},
            {"winView missing file", {"winView", "--file", gone}, 1, {"file <<<" + gone + ">>> does not exist"}, ""},
            {"winProperties missing file", {"winProperties", "--file", gone}, 1, {"file <<<" + gone + ">>> does not exist"}, ""},
            {"preview.ascii missing file", {"preview.ascii", "--file", gone}, 1, {"file '" + gone + "' does not exist"}, ""},
            {"preview.hex missing file", {"preview.hex", "--file", gone, "--flagMemory", "true"}, 1,
             {"file '" + gone + "' does not exist"}, ""},
            {"unknown", {"no.such.command"}, 2, {"unknown command 'no.such.command'"}, ""},
            {"completion for another shell", {"completion", "--shell", "fish"}, 2, {"usage: talvofinder completion"}, ""},
        };
        runAll(cases);
    }
};

QTEST_GUILESS_MAIN(TestCommands)
#include "test_commands.moc"
