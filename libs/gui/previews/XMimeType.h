#pragma once
// The MIME type of a file (by name and, where the name says nothing, by
// content) and whether Qt can decode it as a picture.
#include <QFileInfo>
#include <QMimeType>
#include <QString>

namespace tav {

class XMimeType {
public:
    XMimeType() = default;
    static XMimeType fromFile(const QFileInfo& fi);
    static XMimeType fromName(const QString& mimeName);

    bool isValid() const { return type_.isValid(); }
    QString name() const { return type_.name(); }
    const QMimeType& mimeType() const { return type_; }
    // Qt has an image reader for this type (or a type it derives from).
    bool isQtImage() const;
    bool isText() const { return type_.inherits(QStringLiteral("text/plain")); }

private:
    explicit XMimeType(const QMimeType& t) : type_(t) {}
    QMimeType type_;
};

} // namespace tav
