#pragma once
// The image preview: decodes in the background with Qt's image reader, turned
// upright by the picture's EXIF orientation, refusing pictures whose size
// would need more memory than a fixed limit.
#include "gui/previews/Preview.h"

#include <QImage>
#include <atomic>
#include <memory>

class QImageReader;

namespace tav {

class XView2D;

class PreviewImage : public Preview {
public:
    // Pixels a decoded picture may have (4 bytes each): 256 MiB of memory.
    static constexpr int64_t kMaxPixels = 64LL * 1024 * 1024;

    PreviewImage();
    ~PreviewImage() override;

    unsigned get_category() const override { return CATEGORY_IMAGE; }
    void ini() override;
    bool can_handle_file(const QFileInfo& fi) override;
    // True when the picture's header could be read; decoding goes on in the background.
    bool open_file(const QFileInfo& fi) override;
    bool set_mem_file(const XMemFile& mem) override;
    QString type() override { return QStringLiteral("PreviewImage"); }
    QString name() override { return QStringLiteral("Image Viewer"); }
    void post_first_time_visibilty_action() override;
    void close_preview() override;
    void cancel_loading() override;

    XView2D* img_view() { return view_; }
    bool isLoading() const { return loading_; }

    // Decodes a picture within the memory limit (a picture too large is scaled
    // down when its format can do that while decoding, else refused). Safe on any thread.
    static QImage decode(QImageReader& reader, QString* error);

private:
    void startDecode(const std::function<QImage(QString*)>& job);

    XView2D* view_ = nullptr;
    std::shared_ptr<std::atomic<int>> generation_;
    bool loading_ = false;
};

} // namespace tav
