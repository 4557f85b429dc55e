#pragma once
// A thumbnail: a small picture of a file, produced once by work() on any
// thread, then painted. Non-pictures get a drawn page with their extension,
// folders a folder. The state that work() touches lives in a shared job, so a
// worker never reaches into a widget that was deleted meanwhile.
#include "base/core/XEventListener.h"

#include <QImage>
#include <QMutex>
#include <QWidget>
#include <atomic>
#include <functional>
#include <memory>

namespace tav {

class XThumb;

class XThumbJob {
public:
    // True while the picture still has to be produced.
    bool is_ini() const { return ini_.load(); }
    // Produces the picture (once; later calls do nothing). Any thread.
    void work();
    QImage image() const;
    QSize realSize() const;
    QString path() const { return path_; }
    int width() const { return width_; }

private:
    friend class XThumb;
    QString path_;
    int width_ = 128;
    std::atomic<bool> ini_{false};
    std::atomic<bool> claimed_{false};
    mutable QMutex mutex_;
    QImage image_;
    QSize realSize_;
    // The tile to tell when the picture is ready; used only on the GUI thread,
    // and only while 'alive_' says the tile still exists.
    XThumb* owner_ = nullptr;
    std::weak_ptr<bool> alive_;
};

class XThumb : public QWidget {
    Q_OBJECT
public:
    explicit XThumb(QWidget* parent = nullptr);
    ~XThumb() override;

    // Sets the file and the square the picture has to fit; the picture is then pending.
    void set_file(const QString& absolutePath, int width);
    bool is_ini() const { return job_ && job_->is_ini(); }
    void work();
    // The picture's own size (empty for non-pictures and before work()).
    QSize get_real_size() const;
    QImage image() const;
    QString file_path() const;
    std::shared_ptr<XThumbJob> job() const { return job_; }

    // Raised on the GUI thread when the picture is ready.
    XEventListener<std::function<void()>>& eventReady() { return evReady_; }

    QSize sizeHint() const override;

    // Draws the picture of a file that is no image (or a folder); used by work().
    static QImage placeholder(const QString& path, int width, bool isDir);

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    friend class XThumbJob;
    void ready();
    std::shared_ptr<XThumbJob> job_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    XEventListener<std::function<void()>> evReady_;
};

} // namespace tav
