#pragma once
// One hit file of a content search: its layer of hits and its file information.
#include "base/find/XRamLayer.h"

#include <QFileInfo>
#include <QString>
#include <cstdint>

namespace tavFinder {

struct FileResult {
    tav::find::XRamLayer layer;   // size() = number of hits
    QFileInfo fileInfo;           // the file, or the archive that holds the member
    QString member;               // inside an archive: "dir/a.log" or nested "x.zip!/a.log"
    int64_t size = -1;            // bytes of the file as it was searched (-1: not known)
    bool extracted = false;       // found in the extracted text of a document or member
    int64_t mtimeNs = INT64_MIN;  // modified, ns since 1970, as the search saw it (INT64_MIN: not known)

    FileResult() = default;
    FileResult(tav::find::XRamLayer l, QFileInfo fi, QString m = QString())
        : layer(std::move(l)), fileInfo(std::move(fi)), member(std::move(m)) {}
    FileResult(const FileResult&) = default;
    FileResult& operator=(const FileResult&) = default;
    // noexcept, so that growing result vectors move the marks instead of copying them
    // (QFileInfo has no move constructor; copying it only counts a reference).
    FileResult(FileResult&& o) noexcept
        : layer(std::move(o.layer)), fileInfo(o.fileInfo), member(std::move(o.member)), size(o.size),
          extracted(o.extracted), mtimeNs(o.mtimeNs) {}
    FileResult& operator=(FileResult&& o) noexcept {
        layer = std::move(o.layer);
        fileInfo = o.fileInfo;
        member = std::move(o.member);
        size = o.size;
        extracted = o.extracted;
        mtimeNs = o.mtimeNs;
        return *this;
    }
    bool isMember() const { return !member.isEmpty(); }
    // The path results show: "ARCHIVE!/MEMBER" for a member.
    QString displayPath() const {
        const QString p = fileInfo.isAbsolute() ? fileInfo.filePath() : fileInfo.absoluteFilePath();
        return member.isEmpty() ? p : p + QStringLiteral("!/") + member;
    }
    // Every hit found (the layer may hold only the first ones as marks).
    uint64_t hits() const { return layer.hitCount(); }
    // The hit count, or "not-valid" without hits.
    QString toString() const { return layer.toString(); }
};

} // namespace tavFinder
