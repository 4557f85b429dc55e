#include "base/text/TextFiles.h"

namespace tav {

const QStringList& default_text_file_extensions() {
    static const QStringList list = {
        // plain text and documents
        "txt", "text", "log", "md", "markdown", "rst", "adoc", "tex", "bib", "srt", "nfo", "readme",
        // data and configuration
        "csv", "tsv", "json", "jsonl", "xml", "xsd", "xsl", "xslt", "yaml", "yml", "toml", "ini", "cfg", "conf",
        "properties", "desktop", "service", "env", "plist", "svg",
        // web
        "html", "htm", "xhtml", "css", "scss", "sass", "less", "js", "mjs", "cjs", "ts", "tsx", "jsx", "vue",
        // C family and friends
        "c", "cc", "cpp", "cxx", "c++", "h", "hh", "hpp", "hxx", "inl", "ipp", "m", "mm", "cs", "java", "kt",
        "kts", "scala", "go", "rs", "swift", "dart", "d", "zig", "nim",
        // scripting
        "py", "pyw", "rb", "pl", "pm", "php", "lua", "tcl", "r", "jl", "sh", "bash", "zsh", "fish", "ksh", "csh",
        "bat", "cmd", "ps1", "awk", "sed", "vim", "el", "lisp", "clj", "erl", "ex", "exs", "hs", "ml", "fs",
        "f", "f90", "for", "pas", "bas", "vb", "asm", "s",
        // build and project files
        "cmake", "qml", "qrc", "ui", "pro", "pri", "gradle", "mk", "make", "mak", "sln", "vcxproj", "csproj",
        "def", "ses", "mes", "patch", "diff", "sql", "proto", "graphql", "gitignore", "gitattributes",
        "editorconfig", "dockerfile",
    };
    return list;
}

QString default_text_file_extensions_as_string() { return default_text_file_extensions().join(QLatin1Char(',')); }

} // namespace tav
