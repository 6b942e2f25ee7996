#pragma once

#include "core/ChosenLink.h"
#include "core/ElementsWatch.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/system/FolderLock.h"
#include "link/agwpe/AgwSettings.h"
#include "link/kiss/KissSettings.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"
#include "sharing/Forwarder.h"
#include "sharing/HttpPost.h"
#include "station/identity/Station.h"
#include "station/terminal/TerminalSession.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/grids/GridValues.h"
#include "telemetry/history/HistoryWriter.h"
#include "telemetry/limits/EventFile.h"
#include "telemetry/monitor/FrameIntake.h"
#include "telemetry/monitor/MonitorText.h"
#include "telemetry/monitor/SecondTime.h"
#include "telemetry/replay/FrameRecorder.h"

#include <QObject>

#include <set>

class Clock;
class Roof;
class mb;
struct Setting;

/// The station: everything that runs whether or not there is a window, wired, started and ended in its order.
///
///     link --> heard --> monitor, terminal and traffic log
///                   \--> forwarding, to a server
///                   \--> decoder --> grids, history, limits --> events
///
/// A new taker of frames or readings is added in the constructor, and nowhere else.
class GroundStation : public QObject {
    Q_OBJECT
public:
    /// All arguments must outlive the station.
    GroundStation(const ProgramFolder& folder, const Clock& clock, mb& messages, Roof& roof);
    ~GroundStation() override;

    enum class Outcome {
        Started,
        AlreadyRunning, ///< another program holds the folder; the user has been told
        NoFormulae,     ///< the formulae cannot be loaded; the user has been told, but for a misspelt name
    };

    /// The whole start, in its order; the roof has its turns in it.
    Outcome Start();

    /// Tells what the start found missing: the station's position, elements.
    void ShowNotices();

    /// The end, in its order; a second call does nothing. The roof has its turns in it.
    void Stop();

    /// Reads the element files (again) and looks for the satellites in them.
    void LoadElements();

    /// A status line, or several, for the monitor and the terminal.
    void ShowStatus(const QString& text);

    /// Inverts the option, saves it, and answers what it is now.
    bool ToggleLocalTime();
    bool ToggleOnlyShowQiran();

    /// Connects by a KISS TNC from now on, or by AGWPE; saved.
    void UseKiss(bool isKiss);

    /// Who needs frames whole, with their raw bytes.
    enum class RawTaker { Recording, Forwarding };

    /// A packet engine is asked for raw frames as long as anybody needs them. A KISS TNC gives no others.
    void SetWantsRawFrames(RawTaker taker, bool wants);

    /// Appends what is heard from now on to a recording. False, with a status line, where the file is none.
    bool StartRecording(const QString& path);
    void StopRecording();

    /// The recording, empty while nothing is recorded.
    const QString& RecordingPath() const { return m_recorder.Path(); }

    /// Opens the terminal again after it was closed.
    void OpenTerminal();

    const ProgramFolder& folder;
    clsIni cIni;
    clsSats cSats;
    TrackedSatellites satellites;
    Station station;
    AgwSettings agw;
    KissSettings kiss;
    ChosenLink link;
    CallsignList callsigns;
    HttpPost forwardPost;
    Forwarder forwarder;
    ChannelMap channelMap;
    FormulaTable formulae;
    TelemetryGrids grids = MakeTelemetryGrids();
    MonitorText monitor;
    FanOut<HeardFrame> heard;
    TelemetryDecoder decoder;
    TerminalSession terminal;
    HistoryWriter history;
    LimitJudge limits; ///< of the user's channels.txt; without the file there are none

    /// Whether the monitor shows only the satellite's frames.
    bool OnlyShowQiran() const { return m_intake.OnlyShowQiran(); }

Q_SIGNALS:
    /// A channel's value has crossed a limit; the event has been kept.
    void LimitCrossed(const LimitEvent& event);

    /// One status line, without its end.
    void StatusLine(const QString& line);

    /// Files came into the folder of the elements, or went; they have been read.
    void ElementsChanged();

private:
    bool LoadFormulaFile();
    void LoadOptions();
    void RemoveOldKeys();
    void LoadLimits();
    void ApplyStationPosition();
    void SaveOption(const Setting& setting, bool value);

    mb& m_messages;
    Roof& m_roof;
    FolderLock m_lock;
    SecondTime m_frameTime;
    FrameIntake m_intake;
    GridValues m_gridValues;
    EventFile m_events;
    FrameRecorder m_recorder;
    std::set<RawTaker> m_rawTakers;
    ElementsWatch m_elementsWatch;
    bool m_isRunning = false;
};
