#include "keps/HttpTransfer.h"

#include "foundation/text/Text.h"
#include "keps/Gzip.h"
#include "keps/KepsText.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>

namespace {

constexpr int mostRedirections = 10;
constexpr qint64 pieceSize = 64 * 1024;
constexpr qsizetype longestReason = 200;

// Whether the answer itself arrived: the network reports a refusal by the server as an error too, but numbers
// those of the connection below 100.
bool HasArrived(QNetworkReply::NetworkError error, int status) {
    return status != 0 && (error == QNetworkReply::NoError || (status >= 400 && error >= 100));
}

// What a stranger wrote, fit for one line.
QString OneLine(const QString& text) {
    return Text::OneLine(text, longestReason);
}

// The same of a body, of which the start is enough: of a page what it shows.
QString OneLine(const QByteArray& body) {
    constexpr qsizetype startOfPage = 16 * 1024;
    if (!KepsText::IsHtml(body))
        return OneLine(QString::fromUtf8(body.left(8 * longestReason)));
    static const QRegularExpression unseen(
        QStringLiteral("<!--.*?(-->|\\z)|<(head|script|style)\\b.*?(</\\2>|\\z)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression tag(QStringLiteral("<[^<>]*>"));
    QString words =
        QString::fromUtf8(body.left(startOfPage)).remove(unseen).replace(tag, QStringLiteral(" "));
    for (const auto& [entity, character] :
         {std::pair("&nbsp;", " "), std::pair("&lt;", "<"), std::pair("&gt;", ">"), std::pair("&quot;", "\""),
          std::pair("&#39;", "'"), std::pair("&amp;", "&")})
        words.replace(QLatin1String(entity), QLatin1String(character));
    return OneLine(words);
}

// The length that the server announced for the body, -1 when it did not, nothing when it makes no sense.
std::optional<qint64> AnnouncedLength(const QNetworkReply& reply) {
    if (!reply.hasRawHeader("Content-Length"))
        return -1;
    bool isNumber = false;
    const qint64 length = reply.rawHeader("Content-Length").toLongLong(&isNumber);
    return isNumber && length >= 0 ? std::optional(length) : std::nullopt;
}

QNetworkRequest RequestFor(const QUrl& url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirections);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Said by ourselves, so that the packed bytes come as they are: Qt 6.4 unpacks a cut file without a word.
    request.setRawHeader("Accept-Encoding", "gzip");
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("QiranDecode"));
    return request;
}

} // namespace

HttpTransfer::HttpTransfer(QObject* parent)
    : InternetTransfer(parent) {
    setObjectName(QStringLiteral("Inet1"));
    m_network.setParent(this);
    m_standstill.setParent(this);
    m_standstill.setSingleShot(true);
    m_standstill.setInterval(std::chrono::seconds(30));
    connect(&m_standstill, &QTimer::timeout, this, [this] {
        Fail(QNetworkReply::TimeoutError, QStringLiteral("The server has sent nothing for too long"));
    });
}

HttpTransfer::~HttpTransfer() {
    HttpTransfer::Cancel();
}

void HttpTransfer::Execute(const QString& url, const QString& operation) {
    Cancel();
    m_url = QUrl(url);
    m_operation = operation.toLatin1();
    m_standstill.start();
    if (!Raise(ResolvingHost))
        return;
    if (!m_url.isValid() || m_url.host().isEmpty()) {
        Fail(QNetworkReply::ProtocolUnknownError, QStringLiteral("The address is not valid"));
        return;
    }
    if (!QHostAddress(m_url.host()).isNull()) { // to look up a number would ask for its name
        if (Raise(HostResolved))
            Request();
        return;
    }
    m_lookup = QHostInfo::lookupHost(m_url.host(QUrl::FullyEncoded), this,
                                     [this](const QHostInfo& info) { HostFound(info); });
}

void HttpTransfer::Cancel() {
    ++m_transfer;
    m_standstill.stop();
    if (m_lookup != -1)
        QHostInfo::abortHostLookup(m_lookup);
    m_lookup = -1;
    DropReply();
    m_connected = false;
    m_body.clear();
    m_taken = 0;
    m_code = 0;
    m_info.clear();
    m_refusal.clear();
}

QByteArray HttpTransfer::GetChunk(qsizetype size) {
    QByteArray chunk = m_body.mid(m_taken, size);
    m_taken += chunk.size();
    return chunk;
}

// Raises a state and answers whether the transfer still runs afterwards.
bool HttpTransfer::Raise(State state) {
    const int transfer = m_transfer;
    Q_EMIT StateChanged(state);
    return transfer == m_transfer;
}

void HttpTransfer::HostFound(const QHostInfo& info) {
    if (info.lookupId() != m_lookup)
        return; // of a transfer that has been cancelled
    m_lookup = -1;
    m_standstill.start();
    if (info.error() != QHostInfo::NoError)
        Fail(QNetworkReply::HostNotFoundError, QStringLiteral("Host %1 not found").arg(m_url.host()));
    else if (Raise(HostResolved))
        Request();
}

void HttpTransfer::Request() {
    m_reply = m_network.sendCustomRequest(RequestFor(m_url), m_operation);
    // No read buffer size: with one, Qt 6.4 takes some breaks in a chunked body for its end.
    connect(m_reply, &QNetworkReply::socketStartedConnecting, this, &HttpTransfer::StartedConnecting);
    connect(m_reply, &QNetworkReply::requestSent, this, &HttpTransfer::SentRequest);
    connect(m_reply, &QNetworkReply::encrypted, this, [this] { m_standstill.start(); });
    connect(m_reply, &QNetworkReply::redirected, this, [this](const QUrl& url) {
        m_standstill.start();
        m_url = url;
    });
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpTransfer::GotHeader);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpTransfer::ReadBody);
    connect(m_reply, &QNetworkReply::finished, this, &HttpTransfer::Finished);
}

void HttpTransfer::StartedConnecting() {
    m_standstill.start();
    Raise(Connecting);
}

void HttpTransfer::SentRequest() {
    m_standstill.start();
    m_connected = true;
    if (Raise(Connected) && Raise(Requesting))
        Raise(RequestSent);
}

void HttpTransfer::GotHeader() {
    m_standstill.start();
    if (m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).isValid())
        return; // the answer proper is still to come
    const std::optional<qint64> length = AnnouncedLength(*m_reply);
    if (!length)
        Fail(QNetworkReply::ProtocolFailure, QStringLiteral("The server announced no sensible length"));
    else if (*length > largestFile)
        Fail(QNetworkReply::UnknownContentError, QStringLiteral("The file is larger than 64 MiB"));
    else
        Raise(ReceivingResponse);
}

void HttpTransfer::ReadBody() {
    m_standstill.start();
    const bool isFirst = m_body.isEmpty();
    for (QByteArray piece = m_reply->read(pieceSize); !piece.isEmpty(); piece = m_reply->read(pieceSize)) {
        m_body += piece;
        if (m_body.size() > largestFile) {
            Fail(QNetworkReply::UnknownContentError, QStringLiteral("The file is larger than 64 MiB"));
            return;
        }
    }
    if (m_body.isEmpty() || (isFirst && !Raise(ResponseReceived)))
        return;
    Q_EMIT Progress(m_body.size(), AnnouncedLength(*m_reply).value_or(-1));
}

void HttpTransfer::Finished() {
    const QNetworkReply::NetworkError error = m_reply->error();
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const int transfer = m_transfer;
    if (m_reply->isOpen())
        ReadBody(); // what came with the end
    if (transfer != m_transfer || m_reply == nullptr)
        return;
    if (!HasArrived(error, status)) {
        Fail(error, OneLine(m_reply->errorString()));
        return;
    }
    const qint64 length = AnnouncedLength(*m_reply).value_or(-1);
    if (length != -1 && length != m_body.size()) {
        Fail(QNetworkReply::RemoteHostClosedError, QStringLiteral("The file did not arrive whole"));
        return;
    }
    FinishWithStatus(status);
}

void HttpTransfer::FinishWithStatus(int status) {
    const QString reason = OneLine(m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString());
    constexpr int partOfAFile = 206;
    constexpr int forbidden = 403; // its words are for the user to read at once, and nothing more is asked
    const bool isWhole = Unpack();
    const bool isGood = status >= 200 && status < 300 && status != partOfAFile;
    const bool isRefusal = status >= 400;
    const bool isPage =
        isRefusal && status != forbidden && m_body.size() >= KepsText::shortest && KepsText::IsHtml(m_body);
    const QString refusal = isRefusal ? OneLine(m_body) : QString();
    if (!isGood && !isPage) {
        Fail(status, reason, refusal);
        return;
    }
    if (!isWhole) {
        Fail(QNetworkReply::ProtocolFailure, QStringLiteral("The packed file is damaged or too large"));
        return;
    }
    m_code = status;
    m_info = reason;
    m_refusal = refusal;
    m_standstill.stop();
    DropReply();
    if (Disconnect())
        Raise(ResponseCompleted);
}

// Unpacks the body where the server packed it; answers whether it is whole.
bool HttpTransfer::Unpack() {
    const QByteArray encoding = m_reply->rawHeader("Content-Encoding").trimmed().toLower();
    if (encoding.isEmpty() || encoding == "identity")
        return true;
    if (encoding != "gzip" && encoding != "x-gzip")
        return false;
    if (m_body.isEmpty())
        return true; // nothing packed is nothing
    const std::optional<QByteArray> body = Gzip::Unpack(m_body, largestFile);
    m_body = body.value_or(QByteArray());
    return body.has_value();
}

void HttpTransfer::Fail(int code, const QString& info, const QString& refusal) {
    const bool wasConnected = m_connected;
    Cancel();
    m_connected = wasConnected;
    m_code = code;
    m_info = info;
    m_refusal = refusal;
    if (Disconnect())
        Raise(Error);
}

// Raises the end of the connection, if there was one; answers whether the transfer still runs.
bool HttpTransfer::Disconnect() {
    return !std::exchange(m_connected, false) || (Raise(Disconnecting) && Raise(Disconnected));
}

void HttpTransfer::DropReply() {
    if (QNetworkReply* reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}
