// Combo boxes, splitter state, and the file tree over a temporary folder.
#include "common/TestEnv.h"

#include "base/node/XNode.h"
#include "gui/panel/XPanel.h"
#include "gui/panel/XSplitter.h"
#include "gui/widgets/XComboBox.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/widgets/XTypedComboBox.h"

#include <QFileSystemModel>
#include <QHeaderView>
#include <QLabel>
#include <QtTest>

class TestWidgets : public QObject {
    Q_OBJECT
    tftest::TestEnv env;

private slots:
    void typedComboBoxValues();
    void comboBoxHistory();
    void splitterStateThroughNode();
    void treeShowsWhatItIsTold();
    void treeSelectionRootAndStates();
};

void TestWidgets::typedComboBoxValues() {
    tftest::LogCapture logs;
    tav::XTypedComboBox<uint32_t> c;
    QCOMPARE(c.selected(), 0u);   // empty: index -1 counts as 0, and there is no value
    QVERIFY(logs.contains(QStringLiteral("XTypedComboBox_inline::selected, index:0 - type problem")));
    c.addItem(1, QStringLiteral("<="));
    c.addItem(4, QString());
    c.addItem(3, QStringLiteral(">.<"));
    QCOMPARE(c.itemText(1), QStringLiteral("4"));
    QCOMPARE(c.selected(), 1u);
    c.setCurrentIndex(-1);
    QCOMPARE(c.selected(), 1u);
    QVERIFY(c.setSelected(3));
    QCOMPARE(c.currentIndex(), 2);
    QVERIFY(!c.setSelected(9));
    // An item added behind the typed interface has no value.
    static_cast<QComboBox&>(c).addItem(QStringLiteral("stray"));
    c.setCurrentIndex(3);
    logs.clear();
    QCOMPARE(c.selected(), 0u);
    QCOMPARE(logs.linesAtLevel(4).size(), 1);
    QVERIFY(logs.contains(QStringLiteral("XTypedComboBox_inline::selected, index:3 - type problem")));
}

void TestWidgets::comboBoxHistory() {
    tav::XComboBox c;
    c.setEditable(true);
    c.add_to_history(QStringLiteral("a"), 3);
    c.add_to_history(QStringLiteral("b"), 3);
    c.add_to_history(QStringLiteral("  "), 3);
    c.add_to_history(QStringLiteral("c"), 3);
    c.add_to_history(QStringLiteral("a"), 3);   // moves to the top, no duplicate
    QCOMPARE(c.get_string_items(), (QStringList{"a", "c", "b"}));
    QCOMPARE(c.currentText(), QStringLiteral("a"));
    c.add_to_history(QStringLiteral("d"), 3);
    QCOMPARE(c.get_string_items(), (QStringList{"d", "a", "c"}));

    c.set_data({"x", "", "y", "x", "z"});
    QCOMPARE(c.get_string_items(), (QStringList{"x", "y", "z"}));
    QSignalSpy spy(&c, QOverload<int>::of(&QComboBox::currentIndexChanged));
    c.setCurrentIndex(2, false);
    QCOMPARE(c.currentIndex(), 2);
    QCOMPARE(spy.count(), 0);
    c.setCurrentIndex(1, true);
    QCOMPARE(spy.count(), 1);
}

void TestWidgets::splitterStateThroughNode() {
    auto node = tav::XNode::createRoot(QStringLiteral("Window"));
    QWidget host;
    host.resize(1000, 400);
    auto* s = new tav::XSplitter(Qt::Horizontal, &host);
    s->addWidget(new QLabel(QStringLiteral("left")));
    s->addWidget(new QLabel(QStringLiteral("right")));
    s->setGeometry(0, 0, 1000, 400);
    host.show();
    s->setSizes({250, 745});
    const QList<int> sizes = s->sizes();
    s->stateToNode(node.get(), QStringLiteral("splitter"));
    QVERIFY(!node->getString(QStringLiteral("splitter")).isEmpty());

    auto* t = new tav::XSplitter(Qt::Horizontal, &host);
    t->addWidget(new QLabel(QStringLiteral("left")));
    t->addWidget(new QLabel(QStringLiteral("right")));
    t->setGeometry(0, 0, 1000, 400);
    QVERIFY(t->nodeToState(node.get(), QStringLiteral("splitter")));
    QCOMPARE(t->sizes(), sizes);

    QVERIFY(!t->nodeToState(node.get(), QStringLiteral("missing")));
    node->setString(QStringLiteral("bad"), QStringLiteral("bm90IGEgc3RhdGU="));
    QVERIFY(!t->nodeToState(node.get(), QStringLiteral("bad")));
    QCOMPARE(t->sizes(), sizes);
}

namespace {
// Number of entries the tree shows below a folder, once the folder is loaded.
int shownBelow(tav::XTreeViewFiles& tree, const QString& path) {
    const QModelIndex i = tree.indexOfPath(path);
    if (!i.isValid()) return -1;
    if (tree.model()->canFetchMore(i)) tree.model()->fetchMore(i);
    return tree.model()->rowCount(i);
}
}

void TestWidgets::treeShowsWhatItIsTold() {
    tftest::TestDir dir;
    dir.file(QStringLiteral("a.txt"), "a");
    dir.file(QStringLiteral(".hidden.txt"), "h");
    dir.dir(QStringLiteral("sub"));
    dir.dir(QStringLiteral(".hiddendir"));
    dir.dir(QStringLiteral("zzz"));
    tav::XTreeViewFiles tree;
    tree.resize(400, 600);
    tree.show();
    const QString root = dir.path();
    QTRY_COMPARE(shownBelow(tree, root), 3);   // a.txt, sub, zzz

    tree.setHiddenFiles(true);
    QTRY_COMPARE(shownBelow(tree, root), 5);
    tree.setDirsOnly(true);
    QTRY_COMPARE(shownBelow(tree, root), 3);   // sub, .hiddendir, zzz
    tree.setHiddenFiles(false);
    QTRY_COMPARE(shownBelow(tree, root), 2);

    tree.setFolderFilter({QFileInfo(dir.abs(QStringLiteral("sub")))});
    QVERIFY(tree.hasFolderFilter());
    QTRY_COMPARE(shownBelow(tree, root), 1);
    tree.removeFolderFilter();
    QTRY_COMPARE(shownBelow(tree, root), 2);

    // Folders come first whatever the sort direction.
    tree.setDirsOnly(false);
    QTRY_COMPARE(shownBelow(tree, root), 3);
    tree.sortByColumn(0, Qt::DescendingOrder);
    QTRY_COMPARE(tree.fileAt(tree.model()->index(0, 0, tree.indexOfPath(root))).fileName(), QStringLiteral("zzz"));
    QTRY_COMPARE(tree.fileAt(tree.model()->index(2, 0, tree.indexOfPath(root))).fileName(), QStringLiteral("a.txt"));
    tree.sortByColumn(0, Qt::AscendingOrder);
    QTRY_COMPARE(tree.fileAt(tree.model()->index(0, 0, tree.indexOfPath(root))).fileName(), QStringLiteral("sub"));
    QTRY_COMPARE(tree.fileAt(tree.model()->index(2, 0, tree.indexOfPath(root))).fileName(), QStringLiteral("a.txt"));

    // Details add the size and date columns.
    QVERIFY(tree.isColumnHidden(1) && tree.isColumnHidden(3) && tree.isHeaderHidden());
    tree.showHeaderDetails(true);
    QVERIFY(!tree.isColumnHidden(1) && !tree.isColumnHidden(3) && tree.isColumnHidden(2) && !tree.isHeaderHidden());
    // Names stay readable in a narrow tree (it scrolls sideways instead); the other
    // columns speak the catalogue and show sizes and dates like the folder table.
    tree.resize(260, 600);
    QTRY_VERIFY(tree.header()->sectionSize(0) >= tree.minimumNameWidth());
    QVERIFY(tree.minimumNameWidth() >= tree.fontMetrics().horizontalAdvance(QStringLiteral("a_readable_name")));
    QCOMPARE(tree.model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Name"));
    QCOMPARE(tree.model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Size"));
    QCOMPARE(tree.model()->headerData(3, Qt::Horizontal).toString(), QStringLiteral("Date"));
    const QModelIndex file = tree.indexOfPath(dir.abs(QStringLiteral("a.txt")));
    QVERIFY(file.isValid());
    QCOMPARE(tree.model()->index(file.row(), 1, file.parent()).data().toString(), QStringLiteral("1"));
    QCOMPARE(tree.model()->index(file.row(), 3, file.parent()).data().toString(),
             QFileInfo(dir.abs(QStringLiteral("a.txt"))).lastModified().toString(QStringLiteral("yyyy/MM/dd - hh:mm")));
    // Wide: the name takes what the others leave.
    tree.resize(900, 600);
    QTRY_COMPARE(tree.header()->sectionSize(0) + tree.header()->sectionSize(1) + tree.header()->sectionSize(3), tree.viewport()->width());
}

void TestWidgets::treeSelectionRootAndStates() {
    tftest::TestDir dir;
    const QString file = dir.file(QStringLiteral("x/y/file.txt"), "12345");
    tav::XTreeViewFiles tree;
    tree.resize(400, 600);
    tree.show();
    QList<QFileInfo> selected;
    QStringList roots;
    tree.eventSelectFile().add([&](const QFileInfo& fi) { selected << fi; });
    tree.eventRootChanged().add([&](const QString& p) { roots << p; });

    QVERIFY(tree.selectFile(file, false));
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.last().absoluteFilePath(), QFileInfo(file).absoluteFilePath());
    QCOMPARE(tree.selectedFile().absoluteFilePath(), QFileInfo(file).absoluteFilePath());
    QVERIFY(!tree.selectFile(dir.abs(QStringLiteral("nothing/here")), true));
    QVERIFY(!tree.selectFile(QString(), true));
    QCOMPARE(selected.size(), 1);

    QVERIFY(tree.isAtRoot());
    QVERIFY(tree.setRoot(dir.abs(QStringLiteral("x"))));
    QVERIFY(!tree.isAtRoot());
    QCOMPARE(tree.rootPath(), QFileInfo(dir.abs(QStringLiteral("x"))).absoluteFilePath());
    QVERIFY(!tree.setRoot(file));   // a file cannot be the root
    QVERIFY(tree.setRoot(QStringLiteral("/")));
    QVERIFY(tree.isAtRoot());
    QCOMPARE(roots, (QStringList{QFileInfo(dir.abs(QStringLiteral("x"))).absoluteFilePath(), QStringLiteral("/")}));

    auto node = tav::XNode::createRoot(QStringLiteral("XTreeView"));
    tree.sortByColumn(1, Qt::DescendingOrder);
    tree.setDirsOnly(true);
    tree.saveStates(node.get());
    tav::XTreeViewFiles other;
    QVERIFY(other.restoreStates(node.get()));
    QCOMPARE(other.header()->sortIndicatorSection(), 1);
    QCOMPARE(other.header()->sortIndicatorOrder(), Qt::DescendingOrder);
    QVERIFY(other.isDirsOnly());
    // The header state does not decide the detail columns; the switch does.
    QVERIFY(other.isColumnHidden(1));
}

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
