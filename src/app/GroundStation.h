#pragma once

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"
#include "station/identity/Station.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/monitor/FrameIntake.h"
#include "telemetry/monitor/MonitorText.h"
#include "telemetry/monitor/SecondTime.h"

class Clock;

/// What telemetry is decoded with and into.
struct TelemetryTables {
    ChannelMap channelMap;
    TelemetryGrids grids = MakeTelemetryGrids();
    FormulaTable formulae;
};

/// The objects of a running program below its windows, wired to each other. Declared in the order of their
/// making.
struct GroundStation {
    /// All arguments must outlive the station; `window` is where its timers are found by name.
    GroundStation(const ProgramFolder& folder, const Clock& clock, const TelemetryTables& tables,
                  MonitorText& monitor, QObject* window);

    clsIni cIni;
    clsSats cSats;
    TrackedSatellites satellites;
    Station station;
    AgwSettings agw;
    AgwLink link;
    CallsignList callsigns;
    SecondTime frameTime;
    TelemetryDecoder decoder;
    FrameIntake intake;

    /// Reads the display options, the station and the packet engine's address, and removes keys of an older
    /// layout.
    void LoadSettings();

    /// Inverts the option, saves it, and answers what it is now.
    bool ToggleLocalTime();
    bool ToggleOnlyShowQiran();

private:
    void SaveOption(const Setting& setting, bool value);
};
