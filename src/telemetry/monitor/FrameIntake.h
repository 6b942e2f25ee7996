#pragma once

#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/MonitoredFrame.h"
#include "telemetry/monitor/ClockText.h"
#include "telemetry/monitor/MonitorText.h"

#include <QString>

#include <functional>
#include <string>

/// Where every frame heard comes in: shows it, and hands the satellite's telemetry to the decoder. Texts are
/// Windows-1252; a frame is finished before the next one begins, only its showing is gathered.
class FrameIntake {
public:
    /// A text for the terminal, and its DisplayKind.
    using ShowData = std::function<void(QByteArrayView text, qint16 kind)>;

    /// `displayTime`: the present time as it is shown to the user.
    FrameIntake(const CallsignList& callsigns, TelemetryDecoder& decoder, MonitorText& monitor,
                std::function<DateTime()> displayTime);

    /// The terminal's side; none while there is no terminal.
    void SetTerminal(ShowData showData) { m_showData = std::move(showData); }

    /// Whether the monitor shows only the satellite's frames, in short form.
    bool OnlyShowQiran() const { return m_onlyShowQiran; }
    void SetOnlyShowQiran(bool only) { m_onlyShowQiran = only; }

    /// One frame heard on any radio port.
    void FrameReceived(const MonitoredFrame& frame);

    /// Shows a frame (header line, CR, information field) in full form.
    void ShowMonitoredFrame(QByteArrayView data, qint16 kind);

    /// Shows a text in the terminal and the monitor as its kind demands: lines trimmed of blanks, empty ones
    /// dropped, each ended by CR LF.
    void AddToMonitor(QByteArrayView text, qint16 kind);
    void AddToMonitor(const QString& text, qint16 kind);

private:
    void ShowInFull(QByteArrayView data, qint16 kind, std::string_view time);
    void ShowShortForm(std::string_view header, std::string_view line, std::string_view time);

    const CallsignList& m_callsigns;
    TelemetryDecoder& m_decoder;
    MonitorText& m_monitor;
    ClockText m_clock;
    ShowData m_showData;
    bool m_onlyShowQiran = true;
    // Kept between frames so that a frame allocates nothing.
    std::string m_frameText;
    std::string m_lines;
};
