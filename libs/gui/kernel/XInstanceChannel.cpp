#include "gui/kernel/XInstanceChannel.h"

#include "base/log/Logger.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>
#include <unistd.h>

namespace tav {

namespace {
constexpr int kMaxRequest = 64 * 1024;
}

XInstanceChannel::XInstanceChannel(const QString& key, QObject* parent) : QObject(parent), key_(key) {}

XInstanceChannel::~XInstanceChannel() {
    if (server_) server_->close();
}

QString XInstanceChannel::socketPath(const QString& key) {
    // The runtime folder is the user's own; the shared temporary folder needs the user in the name.
    if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        const QString dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
        if (!dir.isEmpty()) return dir + QLatin1Char('/') + key + QStringLiteral(".socket");
    }
    return QDir::tempPath() + QStringLiteral("/%1-%2.socket").arg(key).arg(::getuid());
}

bool XInstanceChannel::isListening() const { return server_ && server_->isListening(); }

bool XInstanceChannel::listen() {
    if (isListening()) return true;
    const QString path = socketPath(key_);
    QLocalServer::removeServer(path);
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(path)) {
        log(tav::LOG_ERROR, "XInstanceChannel::listen, <<<$>>>: $", path, server_->errorString());
        return false;
    }
    log(tav::LOG_TRACE, "XInstanceChannel::listen, <<<$>>>", path);
    connect(server_, &QLocalServer::newConnection, this, [this]() {
        while (QLocalSocket* s = server_->nextPendingConnection()) {
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
            // A client that never finishes its line is dropped.
            QTimer::singleShot(5000, s, [s]() { s->abort(); });
            connect(s, &QLocalSocket::readyRead, this, [this, s]() {
                if (!s->canReadLine()) {
                    if (s->bytesAvailable() > kMaxRequest) s->abort();
                    return;
                }
                QByteArray line = s->readLine(kMaxRequest);
                while (line.endsWith('\n') || line.endsWith('\r')) line.chop(1);
                s->write("ok\n");
                s->flush();
                s->disconnectFromServer();
                log(tav::LOG_TRACE, "XInstanceChannel, request '$'", QString::fromUtf8(line));
                request_.fire(line);
            });
        }
    });
    return true;
}

bool XInstanceChannel::send(const QString& key, const QByteArray& request, int timeoutMs) {
    QLocalSocket s;
    s.connectToServer(socketPath(key));
    if (!s.waitForConnected(timeoutMs)) {
        log(tav::LOG_NAVIGATION, "XInstanceChannel::send, nobody listens on <<<$>>>", socketPath(key));
        return false;
    }
    s.write(request + '\n');
    if (!s.waitForBytesWritten(timeoutMs)) return false;
    while (!s.canReadLine()) {
        if (!s.waitForReadyRead(timeoutMs)) return false;
    }
    return s.readLine().startsWith("ok");
}

} // namespace tav
