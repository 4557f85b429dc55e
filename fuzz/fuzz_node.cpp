// libFuzzer target for the XML node reader (configuration, catalogue): any
// bytes may come in; what reads must write and read back to the same XML.
//
// Seeds: TF_FUZZ_SEEDS=<dir> ./fuzz_node writes a few valid inputs and exits.
#include "FuzzSeeds.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"

#include <QDir>
#include <QFile>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace tav;

namespace {
void writeSeeds(const QString& dir) {
    QDir().mkpath(dir);
    auto root = XNode::createRoot(QStringLiteral("TalvoEngine"));
    root->setString(QStringLiteral("lang"), QStringLiteral("de"));
    XNode* cfg = root->getCreateNode(QStringLiteral("Application"))->getCreateNode(QStringLiteral("Config"));
    cfg->setBool(QStringLiteral("flagRuler"), true);
    cfg->set_string_array(QStringLiteral("pattern"), {QStringLiteral("*.cpp"), QStringLiteral("a,b;c")});
    cfg->setBase64String(QStringLiteral("root"), QStringLiteral("/home/ü & <x>"));
    cfg->createChild(QStringLiteral("Text"))->setText(QStringLiteral("a &amp; b & c\n"));
    const QByteArray xml = root->toXml();
    auto put = [&](const char* name, const QByteArray& bytes) {
        QFile f(dir + QLatin1Char('/') + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly)) f.write(bytes);
    };
    put("config", xml);
    put("entities", "<a x=\"&#10;&quot;\">&lt;&#x41;&amp;</a>");
    put("catalogue", "<GUI><Message><en>Open</en><de>Öffnen</de><ru>Открыть</ru></Message></GUI>");
}
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Logger::setStderrEnabled(false);
    tffuzz::writeSeedsIfAsked(writeSeeds);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > (1u << 20)) return 0;
    const QByteArray in(reinterpret_cast<const char*>(data), int(size));
    auto n = XNode::fromXml(in);
    if (!n) return 0;
    // Whatever reads writes as XML that reads again, and settles after one round.
    const QByteArray once = n->toXml();
    QString err;
    auto again = XNode::fromXml(once, &err);
    if (!again) {
        std::fprintf(stderr, "written XML does not read: %s\n%s\n", qPrintable(err), once.constData());
        std::abort();
    }
    const QByteArray twice = again->toXml();
    auto third = XNode::fromXml(twice);
    auto fail = [&](const char* what) {
        std::fprintf(stderr, "%s\n--- once:\n%s\n--- twice:\n%s\n", what, once.constData(), twice.constData());
        std::abort();
    };
    if (!third || third->toXml() != twice) fail("does not settle");
    auto copy = n->deepCopy();
    if (copy->toXml() != once) fail("copy differs");
    return 0;
}
