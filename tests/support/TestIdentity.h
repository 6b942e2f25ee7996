#pragma once

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTemporaryDir>

#include <memory>

/// Identities of https servers on 127.0.0.1, made by openssl, that nobody trusts unless a test says so.
class TestIdentities {
public:
    TestIdentities() = default;
    TestIdentities(const TestIdentities&) = delete;
    TestIdentities& operator=(const TestIdentities&) = delete;
    ~TestIdentities() { QSslConfiguration::setDefaultConfiguration(m_before); }

    /// Without a certificate where openssl could not make one.
    QSslConfiguration Make(const QString& name) const {
        const QString key = m_folder.filePath(name + QStringLiteral(".key"));
        const QString certificate = m_folder.filePath(name + QStringLiteral(".pem"));
        QProcess openssl; // with its chatter caught
        const QString arguments =
            QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=%1 -addext "
                           "subjectAltName=IP:127.0.0.1 -keyout %2 -out %3")
                .arg(name, key, certificate);
        openssl.start(QStringLiteral("openssl"), arguments.split(u' '));
        openssl.waitForFinished();
        QSslConfiguration identity;
        identity.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
        QFile keyFile(key);
        if (keyFile.open(QIODevice::ReadOnly))
            identity.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
        return identity;
    }

    /// From now on the program trusts this identity, and no other one made here.
    void Trust(const QSslConfiguration& identity) const {
        QSslConfiguration trusting = m_before;
        trusting.addCaCertificate(identity.localCertificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    void TrustNone() const { QSslConfiguration::setDefaultConfiguration(m_before); }

    /// A server with this identity, for a ScriptedServer.
    static std::unique_ptr<QTcpServer> Server(const QSslConfiguration& identity) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(identity);
        return server;
    }

private:
    QTemporaryDir m_folder;
    const QSslConfiguration m_before = QSslConfiguration::defaultConfiguration();
};
