#include "sharing/HttpPost.h"

#include "keps/ScriptedServer.h"
#include "support/TestIdentity.h"

#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Answer = ScriptedServer::Answer;

class HttpPostTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<HttpPost> m_post;
    QList<PostAnswer> m_answers;

    PostAnswer Post(const QUrl& url, const QByteArray& token = {}) {
        m_answers.clear();
        m_post->Send(url, token, "a=1&b=2");
        (void)QTest::qWaitFor([this] { return !m_answers.isEmpty(); }, 20000);
        return m_answers.value(0, {-1, u"nothing came"_s});
    }
    PostAnswer Post(const ScriptedServer& server, const QByteArray& token = {}) {
        return Post(QUrl(server.Url(u"/api/"_s)), token);
    }

private Q_SLOTS:
    void init() {
        m_post = std::make_unique<HttpPost>();
        connect(m_post.get(), &FormPost::Finished, this,
                [this](const PostAnswer& answer) { m_answers.append(answer); });
    }

    void RequestHoldsTheFormAndNothingOfTheUsers() {
        QLocale::setDefault(QLocale(QLocale::Finnish));
        ScriptedServer server(Answer{ScriptedServer::Http("201 Created", "")});
        QCOMPARE(Post(server).status, 201);
        QLocale::setDefault(QLocale::c());
        const QByteArray request = server.Requests().value(0);
        QVERIFY(request.startsWith("POST /api/ HTTP/1.1\r\n"));
        QVERIFY(request.endsWith("\r\n\r\na=1&b=2"));
        QByteArrayList lines = request.first(request.indexOf("\r\n\r\n")).split('\n');
        lines.removeFirst();
        QByteArrayList headers;
        for (const QByteArray& line : lines)
            headers.append(line.trimmed());
        std::ranges::sort(headers);
        QCOMPARE(headers,
                 (QByteArrayList{"Accept-Encoding: identity", "Accept-Language: en", "Connection: Keep-Alive",
                                 "Content-Length: 7", "Content-Type: application/x-www-form-urlencoded",
                                 "Host: " + server.Address().toLatin1(), "User-Agent: QiranDecode"}));
    }

    void CookiesAreNotSentBack() {
        ScriptedServer server(
            Answer{ScriptedServer::Http("201 Created", "", "Set-Cookie: a=b\r\nContent-Length: 0\r\n")});
        Post(server);
        Post(server);
        QCOMPARE(server.Requests().size(), 2);
        QVERIFY(!server.Requests()[1].contains("Cookie"));
    }

    void TokenIsAHeaderAndTravelsOnlyWhereNobodyReadsIt() {
        ScriptedServer server(Answer{ScriptedServer::Http("201 Created", "")});
        Post(server, "abc123");
        QVERIFY(server.Requests().value(0).contains("\r\nAuthorization: Token abc123\r\n"));
        QVERIFY(HttpPost::IsSafe(QUrl(u"https://db.satnogs.org/"_s)));
        QVERIFY(HttpPost::IsSafe(QUrl(u"http://localhost:8080/"_s)));
        QVERIFY(HttpPost::IsSafe(QUrl(u"http://[::1]/"_s)));
        QVERIFY(!HttpPost::IsSafe(QUrl(u"http://db.satnogs.org/"_s)));
        QVERIFY(!HttpPost::IsSafe(QUrl(u"http://127.0.0.1.example.org/"_s)));
    }

    void StatusAndWordsAreTheServers_data() {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QString>("words");
        QTest::newRow("taken") << QByteArray("201 Created") << QByteArray() << u"201 Created"_s;
        QTest::newRow("refused") << QByteArray("400 Bad Request")
                                 << QByteArray("{\"noradID\":[\"unknown\n\"]}")
                                 << u"400 Bad Request: {\"noradID\":[\"unknown \"]}"_s;
        QTest::newRow("not allowed") << QByteArray("401 Unauthorized") << QByteArray("who are you")
                                     << u"401 Unauthorized: who are you"_s;
        QTest::newRow("later") << QByteArray("429 Slow") << QByteArray("wait") << u"429 Slow: wait"_s;
        QTest::newRow("broken") << QByteArray("503 Down") << QByteArray("\x1b[31mred")
                                << u"503 Down: ?[31mred"_s;
        QTest::newRow("many words") << QByteArray("400 No") << QByteArray(5000, 'x')
                                    << QString(u"400 No: "_s + QString(292, u'x'));
    }
    void StatusAndWordsAreTheServers() {
        QFETCH(const QByteArray, status);
        QFETCH(const QByteArray, page);
        QFETCH(const QString, words);
        ScriptedServer server(Answer{ScriptedServer::Http(
            status, page, "Retry-After: 17\r\nContent-Length: " + QByteArray::number(page.size()) + "\r\n")});
        const PostAnswer answer = Post(server);
        QCOMPARE(answer.status, status.first(3).toInt());
        QCOMPARE(answer.words, words);
        QCOMPARE(answer.retryAfter, QByteArray("17"));
        QCOMPARE(server.Requests().size(), 1);
    }

    void PageWithoutAnEndIsCutOff() {
        ScriptedServer server(
            Answer{ScriptedServer::Http("201 Created", QByteArray(10'000'000, 'x'), "A: b\r\n"), false});
        QCOMPARE(Post(server).status, 201);
    }

    void StatusThatArrivedCountsThoughThePageWasCut() {
        ScriptedServer server(Answer{ScriptedServer::Http("201 Created", "cut", "Content-Length: 500\r\n")});
        QCOMPARE(Post(server).status, 201);
        ScriptedServer slow(
            Answer{ScriptedServer::Http("400 Bad Request", "xxxxxxxxxx", "Content-Length: 500\r\n"), false});
        m_post->SetTimeout(300ms);
        QCOMPARE(Post(slow).status, 400);
    }

    void AnswerThatNeverComesIsNone() {
        ScriptedServer server(Answer{"HTTP/1.1 20", false});
        m_post->SetTimeout(100ms);
        const PostAnswer answer = Post(server);
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.words, u"no answer in time"_s);
        QCOMPARE(m_answers.size(), 1);
    }

    void AnswerThatIsCutBeforeItsStatusIsNone() {
        ScriptedServer server(Answer{"HTTP/1.1 20"});
        const PostAnswer answer = Post(server);
        QCOMPARE(answer.status, 0);
        QVERIFY(!answer.words.isEmpty());
    }

    void ServerThatIsNotThereIsNone() {
        QUrl url;
        {
            ScriptedServer server(Answer{});
            url = QUrl(server.Url());
        }
        const PostAnswer answer = Post(url);
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.words, u"Connection refused"_s);
    }

    void RedirectionIsNotFollowedAndIsTold() {
        ScriptedServer other(Answer{ScriptedServer::Http("201 Created", "")});
        ScriptedServer server(Answer{ScriptedServer::Redirection(other.Url())});
        const PostAnswer answer = Post(server, "abc123");
        QCOMPARE(answer.status, 302);
        QCOMPARE(answer.words, QString(u"302 Found, moved to "_s + other.Url() + u": moved"_s));
        QVERIFY(other.Requests().isEmpty());
    }

    void ServerForWhomNobodyVouchesGetsNoRequest() {
        TestIdentities identities;
        const QSslConfiguration identity = identities.Make(u"server"_s);
        QVERIFY2(!identity.localCertificate().isNull(), "openssl makes the certificates");
        ScriptedServer server(
            [](const QByteArray&) { return Answer{ScriptedServer::Http("201 Created", "")}; },
            QHostAddress::LocalHost, TestIdentities::Server(identity));
        const QUrl url(u"https://"_s + server.Address() + u"/api/"_s);
        PostAnswer answer = Post(url, "abc123");
        QCOMPARE(answer.status, 0);
        QVERIFY2(answer.words.contains(u"SSL"), qPrintable(answer.words));
        QVERIFY(server.Requests().isEmpty());

        identities.Trust(identity);
        init(); // connections remember whom they trusted
        QCOMPARE(Post(url, "abc123").status, 201);
        QVERIFY(server.Requests().value(0).contains("Authorization: Token abc123"));
    }

    void CancelledRequestSaysNothing() {
        ScriptedServer server(Answer{ScriptedServer::Http("201 Created", "")});
        m_post->Send(QUrl(server.Url()), {}, "a=1");
        m_post->Cancel();
        QCOMPARE(Post(server).status, 201);
        QCOMPARE(m_answers.size(), 1);
    }
};

QTEST_GUILESS_MAIN(HttpPostTest)
#include "HttpPostTest.moc"
