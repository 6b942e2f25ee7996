#include "sharing/HttpPost.h"

#include "foundation/text/Text.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

namespace {

constexpr qsizetype largestPage = 64 * 1024;
constexpr qsizetype longestWords = 300;

QNetworkRequest RequestFor(const QUrl& url, const QByteArray& token) {
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("QiranDecode"));
    request.setRawHeader("Accept-Language", "en"); // or Qt would tell the user's
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    if (!token.isEmpty() && HttpPost::IsSafe(url))
        request.setRawHeader("Authorization", "Token " + token);
    return request;
}

// "400 Bad Request: the page's words"
QString WordsOf(const QNetworkReply& reply, int status, const QByteArray& page) {
    QString words = QString::number(status) + u' ' +
                    reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    if (reply.hasRawHeader("Location"))
        words += QStringLiteral(", moved to ") + QString::fromUtf8(reply.rawHeader("Location"));
    const QString said = QString::fromUtf8(page.left(8 * longestWords));
    if (!said.trimmed().isEmpty())
        words = words.trimmed() + QStringLiteral(": ") + said;
    return Text::OneLine(words, longestWords);
}

} // namespace

HttpPost::HttpPost(QObject* parent)
    : FormPost(parent) {
    m_timeout.setParent(this);
    m_timeout.setObjectName(QStringLiteral("timPost"));
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(std::chrono::seconds(60));
    connect(&m_timeout, &QTimer::timeout, this, [this] { Finish(QStringLiteral("no answer in time")); });
}

bool HttpPost::IsSafe(const QUrl& url) {
    return url.scheme() == u"https" || url.host() == u"localhost" || QHostAddress(url.host()).isLoopback();
}

HttpPost::~HttpPost() {
    HttpPost::Cancel();
}

void HttpPost::Send(const QUrl& url, const QByteArray& token, const QByteArray& body) {
    Cancel();
    m_timeout.start();
    if (m_network == nullptr)
        m_network = new QNetworkAccessManager(this);
    m_reply = m_network->post(RequestFor(url, token), body);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpPost::Read);
    connect(m_reply, &QNetworkReply::finished, this, [this] { Finish(m_reply->errorString()); });
}

void HttpPost::Cancel() {
    m_timeout.stop();
    m_page.clear();
    if (QNetworkReply* reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void HttpPost::Read() {
    m_page += m_reply->read(largestPage + 1 - m_page.size());
    if (m_page.size() > largestPage)
        Finish({});
}

void HttpPost::Finish(const QString& trouble) {
    if (m_reply->isOpen())
        m_page += m_reply->read(largestPage + 1 - m_page.size());
    PostAnswer answer;
    answer.status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.words =
        answer.status == 0 ? Text::OneLine(trouble, longestWords) : WordsOf(*m_reply, answer.status, m_page);
    answer.retryAfter = m_reply->rawHeader("Retry-After");
    Cancel();
    Q_EMIT Finished(answer);
}
