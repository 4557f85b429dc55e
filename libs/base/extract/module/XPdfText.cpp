#include "base/extract/module/XPdfText.h"

#include "base/extract/XExtractApi.h"
#include "base/log/Logger.h"

#include <QFile>
#include <memory>
#include <mutex>
#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

namespace tav {
namespace extract {

extern LogFn moduleLog;

namespace {
// poppler reports every oddity of a damaged file on standard error; those belong in our log.
void popplerMessage(const std::string& msg, void*) {
    if (moduleLog) moduleLog(LOG_VERBOSE, QStringLiteral("poppler: ") + QString::fromStdString(msg));
}
}

bool pdfText(const QString& path, const QByteArray* data, uint64_t maxOutput, const std::function<bool()>& keepGoing,
             QByteArray& text, std::vector<int64_t>& pageStarts, QString* error) {
    static std::once_flag quiet;
    std::call_once(quiet, []() { poppler::set_debug_error_function(popplerMessage, nullptr); });
    text.clear();
    pageStarts.clear();
    std::unique_ptr<poppler::document> doc(
        data ? poppler::document::load_from_raw_data(data->constData(), data->size())
             : poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!doc) {
        if (error) *error = QStringLiteral("not a readable PDF");
        return false;
    }
    if (doc->is_locked()) {
        if (error) *error = QStringLiteral("PDF protected by a password, skipped");
        return false;
    }
    const int pages = doc->pages();
    for (int i = 0; i < pages; ++i) {
        if (keepGoing && !keepGoing()) break;
        pageStarts.push_back(text.size());
        std::unique_ptr<poppler::page> page(doc->create_page(i));
        if (page) {
            const poppler::byte_array utf8 = page->text(poppler::rectf(), poppler::page::non_raw_non_physical_layout).to_utf8();
            if (uint64_t(text.size()) + utf8.size() > maxOutput) {
                if (error) *error = QStringLiteral("cut at %1 bytes of text").arg(maxOutput);
                break;
            }
            text.append(utf8.data(), int(utf8.size()));
        }
        // A page ends a paragraph.
        while (text.endsWith(' ')) text.chop(1);
        if (!text.isEmpty() && !text.endsWith("\n\n")) text += text.endsWith('\n') ? "\n" : "\n\n";
    }
    return true;
}

} // namespace extract
} // namespace tav
