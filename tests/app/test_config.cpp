#include "base/env/Env.h"
#include "base/node/XNode.h"
#include "common/TestEnv.h"
#include "src/gui/config/ConfigTavFinder.h"

#include <QtTest>

using tavFinder::WinFinderConfig;

class TestConfig : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

    static std::unique_ptr<tav::XNode> node() { return tav::XNode::createRoot(QStringLiteral("Config")); }

private slots:
    void threadCountIsCorrectedToTwo() {
        for (auto [stored, expected] : {std::pair<unsigned, unsigned>{0, 2}, {64, 64}, {65, 2}, {1, 1}}) {
            auto n = node();
            n->setUInt(QStringLiteral("countThreads"), stored);
            WinFinderConfig c;
            tftest::LogCapture cap;
            c.fromNode(n.get());
            QCOMPARE(c.countThreads, expected);
            QCOMPARE(cap.contains(QStringLiteral("allowed range 1...64, set to 2")), stored != expected);
        }
    }

    void missingKeysTakeTheirDocumentedValues() {
        WinFinderConfig c;
        QVERIFY(c.flagUseStartFolder);   // a fresh record jumps to the start folder...
        c.li_pos = 2;
        c.HotkeyCyclePreviews = 0;
        c.flagTreeMouseOverInfo = false;
        c.flagStatusBar = true;
        c.fontSizeHexView = 30;
        c.fromNode(node().get());
        QVERIFY(!c.flagUseStartFolder);  // ...a first start with an empty node does not
        QCOMPARE(c.li_pos, 1);
        QCOMPARE(c.HotkeyCyclePreviews, 0x06000000u);
        QVERIFY(c.flagTreeMouseOverInfo);
        QVERIFY(c.flagStatusBar);        // "current value" keys keep what the record had
        QCOMPARE(c.fontSizeHexView, 14);
        QVERIFY(c.ext.contains(QStringLiteral("txt")) && c.ext.contains(QStringLiteral("cpp")));
        QCOMPARE(c.filterBits, 2u | 32u | 128u);   // pattern and content fields shown at first
    }

    void roundTripKeepsEverySetting() {
        WinFinderConfig a;
        a.ext.clear();
        a.ext_from_string(QStringLiteral("txt, cpp,,h  md"));
        QCOMPARE(a.ext, (QStringList{"txt", "cpp", "h", "md"}));
        QVERIFY(!a.ext_from_string(QStringLiteral(" , ")));
        a.countThreads = 12;
        a.li_pos = 0;
        a.flag_tf_read_only = false;
        a.sStartFolder = QStringLiteral("/home/u/ä ö;x");
        a.sRootFolder = QStringLiteral("/data");
        a.flagUseRootFolder = true;
        a.filter = {QFileInfo(QStringLiteral("/opt")), QFileInfo(QStringLiteral("/usr/share"))};
        a.max_file_size_auto_calc_checksums = 50;
        auto n = node();
        a.toNode(n.get());
        QCOMPARE(n->query(QStringLiteral("TextFiles"))->getString(QStringLiteral("ext")), QStringLiteral("txt,cpp,h,md"));
        QCOMPARE(a.ext_to_string(true), QStringLiteral("cpp,h,md,txt"));

        WinFinderConfig b;
        b.ext.clear();
        b.fromNode(n.get());
        QCOMPARE(b.ext, a.ext);
        QCOMPARE(b.countThreads, 12u);
        QCOMPARE(b.li_pos, 0);
        QVERIFY(!b.flag_tf_read_only);
        QCOMPARE(b.sStartFolder, a.sStartFolder);
        QCOMPARE(b.sRootFolder, QStringLiteral("/data"));
        QVERIFY(b.flagUseRootFolder);
        QCOMPARE(b.filter_to_string(), QStringLiteral("/opt;/usr/share"));
        QCOMPARE(b.max_file_size_auto_calc_checksums, 50u);
        QVERIFY(b.toString().startsWith(QStringLiteral("WinFinderConfig")));
        QVERIFY(b.toString().contains(QStringLiteral("countThreads:12")));
    }

    void emptyFilterLoadsTheSpecialFoldersThatAreSet() {
        tav::setEnv(QStringLiteral("ProgramData"), QStringLiteral("/srv/pd"));
        tav::unsetEnv(QStringLiteral("ProgramFiles"));
        tav::setEnv(QStringLiteral("ProgramFiles(x86)"), QString());
        tav::setEnv(QStringLiteral("SystemRoot"), QStringLiteral("/srv/sys"));
        WinFinderConfig c;
        c.fromNode(node().get());
        QCOMPARE(c.filter_to_string(), QStringLiteral("/srv/pd;/srv/sys"));
        tav::unsetEnv(QStringLiteral("ProgramData"));
        tav::unsetEnv(QStringLiteral("SystemRoot"));
        WinFinderConfig d;
        d.fromNode(node().get());
        QVERIFY(d.filter.isEmpty());
    }

    void startFolderComesFromHomeDriveAndPath() {
        tav::setEnv(QStringLiteral("HOMEDRIVE"), QStringLiteral("/mnt"));
        tav::setEnv(QStringLiteral("HOMEPATH"), QStringLiteral("/users/me"));
        QCOMPARE(WinFinderConfig().sStartFolder, QStringLiteral("/mnt/users/me"));
        tav::unsetEnv(QStringLiteral("HOMEDRIVE"));
        QCOMPARE(WinFinderConfig().sStartFolder, QDir::homePath());
        tav::unsetEnv(QStringLiteral("HOMEPATH"));
    }
};

QTEST_GUILESS_MAIN(TestConfig)
#include "test_config.moc"
