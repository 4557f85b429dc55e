#pragma once
// The hex preview: any file as offset, bytes and characters.
#include "gui/previews/Preview.h"

namespace tav {

class XHexView;

class PreviewHex : public Preview {
public:
    PreviewHex();
    ~PreviewHex() override;

    void from_node(XNode* node) override;
    void to_node() override;
    unsigned get_category() const override { return CATEGORY_HEX; }
    void ini() override;
    // Takes the font family; the size stays the one of set_font_size().
    void set_font(const QFont& font) override;
    QFont get_font() override;
    // Every readable file can be shown as bytes.
    bool can_handle_file(const QFileInfo& fi) override;
    bool open_file(const QFileInfo& fi) override;
    bool set_mem_file(const XMemFile& mem) override;
    QString type() override { return QStringLiteral("PreviewHex"); }
    QString name() override { return QStringLiteral("Hex Viewer"); }
    void close_preview() override;

    void set_font_size(int points);
    int font_size() const { return fontSize_; }
    // The picture shown while no file is open.
    void set_svg_default_image(const QString& path);
    XHexView* hex_view() { return view_; }

private:
    XHexView* view_ = nullptr;
    int fontSize_ = 14;
    QString svgPath_;
};

} // namespace tav
