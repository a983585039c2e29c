#include "platform/singleInstance.h"

#include "util/log.h"

#include <QLocalSocket>
#include <QWidget>

namespace {

constexpr int answerWaitMs = 2000;
constexpr char raiseRequest[] = "raise\n";

} // namespace

bool askRunningPlayerToRaise(const std::string& socketPath) {
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(socketPath));
    if (!socket.waitForConnected(answerWaitMs))
        return false;
    socket.write(raiseRequest);
    return socket.waitForBytesWritten(answerWaitMs);
}

RaiseListener::RaiseListener(QWidget& window, const std::string& socketPath) {
    const QString name = QString::fromStdString(socketPath);
    // A socket left by a player that was killed would refuse the name; the lock says it is ours.
    QLocalServer::removeServer(name);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_.listen(name)) {
        logErr("A second start cannot reach this player: %s\n",
               server_.errorString().toLocal8Bit().constData());
        return;
    }
    QObject::connect(&server_, &QLocalServer::newConnection, &window, [this, &window] {
        while (QLocalSocket* caller = server_.nextPendingConnection()) {
            QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
            logOut("Another start in this data folder: raising the window.\n");
            window.show();
            window.raise();
            window.activateWindow();
        }
    });
}
