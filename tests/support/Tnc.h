#pragma once

#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/KissReader.h"

#include <QTcpServer>
#include <QTcpSocket>

/// An AX.25 frame of XQ9ZZ-1 to APRS, repeated by QIRAN-1.
inline QByteArray Raw(std::string_view information) {
    return QByteArray::fromStdString(Ax25Frame{.destination = {"APRS", true},
                                               .source = {"XQ9ZZ-1"},
                                               .digipeaters = {{"QIRAN-1", true}},
                                               .information = information}
                                         .ToBytes()
                                         .value());
}

/// A frame of a KISS stream.
inline QByteArray Kiss(QByteArrayView data, std::uint8_t port = 0, std::uint8_t command = 0) {
    std::string stream;
    KissFrame{.port = port, .command = command, .data = {data.data(), static_cast<std::size_t>(data.size())}}
        .AppendTo(stream);
    return QByteArray::fromStdString(stream);
}

/// A KISS TNC's side, for one or more connections.
class Tnc : public QTcpServer {
public:
    QByteArray received;
    QList<QTcpSocket*> connections;

    Tnc() {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connections.append(socket);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { received += socket->readAll(); });
            connect(socket, &QTcpSocket::disconnected, this,
                    [this, socket] { connections.removeAll(socket); });
        });
    }

    void Send(const QByteArray& bytes) const {
        for (QTcpSocket* socket : connections) {
            socket->write(bytes);
            socket->flush();
        }
    }
};
