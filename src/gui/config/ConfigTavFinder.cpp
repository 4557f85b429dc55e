#include "src/gui/config/ConfigTavFinder.h"

#include "base/env/Env.h"
#include "base/log/Logger.h"
#include "base/node/XNode.h"
#include "base/text/TextFiles.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"

#include <QDir>
#include <QRegularExpression>
#include <algorithm>

namespace tavFinder {

using tav::log;

WinFinderConfig& cfg() {
    static WinFinderConfig c;
    return c;
}

WinFinderConfig::WinFinderConfig() {
    countThreads = tav::count_hardware_threads(8);
    if (countThreads == 0 || countThreads > 64) countThreads = std::min(64u, std::max(1u, countThreads));
    // The home folder as drive + path where the system has them, else the user's home.
    const QString drive = tav::getEnv(QStringLiteral("HOMEDRIVE"));
    const QString path = tav::getEnv(QStringLiteral("HOMEPATH"));
    sStartFolder = (!drive.isEmpty() && !path.isEmpty()) ? drive + path : QDir::homePath();
}

QList<QFileInfo> WinFinderConfig::default_special_folders() {
    QList<QFileInfo> out;
    for (const char* var : {"ProgramData", "ProgramFiles", "ProgramFiles(x86)", "SystemRoot"}) {
        const QString v = tav::getEnv(QString::fromLatin1(var));
        if (!v.isEmpty()) out << QFileInfo(v);
    }
    return out;
}

bool WinFinderConfig::ext_from_string(const QString& text) {
    static const QRegularExpression delims(QStringLiteral("[, ]"));
    const QStringList parts = text.split(delims, Qt::SkipEmptyParts);
    if (parts.isEmpty()) {
        log(tav::LOG_ERROR, "WinFinderConfig::ext_from_string, EMPTY");
        return false;
    }
    for (const QString& p : parts)
        if (!ext.contains(p)) ext << p;
    return true;
}

QString WinFinderConfig::ext_to_string(bool sorted) const {
    QStringList l = ext;
    if (sorted) l.sort();
    return l.join(QLatin1Char(','));
}

std::unordered_set<QString> WinFinderConfig::extSet() const { return std::unordered_set<QString>(ext.begin(), ext.end()); }

QString WinFinderConfig::filter_to_string() const {
    QStringList l;
    for (const QFileInfo& fi : filter) l << fi.absoluteFilePath();
    return l.join(QLatin1Char(';'));
}

void WinFinderConfig::filter_from_string(const QString& text) {
    filter.clear();
    for (const QString& p : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QString t = p.trimmed();
        if (!t.isEmpty()) filter << QFileInfo(t);
    }
}

void WinFinderConfig::fromNode(tav::XNode* n) {
    if (!X_ASSERT_MSG(n, "nConfig == NULL")) return;
    // Text extensions; the set is not emptied first.
    tav::XNode* nText = n->getCreateNode(QStringLiteral("TextFiles"));
    QString sExt = nText->getString(QStringLiteral("ext"));
    if (sExt.isEmpty()) sExt = tav::default_text_file_extensions_as_string();
    ext_from_string(sExt);
    // The root folder of the tree.
    flagUseRootFolder = n->isBool(QStringLiteral("flagUseRootFolder"), false);
    sRootFolder = n->getBase64String(QStringLiteral("root"), QString());
    // The tree's filter and content.
    flagUseFilter = n->isBool(QStringLiteral("flagUseFilter"), flagUseFilter);
    flagTreeDirOnly = n->isBool(QStringLiteral("flagTreeDirOnly"), false);
    flagTreeDateSize = n->isBool(QStringLiteral("flagTreeDateSize"), false);
    flagTreeMouseOverInfo = n->isBool(QStringLiteral("flagTreeMouseOverInfo"), true);
    flagRuler = n->isBool(QStringLiteral("flagRuler"), flagRuler);
    flagAutoWrap = n->isBool(QStringLiteral("flagAutoWrap"), flagAutoWrap);
    flagStatusBar = n->isBool(QStringLiteral("flagStatusBar"), flagStatusBar);
    flagConfirmQuit = n->isBool(QStringLiteral("flagConfirmQuit"), flagConfirmQuit);
    flag_tf_read_only = n->isBool(QStringLiteral("flag_tf_read_only"), flag_tf_read_only);
    flagPropAutoLoad = n->isBool(QStringLiteral("flagPropAutoLoad"), flagPropAutoLoad);
    max_file_size_auto_calc_checksums =
        n->getUInt(QStringLiteral("max_file_size_auto_calc_checksums"), max_file_size_auto_calc_checksums);
    filterBits = n->getUInt(QStringLiteral("filterBits"), filterBits);
    scope = n->getUInt(QStringLiteral("scope"), scope);
    flagRegEx = n->isBool(QStringLiteral("flagRegEx"), flagRegEx);
    HotkeyCyclePreviews = n->getUInt(QStringLiteral("HotkeyCyclePreviews"), 0x06000000);
    countThreads = n->getUInt(QStringLiteral("countThreads"), countThreads);
    // Workers of the content search: deliberately 2 by default, not the hardware count.
    if (countThreads == 0 || countThreads > 64) {
        log(tav::LOG_ERROR, "WinFinderConfig::fromNode, countThreads:$, allowed range 1...64, set to 2", countThreads);
        countThreads = 2;
    }
    documentsMaxMemberMB = n->getUInt(QStringLiteral("documentsMaxMemberMB"), documentsMaxMemberMB);
    documentsRatioFromMB = n->getUInt(QStringLiteral("documentsRatioFromMB"), documentsRatioFromMB);
    documentsMaxRatio = n->getUInt(QStringLiteral("documentsMaxRatio"), documentsMaxRatio);
    if (documentsMaxMemberMB == 0 || documentsMaxRatio < 2) {
        log(tav::LOG_REJECTED, "WinFinderConfig::fromNode, documentsMaxMemberMB:$ documentsMaxRatio:$, set to 1024 and 100",
            documentsMaxMemberMB, documentsMaxRatio);
        documentsMaxMemberMB = 1024;
        documentsMaxRatio = 100;
    }
    // Font sizes.
    fontSizeHexView = n->getInt(QStringLiteral("fontSizeHexView"), 14);
    fontSize = n->getInt(QStringLiteral("fontSize"), fontSize);
    // Folders filtered at the top of the tree (special folders when none are set).
    filter_from_string(n->getBase64String(QStringLiteral("filter"), QString()));
    if (filter.isEmpty()) filter = default_special_folders();
    // The start folder.
    flagUseStartFolder = n->isBool(QStringLiteral("flagUseStartFolder"), false);
    sStartFolder = n->getBase64String(QStringLiteral("startFolder"), sStartFolder);
    // Where the text view shows its status line.
    li_pos = n->hasAttribute(QStringLiteral("li_pos")) ? n->getInt(QStringLiteral("li_pos"), 1) : 1;
}

void WinFinderConfig::toNode(tav::XNode* n) const {
    if (!X_ASSERT_MSG(n, "nConfig == NULL")) return;
    n->setBool(QStringLiteral("flagUseFilter"), flagUseFilter);
    n->setBool(QStringLiteral("flagTreeDirOnly"), flagTreeDirOnly);
    n->setBool(QStringLiteral("flagTreeDateSize"), flagTreeDateSize);
    n->setBool(QStringLiteral("flagTreeMouseOverInfo"), flagTreeMouseOverInfo);
    n->setBool(QStringLiteral("flagStatusBar"), flagStatusBar);
    n->setBool(QStringLiteral("flagConfirmQuit"), flagConfirmQuit);
    n->setBool(QStringLiteral("flag_tf_read_only"), flag_tf_read_only);
    n->setInt(QStringLiteral("li_pos"), li_pos);
    n->setBase64String(QStringLiteral("filter"), filter_to_string());
    n->setUInt(QStringLiteral("countThreads"), countThreads);
    n->setUInt(QStringLiteral("documentsMaxMemberMB"), documentsMaxMemberMB);
    n->setUInt(QStringLiteral("documentsRatioFromMB"), documentsRatioFromMB);
    n->setUInt(QStringLiteral("documentsMaxRatio"), documentsMaxRatio);
    n->setUInt(QStringLiteral("filterBits"), filterBits);
    n->setUInt(QStringLiteral("scope"), scope);
    n->setBool(QStringLiteral("flagRegEx"), flagRegEx);
    n->setInt(QStringLiteral("fontSizeHexView"), fontSizeHexView);
    n->setInt(QStringLiteral("fontSize"), fontSize);
    n->setBool(QStringLiteral("flagRuler"), flagRuler);
    n->setBool(QStringLiteral("flagAutoWrap"), flagAutoWrap);
    n->setUInt(QStringLiteral("HotkeyCyclePreviews"), HotkeyCyclePreviews);
    n->setBool(QStringLiteral("flagUseStartFolder"), flagUseStartFolder);
    n->setBase64String(QStringLiteral("startFolder"), sStartFolder);
    n->setBool(QStringLiteral("flagUseRootFolder"), flagUseRootFolder);
    n->setBase64String(QStringLiteral("root"), sRootFolder);
    n->setBool(QStringLiteral("flagPropAutoLoad"), flagPropAutoLoad);
    n->setUInt(QStringLiteral("max_file_size_auto_calc_checksums"), max_file_size_auto_calc_checksums);
    n->getCreateNode(QStringLiteral("TextFiles"))->setString(QStringLiteral("ext"), ext_to_string(false));
}

QString WinFinderConfig::toString() const {
    QStringList l;
    l << QStringLiteral("WinFinderConfig");
    l << tav::fill("countThreads:$", countThreads);
    l << tav::fill("ext:$", ext_to_string(true));
    for (const QFileInfo& fi : filter) l << tav::fill("filter[$]", fi.absoluteFilePath());
    l << tav::fill("fontSize:$", fontSize);
    l << tav::fill("fontSizeHexView:$", fontSizeHexView);
    l << tav::fill("li_pos:$", li_pos);
    l << tav::fill("flagRuler:$", flagRuler);
    l << tav::fill("flagAutoWrap:$", flagAutoWrap);
    l << tav::fill("flagStatusBar:$", flagStatusBar);
    l << tav::fill("flagConfirmQuit:$", flagConfirmQuit);
    l << tav::fill("flag_tf_read_only:$", flag_tf_read_only);
    l << tav::fill("flagUseStartFolder:$", flagUseStartFolder);
    l << tav::fill("sStartFolder:$", sStartFolder);
    l << tav::fill("flagUseRootFolder:$", flagUseRootFolder);
    l << tav::fill("sRootFolder:$", sRootFolder);
    l << tav::fill("flagTreeDateSize:$", flagTreeDateSize);
    l << tav::fill("flagTreeDirOnly:$", flagTreeDirOnly);
    l << tav::fill("flagTreeMouseOverInfo:$", flagTreeMouseOverInfo);
    l << tav::fill("flagUseFilter:$", flagUseFilter);
    l << tav::fill("filterBits:$", filterBits);
    l << tav::fill("scope:$", scope);
    l << tav::fill("flagRegEx:$", flagRegEx);
    l << tav::fill("HotkeyCyclePreviews:0x$", QString::number(HotkeyCyclePreviews, 16));
    l << tav::fill("property auto load:$", flagPropAutoLoad);
    l << tav::fill("max size prop auto load:$", max_file_size_auto_calc_checksums);
    l << tav::fill("XTools::lang:$", tav::XTools::lang());
    return l.join(QLatin1Char('\n'));
}

} // namespace tavFinder
