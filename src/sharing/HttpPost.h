#pragma once

#include "sharing/FormPost.h"

#include <QNetworkAccessManager>
#include <QTimer>

#include <chrono>

class QNetworkReply;

/// A FormPost over HTTP.
///
/// https servers must prove who they are. Redirections are not followed: neither a position nor a token goes
/// to anybody but the address that the user gave. The token goes by https alone, or to this machine. No
/// cookies, no language. A status that has arrived is an answer, whatever becomes of its page; a request that
/// takes longer than 60 s is given up.
class HttpPost : public FormPost {
    Q_OBJECT
public:
    explicit HttpPost(QObject* parent = nullptr);
    ~HttpPost() override;

    /// Whether a token may travel there: by https, or within this machine.
    static bool IsSafe(const QUrl& url);

    /// How long a request may take.
    void SetTimeout(std::chrono::milliseconds longest) { m_timeout.setInterval(longest); }

    void Send(const QUrl& url, const QByteArray& token, const QByteArray& body) override;
    void Cancel() override;

private:
    void Read();
    void Finish(const QString& trouble);

    QNetworkAccessManager* m_network = nullptr; // from the first request on
    QTimer m_timeout;
    QNetworkReply* m_reply = nullptr;
    QByteArray m_page;
};
