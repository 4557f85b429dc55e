#pragma once
// The record of one recursive folder count. The GUI reads the counters while
// the scan thread writes them; clearing 'running' stops the scan at the next entry.
#include <QHash>
#include <QString>
#include <atomic>
#include <cstdint>
#include <functional>
#include <unordered_set>

namespace tavFinder {

class PDirInfo {
public:
    // Entries listed: files, all folders, hidden ones, without "." and "..".
    static constexpr int kFilterAll = 25858;
    // The same without hidden entries.
    static constexpr int kFilterVisible = 25602;

    std::atomic<bool> running{false};
    // Set by cancel(); a scan that has not begun yet then ends at once.
    std::atomic<bool> cancelled{false};
    QString path;
    std::atomic<uint32_t> files{0};
    std::atomic<uint32_t> textFiles{0};
    std::atomic<uint32_t> dirs{0};
    std::atomic<uint64_t> bytes{0};
    std::atomic<uint64_t> textBytes{0};
    std::unordered_set<QString> textExtensions;   // lower case, no dot
    // Called on the scanning thread after each entry is counted (progress).
    std::function<void(const PDirInfo&)> onEntry;

    // Counts 'dir' recursively; returns when done or when 'running' was cleared.
    void scan_dir(const QString& dir);
    void cancel() {
        cancelled = true;
        running = false;
    }
    QString toString() const;

};

} // namespace tavFinder
