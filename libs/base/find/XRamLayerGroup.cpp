#include "base/find/XRamLayerGroup.h"

namespace tav {
namespace find {

XRamLayer* XRamLayerGroup::add_layer(int id, int enabled) {
    auto it = layers_.find(id);
    if (it != layers_.end()) return it->second.layer.get();
    Entry e;
    e.layer = std::make_unique<XRamLayer>();
    e.enabled = enabled != 0;
    XRamLayer* p = e.layer.get();
    layers_.emplace(id, std::move(e));
    eventLayerAdded_.fire(id);
    return p;
}

XRamLayer* XRamLayerGroup::layer_by_ID(int id) {
    auto it = layers_.find(id);
    return it == layers_.end() ? nullptr : it->second.layer.get();
}
const XRamLayer* XRamLayerGroup::layer_by_ID(int id) const {
    auto it = layers_.find(id);
    return it == layers_.end() ? nullptr : it->second.layer.get();
}

void XRamLayerGroup::clear(int id) {
    if (XRamLayer* l = layer_by_ID(id)) l->clear();
}

void XRamLayerGroup::remove_layer(int id) { layers_.erase(id); }
void XRamLayerGroup::clear_all() { layers_.clear(); }

bool XRamLayerGroup::isEnabled(int id) const {
    auto it = layers_.find(id);
    return it != layers_.end() && it->second.enabled;
}
void XRamLayerGroup::setEnabled(int id, bool on) {
    auto it = layers_.find(id);
    if (it != layers_.end()) it->second.enabled = on;
}

std::vector<int> XRamLayerGroup::ids() const {
    std::vector<int> out;
    for (auto& [id, e] : layers_) out.push_back(id);
    return out;
}

} // namespace find
} // namespace tav
