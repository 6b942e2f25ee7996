#pragma once

#include "sharing/SidsRequest.h"

class Station;

/// What a request to a server that collects frames tells of this station and program. `number`: the
/// satellite's catalogue number.
SidsStation SidsStationOf(const Station& station, const QString& number);
