#pragma once

#include "foundation/records/Record.h"
#include "telemetry/limits/ChannelLimits.h"

struct HeardFrame;
struct LimitEvent;
struct Reading;

/// Values of the road of a frame as records. A time of 0 is one that nobody told. `channels`: their units, as
/// far as these are known.
Record RecordOf(const HeardFrame& frame);
Record RecordOf(const Reading& reading, const LimitTable& channels);
Record RecordOf(const LimitEvent& event);

/// The same for people, in one line and without the time.
QString LineOf(const HeardFrame& frame);
QString LineOf(const Reading& reading, const LimitTable& channels);
QString LineOf(const LimitEvent& event);
