#pragma once

#include "link/agwpe/MERAGW.h"

#include <QStringList>

/// Notes what a client raises, in order, as short texts; frames and texts with their bytes apart.
class ClientEvents : public QObject {
public:
    struct Frame {
        int port;
        QByteArray source, destination, data;
        bool operator==(const Frame&) const = default;
    };
    struct Text {
        int kind;
        QByteArray data;
        bool operator==(const Text&) const = default;
    };

    QStringList events; ///< "connected HOST", "disconnected HOST", "error", "version V", "ports A|B"
    QString lastError;
    QList<Frame> frames;
    QList<Text> texts;

    explicit ClientEvents(MERAGW& client) {
        connect(&client, &MERAGW::PortInformation, this,
                [this](const QStringList& ports) { events += QStringLiteral("ports ") + ports.join(u'|'); });
        connect(&client, &MERAGW::Version, this,
                [this](const QString& version) { events += QStringLiteral("version ") + version; });
        connect(&client, &MERAGW::Connected, this,
                [this](const QString& host) { events += QStringLiteral("connected ") + host; });
        connect(&client, &MERAGW::Disconnected, this,
                [this](const QString& host) { events += QStringLiteral("disconnected ") + host; });
        connect(&client, &MERAGW::Error, this, [this](const QString& description) {
            events += QStringLiteral("error");
            lastError = description;
        });
        connect(&client, &MERAGW::FrameArrival, this, [this](const MonitoredFrame& frame) {
            frames.append({frame.port, frame.source.toByteArray(), frame.destination.toByteArray(),
                           frame.data.toByteArray()});
        });
        connect(&client, &MERAGW::Monitoring, this, [this](QByteArrayView data, qint16 kind) {
            texts.append({kind, data.toByteArray()});
        });
    }
};
