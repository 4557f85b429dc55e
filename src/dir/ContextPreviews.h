#pragma once
// Binds a source widget (the tree, a result table) to a preview container:
// what is selected there is shown in the container.
#include "base/core/XProp.h"

#include <QFileInfo>
#include <set>
#include <vector>

class QWidget;

namespace tav {
class Preview;
}

namespace tavFinder {

class XContainerPreviews;

class ContextPreviews : public tav::NameAble {
public:
    explicit ContextPreviews(const QString& name);
    ~ContextPreviews() override;

    void ini(QWidget* sourceWidget, XContainerPreviews* container);
    void select_file(const QFileInfo& fi);
    void cycle_previews();
    void set_preview(const QString& type);
    static tav::Preview* currentPreview();
    bool ownsWidget(const QWidget* w) const { return w && w == sourceWidget_; }

    const QFileInfo& currentFile() const { return fiCurrent_; }
    XContainerPreviews* container() const { return container_; }
    QWidget* sourceWidget() const { return sourceWidget_; }

private:
    QFileInfo fiCurrent_;
    std::set<QString> sourceTextExtensions_;
    std::vector<tav::Preview*> candidates_;
    int index_ = -1;
    XContainerPreviews* container_ = nullptr;
    QWidget* sourceWidget_ = nullptr;
};

} // namespace tavFinder
