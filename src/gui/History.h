#pragma once
// The visits of a main window: a linear back/forward list with a current
// index and a state telling whether back (PREV) and forward (NEXT) are possible.
#include "base/core/XEventListener.h"

#include <QFileInfo>
#include <cstdint>
#include <functional>
#include <vector>

namespace tavFinder {

class History {
public:
    static constexpr uint32_t PREV = 2;
    static constexpr uint32_t NEXT = 4;
    static constexpr uint32_t NOT_INITIALIZED = 0xFFFFFFFF;

    // Records a visit; the forward part after the current index is dropped.
    void addFile(const QFileInfo& fi);
    // Move and return the entry, or an empty file information.
    QFileInfo get_prev();
    QFileInfo get_next();
    bool hasPrev() const { return state != NOT_INITIALIZED && (state & PREV); }
    bool hasNext() const { return state != NOT_INITIALIZED && (state & NEXT); }

    uint32_t getIndex() const { return index; }
    // Sets the index when it is inside the list; the state is not updated.
    void setIndex(uint32_t i);
    uint32_t count() const { return uint32_t(arFiles.size()); }
    const std::vector<QFileInfo>& files() const { return arFiles; }
    uint32_t getState() const { return state; }
    void reset();
    // Recomputes the state from index and count; listeners hear of a change.
    void updateState();
    static QString stateToString(uint32_t state);
    QString stateToString() const { return stateToString(state); }

    // Told of every state change (and of every reset).
    tav::XEventListener<std::function<void()>>& listeners() { return listeners_; }

private:
    std::vector<QFileInfo> arFiles;
    uint32_t index = 0;
    uint32_t state = NOT_INITIALIZED;
    tav::XEventListener<std::function<void()>> listeners_;
};

} // namespace tavFinder
