#pragma once
// The libraries that read archives and PDFs are big; linked into every program
// they would double the start of a plain search that never opens an archive.
// They live in a module of their own ("libtavextract.so"), loaded the first
// time a document or archive is met, which hands back this table.
#include <QByteArray>
#include <QString>
#include <archive.h>
#include <archive_entry.h>
#include <cstdint>
#include <functional>
#include <vector>

namespace tav {
namespace extract {

using PdfTextFn = bool (*)(const QString& path, const QByteArray* data, uint64_t maxOutput,
                           const std::function<bool()>& keepGoing, QByteArray& text, std::vector<int64_t>& pageStarts,
                           QString* error);
using LogFn = void (*)(unsigned level, const QString& line);

// Grows only at its end; 'size' tells the host how much of it a module fills.
struct ExtractApi {
    size_t size;
    void (*setLog)(LogFn log);
    PdfTextFn pdfText;
    decltype(&archive_read_new) read_new;
    decltype(&archive_read_free) read_free;
    decltype(&archive_read_support_filter_all) support_filter_all;
    decltype(&archive_read_support_format_raw) support_format_raw;
    decltype(&archive_read_support_format_tar) support_format_tar;
    decltype(&archive_read_support_format_zip) support_format_zip;
    decltype(&archive_read_support_format_7zip) support_format_7zip;
    decltype(&archive_read_support_format_cpio) support_format_cpio;
    decltype(&archive_read_support_format_rar) support_format_rar;
    decltype(&archive_read_support_format_rar5) support_format_rar5;
    decltype(&archive_read_open_filename) open_filename;
    decltype(&archive_read_open_memory) open_memory;
    decltype(&archive_read_next_header) next_header;
    decltype(&archive_read_data) read_data;
    decltype(&archive_filter_bytes) filter_bytes;
    decltype(&archive_format) format;
    decltype(&archive_error_string) error_string;
    decltype(&archive_entry_pathname_utf8) entry_pathname_utf8;
    decltype(&archive_entry_pathname) entry_pathname;
    decltype(&archive_entry_filetype) entry_filetype;
    decltype(&archive_entry_is_encrypted) entry_is_encrypted;
    decltype(&archive_entry_size_is_set) entry_size_is_set;
    decltype(&archive_entry_size) entry_size;
};

// The symbol the module exports.
#define TAV_EXTRACT_API_SYMBOL "tav_extract_api_1"

// The table, loading the module on first use (once per process, any thread).
// Null when it cannot be loaded: the reason went to the log once and, when
// asked, into 'why'; documents and archives are then searched as their bytes.
const ExtractApi* extractApi(QString* why = nullptr);

} // namespace extract
} // namespace tav
