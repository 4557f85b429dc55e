#include "gui/previews/PreviewXml.h"

#include "base/log/Logger.h"
#include "base/util/Format.h"
#include "gui/tools/XTools.h"

#include <QBuffer>
#include <QEvent>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeWidget>
#include <QXmlStreamReader>
#include <vector>

namespace tav {

namespace {
constexpr int kMaxText = 300;

QString shorten(QString s) {
    s = s.simplified();
    if (s.size() > kMaxText) s = s.left(kMaxText) + QStringLiteral(" \u2026");
    return s;
}

// Return in the tree activates the preview.
class ReturnFilter : public QObject {
public:
    ReturnFilter(QObject* parent, std::function<void()> f) : QObject(parent), f_(std::move(f)) {}
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::KeyPress) {
            const int k = static_cast<QKeyEvent*>(e)->key();
            if (k == Qt::Key_Return || k == Qt::Key_Enter) {
                f_();
                return true;
            }
        }
        return false;
    }

private:
    std::function<void()> f_;
};
}

PreviewXml::PreviewXml() {
    set_file_extensions({"xml", "xsd", "xsl", "xslt", "svg", "xhtml", "plist", "ui", "qrc", "kml", "gpx", "rss",
                         "atom", "wsdl", "xaml", "resx", "csproj", "vcxproj", "props", "targets", "nuspec", "xbel",
                         "rdf", "xul", "glade", "xlf", "xliff"});
}

PreviewXml::~PreviewXml() = default;

void PreviewXml::ini() {
    if (tree_) {
        log(tav::LOG_ERROR, "PreviewXml::ini, already called");
        return;
    }
    tree_ = new QTreeWidget();
    tree_->setColumnCount(2);
    tree_->setHeaderLabels({xt("Element"), xt("Text")});
    tree_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tree_->setUniformRowHeights(true);
    tree_->installEventFilter(new ReturnFilter(tree_, [this]() { fire_preview_event(); }));
    set_widget(tree_);
}

void PreviewXml::set_limits(int maxItems, int64_t maxBytes) {
    maxItems_ = std::max(1, maxItems);
    maxBytes_ = std::max<int64_t>(1, maxBytes);
}

void PreviewXml::set_font(const QFont& font) {
    font_ = font;
    if (tree_) tree_->setFont(font);
}

QFont PreviewXml::get_font() { return tree_ ? tree_->font() : font_; }

bool PreviewXml::can_handle_file(const QFileInfo& fi) {
    if (Preview::can_handle_file(fi)) return true;
    if (!fi.isFile()) return false;
    QFile f(fi.absoluteFilePath());
    if (!f.open(QIODevice::ReadOnly)) return false;
    QByteArray head = f.read(256);
    if (head.startsWith("\xEF\xBB\xBF")) head.remove(0, 3);
    return head.trimmed().startsWith("<?xml");
}

bool PreviewXml::load(QIODevice& dev) {
    tree_->clear();
    truncated_ = false;
    error_.clear();
    tree_->setUpdatesEnabled(false);
    QXmlStreamReader xml(&dev);
    std::vector<QTreeWidgetItem*> stack;
    int items = 0;
    bool anyElement = false;
    while (!xml.atEnd()) {
        if (items >= maxItems_ || dev.pos() > maxBytes_) {
            truncated_ = true;
            break;
        }
        const auto t = xml.readNext();
        if (t == QXmlStreamReader::StartElement) {
            anyElement = true;
            QString label = xml.name().toString();
            for (const QXmlStreamAttribute& a : xml.attributes())
                label += fill(" $=\"$\"", a.qualifiedName().toString(), shorten(a.value().toString()));
            auto* item = stack.empty() ? new QTreeWidgetItem(tree_) : new QTreeWidgetItem(stack.back());
            item->setText(0, label);
            stack.push_back(item);
            ++items;
        } else if (t == QXmlStreamReader::EndElement) {
            if (!stack.empty()) stack.pop_back();
        } else if (t == QXmlStreamReader::Characters && !xml.isWhitespace() && !stack.empty()) {
            QTreeWidgetItem* parent = stack.back();
            const QString text = shorten(xml.text().toString());
            // The first text of an element goes beside it; later ones (mixed content) below.
            if (parent->text(1).isEmpty() && parent->childCount() == 0) {
                parent->setText(1, text);
            } else {
                auto* item = new QTreeWidgetItem(parent);
                item->setText(1, text);
                ++items;
            }
        }
    }
    const bool wellFormed = !xml.hasError() && anyElement;
    if (truncated_) {
        auto* item = new QTreeWidgetItem(tree_);
        item->setText(0, fill("\u2026 $", xt("cut: the file is too large to show whole")));
        log(tav::LOG_TRACE, "PreviewXml::load, <<<$>>> cut after $ elements", fileInfo_, format1000(items));
    } else if (xml.hasError()) {
        error_ = fill("$ $:$ - $", xt("Line"), xml.lineNumber(), xml.columnNumber(), xml.errorString());
        auto* item = new QTreeWidgetItem(tree_);
        item->setText(0, error_);
        item->setForeground(0, QColor(200, 40, 40));
    }
    tree_->expandToDepth(1);
    tree_->setUpdatesEnabled(true);
    return truncated_ ? anyElement : wellFormed;
}

bool PreviewXml::open_file(const QFileInfo& fi) {
    if (!tree_) ini();
    fileInfo_ = fi;
    QFile f(fi.absoluteFilePath());
    if (!fi.isFile() || !f.open(QIODevice::ReadOnly)) {
        tree_->clear();
        error_ = f.errorString();
        return false;
    }
    set_holding_file(true);
    const bool ok = load(f);
    // The whole tree is in memory now; the file is not held.
    set_holding_file(false);
    if (!ok) log(tav::LOG_TRACE, "PreviewXml::open_file, <<<$>>> $", fi, error_);
    return ok;
}

bool PreviewXml::set_mem_file(const XMemFile& mem) {
    if (!tree_) ini();
    fileInfo_ = QFileInfo(mem.name);
    QBuffer b;
    b.setData(mem.data);
    b.open(QIODevice::ReadOnly);
    return load(b);
}

void PreviewXml::close_preview() {
    if (tree_) tree_->clear();
    Preview::close_preview();
}

} // namespace tav
