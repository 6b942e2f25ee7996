#include "app/RunningWindow.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

namespace {

constexpr int longestWait = 500; // ms, for a door that is there

QString DoorOf(const QString& folder) {
    const QByteArray path = QFileInfo(folder).canonicalFilePath().toUtf8();
    constexpr qsizetype digits = 32;
    const QByteArray name = QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex().left(digits);
    const QString place = qEnvironmentVariable("XDG_RUNTIME_DIR", QDir::tempPath());
    return QDir(place).filePath(QStringLiteral("QiranDecode-") + QString::fromLatin1(name));
}

} // namespace

RunningWindow::RunningWindow(QObject* parent)
    : QObject(parent) {
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* visitor = m_server.nextPendingConnection())
            delete visitor;
        Q_EMIT Knocked();
    });
}

void RunningWindow::Listen(const QString& folder) {
    const QString door = DoorOf(folder);
    QLocalServer::removeServer(door); // of a run that could not clear up; the folder is ours
    m_server.listen(door);
}

void RunningWindow::Knock(const QString& folder) {
    QLocalSocket visitor;
    visitor.connectToServer(DoorOf(folder));
    visitor.waitForConnected(longestWait);
}
