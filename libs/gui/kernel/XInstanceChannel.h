#pragma once
// The running program listens on a local socket in the runtime folder; a
// second start sends it one request (a line of text: "show", or "open PATH")
// instead of opening windows of its own, so the user always gets a window back.
#include "base/core/XEventListener.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>

class QLocalServer;

namespace tav {

class XInstanceChannel : public QObject {
public:
    explicit XInstanceChannel(const QString& key, QObject* parent = nullptr);
    ~XInstanceChannel() override;
    // The socket's path for this user and key.
    static QString socketPath(const QString& key);
    // Starts listening (only the instance holding the run lock calls this:
    // a socket left by a crashed process is replaced).
    bool listen();
    bool isListening() const;
    // Sends one request to the running instance and waits for its answer;
    // false when nobody listens or nobody answered in time.
    static bool send(const QString& key, const QByteArray& request, int timeoutMs = 3000);
    // A request received (without its line end), in the GUI thread.
    XEventListener<std::function<void(const QByteArray&)>>& eventRequest() { return request_; }

private:
    QString key_;
    QLocalServer* server_ = nullptr;
    XEventListener<std::function<void(const QByteArray&)>> request_;
};

} // namespace tav
