#pragma once

#include <QLocalServer>
#include <QObject>

/// The door at which a second start in the same program folder knocks, so that the window that is there
/// already comes forward. Only the same user's programs reach it.
class RunningWindow : public QObject {
    Q_OBJECT
public:
    explicit RunningWindow(QObject* parent = nullptr);

    /// Waits for knocks, for who holds this folder's lock. Where the system lets nobody listen, none come.
    void Listen(const QString& folder);

    /// Knocks at the door of who holds this folder.
    static void Knock(const QString& folder);

Q_SIGNALS:
    void Knocked();

private:
    QLocalServer m_server;
};
