#pragma once

#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/HeardFrame.h"
#include "telemetry/monitor/ClockText.h"
#include "telemetry/monitor/MonitorText.h"

#include <QString>

#include <functional>
#include <string>

/// Shows every frame heard, and the status of the link, in the monitor and the terminal. Texts are
/// Windows-1252; a frame is finished before the next one begins, only its showing is gathered.
class FrameIntake {
public:
    /// A text for the terminal, and its DisplayKind.
    using ShowData = std::function<void(QByteArrayView text, qint16 kind)>;

    /// `displayTime`: the time shown to the user of a UTC time in milliseconds since 1970.
    FrameIntake(const CallsignList& callsigns, MonitorText& monitor,
                std::function<DateTime(qint64 utc)> displayTime);

    /// The terminal's side; none while there is no terminal.
    void SetTerminal(ShowData showData) { m_showData = std::move(showData); }

    /// Whether the monitor shows only the satellite's frames, in short form.
    bool OnlyShowQiran() const { return m_onlyShowQiran; }
    void SetOnlyShowQiran(bool only) { m_onlyShowQiran = only; }

    /// One frame of any kind: a UI frame in full and, when it is the satellite's, in short form.
    /// Nothing of one that has bytes and no text.
    void Take(const HeardFrame& frame);

    /// Shows a frame (header line, CR, information field) that was heard at `utc` in full form.
    void ShowMonitoredFrame(QByteArrayView data, qint16 kind, qint64 utc);

    /// Shows a text in the terminal and the monitor as its kind demands: lines trimmed of blanks, empty ones
    /// dropped, each ended by CR LF.
    void AddToMonitor(QByteArrayView text, qint16 kind);
    void AddToMonitor(const QString& text, qint16 kind);

private:
    void FrameReceived(const HeardFrame& frame);
    void ShowShortForm(std::string_view header, std::string_view line, std::string_view time);

    const CallsignList& m_callsigns;
    MonitorText& m_monitor;
    ClockText m_clock;
    ShowData m_showData;
    bool m_onlyShowQiran = true;
    // Kept between frames so that a frame allocates nothing.
    std::string m_frameText;
    std::string m_lines;
};
