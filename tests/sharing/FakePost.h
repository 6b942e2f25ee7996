#pragma once

#include "sharing/FormPost.h"

#include <QList>

/// Posts without a network: it notes what it is told, and the test answers.
class FakePost : public FormPost {
public:
    struct Request {
        QUrl url;
        QByteArray token;
        QByteArray body;
    };

    QList<Request> requests;
    bool isUnderWay = false;

    void Send(const QUrl& url, const QByteArray& token, const QByteArray& body) override {
        if (isUnderWay)
            qFatal("two requests at once");
        isUnderWay = true;
        requests.append({url, token, body});
    }
    void Cancel() override { isUnderWay = false; }

    void Answer(int status, const QString& words = {}, const QByteArray& retryAfter = {}) {
        isUnderWay = false;
        Q_EMIT Finished({status, words, retryAfter});
    }

    QByteArrayList Bodies() const {
        QByteArrayList bodies;
        for (const Request& request : requests)
            bodies.append(request.body);
        return bodies;
    }
};
