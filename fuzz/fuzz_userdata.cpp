// libFuzzer target for the readers of the user's own files: the language
// catalogue (lang.xml in the configuration folder), the bookmark store and the
// applications store. The first byte picks the reader, the rest is the file.
// A reader may refuse a file but must never crash, hang or leak on it.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_userdata writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/log/Logger.h"
#include "base/tree/XMem.h"
#include "base/tree/XTree.h"
#include "base/tree/XTypeSupporter.h"
#include "gui/tools/XTools.h"
#include "src/gui/Bookmarks.h"
#include "src/gui/apps/XAppManager.h"
#include "src/gui/apps/XApp.h"
#include "src/gui/apps/XType_App.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

using namespace tav;
using namespace tavFinder;

namespace {
QTemporaryDir* gConfig = nullptr;

void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto put = [&](const char* name, char mode, const QByteArray& bytes) {
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(QByteArray(1, mode) + bytes);
    };
    QFile cat(QStringLiteral(":/tf/lang/lang.xml"));
    put("catalogue", 0, cat.open(QIODevice::ReadOnly) ? cat.read(4096) + "</GUI>" : QByteArray("<GUI/>"));
    put("catalogue_small", 0, "<GUI><Message><en>Open</en><de>Öffnen</de><xx>?</xx></Message></GUI>");
    XTree bm;
    Bookmarks::to_tree(bm, {{QStringLiteral("Home"), QStringLiteral("/home/u")}, {QStringLiteral("T"), QStringLiteral("/tmp")}});
    put("bookmarks", 1, bm.createMem(XTypeSupporter::basicTypes()).bytes());
    put("apps", 2, XAppManager::defaults().to_compressed_bytes(XAppManager::types()));
}
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    Logger::setStderrEnabled(false);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static QTemporaryDir config;
    gConfig = &config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    new QCoreApplication(*argc, *argv);
    QCoreApplication::setApplicationName(QStringLiteral("talvofinder"));
    tffuzz::writeSeedsIfAsked(writeSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > (1u << 20)) return 0;
    const QByteArray in(reinterpret_cast<const char*>(data + 1), int(size - 1));
    switch (data[0] % 3) {
    case 0: {
        // The catalogue is read from the configuration folder, as at start.
        const QFileInfo fi = XTools::get_absolute_config_file_path(QStringLiteral("lang.xml"));
        QDir().mkpath(fi.absolutePath());
        QFile f(fi.absoluteFilePath());
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
        f.write(in);
        f.close();
        XTools::lang_ini(true);
        for (const QString& lang : XTools::get_ar_lang()) {
            XTools::set_lang(lang);
            XTools::translate(QStringLiteral("Open"));
        }
        XTools::set_lang(QStringLiteral("en"));
        QFile::remove(fi.absoluteFilePath());
        break;
    }
    case 1: {
        XTree tree;
        if (XTree::load(XMem(in), XTypeSupporter::basicTypes(), tree)) {
            for (const Bookmark& b : Bookmarks::from_tree(tree)) Bookmarks::to_string(b);
            Bookmarks::contains_bookmark(tree, QStringLiteral("/tmp"));
        }
        break;
    }
    default: {
        XTree& apps = XAppManager::tree();
        apps = XTree();
        if (apps.load_from_compressed_bytes(in, XAppManager::types())) {
            for (XApp* a : XAppManager::get_apps()) {
                a->get_title(true);
                a->get_arguments(true);
                a->get_environment(true);
                a->is_flag_terminal();
            }
        }
        apps = XTree();
        break;
    }
    }
    return 0;
}
