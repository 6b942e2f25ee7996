#pragma once

#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/HeardFrame.h"

#include <string>

/// Makes HeardFrames of AX.25 frames, with the header text in which packet engines show such a frame:
///
///   " 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=33 PF=0 >[12:00:01]", CR, the information, CR
///
/// Digipeaters bear no marks in that text, as engines write it. Bytes that are no AX.25 frame give a frame
/// without callsigns and information, whose text shows them. It allocates for the first frames only.
class Ax25Heard {
public:
    struct Arrival {
        qint64 utc = 0; ///< milliseconds since 1970-01-01 00:00
        qint16 port = 1;
        HeardFrame::Origin origin = HeardFrame::Origin::Live;
        bool isTransmitted = false; ///< by this station
        QByteArrayView time;        ///< for the header text, "hh:mm:ss"
        bool needsText = true;      ///< whether there is to be a text
    };

    /// `raw`: the frame without flags and checksum. The frame's views hold as long as `raw`, and until the
    /// next call.
    HeardFrame Read(QByteArrayView raw, const Arrival& arrival);

private:
    void ShowBytes(QByteArrayView raw);
    void ShowFrame(const Arrival& arrival);

    Ax25Frame m_frame;
    std::string m_path;
    std::string m_text;
};
