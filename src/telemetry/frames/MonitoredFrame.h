#pragma once

#include <QByteArrayView>

/// One frame heard by the packet engine. The views hold as long as the call that hands the frame over.
struct MonitoredFrame {
    qint16 port = 0;            ///< radio port, from 1
    QByteArrayView source;      ///< callsign with SSID exactly as the engine reports it
    QByteArrayView destination; ///< callsign
    QByteArrayView data;        ///< the engine's header line, CR, the information field; Windows-1252
};
