#include "gui/previews/PreviewImage.h"

#include "base/log/Logger.h"
#include "base/text/FileType.h"
#include "base/thread/XThread.h"
#include "gui/previews/XView2D.h"
#include "gui/tools/XTools.h"

#include <QBuffer>
#include <QImageReader>
#include <QPointer>
#include <cmath>

namespace tav {

PreviewImage::PreviewImage() : generation_(std::make_shared<std::atomic<int>>(0)) {
    std::unordered_set<QString> ext;
    for (const QByteArray& f : QImageReader::supportedImageFormats()) ext.insert(QString::fromLatin1(f).toLower());
    set_file_extensions(std::move(ext));
}

PreviewImage::~PreviewImage() { ++*generation_; }

void PreviewImage::ini() {
    if (view_) {
        log(tav::LOG_ERROR, "PreviewImage::ini, already called");
        return;
    }
    view_ = new XView2D();
    set_widget(view_);
    view_->eventActivated().add([this]() { fire_preview_event(); });
}

bool PreviewImage::can_handle_file(const QFileInfo& fi) {
    if (!fi.isFile()) return false;
    QImageReader r(fi.absoluteFilePath());
    return r.canRead();
}

QImage PreviewImage::decode(QImageReader& reader, QString* error) {
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && int64_t(size.width()) * size.height() > kMaxPixels) {
        if (!reader.supportsOption(QImageIOHandler::ScaledSize)) {
            *error = fill("$ ($ \u00d7 $)", xt("Picture too large to show"), size.width(), size.height());
            return QImage();
        }
        const double f = std::sqrt(double(kMaxPixels) / (double(size.width()) * size.height()));
        reader.setScaledSize(QSize(std::max(1, int(size.width() * f)), std::max(1, int(size.height() * f))));
    }
    QImage img = reader.read();
    if (img.isNull()) *error = fill("$: $", xt("Cannot read picture"), reader.errorString());
    return img;
}

void PreviewImage::startDecode(const std::function<QImage(QString*)>& job) {
    const int gen = ++*generation_;
    loading_ = true;
    view_->setMessage(xt("Loading ..."));
    QPointer<XView2D> view(view_);
    auto generation = generation_;
    PreviewImage* self = this;
    XThreadPool::start_global([job, gen, generation, view, self]() {
        QString error;
        QImage img = job(&error);
        run_in_gui_thread([img, error, gen, generation, view, self]() {
            // A newer file, a cancel or a deleted preview make this result stale.
            if (generation->load() != gen || !view) return;
            self->loading_ = false;
            self->set_holding_file(false);
            if (img.isNull()) view->setMessage(error);
            else view->setImage(img);
        });
    });
}

bool PreviewImage::open_file(const QFileInfo& fi) {
    if (!view_) ini();
    fileInfo_ = fi;
    QImageReader probe(fi.absoluteFilePath());
    if (!fi.isFile() || !probe.canRead()) {
        ++*generation_;
        loading_ = false;
        set_holding_file(false);
        view_->setMessage(fill("$\n$", xt("Cannot read picture"), fi.fileName()));
        return false;
    }
    set_holding_file(true);
    const QString path = fi.absoluteFilePath();
    startDecode([path](QString* error) {
        QImageReader r(path);
        return decode(r, error);
    });
    return true;
}

bool PreviewImage::set_mem_file(const XMemFile& mem) {
    if (!view_) ini();
    fileInfo_ = QFileInfo(mem.name);
    set_holding_file(false);
    const QByteArray data = mem.data;
    startDecode([data](QString* error) {
        QBuffer b;
        b.setData(data);
        b.open(QIODevice::ReadOnly);
        QImageReader r(&b);
        return decode(r, error);
    });
    return true;
}

void PreviewImage::post_first_time_visibilty_action() {
    if (view_) view_->setFit(view_->isFit());
}

void PreviewImage::close_preview() {
    cancel_loading();
    if (view_) view_->clear();
    Preview::close_preview();
}

void PreviewImage::cancel_loading() {
    if (!loading_) return;
    ++*generation_;
    loading_ = false;
    set_holding_file(false);
}

} // namespace tav
