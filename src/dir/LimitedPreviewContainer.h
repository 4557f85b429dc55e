#pragma once
// A preview container whose directory preview is the simple page, never the
// full directory preview: the container inside a directory preview uses it, so
// directory previews never nest.
#include "src/dir/XContainerPreviews.h"

namespace tavFinder {

class LimitedPreviewContainer : public XContainerPreviews {
    Q_OBJECT
public:
    explicit LimitedPreviewContainer(QWidget* parent = nullptr);

protected:
    AbstractPreviewDir* createPreviewDirectory() override;
};

} // namespace tavFinder
