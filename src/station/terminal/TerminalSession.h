#pragma once

#include "station/log/TrafficLog.h"
#include "station/terminal/Transmitter.h"

#include <QByteArrayView>
#include <QTimer>

#include <functional>

/// The terminal without its window: the address fields' settings, the transmitter and the traffic log, which
/// exist from the terminal's opening to its closing, and what the terminal shows.
class TerminalSession {
public:
    /// A Windows-1252 text, its line ends included, and its DisplayKind.
    using ShowData = std::function<void(QByteArrayView text, qint16 kind)>;

    /// All arguments must outlive the session.
    TerminalSession(clsIni& cIni, const Clock& clock, const ProgramFolder& folder, const Station& station,
                    UnprotoLink& link, const mb& messages, const ProgramVersion& version);
    ~TerminalSession();

    /// Reads the settings and, where traffic is logged, opens the log of the day. An open session stays as it
    /// is.
    void Open();

    /// Saves `To` and `Via` and closes the log; what comes from now on is neither shown nor logged. A closed
    /// session stays as it is.
    void Close();

    bool IsOpen() const { return m_isOpen; }

    /// A text for the terminal: shown where there is a window, and logged. Nothing while the session is
    /// closed.
    void Take(QByteArrayView text, qint16 kind);

    /// The window's side; none while there is no window.
    void SetPane(ShowData showData) { m_showData = std::move(showData); }

    AddressFields fields; ///< as they were stored, or as the window has them
    Transmitter transmitter;
    TrafficLog log;

private:
    clsIni& m_cIni;
    const ProgramFolder& m_folder;
    ShowData m_showData;
    QTimer m_timer1; // closes an idle log
    bool m_isOpen = false;
};
