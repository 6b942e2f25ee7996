#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>
#include <memory>

/// A server on the loopback that answers each request as a test's script says, well-formed or not.
class ScriptedServer : public QObject {
public:
    struct Answer {
        QByteArray bytes;
        bool closes = true;    ///< closes the connection when all is sent
        int dripInterval = 0;  ///< milliseconds between two bytes; 0: all at once
        qsizetype dripsAt = 0; ///< how many bytes are sent at once before the drip starts
        int closesAfter = 0;   ///< milliseconds between the last byte and the end of the connection
    };
    using Script = std::function<Answer(const QByteArray& request)>;

    explicit ScriptedServer(Script script, const QHostAddress& address = QHostAddress::LocalHost,
                            std::unique_ptr<QTcpServer> server = std::make_unique<QTcpServer>())
        : m_server(std::move(server))
        , m_script(std::move(script)) {
        connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this, &ScriptedServer::Accept);
        m_server->listen(address);
    }
    explicit ScriptedServer(const Answer& answer)
        : ScriptedServer([answer](const QByteArray&) { return answer; }) {}
    ~ScriptedServer() override {
        for (QTcpSocket* socket : m_server->findChildren<QTcpSocket*>())
            socket->disconnect(this);
    }

    bool IsListening() const { return m_server->isListening(); }

    /// "host:port", as an address begins.
    QString Address() const {
        const QString host = m_server->serverAddress().toString();
        return (host.contains(u':') ? u'[' + host + u']' : host) + u':' +
               QString::number(m_server->serverPort());
    }
    QString Url(const QString& path = QStringLiteral("/file.txt")) const {
        return QStringLiteral("http://") + Address() + path;
    }

    const QList<QByteArray>& Requests() const { return m_requests; }

    /// An answer with its length, or with other header lines.
    static QByteArray Http(const QByteArray& status, const QByteArray& body, QByteArray header = {}) {
        if (header.isEmpty())
            header = "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
        return "HTTP/1.1 " + status + "\r\n" + header + "Connection: close\r\n\r\n" + body;
    }
    static QByteArray Redirection(const QString& target) {
        return Http("302 Found", "moved", "Location: " + target.toUtf8() + "\r\nContent-Length: 5\r\n");
    }

private:
    void Accept() {
        while (QTcpSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(*socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    void Read(QTcpSocket& socket) {
        QByteArray request = socket.property("request").toByteArray() + socket.readAll();
        const bool isTls = request.startsWith('\x16');
        socket.setProperty("request", request);
        if (!isTls && !IsWhole(request))
            return;
        socket.setProperty("request", QByteArray());
        m_requests.append(request);
        Send(socket, m_script(request));
    }

    // With the body that the header announces.
    static bool IsWhole(const QByteArray& request) {
        const qsizetype header = request.indexOf("\r\n\r\n");
        const QByteArray name = "\r\nContent-Length: ";
        const qsizetype length = request.indexOf(name) + name.size();
        const qsizetype announced =
            length < name.size() ? 0
                                 : request.mid(length, request.indexOf('\r', length) - length).toLongLong();
        return header >= 0 && request.size() >= header + 4 + announced;
    }

    void Send(QTcpSocket& socket, const Answer& answer) {
        if (answer.dripInterval == 0) {
            socket.write(answer.bytes);
            if (answer.closes && answer.closesAfter > 0)
                QTimer::singleShot(answer.closesAfter, &socket, [&socket] { socket.disconnectFromHost(); });
            else if (answer.closes)
                socket.disconnectFromHost();
            return;
        }
        socket.write(answer.bytes.left(answer.dripsAt));
        auto* drip = new QTimer(&socket);
        connect(drip, &QTimer::timeout, &socket, [&socket, answer, at = answer.dripsAt, drip]() mutable {
            if (at < answer.bytes.size())
                socket.write(answer.bytes.mid(at++, 1));
            else {
                drip->stop();
                socket.disconnectFromHost();
            }
        });
        drip->start(answer.dripInterval);
    }

    std::unique_ptr<QTcpServer> m_server;
    Script m_script;
    QList<QByteArray> m_requests;
};
