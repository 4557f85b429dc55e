#include "gui/previews/XThumb.h"

#include "base/text/FileType.h"
#include "base/thread/XThread.h"
#include "gui/previews/PreviewImage.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

namespace tav {

// ---- job -----------------------------------------------------------------------------------
void XThumbJob::work() {
    if (!ini_.load() || claimed_.exchange(true)) return;
    const QFileInfo fi(path_);
    QImage img;
    QSize real;
    if (fi.isFile()) {
        QImageReader r(path_);
        r.setAutoTransform(true);
        if (r.canRead()) {
            real = r.size();
            if (real.isValid() && r.supportsOption(QImageIOHandler::ScaledSize) &&
                (real.width() > width_ || real.height() > width_)) {
                // Decoding at the small size is far cheaper for JPEG and friends.
                r.setScaledSize(real.scaled(width_, width_, Qt::KeepAspectRatio));
            }
            QString error;
            img = PreviewImage::decode(r, &error);
            if (!img.isNull() && (img.width() > width_ || img.height() > width_))
                img = img.scaled(width_, width_, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            if (img.isNull()) real = QSize();
        }
    }
    if (img.isNull()) img = XThumb::placeholder(path_, width_, fi.isDir());
    {
        QMutexLocker l(&mutex_);
        image_ = img;
        realSize_ = real;
    }
    ini_ = false;
    XThumb* owner = owner_;
    std::weak_ptr<bool> alive = alive_;
    run_in_gui_thread([owner, alive]() {
        if (alive.lock()) owner->ready();
    });
}

QImage XThumbJob::image() const {
    QMutexLocker l(&mutex_);
    return image_;
}

QSize XThumbJob::realSize() const {
    QMutexLocker l(&mutex_);
    return realSize_;
}

// ---- widget ----------------------------------------------------------------------------------
XThumb::XThumb(QWidget* parent) : QWidget(parent) {}

XThumb::~XThumb() = default;

void XThumb::set_file(const QString& absolutePath, int width) {
    job_ = std::make_shared<XThumbJob>();
    job_->path_ = absolutePath;
    job_->width_ = std::max(16, width);
    job_->owner_ = this;
    job_->alive_ = alive_;
    job_->ini_ = true;
    setMinimumSize(job_->width_, job_->width_);
    updateGeometry();
    update();
}

void XThumb::work() {
    if (job_) job_->work();
}

QSize XThumb::get_real_size() const { return job_ ? job_->realSize() : QSize(); }
QImage XThumb::image() const { return job_ ? job_->image() : QImage(); }
QString XThumb::file_path() const { return job_ ? job_->path() : QString(); }

QSize XThumb::sizeHint() const {
    const int w = job_ ? job_->width() : 128;
    return QSize(w, w);
}

void XThumb::ready() {
    update();
    evReady_.fire();
}

void XThumb::paintEvent(QPaintEvent*) {
    const QImage img = image();
    if (img.isNull()) return;
    QPainter p(this);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    QSize s = img.size();
    if (s.width() > width() || s.height() > height()) s.scale(size(), Qt::KeepAspectRatio);
    p.drawImage(QRect(QPoint((width() - s.width()) / 2, (height() - s.height()) / 2), s), img);
}

QImage XThumb::placeholder(const QString& path, int width, bool isDir) {
    QImage img(width, width, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    const double w = width;
    if (isDir) {
        QPainterPath folder;
        folder.moveTo(w * 0.1, w * 0.3);
        folder.lineTo(w * 0.4, w * 0.3);
        folder.lineTo(w * 0.47, w * 0.38);
        folder.lineTo(w * 0.9, w * 0.38);
        folder.lineTo(w * 0.9, w * 0.8);
        folder.lineTo(w * 0.1, w * 0.8);
        folder.closeSubpath();
        p.fillPath(folder, QColor(230, 180, 70));
        p.setPen(QPen(QColor(160, 110, 30), std::max(1.0, w / 64)));
        p.drawPath(folder);
        return img;
    }
    // A page with a folded corner and the extension on it.
    QPainterPath page;
    page.moveTo(w * 0.22, w * 0.1);
    page.lineTo(w * 0.62, w * 0.1);
    page.lineTo(w * 0.78, w * 0.26);
    page.lineTo(w * 0.78, w * 0.9);
    page.lineTo(w * 0.22, w * 0.9);
    page.closeSubpath();
    p.fillPath(page, QColor(245, 245, 245));
    p.setPen(QPen(QColor(150, 150, 150), std::max(1.0, w / 64)));
    p.drawPath(page);
    p.drawLine(QPointF(w * 0.62, w * 0.1), QPointF(w * 0.62, w * 0.26));
    p.drawLine(QPointF(w * 0.62, w * 0.26), QPointF(w * 0.78, w * 0.26));
    const QString ext = getFileExtension(QFileInfo(path).fileName(), true).left(5).toUpper();
    if (!ext.isEmpty()) {
        QFont f;
        f.setPixelSize(std::max(6, int(w * 0.14)));
        f.setBold(true);
        p.setFont(f);
        p.setPen(QColor(70, 90, 140));
        p.drawText(QRectF(w * 0.22, w * 0.45, w * 0.56, w * 0.3), Qt::AlignCenter, ext);
    }
    return img;
}

} // namespace tav
