#pragma once

#include "keps/InternetTransfer.h"

#include <QStringList>

/// A transfer without a network: it notes what it is told and raises what the test wants.
class FakeTransfer : public InternetTransfer {
public:
    QStringList executed;
    int cancelled = 0;
    QByteArray body;
    int code = 200;
    QString info = QStringLiteral("OK");
    QString refusal;

    void Execute(const QString& url, const QString& operation) override {
        executed.append(operation + u' ' + url);
    }
    void Cancel() override { ++cancelled; }
    QByteArray GetChunk(qsizetype size) override {
        QByteArray chunk = body.left(size);
        body.remove(0, chunk.size());
        return chunk;
    }
    QString RemoteHost() const override { return QStringLiteral("celestrak.org"); }
    int ResponseCode() const override { return code; }
    QString ResponseInfo() const override { return info; }
    QString RefusalText() const override { return refusal; }

    void Raise(int state) { Q_EMIT StateChanged(state); }
    void RaiseProgress(qint64 received, qint64 total) { Q_EMIT Progress(received, total); }

    void Complete(const QByteArray& response) {
        body = response;
        Raise(ResponseCompleted);
    }
    void Fail(int errorCode, const QString& errorText) {
        code = errorCode;
        info = errorText;
        Raise(Error);
    }
};
