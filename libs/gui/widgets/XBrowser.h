#pragma once
// A rich-text browser for HTML pages from resources or files and for HTML
// built by the program.
#include <QTextBrowser>

namespace tav {

class XBrowser : public QTextBrowser {
    Q_OBJECT
public:
    explicit XBrowser(QWidget* parent = nullptr);
    // ":/a/b.html", ":a/b.html", "qrc:/a/b.html" or a file path. Relative links,
    // style sheets and pictures resolve beside the page. False for a missing page.
    bool showPage(const QString& path);
    void setHtmlText(const QString& html) { setHtml(html); }
    // Shows an HTML page from the resources (or a file); 'replaceEnv' replaces
    // "$(NAME)" references by environment variables first. Style sheets and
    // pictures with relative paths resolve beside the page. False for a missing page.
    bool setResourceHTML(const QString& path, bool replaceEnv);
    // Margin of the document around the page, in pixels.
    void setDocMargin(int pixels);
    // The page's address as a URL ("qrc:/..." for resources).
    static QUrl pageUrl(const QString& path);
};

} // namespace tav
