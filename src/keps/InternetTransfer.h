#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

/// Fetches one file at a time from a server, in the background.
///
/// `StateChanged` tells what goes on. After ResponseCompleted the body waits for GetChunk; after Error the
/// response code and its text say why. One of these two ends a transfer, unless it is cancelled: then nothing
/// is raised any more.
class InternetTransfer : public QObject {
    Q_OBJECT

public:
    /// The transfer's states, by their numbers.
    enum State {
        Idle = 0,
        ResolvingHost = 1,
        HostResolved = 2,
        Connecting = 3,
        Connected = 4,
        Requesting = 5,
        RequestSent = 6,
        ReceivingResponse = 7,
        ResponseReceived = 8,
        Disconnecting = 9,
        Disconnected = 10,
        Error = 11,
        ResponseCompleted = 12
    };

    using QObject::QObject;

    /// Starts a transfer; one under way is cancelled. `operation` is "GET".
    virtual void Execute(const QString& url, const QString& operation) = 0;

    /// Ends the transfer without a word and drops its body.
    virtual void Cancel() = 0;

    /// The next up to `size` bytes of a completed response, nothing at its end.
    virtual QByteArray GetChunk(qsizetype size) = 0;

    /// The host that is being asked.
    virtual QString RemoteHost() const = 0;

    /// The server's status code, or the network's own error number (below 400) where there is none, and its
    /// text.
    virtual int ResponseCode() const = 0;
    virtual QString ResponseInfo() const = 0;

    /// What the server wrote with a status of 400 or more, of a page in HTML what it shows, as one line of at
    /// most 200 characters.
    virtual QString RefusalText() const = 0;

Q_SIGNALS:
    void StateChanged(int state);

    /// Bytes received so far, and of how many (-1 when the server does not say).
    void Progress(qint64 received, qint64 total);
};
