// A process killed while it writes the configuration and the bookmark store
// leaves each file whole: the complete old or the complete new version.
// The test starts itself as the writer (TF_WRITER_CHILD) and kills it with
// SIGKILL at moments drawn from a fixed seed.
#include "base/node/XNode.h"
#include "base/kernel/Kernel.h"
#include "base/tree/XMem.h"
#include "base/tree/XTree.h"
#include "base/tree/XTypeSupporter.h"
#include "common/TestEnv.h"
#include "src/FindApplication.h"
#include "src/gui/Bookmarks.h"

#include <QtTest>
#include <csignal>
#include <random>

using namespace tavFinder;

namespace {
// Version i of both files: big enough that a write takes a while, and every
// part of it tells which version it belongs to.
QString payload(int i) { return QString(20000, QLatin1Char('a' + i % 26)) + QString::number(i); }

int writerChild() {
    const QString cfg = tav::Kernel::nodeFilePath();
    // The kill is timed from here, not from the start of a process that may start slowly
    // (as under the sanitizers).
    std::fputs("go\n", stdout);
    std::fflush(stdout);
    for (int i = 1;; ++i) {
        auto root = tav::XNode::createRoot(QStringLiteral("TalvoEngine"));
        for (int k = 0; k < 8; ++k) {
            tav::XNode* n = root->createChild(QStringLiteral("Part"));
            n->setInt(QStringLiteral("version"), i);
            n->setText(payload(i));
        }
        if (!root->saveNodeToXml(cfg)) return 3;
        tav::XTree tree;
        QList<Bookmark> list;
        for (int k = 0; k < 8; ++k) list.append({QString::number(i), payload(i) + QString::number(k)});
        Bookmarks::to_tree(tree, list);
        Bookmarks::save(tree);
        std::fputs(qPrintable(QString::number(i) + QLatin1Char('\n')), stdout);
        std::fflush(stdout);
    }
}

// The version a file holds, 0 when it does not exist yet, -1 when it is damaged.
int configVersion(const QString& path) {
    if (!QFile::exists(path)) return 0;
    auto root = tav::XNode::loadFromXml(path);
    if (!root || root->countChildren() != 8) return -1;
    const int v = root->child(0)->getInt(QStringLiteral("version"), -1);
    for (tav::XNode* n : root->children())
        if (n->getInt(QStringLiteral("version"), -2) != v || n->getText() != payload(v)) return -1;
    return v;
}

int bookmarksVersion(const QString& path) {
    if (!QFile::exists(path)) return 0;
    tav::XMem mem;
    tav::XTree tree;
    if (!mem.loadMem(path) || !tav::XTree::load(mem, tav::XTypeSupporter::basicTypes(), tree)) return -1;
    const QList<Bookmark> list = Bookmarks::from_tree(tree);
    if (list.size() != 8) return -1;
    const int v = list[0].title.toInt();
    for (int k = 0; k < 8; ++k)
        if (list[k].title != QString::number(v) || list[k].path != payload(v) + QString::number(k)) return -1;
    return v;
}
}

class TestAtomicWrites : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void killedWriterLeavesWholeFiles() {
        const QString cfg = tav::Kernel::nodeFilePath();
        const QString bm = QFileInfo(cfg).absolutePath() + QLatin1Char('/') + QLatin1String(BOOKMARKS_FILE);
        std::mt19937 rng(20261124);
        std::uniform_int_distribution<int> delay(1, 60);
        int lastCfg = 0, lastBm = 0, killedMidway = 0;
        for (int round = 0; round < 50; ++round) {
            QProcess child;
            QProcessEnvironment e = env.processEnvironment(false);
            e.insert(QStringLiteral("TF_WRITER_CHILD"), QStringLiteral("1"));
            child.setProcessEnvironment(e);
            child.start(QCoreApplication::applicationFilePath(), QStringList());
            QVERIFY(child.waitForStarted(10000));
            QVERIFY(child.waitForReadyRead(30000));
            QCOMPARE(child.readLine(), QByteArray("go\n"));
            QTest::qWait(delay(rng));
            ::kill(pid_t(child.processId()), SIGKILL);
            QVERIFY(child.waitForFinished(10000));
            QCOMPARE(child.exitStatus(), QProcess::CrashExit);
            const QStringList written = QString::fromLatin1(child.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);

            const int c = configVersion(cfg);
            const int b = bookmarksVersion(bm);
            QVERIFY2(c >= 0, qPrintable(QStringLiteral("round %1: the configuration is damaged").arg(round)));
            QVERIFY2(b >= 0, qPrintable(QStringLiteral("round %1: the bookmark store is damaged").arg(round)));
            // Each round starts again at version 1, so a file holds this round's
            // version or, when nothing was written yet, the previous round's.
            if (!written.isEmpty()) {
                const int done = written.last().toInt();
                QVERIFY(c == done || c == done + 1);
                QVERIFY(b == done || b == done + 1);
            } else {
                QVERIFY(c == lastCfg || c == 1);
                QVERIFY(b == lastBm || b == 1);
            }
            if (c != b) ++killedMidway;
            lastCfg = c;
            lastBm = b;
        }
        // The kills landed at different moments, some between the two writes.
        qInfo("%d of 50 kills fell between the configuration and the bookmark write", killedMidway);
        QVERIFY(lastCfg > 0);
    }
};

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsSet("TF_WRITER_CHILD")) {
        QCoreApplication app(argc, argv);
        return writerChild();
    }
    QCoreApplication app(argc, argv);
    TestAtomicWrites t;
    return QTest::qExec(&t, argc, argv);
}
#include "test_atomic_writes.moc"
