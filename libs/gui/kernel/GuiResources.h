#pragma once
// The GUI library's own resources (prefix "/res"). A static library's resource
// object is only linked when something refers to it; this does.
namespace tav {
void initGuiResources();
}
