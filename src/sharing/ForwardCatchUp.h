#pragma once

#include "sharing/SidsRequest.h"

#include <QByteArrayList>

class CallsignList;
struct HeardFrame;

/// Collects the frames of a recording that can be forwarded. Frames that nobody recorded byte by byte are
/// never made up from their texts.
class ForwardCatchUp {
public:
    /// `callsigns`, those of the satellite, must outlive this object. The newest `most` frames are kept.
    ForwardCatchUp(const CallsignList& callsigns, SidsStation station, qsizetype most);

    /// Takes a frame that has its raw bytes, its source, and the time at which it was heard.
    void Take(const HeardFrame& frame);

    const QByteArrayList& Bodies() const { return m_bodies; }

    qint64 NotTheSatellites() const { return m_notTheSatellites; }

    /// Frames of the satellite without a time, without raw bytes, or too long for a request.
    qint64 NotWhole() const { return m_notWhole; }

    /// The oldest, beyond those that are kept.
    qint64 TooMany() const { return m_tooMany; }

private:
    const CallsignList& m_callsigns;
    const SidsStation m_station;
    const qsizetype m_most;
    QByteArrayList m_bodies;
    qint64 m_notTheSatellites = 0;
    qint64 m_notWhole = 0;
    qint64 m_tooMany = 0;
};
