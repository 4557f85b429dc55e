#include "src/dir/LimitedPreviewContainer.h"

#include "src/dir/PreviewDirSimple.h"

namespace tavFinder {

LimitedPreviewContainer::LimitedPreviewContainer(QWidget* parent) : XContainerPreviews(parent) {
    setObjectName(QStringLiteral("LimitedPreviewContainer"));
}

AbstractPreviewDir* LimitedPreviewContainer::createPreviewDirectory() { return new PreviewDirSimple(); }

} // namespace tavFinder
