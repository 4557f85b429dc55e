#pragma once
// An object that can be in an error state: isOK() until an error text is set.
#include <QString>

namespace tav {

class XError {
public:
    bool isOK() const { return error_.isEmpty(); }
    const QString& errorText() const { return error_; }
    // The first error is the interesting one; later ones are dropped.
    void setError(const QString& text) {
        if (error_.isEmpty()) error_ = text.isEmpty() ? QStringLiteral("error") : text;
    }
    void clearError() { error_.clear(); }

private:
    QString error_;
};

} // namespace tav
