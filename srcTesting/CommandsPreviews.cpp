// Developer commands that show one preview or view on its own: the simple
// directory page, the text, directory and hex previews, the thumbnails panel,
// the folder tree, and a sorting and filtering proxy over sample data.
#include "base/kernel/CommandLine.h"
#include "gui/tools/XTools.h"
#include "base/log/Logger.h"
#include "base/text/TextFiles.h"
#include "base/tree/XMem.h"
#include "gui/kernel/KernelGUI.h"
#include "gui/kernel/XRuntime.h"
#include "gui/panel/XPanel.h"
#include "gui/previews/PreviewAscii.h"
#include "gui/previews/PreviewHex.h"
#include "gui/thumbs/XVScrollPanel.h"
#include "gui/widgets/XTreeViewFiles.h"
#include "gui/window/XTestWindow.h"
#include "src/dir/PreviewDir.h"
#include "src/dir/PreviewDirSimple.h"
#include "src/gui/PanThumb.h"
#include "src/gui/PanelThumbs.h"
#include "src/gui/ThumbLoader.h"
#include "srcTesting/CommandArgs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <memory>

namespace {

using tav::log;

using tavFinder::devcmd::callerPath;
using tavFinder::devcmd::exists;
using tavFinder::devcmd::keysOk;
using tavFinder::devcmd::windowCommandSetup;

std::unordered_set<QString> textExtensions() {
    std::unordered_set<QString> ext;
    for (const QString& e : tav::default_text_file_extensions()) ext.insert(e);
    return ext;
}

int dirPreviewSimple(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("[--openDir /tmp] [--select true]")))
        return 6;
    windowCommandSetup();
    QString dir = cl.hasKey(QStringLiteral("openDir")) ? callerPath(cl.getString(QStringLiteral("openDir"))).absoluteFilePath()
                                                       : QDir::homePath();
    if (cl.getBool(QStringLiteral("select"), false)) {
        dir = QFileDialog::getExistingDirectory(nullptr, QStringLiteral("Folder"), dir);
        if (dir.isEmpty()) {
            log(tav::LOG_TRACE, "no folder selected");
            return 0;
        }
    }
    if (!exists(QFileInfo(dir), true, "folder '$' does not exist")) return 1;
    auto preview = std::make_unique<tavFinder::PreviewDirSimple>();
    preview->ini();
    preview->set_text_file_extensions(textExtensions());
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    panel->add(preview->widget_preview(), 1);
    tavFinder::PreviewDirSimple* p = preview.get();
    panel->createButton(tav::xt("Deep Info"), [p]() { p->onDeepInfo(); });
    preview->open_file(QFileInfo(dir));
    log(tav::LOG_TRACE, "simple directory preview of '$'", dir);
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Directory"), 800, 500);
    return kernel.exec();
}

int previewAscii(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--file /tmp/bla.txt"))) return 6;
    const QFileInfo fi = callerPath(cl.getStringExt(QStringLiteral("file")));
    if (!exists(fi, false, "file '$' does not exist")) return 1;
    windowCommandSetup();
    auto preview = std::make_unique<tav::PreviewAscii>();
    preview->ini();
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    auto* ruler = panel->add(new QCheckBox(QStringLiteral("Ruler")));
    ruler->setChecked(true);
    panel->add(preview->widget_preview(), 1);
    tav::PreviewAscii* p = preview.get();
    QObject::connect(ruler, &QCheckBox::toggled, [p](bool on) {
        log(tav::LOG_TRACE, "ruler $", on);
        p->set_ruler(on);
    });
    if (!preview->open_file(fi)) log(tav::LOG_ERROR, "cannot open '$'", fi);
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Text Preview"), 1000, 700);
    return kernel.exec();
}

int previewDir(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--dir /tmp --hiddenFiles true")))
        return 6;
    const QFileInfo dir = callerPath(cl.getString(QStringLiteral("dir")));
    if (!exists(dir, true, "folder '$' does not exist")) return 1;
    windowCommandSetup();
    auto preview = std::make_unique<tavFinder::PreviewDir>();
    preview->ini();
    preview->set_text_file_extensions(textExtensions());
    preview->set_show_hidden(cl.getBool(QStringLiteral("hiddenFiles"), false));

    auto* panel = new tav::XPanel(nullptr, tav::XPanel::HORIZONTAL);
    panel->add(preview->widget_preview(), 3);
    auto* right = panel->createPanel(tav::XPanel::VERTICAL);
    right->createLabel(tav::xt("Events:"));
    auto* events = right->add(new QPlainTextEdit, 1);
    events->setReadOnly(true);
    QPointer<QPlainTextEdit> sink(events);
    auto report = [sink](const char* what, const QFileInfo& fi) {
        const QString line = tav::fill("$ $", QString::fromLatin1(what), fi);
        log(tav::LOG_TRACE, "preview.dir, $", line);
        if (sink) sink->appendPlainText(line);
    };
    preview->eventHover().add([report](const QFileInfo& fi) { report("hoover", fi); });
    preview->eventFileSelected().add([report](const QFileInfo& fi) { report("select", fi); });
    preview->eventFileActivated().add([report](const QFileInfo& fi) { report("double click", fi); });
    preview->open_file(dir);
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Directory Preview"), 1200, 700);
    return kernel.exec();
}

int previewHex(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--file /tmp/bla.txt --flagMemory TRUE")))
        return 6;
    const QFileInfo fi = callerPath(cl.getStringExt(QStringLiteral("file")));
    if (!exists(fi, false, "file '$' does not exist")) return 1;
    windowCommandSetup();
    auto preview = std::make_unique<tav::PreviewHex>();
    preview->ini();
    if (cl.getBool(QStringLiteral("flagMemory"), false)) {
        log(tav::LOG_TRACE, "load indirectly via XMem");
        tav::XMem mem;
        if (!mem.loadMem(fi.absoluteFilePath())) {
            log(tav::LOG_ERROR, "cannot load mem '$'", fi);
            return 1;
        }
        log(tav::LOG_TRACE, "mem:$", tav::fill("$ bytes", mem.size()));
        tav::XMemFile file;
        file.name = fi.absoluteFilePath();
        file.data = mem.bytes();
        preview->set_mem_file(file);
    } else {
        log(tav::LOG_TRACE, "load directly via file");
        if (!preview->open_file(fi)) log(tav::LOG_ERROR, "cannot open '$'", fi);
    }
    tav::XTestWindow::setTestingStandard(preview->widget_preview(), QStringLiteral("Hex Preview"), 1000, 700);
    return kernel.exec();
}

int testThumbs(tav::KernelGUI& kernel) {
    tav::CommandLine& cl = kernel.commandLine();
    if (!keysOk(cl, QStringLiteral("--open /data/myData")))
        return 6;
    const QFileInfo dir = callerPath(cl.getString(QStringLiteral("open")));
    if (!exists(dir, true, "folder '$' does not exist")) return 1;
    windowCommandSetup();
    auto loader = std::make_unique<tavFinder::ThumbLoader>();
    auto* thumbs = new tavFinder::PanelThumbs();
    tavFinder::ThumbLoader* l = loader.get();
    QPointer<tavFinder::PanelThumbs> guard(thumbs);
    auto loadVisible = [l, guard]() {
        if (!guard) return;
        const QList<tavFinder::PanThumb*> tiles = guard->visibleTiles();
        log(tav::LOG_TRACE, "testThumbs, visible tiles:$", tiles.size());
        for (tavFinder::PanThumb* t : tiles) l->add(t);
        l->start();
    };
    thumbs->eventThumbsAppear().add(loadVisible);
    thumbs->scrollPanel()->eventScrolled().add(loadVisible);
    tav::XTestWindow::setTestingStandard(thumbs, QStringLiteral("Thumbnails"), 1000, 700);
    thumbs->set_directory(nullptr, dir.absoluteFilePath(), cl.getUInt(QStringLiteral("size"), 128),
                          cl.getBool(QStringLiteral("hiddenFiles"), false));
    log(tav::LOG_TRACE, "testThumbs, '$', tiles:$", dir, thumbs->tiles().size());
    thumbs->trigger_thumbs_appear_event();
    return kernel.exec();   // the loader, destroyed first, drops its queue and waits
}

int treeViewDirs(tav::KernelGUI& kernel) {
    windowCommandSetup();
    auto* tree = new tav::XTreeViewFiles();
    tree->setDirsOnly(true);
    tree->showHeaderDetails(false);
    tree->selectFile(QDir::homePath(), true);
    tav::XTestWindow::setTestingStandard(tree, QStringLiteral("Folders"), 500, 700);
    return kernel.exec();
}

int filterProxy(tav::KernelGUI& kernel) {
    windowCommandSetup();
    struct Sample {
        const char* name;
        const char* symbol;
        int number;
        double mass;
    };
    static const Sample samples[] = {
        {"Hydrogen", "H", 1, 1.008},   {"Helium", "He", 2, 4.0026},   {"Lithium", "Li", 3, 6.94},
        {"Carbon", "C", 6, 12.011},    {"Nitrogen", "N", 7, 14.007},  {"Oxygen", "O", 8, 15.999},
        {"Neon", "Ne", 10, 20.180},    {"Sodium", "Na", 11, 22.990},  {"Silicon", "Si", 14, 28.085},
        {"Iron", "Fe", 26, 55.845},    {"Copper", "Cu", 29, 63.546},  {"Silver", "Ag", 47, 107.87},
        {"Tin", "Sn", 50, 118.71},     {"Gold", "Au", 79, 196.97},    {"Lead", "Pb", 82, 207.2},
        {"Uranium", "U", 92, 238.03},
    };
    auto* panel = new tav::XPanel(nullptr, tav::XPanel::VERTICAL);
    auto* model = new QStandardItemModel(0, 4, panel);
    model->setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Symbol"), QStringLiteral("Number"),
                                      QStringLiteral("Mass")});
    for (const Sample& s : samples) {
        QList<QStandardItem*> row;
        row << new QStandardItem(QString::fromLatin1(s.name)) << new QStandardItem(QString::fromLatin1(s.symbol));
        auto* number = new QStandardItem;
        number->setData(s.number, Qt::DisplayRole);
        auto* mass = new QStandardItem;
        mass->setData(s.mass, Qt::DisplayRole);
        row << number << mass;
        model->appendRow(row);
    }
    auto* proxy = new QSortFilterProxyModel(panel);
    proxy->setSourceModel(model);
    proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy->setFilterKeyColumn(-1);

    auto* row = panel->createPanel(tav::XPanel::HORIZONTAL);
    row->createLabel(QStringLiteral("Filter:"));
    QLineEdit* edit = row->createLineEdit();
    edit->setPlaceholderText(QStringLiteral("wildcard, e.g. *on"));
    auto* column = row->add(new QComboBox);
    column->addItems({QStringLiteral("All columns"), QStringLiteral("Name"), QStringLiteral("Symbol"),
                      QStringLiteral("Number"), QStringLiteral("Mass")});
    auto* view = panel->add(new QTableView, 1);
    view->setModel(proxy);
    view->setSortingEnabled(true);
    view->sortByColumn(2, Qt::AscendingOrder);
    view->horizontalHeader()->setStretchLastSection(true);
    QObject::connect(edit, &QLineEdit::textChanged, [proxy](const QString& text) {
        proxy->setFilterWildcard(text);
        log(tav::LOG_TRACE, "filterProxy, filter '$', rows:$", text, proxy->rowCount());
    });
    QObject::connect(column, QOverload<int>::of(&QComboBox::currentIndexChanged),
                     [proxy](int index) { proxy->setFilterKeyColumn(index - 1); });
    tav::XTestWindow::setTestingStandard(panel, QStringLiteral("Filter Proxy"), 700, 500);
    return kernel.exec();
}

const tav::TestGuiContextAdder kDirSimple(&dirPreviewSimple, QStringLiteral("misc.dir_preview_simple"), QString(), false,
                                         {QString(), QStringLiteral("select=true|false,openDir=folder")});
const tav::TestGuiContextAdder kAscii(&previewAscii, QStringLiteral("preview.ascii"), QString(), false,
                                     {QStringLiteral("file=file"), QString()});
const tav::TestGuiContextAdder kDir(&previewDir, QStringLiteral("preview.dir"), QString(), false,
                                   {QStringLiteral("dir=folder"), QStringLiteral("hiddenFiles=true|false")});
const tav::TestGuiContextAdder kHex(&previewHex, QStringLiteral("preview.hex"), QString(), false,
                                   {QStringLiteral("file=file"), QStringLiteral("flagMemory=true|false")});
const tav::TestGuiContextAdder kThumbs(&testThumbs, QStringLiteral("testThumbs"), QString(), false,
                                      {QStringLiteral("open=folder"), QStringLiteral("size,hiddenFiles=true|false")});
const tav::TestGuiContextAdder kTree(&treeViewDirs, QStringLiteral("qtreeViewDirs"), QString());
const tav::TestGuiContextAdder kProxy(&filterProxy, QStringLiteral("filterProxy"), QString());

} // namespace
