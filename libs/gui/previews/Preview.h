#pragma once
// The interface of every preview: a widget that shows one file, chosen by a
// preview container from a table of file extensions. The container owns its
// previews; a preview owns its widget.
#include "base/core/XEventListener.h"
#include "base/io/XMemFile.h"

#include <QColor>
#include <QFileInfo>
#include <QFont>
#include <QPointer>
#include <QSize>
#include <QHash>
#include <QString>
#include <functional>
#include <unordered_set>

class QWidget;

namespace tav {

class XNode;

class Preview {
public:
    // Kinds of preview, as get_category() reports them (bits).
    enum Category : unsigned {
        CATEGORY_TEXT = 1,
        CATEGORY_HEX = 2,
        CATEGORY_IMAGE = 4,
        CATEGORY_XML = 8,
        CATEGORY_DIRECTORY = 16,
        CATEGORY_OTHER = 32,
    };
    using PreviewListener = std::function<void(Preview*)>;

    Preview();

    // ---- virtual operations, in this order ----------------------------------------------
    virtual void set_debug(bool on) { debug_ = on; }
    // Restores settings from a configuration node; to_node() writes them back into it.
    virtual void from_node(XNode* node);
    virtual void to_node();
    virtual ~Preview();
    // The widget shown in a container (null before ini()).
    virtual QWidget* widget_preview();
    virtual QSize current_size();
    // Called once the preview's widget has been made the visible one.
    virtual void post_first_time_visibilty_action() {}
    virtual unsigned get_category() const = 0;
    // Builds the widgets; called once.
    virtual void ini() = 0;
    virtual void set_font(const QFont& font);
    virtual QFont get_font();
    virtual void set_background_color(QColor c) { background_ = c; }
    virtual bool can_handle_file(const QFileInfo& fi);
    // Loads a file; false when it cannot be shown.
    virtual bool open_file(const QFileInfo& fi) = 0;
    virtual QFileInfo file_info() { return fileInfo_; }
    // Shows a file held in memory; false when this preview cannot.
    virtual bool set_mem_file(const XMemFile& mem);
    virtual QString type() = 0;
    virtual QString name() = 0;
    virtual QString author() { return QStringLiteral("Talvo"); }
    virtual QString toString();
    // Shows the current file again (it may have changed on disk).
    virtual void refresh();
    // Lets go of the file shown (the file may then be renamed or deleted).
    virtual void close_preview();
    // Stops loading in the background, if any.
    virtual void cancel_loading() {}

    // ---- non-virtual --------------------------------------------------------------------
    // Extensions this preview is meant for: lower case, without a dot.
    const std::unordered_set<QString>& get_file_extensions() const { return extensions_; }
    bool is_image() const { return get_category() & CATEGORY_IMAGE; }
    bool is_xml() const { return get_category() & CATEGORY_XML; }
    bool is_hex() const { return get_category() & CATEGORY_HEX; }
    bool is_text() const { return get_category() & CATEGORY_TEXT; }
    bool is_debug() const { return debug_; }
    // The extensions sorted, joined by ",".
    QString file_extentions_as_string() const;
    // Number of files that previews hold open right now.
    static int open_counter();

    // The preview's own event: raised when the user activates the preview
    // (Return in it, or a double click where a click has no other use).
    XEventListener<PreviewListener>& eventPreview() { return eventPreview_; }
    void fire_preview_event() { eventPreview_.fire(this); }

protected:
    void set_file_extensions(std::unordered_set<QString> ext) { extensions_ = std::move(ext); }
    void set_widget(QWidget* w);
    QWidget* widget() const { return widget_.data(); }
    XNode* node() const { return node_; }
    // Keeps open_counter() right: call with true when a file is held, false when let go.
    void set_holding_file(bool holding);
    QFileInfo fileInfo_;
    QColor background_;
    QFont font_;

private:
    std::unordered_set<QString> extensions_;
    QPointer<QWidget> widget_;
    XNode* node_ = nullptr;
    bool debug_ = false;
    bool holding_ = false;
    XEventListener<PreviewListener> eventPreview_;
};

} // namespace tav
