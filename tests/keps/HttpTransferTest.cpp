#include "keps/HttpTransfer.h"

#include "keps/GzipFile.h"
#include "keps/KepsAddress.h"
#include "keps/ScriptedServer.h"

#include <QNetworkReply>
#include <QSslSocket>
#include <QTest>

using namespace std::chrono_literals;
using Answer = ScriptedServer::Answer;

class HttpTransferTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<HttpTransfer> m_transfer;
    QList<int> m_states;
    QList<std::pair<qint64, qint64>> m_progress;

    bool HasEnded() const { return m_states.contains(11) || m_states.contains(12); }
    void Get(const QString& url) {
        m_states.clear();
        m_transfer->Execute(url, QStringLiteral("GET"));
        QTRY_VERIFY_WITH_TIMEOUT(HasEnded(), 20000);
        QCOMPARE(m_states.count(11) + m_states.count(12), 1);
    }
    QByteArray Body() const {
        QByteArray body;
        for (QByteArray chunk = m_transfer->GetChunk(1024); !chunk.isEmpty();
             chunk = m_transfer->GetChunk(1024)) {
            if (chunk.size() > 1024)
                return "a chunk is too large";
            body += chunk;
        }
        return body;
    }
    QString ErrorText() const {
        return QString::number(m_transfer->ResponseCode()) + u' ' + m_transfer->ResponseInfo();
    }

    static QByteArray Packed(const QByteArray& body, const QByteArray& status = "200 OK",
                             const QByteArray& encoding = "gzip") {
        return ScriptedServer::Http(status, body,
                                    "Content-Encoding: " + encoding +
                                        "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n");
    }

    // A page in HTML of a length.
    static QByteArray Page(qsizetype length) {
        const QByteArray end = "</HTML>";
        QByteArray page = "<!DOCTYPE html><HTML>sorry";
        return page.leftJustified(length - end.size(), '.') + end;
    }

private Q_SLOTS:
    void init() {
        m_transfer = std::make_unique<HttpTransfer>();
        m_states.clear();
        m_progress.clear();
        connect(m_transfer.get(), &InternetTransfer::StateChanged, this,
                [this](int state) { m_states.append(state); });
        connect(m_transfer.get(), &InternetTransfer::Progress, this, [this](qint64 received, qint64 total) {
            m_progress.append({received, total});
        });
    }

    void StatesComeInTheirNaturalOrder() {
        ScriptedServer server({ScriptedServer::Http("200 OK", QByteArray(3000, 'x'))});
        Get(server.Url());
        QCOMPARE(m_states, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}));
        QCOMPARE(m_transfer->RemoteHost(), QStringLiteral("127.0.0.1"));
        QCOMPARE(m_transfer->ResponseCode(), 200);
        QCOMPARE(m_transfer->ResponseInfo(), QStringLiteral("OK"));
        QCOMPARE(Body(), QByteArray(3000, 'x'));
        QVERIFY(m_transfer->GetChunk(1024).isEmpty());
        QCOMPARE(m_progress.last(), (std::pair<qint64, qint64>(3000, 3000)));
    }

    void EmptyBodyCompletes() {
        ScriptedServer server({ScriptedServer::Http("200 OK", {})});
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QVERIFY(Body().isEmpty());
    }

    void HostNameIsResolved() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        Get(server.Url().replace(QStringLiteral("127.0.0.1"), QStringLiteral("localhost")));
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(m_transfer->RemoteHost(), QStringLiteral("localhost"));
    }

    void RedirectionIsFollowed_data() {
        QTest::addColumn<QByteArray>("status");
        for (const char* status : {"301 Moved Permanently", "302 Found", "303 See Other",
                                   "307 Temporary Redirect", "308 Permanent Redirect"})
            QTest::newRow(status) << QByteArray(status);
    }
    void RedirectionIsFollowed() {
        QFETCH(QByteArray, status);
        ScriptedServer server([&](const QByteArray& request) -> Answer {
            if (request.startsWith("GET /new"))
                return {ScriptedServer::Http("200 OK", "elements")};
            return {ScriptedServer::Http(status, "gone", "Location: /new.txt\r\nContent-Length: 4\r\n")};
        });
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(Body(), QByteArray("elements"));
        QCOMPARE(m_transfer->ResponseCode(), 200);
    }

    void RedirectionToHttpsIsFollowed() {
        if (!QSslSocket::supportsSsl())
            QSKIP("no TLS here");
        ScriptedServer secure({QByteArray()}); // a server that does not speak TLS
        ScriptedServer server({ScriptedServer::Redirection(
            secure.Url().replace(QStringLiteral("http:"), QStringLiteral("https:")))});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QVERIFY(!secure.Requests().isEmpty());
        QVERIFY(secure.Requests().first().startsWith('\x16')); // the greeting of TLS
    }

    void HostAfterARedirectionIsTheNewOne() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        ScriptedServer old({ScriptedServer::Redirection(server.Url())});
        Get(old.Url().replace(QStringLiteral("127.0.0.1"), QStringLiteral("localhost")));
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(m_transfer->RemoteHost(), QStringLiteral("127.0.0.1"));
    }

    void TenRedirectionsAreFollowedElevenAreNot() {
        for (int last : {10, 11}) {
            int count = 0;
            ScriptedServer server([&](const QByteArray&) -> Answer {
                return count == last
                           ? Answer{ScriptedServer::Http("200 OK", "elements")}
                           : Answer{ScriptedServer::Redirection(QStringLiteral("/%1").arg(++count))};
            });
            Get(server.Url());
            QCOMPARE(m_states.last(), last == 10 ? 12 : 11);
        }
    }

    void RedirectionToAFileIsRefused() {
        ScriptedServer server({ScriptedServer::Redirection(QStringLiteral("file:///etc/passwd"))});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
    }

    void RefusalInPlainTextIsAnError_data() {
        QTest::addColumn<QByteArray>("status");
        for (const char* status :
             {"300 Multiple Choices", "304 Not Modified", "400 Bad Request", "401 Unauthorized",
              "403 Forbidden", "404 Not Found", "407 Proxy Authentication Required", "410 Gone",
              "429 Too Many Requests", "500 Internal Server Error", "503 Service Unavailable"})
            QTest::newRow(status) << QByteArray(status);
    }
    void RefusalInPlainTextIsAnError() {
        QFETCH(QByteArray, status);
        const QByteArray body = status.startsWith("304") ? QByteArray() : QByteArray(500, 'x');
        ScriptedServer server({ScriptedServer::Http(status, body)});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QCOMPARE(ErrorText(), QString::fromLatin1(status));
        QVERIFY(Body().isEmpty());
    }

    void RefusalWithAPageCompletes() {
        for (const QByteArray& status :
             {QByteArray("404 Not Found"), QByteArray("410 Gone"), QByteArray("500 Internal Server Error")}) {
            const QByteArray page = Page(80);
            ScriptedServer server({ScriptedServer::Http(status, page)});
            Get(server.Url());
            QCOMPARE(m_states.last(), 12);
            QCOMPARE(Body(), page);
        }
    }

    void RefusalWithAPageTooShortToBeKeptIsAnError() {
        for (const QByteArray& page : {Page(79), QByteArray("<html>sorry</html>")}) {
            ScriptedServer server({ScriptedServer::Http("404 Not Found", page)});
            Get(server.Url());
            QCOMPARE(m_states.last(), 11);
            QCOMPARE(ErrorText(), QStringLiteral("404 Not Found"));
            ScriptedServer good({ScriptedServer::Http("200 OK", page)});
            Get(good.Url());
            QCOMPARE(m_states.last(), 12);
        }
    }

    void ForbiddenIsAnErrorHoweverItIsSaid() {
        for (const QByteArray& body :
             {QByteArray("no"), QByteArray(500, 'x'), Page(79), Page(80), Page(5000)}) {
            ScriptedServer server({ScriptedServer::Http("403 Forbidden", body)});
            Get(server.Url());
            QCOMPARE(m_states.last(), 11);
            QCOMPARE(ErrorText(), QStringLiteral("403 Forbidden"));
            QVERIFY(Body().isEmpty());
        }
    }

    void OfAPageTheWordsThatItShowsAreKept_data() {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QString>("words");
        const auto row = [](const char* name, const QByteArray& page, const QString& words) {
            QTest::newRow(name) << page << words;
        };
        row("head and tags",
            "<html><HEAD><title>403</title></head><body class='x'><h1>Your\naddress</h1>is<br>blocked.",
            QStringLiteral("Your address is blocked."));
        row("script, style and remark",
            "<html><style>h1{}</style>Go<script>if (a<b) x();</script> <!-- <b>secret</b> -->away</html>",
            QStringLiteral("Go away"));
        row("entities", "<html>&lt;you&gt;&nbsp;&amp;lt; &quot;I&quot; don&#39;t",
            QStringLiteral("<you> &lt; \"I\" don't"));
        row("nothing seen ends", "<html>Go<style>h1 {", QStringLiteral("Go"));
        row("nothing but tags", "<html><body></body></html>", QString());
        row("tags that never end", "<html>" + QByteArray(5'000'000, '<'), QString(200, u'<'));
        row("a head of many", "<html>" + QByteArray("<head").repeated(500'000), QString());
    }
    void OfAPageTheWordsThatItShowsAreKept() {
        QFETCH(const QByteArray, page);
        QFETCH(const QString, words);
        ScriptedServer server({ScriptedServer::Http("403 Forbidden", page)});
        Get(server.Url());
        QCOMPARE(m_transfer->RefusalText(), words);
    }

    void WordsOfARefusalAreKeptApart() {
        const QByteArray words = "GP data has not updated since\r\n your last successful download\x1B[2J";
        const QString line =
            QStringLiteral("GP data has not updated since your last successful download?[2J");
        ScriptedServer plain({ScriptedServer::Http("403 Forbidden", words)});
        Get(plain.Url());
        QCOMPARE(ErrorText(), QStringLiteral("403 Forbidden"));
        QCOMPARE(m_transfer->RefusalText(), line);
        ScriptedServer packed({Packed(GzipFile(words, 9), "403 Forbidden")});
        Get(packed.Url());
        QCOMPARE(m_transfer->RefusalText(), line);
        ScriptedServer page({ScriptedServer::Http("404 Not Found", Page(100))});
        Get(page.Url());
        QVERIFY2(m_transfer->RefusalText().startsWith(u"sorry"), qPrintable(m_transfer->RefusalText()));
        ScriptedServer talker({ScriptedServer::Http("403 Forbidden", QByteArray(100000, 'x'))});
        Get(talker.Url());
        QCOMPARE(m_transfer->RefusalText(), QString(200, u'x'));
        ScriptedServer good({ScriptedServer::Http("200 OK", words)});
        Get(good.Url());
        QVERIFY(m_transfer->RefusalText().isEmpty());
    }

    void PartOfAFileIsAnError() {
        ScriptedServer server({ScriptedServer::Http("206 Partial Content", QByteArray(500, 'x'))});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QCOMPARE(ErrorText(), QStringLiteral("206 Partial Content"));
    }

    void ReasonOfAStrangerIsOneShortLine() {
        ScriptedServer server({ScriptedServer::Http("403 go\t\t \x0B away" + QByteArray(5000, '!'), "text")});
        Get(server.Url());
        QVERIFY2(ErrorText().startsWith(u"403 go away!!"), qPrintable(ErrorText()));
        QCOMPARE(m_transfer->ResponseInfo().size(), 200);
    }

    void CutBodyIsAnErrorAtEveryByte() {
        const QByteArray whole = ScriptedServer::Http("200 OK", QByteArray(20, 'x'));
        for (int delay : {0, 10}) {
            for (qsizetype length = 0; length < whole.size(); ++length) {
                ScriptedServer server({whole.left(length), true, 0, 0, delay});
                Get(server.Url());
                QVERIFY2(m_states.last() == 11, qPrintable(QString::number(length)));
                QVERIFY(Body().isEmpty());
            }
        }
    }

    void CutChunkedBodyIsAnErrorAtEveryByte() {
        const QByteArray body = "5\r\nhello\r\n6\r\n world\r\n10\r\n0123456789abcdef\r\n0\r\n\r\n";
        const QByteArray whole = ScriptedServer::Http("200 OK", body, "Transfer-Encoding: chunked\r\n");
        {
            ScriptedServer server({whole});
            Get(server.Url());
            QCOMPARE(m_states.last(), 12);
            QCOMPARE(Body(), QByteArray("hello world0123456789abcdef"));
        }
        m_transfer->SetStandstill(300ms); // an end inside the first chunk's size is noticed by nothing else
        for (int delay : {0, 10}) {
            for (qsizetype cut = 0; cut < body.lastIndexOf("0\r\n"); ++cut) {
                ScriptedServer server({whole.chopped(body.size() - cut), true, 0, 0, delay});
                Get(server.Url());
                QVERIFY2(m_states.last() == 11, qPrintable(QString::number(cut)));
            }
        }
    }

    void WrongContentLengthIsAnError_data() {
        QTest::addColumn<QByteArray>("length");
        QTest::addColumn<QString>("error");
        const QString senseless = QStringLiteral("399 The server announced no sensible length");
        QTest::newRow("too long") << QByteArray("200") << QStringLiteral("2 ");
        QTest::newRow("no number") << QByteArray("many") << senseless;
        QTest::newRow("negative") << QByteArray("-5") << senseless;
        QTest::newRow("minus one") << QByteArray("-1") << senseless;
        QTest::newRow("two numbers") << QByteArray("100, 200") << senseless;
        QTest::newRow("beyond 64 bits") << QByteArray("99999999999999999999999") << senseless;
    }
    void WrongContentLengthIsAnError() {
        QFETCH(QByteArray, length);
        QFETCH(QString, error);
        ScriptedServer server(
            {ScriptedServer::Http("200 OK", QByteArray(100, 'x'), "Content-Length: " + length + "\r\n")});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QVERIFY2(ErrorText().startsWith(error), qPrintable(ErrorText()));
        QVERIFY(Body().isEmpty());
    }

    void GzipIsUnpacked() {
        for (const QByteArray& encoding : {QByteArray("gzip"), QByteArray("X-GZIP")}) {
            ScriptedServer server({Packed(GzipFile("hello world elements\n", 9), "200 OK", encoding)});
            Get(server.Url());
            QCOMPARE(m_states.last(), 12);
            QCOMPARE(Body(), QByteArray("hello world elements\n"));
            QVERIFY(server.Requests().last().contains("Accept-Encoding: gzip\r\n"));
        }
    }

    void ChunkedGzipIsUnpacked() {
        const QByteArray packed = GzipFile("hello world elements\n", 9);
        const QByteArray body = QByteArray::number(packed.size(), 16) + "\r\n" + packed + "\r\n0\r\n\r\n";
        ScriptedServer server({ScriptedServer::Http(
            "200 OK", body, "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n")});
        Get(server.Url());
        QCOMPARE(Body(), QByteArray("hello world elements\n"));
    }

    void GzipCutAnywhereIsAnErrorWhateverLengthIsAnnounced() {
        const QByteArray packed = GzipFile("one two one two three\n", 9);
        for (qsizetype length = 1; length < packed.size(); ++length) {
            ScriptedServer lying({Packed(packed.left(length))});
            Get(lying.Url());
            QCOMPARE(ErrorText(), QStringLiteral("399 The packed file is damaged or too large"));
            ScriptedServer silent(
                {ScriptedServer::Http("200 OK", packed.left(length), "Content-Encoding: gzip\r\n")});
            Get(silent.Url());
            QCOMPARE(m_states.last(), 11);
            ScriptedServer broken({Packed(packed).chopped(packed.size() - length)});
            Get(broken.Url());
            QCOMPARE(m_states.last(), 11);
            QVERIFY(Body().isEmpty());
        }
    }

    void PackedPageOfARefusalCompletes() {
        ScriptedServer server({Packed(GzipFile(Page(80), 9), "404 Not Found")});
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(Body(), Page(80));
        ScriptedServer damaged({Packed(Page(80), "404 Not Found")});
        Get(damaged.Url());
        QCOMPARE(ErrorText(), QStringLiteral("404 Not Found"));
    }

    void PackingThatWasNotAskedForIsAnError() {
        ScriptedServer server({Packed("elements", "200 OK", "br")});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QVERIFY(Body().isEmpty());
    }

    void WhatUnpacksToMoreThan64MiBIsAnError() {
        ScriptedServer server({Packed(GzipFile(QByteArray(65 * 1024 * 1024, 'x'), 1))});
        Get(server.Url());
        QCOMPARE(m_states.last(), 11);
        QVERIFY(Body().isEmpty());
    }

    void FileAbove64MiBIsAnError() {
        const QByteArray body(65 * 1024 * 1024, 'x');
        ScriptedServer announced({ScriptedServer::Http("200 OK", body)});
        Get(announced.Url());
        QCOMPARE(ErrorText(), QStringLiteral("299 The file is larger than 64 MiB"));
        ScriptedServer silent({ScriptedServer::Http("200 OK", body, "Server: silent\r\n")});
        Get(silent.Url());
        QCOMPARE(ErrorText(), QStringLiteral("299 The file is larger than 64 MiB"));
        QVERIFY(Body().isEmpty());
    }

    void FileThatIsAnnouncedAbove64MiBIsNotWaitedFor() {
        ScriptedServer server(
            {ScriptedServer::Http("200 OK", "the first bytes",
                                  "Content-Length: " + QByteArray::number(65 * 1024 * 1024) + "\r\n"),
             false});
        Get(server.Url());
        QCOMPARE(ErrorText(), QStringLiteral("299 The file is larger than 64 MiB"));
    }

    void FileOf64MiBCompletes() {
        const QByteArray body(64 * 1024 * 1024, 'x');
        ScriptedServer server({ScriptedServer::Http("200 OK", body)});
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(Body().size(), body.size());
    }

    void ServerThatNeverAnswersIsAnError() {
        ScriptedServer server({QByteArray(), false});
        m_transfer->SetStandstill(200ms);
        Get(server.Url());
        QCOMPARE(ErrorText(), QStringLiteral("4 The server has sent nothing for too long"));
        QCOMPARE(m_states.last(2), (QList<int>{10, 11}));
    }

    void StandstillIsThirtySecondsLong() {
        const auto* standstill = m_transfer->findChild<QTimer*>();
        QVERIFY(standstill->isSingleShot());
        QCOMPARE(standstill->intervalAsDuration(), 30s);
    }

    void TransferThatStopsInTheMiddleIsAnError() {
        ScriptedServer server({ScriptedServer::Http("200 OK", QByteArray(100, 'x')).chopped(50), false});
        m_transfer->SetStandstill(200ms);
        Get(server.Url());
        QCOMPARE(m_transfer->ResponseCode(), int(QNetworkReply::TimeoutError));
    }

    void SlowTransferIsNoStandstill() {
        const QByteArray answer = ScriptedServer::Http("200 OK", QByteArray(20, 'x'));
        ScriptedServer server({answer, true, 50, answer.size() - 20});
        m_transfer->SetStandstill(500ms); // the whole takes a second
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(m_states.count(8), 1);
        QVERIFY(m_progress.size() > 5);
    }

    void UserAndPasswordAnswerAChallengeAndGoNowhereElse() {
        ScriptedServer other([](const QByteArray&) -> Answer {
            return {ScriptedServer::Http("401 Unauthorized", "who are you",
                                         "WWW-Authenticate: Basic realm=\"a\"\r\nContent-Length: 11\r\n")};
        });
        ScriptedServer server([&](const QByteArray& request) -> Answer {
            if (request.contains("Authorization: Basic bWU6c2VjcmV0"))
                return {ScriptedServer::Redirection(other.Url())};
            return {ScriptedServer::Http("401 Unauthorized", "who are you",
                                         "WWW-Authenticate: Basic realm=\"a\"\r\nContent-Length: 11\r\n")};
        });
        Get(server.Url().replace(QStringLiteral("http://"), QStringLiteral("http://me:secret@")));
        QVERIFY(server.Requests().last().contains("Authorization: Basic bWU6c2VjcmV0"));
        QCOMPARE(ErrorText(), QStringLiteral("401 Unauthorized"));
        QVERIFY(!other.Requests().isEmpty());
        for (const QByteArray& request : other.Requests())
            QVERIFY(!request.contains("Authorization"));
    }

    void CookiesAreNeitherKeptNorSent() {
        ScriptedServer server(
            {ScriptedServer::Http("200 OK", "elements", "Set-Cookie: a=b\r\nContent-Length: 8\r\n")});
        Get(server.Url());
        Get(server.Url());
        QCOMPARE(server.Requests().size(), 2);
        QVERIFY(!server.Requests().last().contains("Cookie"));
    }

    void SpacesAndInternationalNamesAreEncoded() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        Get(server.Url(QStringLiteral("/b\u00FC cher.txt")));
        QCOMPARE(m_states.last(), 12);
        QVERIFY(server.Requests().last().startsWith("GET /b%C3%BC%20cher.txt HTTP/1.1\r\n"));
    }

    void AddressWithPortIsAskedThere() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QVERIFY(server.Requests().last().contains("\r\nHost: " + server.Address().toLatin1() + "\r\n"));
    }

    void AnAddressWithBackslashesReachesTheServer() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        Get(KepsAddress::FromTyped(server.Address() + QStringLiteral("\\dir\\a.txt")).url);
        QCOMPARE(m_states.last(), 12);
        QVERIFY(server.Requests().last().startsWith("GET /dir/a.txt HTTP/1.1\r\n"));
    }

    void QueryReachesTheServer() {
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        Get(server.Url(QStringLiteral("/gp.php?GROUP=amateur&FORMAT=tle")));
        QVERIFY(server.Requests().last().startsWith("GET /gp.php?GROUP=amateur&FORMAT=tle HTTP/1.1\r\n"));
    }

    void UnknownHostIsAnErrorOfTheNetwork() {
        Get(QStringLiteral("http://b\u00FCcher.invalid/a.txt"));
        QCOMPARE(ErrorText(), QStringLiteral("3 Host xn--bcher-kva.invalid not found"));
        QCOMPARE(m_states, (QList<int>{1, 11}));
    }

    void RefusedConnectionIsAnErrorOfTheNetwork() {
        QString url;
        {
            ScriptedServer server({QByteArray()});
            url = server.Url();
        }
        Get(url);
        QCOMPARE(m_transfer->ResponseCode(), int(QNetworkReply::ConnectionRefusedError));
        QVERIFY(!m_transfer->ResponseInfo().isEmpty());
    }

    void InvalidAddressIsAnError_data() {
        QTest::addColumn<QString>("url");
        QTest::newRow("none") << QStringLiteral("http://");
        QTest::newRow("no host") << QStringLiteral("http:///a.txt");
        QTest::newRow("port") << QStringLiteral("http://host:99999/a.txt");
        QTest::newRow("brackets") << QStringLiteral("http://[::1/a.txt");
    }
    void InvalidAddressIsAnError() {
        QFETCH(QString, url);
        Get(url);
        QCOMPARE(ErrorText(), QStringLiteral("301 The address is not valid"));
    }

    void Ipv6AddressWorks() {
        ScriptedServer server([](const QByteArray&) { return Answer{ScriptedServer::Http("200 OK", "six")}; },
                              QHostAddress::LocalHostIPv6);
        if (!server.IsListening())
            QSKIP("no IPv6 here");
        Get(server.Url());
        QCOMPARE(m_states.last(), 12);
        QCOMPARE(m_transfer->RemoteHost(), QStringLiteral("::1"));
    }

    void CancelledInAnyStateNothingMoreIsRaised() {
        ScriptedServer server({ScriptedServer::Http("200 OK", QByteArray(3000, 'x'))});
        for (int state : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}) {
            const auto cancel =
                connect(m_transfer.get(), &InternetTransfer::StateChanged, this, [&](int now) {
                    if (now == state)
                        m_transfer->Cancel();
                });
            m_states.clear();
            m_transfer->Execute(server.Url(), QStringLiteral("GET"));
            QTRY_VERIFY(m_states.contains(state));
            QTRY_VERIFY(m_transfer->findChildren<QNetworkReply*>().isEmpty()); // nothing more can come
            QCOMPARE(m_states.last(), state);
            QVERIFY(m_transfer->GetChunk(1024).isEmpty());
            disconnect(cancel);
        }
        Get(server.Url());
        QCOMPARE(Body(), QByteArray(3000, 'x'));
    }

    void ASecondExecuteReplacesTheFirst() {
        ScriptedServer slow({QByteArray(), false});
        ScriptedServer server({ScriptedServer::Http("200 OK", "elements")});
        m_transfer->Execute(slow.Url(), QStringLiteral("GET"));
        QTRY_VERIFY(!slow.Requests().isEmpty());
        Get(server.Url());
        QCOMPARE(Body(), QByteArray("elements"));
    }
};

QTEST_GUILESS_MAIN(HttpTransferTest)
#include "HttpTransferTest.moc"
