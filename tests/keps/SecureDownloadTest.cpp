#include "keps/DownloadSequence.h"
#include "keps/HttpTransfer.h"
#include "keps/ScriptedServer.h"
#include "support/TemporaryProgramFolder.h"

#include <QNetworkReply>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTest>

using namespace Qt::StringLiterals;
using Answer = ScriptedServer::Answer;

/// Downloads that go through true https servers, whose certificates are made here.
class SecureDownloadTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_certificates;
    QSslConfiguration m_before = QSslConfiguration::defaultConfiguration();
    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    HttpTransfer m_inet;
    std::unique_ptr<DownloadSequence> m_sequence;
    QStringList m_lines;
    QStringList m_messages;

    // A server's identity; openssl makes it.
    QSslConfiguration Identity(const QString& name) const {
        const QString key = m_certificates.filePath(name + u".key"_s);
        const QString certificate = m_certificates.filePath(name + u".pem"_s);
        QProcess openssl; // with its chatter caught
        openssl.start(u"openssl"_s,
                      {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"2"_s,
                       u"-subj"_s, u"/CN="_s + name, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s,
                       u"-keyout"_s, key, u"-out"_s, certificate});
        openssl.waitForFinished();
        QSslConfiguration identity;
        identity.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
        QFile keyFile(key);
        if (keyFile.open(QIODevice::ReadOnly))
            identity.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
        return identity;
    }

    static std::unique_ptr<QTcpServer> Secure(const QSslConfiguration& identity) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(identity);
        return server;
    }
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
        QVERIFY2(!Identity(u"trusted"_s).localCertificate().isNull(), "openssl makes the certificates");
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
        QSslConfiguration::setDefaultConfiguration(m_before);
    }

    void RedirectionFromHttpToHttpsIsFollowed() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer secure([](const QByteArray&) { return Elements('s'); }, QHostAddress::LocalHost,
                              Secure(identity));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QCOMPARE(m_messages, QStringList{u"The Keps have been downloaded."_s});
        QCOMPARE(Kept(), QByteArray(100, 's') + "\r\n");
        QVERIFY(secure.Requests().value(0).startsWith("GET /moved.txt "));
    }

    void RedirectionFromHttpsToHttpsIsFollowed() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer last([](const QByteArray&) { return Elements('l'); }, QHostAddress::LocalHost,
                            Secure(identity));
        Answer onwards = RedirectionTo(SecureUrl(last, u"/last.txt"_s));
        ScriptedServer secure([&](const QByteArray&) { return onwards; }, QHostAddress::LocalHost,
                              Secure(identity));
        ScriptedServer plain(RedirectionTo(SecureUrl(secure, u"/moved.txt"_s)));
        Download(plain);
        QCOMPARE(Kept(), QByteArray(100, 'l') + "\r\n");
    }

    void RedirectionFromHttpsBackToHttpIsAnErrorAndTheOldFileStays() {
        const QSslConfiguration identity = TrustedIdentity();
        ScriptedServer insecure(Elements('i'));
        Answer back = RedirectionTo(insecure.Url());
        ScriptedServer secure([&](const QByteArray&) { return back; }, QHostAddress::LocalHost,
                              Secure(identity));
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
                              Secure(Identity(u"stranger"_s)));
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
                              Secure(identity));
        const Answer onwards = RedirectionTo(SecureUrl(secure, u"/moved.txt"_s));
        ScriptedServer plain([&](const QByteArray& request) {
            return request.contains("Authorization: ") ? onwards : challenge;
        });
        m_sequence->Download({u"me:secret@"_s + plain.Address() + u"/first.txt"_s, {}});
        QTRY_VERIFY(m_lines.last().startsWith(u"Error - "));
        QCOMPARE(m_lines.last(), u"Error - 401 Unauthorized"_s);
        QVERIFY(!secure.Requests().isEmpty());
        for (const QByteArray& request : secure.Requests())
            QVERIFY(!request.contains("Authorization") && !request.contains("secret"));
        QVERIFY(!m_lines.join(u'\n').contains(u"secret"));
    }

private:
    // One that the program trusts, until the end of the test.
    QSslConfiguration TrustedIdentity() const {
        QSslConfiguration identity = Identity(u"trusted"_s);
        QSslConfiguration trusting = m_before;
        trusting.addCaCertificate(identity.localCertificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
        return identity;
    }
};

QTEST_GUILESS_MAIN(SecureDownloadTest)
#include "SecureDownloadTest.moc"
