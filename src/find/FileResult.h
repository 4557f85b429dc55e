#pragma once
// One hit file of a content search: its layer of hits and its file information.
#include "base/find/XRamLayer.h"

#include <QFileInfo>
#include <QString>

namespace tavFinder {

struct FileResult {
    tav::find::XRamLayer layer;   // size() = number of hits
    QFileInfo fileInfo;

    FileResult() = default;
    FileResult(tav::find::XRamLayer l, QFileInfo fi) : layer(std::move(l)), fileInfo(std::move(fi)) {}
    FileResult(const FileResult&) = default;
    FileResult& operator=(const FileResult&) = default;
    // noexcept, so that growing result vectors move the marks instead of copying them
    // (QFileInfo has no move constructor; copying it only counts a reference).
    FileResult(FileResult&& o) noexcept : layer(std::move(o.layer)), fileInfo(o.fileInfo) {}
    FileResult& operator=(FileResult&& o) noexcept {
        layer = std::move(o.layer);
        fileInfo = o.fileInfo;
        return *this;
    }
    // The hit count, or "not-valid" without hits.
    QString toString() const { return layer.toString(); }
};

} // namespace tavFinder
