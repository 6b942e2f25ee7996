#pragma once

#include <QtGlobal>

class GroundStation;

/// When the present or last pass of the satellite began, milliseconds since 1970-01-01 00:00 UTC. Where that
/// cannot be known (no position, no elements, no pass in two days): twelve hours ago.
qint64 StartOfLastPass(const GroundStation& station);
