#pragma once
// The text preview: an XTextView with its layers, for text files of any size.
#include "gui/previews/Preview.h"
#include "gui/viewText/TextMarks.h"

#include <QDateTime>
#include <functional>

namespace tav {

class XMenu;

namespace find {
class XRamLayer;
}
namespace viewText {
class XTextView;
}

class PreviewAscii : public Preview {
public:
    using MenuBuilder = std::function<void(XMenu&, const QString&)>;

    PreviewAscii();
    ~PreviewAscii() override;

    // The framework's text-file extensions (lower case, no dot).
    static std::unordered_set<QString> get_text_file_extensions();

    void from_node(XNode* node) override;
    void to_node() override;
    unsigned get_category() const override { return CATEGORY_TEXT; }
    void ini() override;
    void set_font(const QFont& font) override;
    QFont get_font() override;
    void set_background_color(QColor c) override;
    // A known text extension, or any file that looks like text.
    bool can_handle_file(const QFileInfo& fi) override;
    bool open_file(const QFileInfo& fi) override;
    bool set_mem_file(const XMemFile& mem) override;
    QString type() override { return QStringLiteral("PreviewAscii"); }
    QString name() override { return QStringLiteral("Text Viewer"); }
    // Opens the file again when it changed on disk, keeping the place shown.
    void refresh() override;
    void close_preview() override;
    void cancel_loading() override;

    void set_ruler(bool on);
    void set_auto_wrap(bool on);
    void set_wrap(bool on);
    void set_line_info_pos(LINE_INFO_POS pos);
    void add_extra_context_menu(MenuBuilder builder);
    void add_extra_context_menu_web_search(const QString& title);
    // The layer whose active mark is drawn distinctly and navigated.
    void set_XRamLayer(find::XRamLayer* layer);
    // Null before ini().
    viewText::XTextView* get_XTextView() { return view_; }
    // Tells the ID of a layer that became active in the view (a click on one of its marks).
    XEventListener<std::function<void(int)>>& eventLayerChanged() { return eventLayerChanged_; }

private:
    viewText::XTextView* view_ = nullptr;
    bool ruler_ = true;
    bool wrap_ = false;
    bool autoWrap_ = false;
    LINE_INFO_POS linePos_ = LINE_INFO_TOP_RIGHT;
    std::vector<MenuBuilder> pendingBuilders_;
    QString webSearchTitle_;
    qint64 openedSize_ = -1;
    QDateTime openedTime_;
    XEventListener<std::function<void(int)>> eventLayerChanged_;
};

} // namespace tav
