#pragma once
// Qt's file dialog with listener lists: one told how the dialog ended
// (0 rejected, 1 accepted), one told every path the cursor reaches.
#include "base/core/XEventListener.h"

#include <QFileDialog>
#include <functional>

namespace tavFinder {

class XFileDialogHelper : public QFileDialog {
    Q_OBJECT
public:
    explicit XFileDialogHelper(QWidget* parent = nullptr);

    tav::XEventListener<std::function<void(int)>>& eventFinished() { return finished_; }
    tav::XEventListener<std::function<void(const QString&)>>& eventCurrentPath() { return currentPath_; }

    void done(int result) override;

private:
    tav::XEventListener<std::function<void(int)>> finished_;
    tav::XEventListener<std::function<void(const QString&)>> currentPath_;
};

} // namespace tavFinder
