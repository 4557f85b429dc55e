#pragma once
// The XML preview: the element tree of a well-formed XML file, elements with
// their attributes and text. Huge files are shown up to a bound and marked as cut.
#include "gui/previews/Preview.h"

class QTreeWidget;
class QIODevice;

namespace tav {

class PreviewXml : public Preview {
public:
    static constexpr int kMaxItems = 200000;
    static constexpr int64_t kMaxBytes = 64LL * 1024 * 1024;

    PreviewXml();
    ~PreviewXml() override;

    unsigned get_category() const override { return CATEGORY_XML; }
    void ini() override;
    void set_font(const QFont& font) override;
    QFont get_font() override;
    // A known XML extension, or a file that starts with an XML declaration.
    bool can_handle_file(const QFileInfo& fi) override;
    // False for a file that is not well-formed XML (what was read is still shown).
    bool open_file(const QFileInfo& fi) override;
    bool set_mem_file(const XMemFile& mem) override;
    QString type() override { return QStringLiteral("PreviewXml"); }
    QString name() override { return QStringLiteral("XML Viewer"); }
    void close_preview() override;

    QTreeWidget* tree() { return tree_; }
    // Bounds of what is read of one file (elements and texts, bytes).
    void set_limits(int maxItems, int64_t maxBytes);
    // Whether the last file was cut at the bounds.
    bool wasTruncated() const { return truncated_; }
    QString lastError() const { return error_; }

private:
    bool load(QIODevice& dev);

    QTreeWidget* tree_ = nullptr;
    int maxItems_ = kMaxItems;
    int64_t maxBytes_ = kMaxBytes;
    bool truncated_ = false;
    QString error_;
};

} // namespace tav
