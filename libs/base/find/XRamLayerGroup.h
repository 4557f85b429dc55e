#pragma once
// The layers of a text view, keyed by an integer ID (1000 + n for the search
// panels). Layer pointers stay valid until the layer is removed.
#include "base/core/XEventListener.h"
#include "base/find/XRamLayer.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace tav {
namespace find {

class XRamLayerGroup {
public:
    bool contains_layer(int id) const { return layers_.count(id) != 0; }
    // Adds an empty layer (enabled when 'enabled' != 0) unless it exists; returns it.
    XRamLayer* add_layer(int id, int enabled = 1);
    XRamLayer* layer_by_ID(int id);
    const XRamLayer* layer_by_ID(int id) const;
    // Empties the marks of a layer (the layer stays).
    void clear(int id);
    void remove_layer(int id);
    void clear_all();

    bool isEnabled(int id) const;
    void setEnabled(int id, bool on);

    // IDs in ascending order; higher IDs paint over lower ones.
    std::vector<int> ids() const;
    int count() const { return int(layers_.size()); }

    // Told the ID of every layer added.
    XEventListener<std::function<void(int)>>& eventLayerAdded() { return eventLayerAdded_; }

private:
    struct Entry {
        std::unique_ptr<XRamLayer> layer;
        bool enabled = true;
    };
    std::map<int, Entry> layers_;
    XEventListener<std::function<void(int)>> eventLayerAdded_;
};

} // namespace find
} // namespace tav
