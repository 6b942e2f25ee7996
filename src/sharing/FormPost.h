#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>

/// What came of a request.
struct PostAnswer {
    int status = 0;          ///< the server's; 0 where none arrived
    QString words;           ///< the server's, or why there are none: one line of at most 300 characters
    QByteArray retryAfter{}; ///< the header of this name
};

/// Posts one form at a time, in the background.
class FormPost : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Begins; one under way is cancelled. `token` is sent as "Authorization: Token ..." unless it is empty.
    virtual void Send(const QUrl& url, const QByteArray& token, const QByteArray& body) = 0;

    /// Ends the request without a word.
    virtual void Cancel() = 0;

Q_SIGNALS:
    void Finished(const PostAnswer& answer);
};
