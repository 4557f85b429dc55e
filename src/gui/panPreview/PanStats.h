#pragma once
// The details window's statistics tab.
#include "src/gui/stats/Stats.h"
#include "src/gui/panPreview/PanPreview.h"

namespace tavFinder {

class PanStats : public PanPreview {
    Q_OBJECT
public:
    explicit PanStats(QWidget* parent = nullptr) : PanPreview(parent, QStringLiteral("PanPreviewStats")) {}
    tav::Preview* preview() override { return &stats_; }
    Stats& stats() { return stats_; }
    void ini() override { embed(stats_); }
    void on_zoom(bool) override {}

private:
    Stats stats_;
};

} // namespace tavFinder
