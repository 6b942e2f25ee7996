#pragma once

#include "keps/InternetTransfer.h"

#include <QNetworkAccessManager>
#include <QTimer>
#include <QUrl>

#include <chrono>

class QHostInfo;
class QNetworkReply;

/// An InternetTransfer over HTTP.
///
/// Redirections are followed, at most ten, and never from https back to http. Completed are answers of status
/// 2xx that arrived whole, and pages in HTML of status 400 and above, but 403, that are long enough to be
/// kept (80 bytes); everything else is an error: another status, a cut body, a file above 64 MiB (unpacked),
/// a transfer that stands still for 30 s. Cookies are neither kept nor sent; a user name and password in the
/// address go to its own server alone.
class HttpTransfer : public InternetTransfer {
    Q_OBJECT

public:
    static constexpr qint64 largestFile = 64 * 1024 * 1024;

    explicit HttpTransfer(QObject* parent = nullptr);
    ~HttpTransfer() override;

    /// How long a transfer may stand still; 30 s unless set.
    void SetStandstill(std::chrono::milliseconds longest) { m_standstill.setInterval(longest); }

    void Execute(const QString& url, const QString& operation) override;
    void Cancel() override;
    QByteArray GetChunk(qsizetype size) override;
    QString RemoteHost() const override { return m_url.host(); }
    int ResponseCode() const override { return m_code; }
    QString ResponseInfo() const override { return m_info; }
    QString RefusalText() const override { return m_refusal; }

private:
    bool Raise(State state);
    void HostFound(const QHostInfo& info);
    void Request();
    void StartedConnecting();
    void SentRequest();
    void GotHeader();
    void ReadBody();
    void Finished();
    void FinishWithStatus(int status);
    bool Unpack();
    void Fail(int code, const QString& info, const QString& refusal = {});
    bool Disconnect();
    void DropReply();

    QNetworkAccessManager m_network;
    QTimer m_standstill;
    QUrl m_url;
    QByteArray m_operation;
    QNetworkReply* m_reply = nullptr;
    int m_lookup = -1; // the host lookup under way
    bool m_connected = false;
    int m_transfer = 0; // counts the transfers: a state's listener may end one and start the next
    QByteArray m_body;
    qsizetype m_taken = 0; // bytes of the body handed out
    int m_code = 0;
    QString m_info;
    QString m_refusal;
};
