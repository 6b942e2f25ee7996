#include "keps/DownloadSequence.h"
#include "keps/HttpTransfer.h"
#include "keps/ScriptedServer.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestIdentity.h"

#include <QNetworkReply>
#include <QTest>

using namespace Qt::StringLiterals;
using Answer = ScriptedServer::Answer;

/// Downloads that go through true https servers, whose certificates are made here.
class SecureDownloadTest : public QObject {
    Q_OBJECT

private:
    TestIdentities m_identities;
    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    HttpTransfer m_inet;
    std::unique_ptr<DownloadSequence> m_sequence;
    QStringList m_lines;
    QStringList m_messages;

    static QString SecureUrl(const ScriptedServer& server, const QString& path) {
        return u"https://"_s + server.Address() + path;
    }
    static Answer Elements(char letter) { return {ScriptedServer::Http("200 OK", QByteArray(100, letter))}; }
    static Answer RedirectionTo(const QString& url) { return {ScriptedServer::Redirection(url)}; }

    // Fetches "/first.txt" of a server, to be kept under this name.
    void Download(const ScriptedServer& server) {
        m_sequence->Download({server.Address() + u"/first.txt"_s, {}});
        QTRY_VERIFY_WITH_TIMEOUT(!m_messages.isEmpty() || m_lines.last().startsWith(u"Error - "), 20000);
    }
    QByteArray Kept() const { return m_folder->Read(u"Keps/first.txt"_s); }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(QSslSocket::supportsSsl());
        QVERIFY2(!m_identities.Make(u"trusted"_s).localCertificate().isNull(),
                 "openssl makes the certificates");
    }
    void init() {
        m_sequence.reset();
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_folder->Write(u"Keps/first.txt"_s, "the old file");
        m_ini = std::make_unique<clsIni>(m_folder->IniFile());
        m_sequence = std::make_unique<DownloadSequence>(m_inet, *m_ini, m_folder->Program());
        m_lines.clear();
        m_messages.clear();
        connect(m_sequence.get(), &DownloadSequence::Status, this,
                [this](const QString& line) { m_lines.append(line); });
        connect(m_sequence.get(), &DownloadSequence::Message, this,
                [this](const QString& text) { m_messages.append(text); });
    }
    void cleanup() {
        m_inet.Cancel();
        m_identities.TrustNone();
    }

    void RedirectionFromHttpToHttpsIsFollowed() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer secure([](const QByteArray&) { return Elements('s'); }, QHostAddress::LocalHost,
                              TestIdentities::Server(identity));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QCOMPARE(m_messages, QStringList{u"The Keps have been downloaded."_s});
        QCOMPARE(Kept(), QByteArray(100, 's') + "\r\n");
        QVERIFY(secure.Requests().value(0).startsWith("GET /moved.txt "));
    }

    void RedirectionFromHttpsToHttpsIsFollowed() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer last([](const QByteArray&) { return Elements('l'); }, QHostAddress::LocalHost,
                            TestIdentities::Server(identity));
        Answer onwards = RedirectionTo(SecureUrl(last, u"/last.txt"_s));
        ScriptedServer secure([&](const QByteArray&) { return onwards; }, QHostAddress::LocalHost,
                              TestIdentities::Server(identity));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QCOMPARE(Kept(), QByteArray(100, 'l') + "\r\n");
    }

    void RedirectionFromHttpsBackToHttpIsAnErrorAndTheOldFileStays() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer insecure(Elements('i'));
        Answer back = RedirectionTo(insecure.Url());
        ScriptedServer secure([&](const QByteArray&) { return back; }, QHostAddress::LocalHost,
                              TestIdentities::Server(identity));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QCOMPARE(secure.Requests().size(), 1);
        QVERIFY2(m_lines.last().startsWith(u"Error - %1 "_s.arg(int(QNetworkReply::InsecureRedirectError))),
                 qPrintable(m_lines.last()));
        QVERIFY(m_messages.isEmpty());
        QVERIFY(!m_sequence->Result());
        QVERIFY(insecure.Requests().isEmpty());
        QCOMPARE(Kept(), QByteArray("the old file"));
        QVERIFY(m_folder->Read(u"tempkeps.$$$"_s).isNull());
    }

    void ServerForWhomNobodyVouchesIsAnErrorAndGetsNoRequest() {
        ScriptedServer secure([](const QByteArray&) { return Elements('s'); }, QHostAddress::LocalHost,
                              TestIdentities::Server(m_identities.Make(u"stranger"_s)));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QVERIFY2(m_lines.last().startsWith(u"Error - %1 "_s.arg(int(QNetworkReply::SslHandshakeFailedError))),
                 qPrintable(m_lines.last()));
        QVERIFY(secure.Requests().isEmpty());
        QCOMPARE(Kept(), QByteArray("the old file"));
    }

    void UserAndPasswordDoNotFollowToAnotherServer() {
        const QSslConfiguration identity = TrustedIdentity();
        Answer challenge{
            ScriptedServer::Http("401 Unauthorized", "who are you",
                                 "WWW-Authenticate: Basic realm=\"a\"\r\nContent-Length: 11\r\n")};
        ScriptedServer secure([&](const QByteArray&) { return challenge; }, QHostAddress::LocalHost,
                              TestIdentities::Server(identity));
        const Answer onwards = RedirectionTo(SecureUrl(secure, u"/moved.txt"_s));
        ScriptedServer plain([&](const QByteArray& request) {
            return request.contains("Authorization: ") ? onwards : challenge;
        });
        m_sequence->Download({u"me:secret@"_s + plain.Address() + u"/first.txt"_s, {}});
        QTRY_VERIFY(m_lines.contains(u"Error - 401 Unauthorized"_s));
        QVERIFY(!secure.Requests().isEmpty());
        for (const QByteArray& request : secure.Requests())
            QVERIFY(!request.contains("Authorization") && !request.contains("secret"));
        QVERIFY(!m_lines.join(u'\n').contains(u"secret"));
    }

private:
    // One that the program trusts, until the end of the test.
    QSslConfiguration TrustedIdentity() const {
        QSslConfiguration identity = m_identities.Make(u"trusted"_s);
        m_identities.Trust(identity);
        return identity;
    }
};

QTEST_GUILESS_MAIN(SecureDownloadTest)
#include "SecureDownloadTest.moc"
