#include "base/io/XFileIO.h"
#include "base/kernel/Kernel.h"
#include "base/node/XNode.h"
#include "common/TestEnv.h"

#include <QtTest>
#include <sys/stat.h>

using tav::XNode;

class TestNode : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void roundTripThroughFileKeepsEveryAttributeKind() {
        tftest::TestDir dir;
        auto root = XNode::createRoot(QStringLiteral("TalvoEngine"));
        root->setString(QStringLiteral("lang"), QStringLiteral("de"));
        XNode* cfg = root->getCreateNode(QStringLiteral("Application"))->getCreateNode(QStringLiteral("Config"));
        cfg->setBool(QStringLiteral("flagRuler"), true);
        cfg->setInt(QStringLiteral("li_pos"), -2);
        cfg->setUInt(QStringLiteral("HotkeyCyclePreviews"), 0x06000000u);
        cfg->setUInt64(QStringLiteral("big"), uint64_t(1) << 50);
        const QString odd = QStringLiteral("C:\\Dir/with \"quotes\" & <tags>;ünï\n2nd line");
        cfg->setBase64String(QStringLiteral("root"), odd);
        cfg->setString(QStringLiteral("plain"), QStringLiteral("a & b <c> \"d\"\t"));
        const QStringList items{QStringLiteral("*.cpp"), QString(), QStringLiteral("a,b;c"), QStringLiteral("Ω")};
        cfg->set_string_array(QStringLiteral("pattern"), items);
        cfg->set_string_array(QStringLiteral("none"), {});
        cfg->set_string_array(QStringLiteral("oneEmpty"), QStringList{QString()});
        XNode* msg = root->createChild(QStringLiteral("Message"));
        msg->createChild(QStringLiteral("en"))->setText(QStringLiteral("&add"));
        msg->createChild(QStringLiteral("de"))->setText(QStringLiteral("&Hinzufügen &amp; mehr\n   zweite Zeile"));
        root->createChild(QStringLiteral("PanSearch"), QStringLiteral("pan0"))->setInt(QStringLiteral("color"), -16711936);
        root->createChild(QStringLiteral("Empty"));

        XNode::atomicWriteFullEmptyTags = true;
        const QString path = dir.abs(QStringLiteral("sub/node.xml"));
        QVERIFY(root->saveNodeToXml(path));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray raw = f.readAll();
        QVERIFY(raw.contains("<Empty></Empty>"));
        // Accelerators stay readable in the file; a text that looks like an entity does not.
        QVERIFY(raw.contains("<en>&add</en>"));
        QVERIFY(raw.contains("&amp;amp;"));

        QString err;
        auto back = XNode::loadFromXml(path, &err);
        QVERIFY2(back, qPrintable(err));
        QCOMPARE(back->getString(QStringLiteral("lang")), QStringLiteral("de"));
        XNode* c2 = back->query(QStringLiteral("Application"))->query(QStringLiteral("Config"));
        QVERIFY(c2);
        QCOMPARE(c2->isBool(QStringLiteral("flagRuler"), false), true);
        QCOMPARE(c2->getInt(QStringLiteral("li_pos"), 1), -2);
        QCOMPARE(c2->getUInt(QStringLiteral("HotkeyCyclePreviews"), 0), 0x06000000u);
        QCOMPARE(c2->getUInt64(QStringLiteral("big"), 0), uint64_t(1) << 50);
        QCOMPARE(c2->getBase64String(QStringLiteral("root")), odd);
        QCOMPARE(c2->getString(QStringLiteral("plain")), QStringLiteral("a & b <c> \"d\"\t"));
        QCOMPARE(c2->get_string_array(QStringLiteral("pattern")), items);
        QVERIFY(c2->get_string_array(QStringLiteral("none")).isEmpty());
        QCOMPARE(c2->get_string_array(QStringLiteral("oneEmpty")), QStringList{QString()});
        XNode* m2 = back->children_by_Type(QStringLiteral("Message")).at(0);
        QCOMPARE(m2->query(QStringLiteral("en"))->getText(), QStringLiteral("&add"));
        QCOMPARE(m2->query(QStringLiteral("de"))->getText(), QStringLiteral("&Hinzufügen &amp; mehr\n   zweite Zeile"));
        QCOMPARE(back->query(QStringLiteral("PanSearch"), QStringLiteral("pan0"))->getInt(QStringLiteral("color"), 0), -16711936);
        QVERIFY(back->query(QStringLiteral("PanSearch"), QStringLiteral("pan1")) == nullptr);
        QCOMPARE(back->toXml(), raw);   // a second write is byte-identical

        XNode::atomicWriteFullEmptyTags = false;
        QVERIFY(back->toXml().contains("<Empty/>"));
        XNode::atomicWriteFullEmptyTags = true;
    }

    void lenientAboutBareAmpersandsStrictAboutStructure() {
        QString err;
        auto ok = XNode::fromXml("<GUI><Message><en>Save &amp; close &add &#65; &lt;x&gt;</en></Message></GUI>", &err);
        QVERIFY2(ok, qPrintable(err));
        QCOMPARE(ok->child(0)->query(QStringLiteral("en"))->getText(), QStringLiteral("Save & close &add A <x>"));
        QVERIFY(!XNode::fromXml("<GUI><Message></GUI>", &err));
        QVERIFY(!err.isEmpty());
        QVERIFY(!XNode::fromXml("", &err));
        QVERIFY(!XNode::fromXml("\x00\x01garbage", &err));
    }

    void treeOperations() {
        auto root = XNode::createRoot(QStringLiteral("GUI"));
        XNode* a = root->getCreateNode(QStringLiteral("Window"));
        QCOMPARE(root->getCreateNode(QStringLiteral("Window")), a);   // get, not create again
        a->set_pointer(this);
        a->createChild(QStringLiteral("x"))->set_pointer(this);
        auto copy = root->deepCopy();
        QCOMPARE(copy->query(QStringLiteral("Window"))->pointer(), nullptr);   // pointers are not copied
        QCOMPARE(copy->query(QStringLiteral("Window"))->root(), copy.get());
        root->remove_all_pointer();
        QCOMPARE(a->pointer(), nullptr);
        QCOMPARE(a->child(0)->pointer(), nullptr);
        XNode* taken = root->removeNode(a, false);
        QCOMPARE(taken, a);
        QCOMPARE(root->countChildren(), 0);
        QCOMPARE(taken->parent(), nullptr);
        root->addNode(taken, false);
        QCOMPARE(root->countChildren(), 1);
        root->addNode(copy.get(), true);
        QCOMPARE(root->countChildren(), 2);
        QCOMPARE(root->children_by_Type(QStringLiteral("GUI")).size(), size_t(1));
        root->removeNode(a, true);
        QCOMPARE(root->countChildren(), 1);
    }

    void corruptConfigurationIsMovedAsideAndDefaultsLoad() {
        const QString path = tav::Kernel::nodeFilePath();
        tav::takeMovedAside();
        const QByteArray first = "<TalvoEngine lang=\"de\"><Application>";
        QVERIFY(tav::writeFileAtomic(path, first));
        {
            tftest::LogCapture cap;
            tav::Kernel k(QStringLiteral("talvoEngine"), QStringLiteral("test"), {});
            QVERIFY(k.nodeRoot());
            QCOMPARE(k.nodeRoot()->countChildren(), 0);
            QCOMPARE(k.getNodeRoot()->get_lang(), QStringLiteral("en"));
            QVERIFY(!QFile::exists(path));
            // A second damaged file in the same second keeps the first copy.
            const QByteArray second = "<TalvoEngine><Application><Config>";
            QVERIFY(tav::writeFileAtomic(path, second));
            tav::Kernel k2(QStringLiteral("talvoEngine"), QStringLiteral("test"), {});
            const std::vector<tav::MovedAside> moved = tav::takeMovedAside();
            QCOMPARE(moved.size(), size_t(2));
            QCOMPARE(moved[0].path, path);
            QVERIFY(moved[0].copy != moved[1].copy);
            QVERIFY(moved[0].copy.endsWith(QStringLiteral(".bad")) && moved[1].copy.endsWith(QStringLiteral(".bad")));
            QCOMPARE(QFileInfo(moved[0].copy).absolutePath(), QFileInfo(path).absolutePath());
            QByteArray got;
            QVERIFY(tav::readUserFile(moved[0].copy, 1000, got));
            QCOMPARE(got, first);
            QVERIFY(tav::readUserFile(moved[1].copy, 1000, got));
            QCOMPARE(got, second);
            QVERIFY(tav::takeMovedAside().empty());
            QVERIFY(cap.contains(QStringLiteral("Kernel::loadNodes")));
            // The save event runs, then the file is written whole again.
            int saved = 0;
            k.addSaveListener([&]() {
                ++saved;
                k.getCreateNodeApplication()->getCreateNode(QStringLiteral("Config"))->setInt(QStringLiteral("fontSize"), 20);
            });
            k.save();
            QCOMPARE(saved, 1);
        }
        tav::Kernel again(QStringLiteral("talvoEngine"), QStringLiteral("test"), {});
        QCOMPARE(again.getCreateNodeApplication()->getCreateNode(QStringLiteral("Config"))->getInt(QStringLiteral("fontSize"), 0), 20);
        // A reset drops the file instead of writing it.
        again.set_config_to_initial_state();
        again.save();
        QVERIFY(!QFile::exists(path));
    }

    // A value with characters XML cannot carry is written without them, so the
    // next start still reads the whole configuration.
    void charactersXmlCannotCarryAreDroppedOnWrite() {
        tftest::TestDir dir;
        auto root = XNode::createRoot(QStringLiteral("TalvoEngine"));
        QString odd = QStringLiteral("a");
        odd += QChar(0xFFFE);
        odd += QStringLiteral("b");
        odd += QChar(0xFFFF);
        odd += QChar(0xD800);   // half of a pair
        odd += QStringLiteral("c\U0001F600d");   // a whole pair stays
        root->setString(QStringLiteral("v"), odd);
        root->createChild(QStringLiteral("T"))->setText(odd);
        const QString path = dir.abs(QStringLiteral("odd.xml"));
        QVERIFY(root->saveNodeToXml(path));
        QString err;
        auto back = XNode::loadFromXml(path, &err);
        QVERIFY2(back, qPrintable(err));
        const QString want = QStringLiteral("abc\U0001F600d");
        QCOMPARE(back->getString(QStringLiteral("v")), want);
        QCOMPARE(back->query(QStringLiteral("T"))->getText(), want);
    }

    // A user file is read only when it is a regular file within the size limit;
    // a FIFO in its place is refused at once instead of blocking the start.
    void userFilesAreReadOnlyWhenRegularAndSmallEnough() {
        tftest::TestDir dir;
        QByteArray data;
        QString err;
        const QString fifo = dir.abs(QStringLiteral("talvofinder.xml"));
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        QVERIFY(!tav::readUserFile(fifo, tav::kMaxUserFileBytes, data, &err));
        QCOMPARE(err, QStringLiteral("not a regular file"));
        QVERIFY(!XNode::loadFromXml(fifo));
        QVERIFY(!tav::readUserFile(dir.path(), tav::kMaxUserFileBytes, data, &err));   // a folder
        QVERIFY(!tav::readUserFile(dir.abs(QStringLiteral("missing")), tav::kMaxUserFileBytes, data, &err));

        const QString big = dir.file(QStringLiteral("big.xml"), QByteArray(1001, 'x'));
        QVERIFY(!tav::readUserFile(big, 1000, data, &err));
        QVERIFY(err.contains(QStringLiteral("larger than 1000")));
        QVERIFY(tav::readUserFile(big, 1001, data, &err));
        QCOMPARE(data, QByteArray(1001, 'x'));
        QVERIFY(tav::readUserFile(dir.file(QStringLiteral("empty")), 10, data, &err));
        QVERIFY(data.isEmpty());

        // The configuration in a FIFO's place is moved aside and defaults load.
        const QString path = tav::Kernel::nodeFilePath();
        QFile::remove(path);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        tav::Kernel k(QStringLiteral("talvoEngine"), QStringLiteral("test"), {});
        QVERIFY(k.nodeRoot());
        const std::vector<tav::MovedAside> moved = tav::takeMovedAside();
        QCOMPARE(moved.size(), size_t(1));
        QVERIFY(QFileInfo(moved[0].copy).exists());
        QFile::remove(moved[0].copy);
    }

    // Found by fuzzing: what the writer leaves as a bare '&' the reader must not
    // take for an entity, and text before a child must not grow with each save.
    void writtenFilesReadBackTheSameEveryTime() {
        auto root = XNode::createRoot(QStringLiteral("a"));
        const QString text = QStringLiteral("&UTF-8amp; &a.b_c-d; &averyveryverylongname; &#12; &#x1f; & &; &#; &x");
        root->setString(QStringLiteral("v"), text);
        root->createChild(QStringLiteral("t"))->setText(text);
        XNode* mixed = root->createChild(QStringLiteral("m"));
        mixed->setText(QStringLiteral("  lead"));
        mixed->createChild(QStringLiteral("c"));
        const QByteArray once = root->toXml();
        QString err;
        auto back = XNode::fromXml(once, &err);
        QVERIFY2(back, qPrintable(err));
        QCOMPARE(back->getString(QStringLiteral("v")), text);
        QCOMPARE(back->query(QStringLiteral("t"))->getText(), text);
        QCOMPARE(back->query(QStringLiteral("m"))->getText(), QStringLiteral("  lead"));
        QCOMPARE(back->toXml(), once);
    }

    // Hostile nesting: refused on reading with a reason, and a deep tree built
    // in memory is destroyed without running out of stack.
    void deepNestingIsRefusedAndFreedWithoutRecursion() {
        const int deep = 300000;
        QByteArray xml;
        xml.reserve(deep * 7);
        for (int i = 0; i < deep; ++i) xml += "<a>";
        for (int i = 0; i < deep; ++i) xml += "</a>";
        QString err;
        QVERIFY(!XNode::fromXml(xml, &err));
        QVERIFY2(err.contains(QStringLiteral("nested deeper than")), qPrintable(err));

        // Exactly at the limit still reads.
        QByteArray ok;
        for (int i = 0; i < XNode::kMaxDepth; ++i) ok += "<a>";
        for (int i = 0; i < XNode::kMaxDepth; ++i) ok += "</a>";
        auto atLimit = XNode::fromXml(ok, &err);
        QVERIFY2(atLimit, qPrintable(err));
        int levels = 1;
        for (XNode* n = atLimit.get(); n->countChildren() == 1; n = n->child(0)) ++levels;
        QCOMPARE(levels, XNode::kMaxDepth);

        auto root = XNode::createRoot(QStringLiteral("a"));
        XNode* n = root.get();
        for (int i = 0; i < deep; ++i) n = n->createChild(QStringLiteral("a"));
        root.reset();   // would overflow the stack with one destructor call per level
    }
};

QTEST_GUILESS_MAIN(TestNode)
#include "test_node.moc"
