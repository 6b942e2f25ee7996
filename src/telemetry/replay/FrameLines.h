#pragma once

#include "telemetry/frames/HeardFrame.h"

#include <QByteArray>

#include <functional>

/// Finds heard frames in lines of text, whoever wrote them:
///
///     XQ9ZZ-1,T#024,168,95,0,0,0,0,00111111,0          a callsign and a telemetry line
///     XQ9ZZ-1>APRS,WIDE2-2*:T#024,168,...              TNC2; text in brackets and times before it are passed
///     over 12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:   a traffic log of this program: a header, and
///     below it T#024,168,...                                        the frame's lines, up to an empty one
///
/// Lines are Windows-1252, without their ends. Frames are replayed ones; their time is that before a TNC2
/// line where it names its zone, and 0 where nothing tells it. "<0x0d>" and the like in TNC2 are bytes, as
/// packet engines print them.
class FrameLines {
public:
    using Found = std::function<void(const HeardFrame& frame)>;

    explicit FrameLines(Found found)
        : m_found(std::move(found)) {}

    void Take(QByteArrayView line);

    /// Lines so far that are none of these.
    qint64 Unknown() const { return m_unknown; }

private:
    enum class Inside { Nothing, Header, Frame };

    bool TakeHeader(const QString& line);
    bool TakeMonitorLine(const QString& line);
    bool TakeTelemetry(QByteArrayView line);
    void Hand(const QByteArray& information);

    const Found m_found;
    qint64 m_unknown = 0;
    Inside m_inside = Inside::Nothing; ///< of a traffic log's frame
    HeardFrame m_frame;                ///< as far as its header tells; its views stand on what follows
    QByteArray m_source;
    QByteArray m_destination;
    QByteArray m_path;
};
