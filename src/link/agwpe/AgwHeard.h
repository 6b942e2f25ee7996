#pragma once

#include "telemetry/frames/HeardFrame.h"
#include "telemetry/frames/MonitoredFrame.h"

/// The engine's monitored frames as frames heard. Their views are the ones handed in.
namespace AgwHeard {

/// A UI frame, heard at `utc` (milliseconds since 1970).
HeardFrame FromFrame(const MonitoredFrame& frame, qint64 utc);

/// A frame of another kind, of which the engine gives its text alone (header line, CR, information field):
/// callsigns and port are read from the header, as far as it has them.
HeardFrame FromText(QByteArrayView data, HeardFrame::Kind kind, qint64 utc);

} // namespace AgwHeard
