#pragma once

#include <QObject>

class QSocketNotifier;

/// Requests of the system that the program end (SIGTERM, SIGINT, SIGHUP), as events of the window's thread,
/// so that it ends the way it does when its user closes it. Made before any other thread is started.
class EndRequests : public QObject {
    Q_OBJECT

public:
    /// Keeps such signals from ending the process meanwhile. Called before any other thread is started (the
    /// window system's connection has one), since each thread inherits what its maker holds back.
    static void Hold();

    explicit EndRequests(QObject* parent = nullptr);
    ~EndRequests() override;

Q_SIGNALS:
    void Requested();

private:
    void Read();

    int m_descriptor = -1; ///< below 0: the system gave none, and its signals end the program as ever
    QSocketNotifier* m_notifier = nullptr;
};
