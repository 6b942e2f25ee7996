#pragma once

#include "link/UnprotoLink.h"

#include <QList>

/// Takes the packet engine's place: notes every frame that is to be sent.
class RecordingLink : public UnprotoLink {
public:
    struct Sent {
        qint16 port;
        QString source;
        QString destination;
        QString data;
        bool operator==(const Sent&) const = default;
    };
    QList<Sent> sent;
    bool isConnected = true;
    int portCount = 0;

    bool blnConectedToAgw() const override { return isConnected; }
    int PortCount() const override { return portCount; }
    void SendUnproto(qint16 port, const QString& source, const QString& destination,
                     const QString& data) override {
        sent.append({port, source, destination, data});
    }

    QStringList Data() const {
        QStringList data;
        for (const Sent& frame : sent)
            data.append(frame.data);
        return data;
    }
};
