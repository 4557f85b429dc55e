// The module's side of the table: libarchive's functions as they are, and the
// PDF reader built on poppler.
#include "base/extract/XExtractApi.h"
#include "base/extract/module/XPdfText.h"

namespace tav {
namespace extract {

LogFn moduleLog = nullptr;

namespace {
void setLog(LogFn log) { moduleLog = log; }

const ExtractApi api = {
    sizeof(ExtractApi),
    &setLog,
    &pdfText,
    &archive_read_new,
    &archive_read_free,
    &archive_read_support_filter_all,
    &archive_read_support_format_raw,
    &archive_read_support_format_tar,
    &archive_read_support_format_zip,
    &archive_read_support_format_7zip,
    &archive_read_support_format_cpio,
    &archive_read_support_format_rar,
    &archive_read_support_format_rar5,
    &archive_read_open_filename,
    &archive_read_open_memory,
    &archive_read_next_header,
    &archive_read_data,
    &archive_filter_bytes,
    &archive_format,
    &archive_error_string,
    &archive_entry_pathname_utf8,
    &archive_entry_pathname,
    &archive_entry_filetype,
    &archive_entry_is_encrypted,
    &archive_entry_size_is_set,
    &archive_entry_size,
};
} // namespace

} // namespace extract
} // namespace tav

extern "C" __attribute__((visibility("default"))) const tav::extract::ExtractApi* tav_extract_api_1() {
    return &tav::extract::api;
}
