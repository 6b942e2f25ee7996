#include "station/terminal/TerminalSession.h"

#include "foundation/settings/Settings.h"
#include "telemetry/monitor/DisplayKind.h"

namespace {

constexpr int idleCheckInterval = 1000; // ms

} // namespace

TerminalSession::TerminalSession(clsIni& cIni, const Clock& clock, const ProgramFolder& folder,
                                 const Station& station, UnprotoLink& link, const mb& messages,
                                 const ProgramVersion& version)
    : transmitter(station, link, messages, version)
    , log(cIni, clock, folder)
    , m_cIni(cIni)
    , m_folder(folder) {
    m_timer1.setObjectName(QStringLiteral("Timer1"));
    m_timer1.setInterval(idleCheckInterval);
    QObject::connect(&m_timer1, &QTimer::timeout, &m_timer1, [this] { log.CloseWhenIdle(); });
}

TerminalSession::~TerminalSession() {
    Close();
}

void TerminalSession::Open() {
    if (m_isOpen)
        return;
    m_isOpen = true;
    log.Load();
    fields = {.to = Settings::Read(m_cIni, Settings::terminalTo),
              .via = Settings::Read(m_cIni, Settings::terminalVia),
              .port = Settings::Read(m_cIni, Settings::terminalPort)};
    transmitter.SetSymbol(Beacons::LoadSymbol(m_cIni, m_folder));
    m_timer1.start();
}

void TerminalSession::Close() {
    if (!m_isOpen)
        return;
    m_isOpen = false;
    Settings::Save(m_cIni, Settings::terminalTo, fields.to);
    Settings::Save(m_cIni, Settings::terminalVia, fields.via);
    m_timer1.stop();
    log.CloseTrafficLog();
}

void TerminalSession::Take(QByteArrayView text, qint16 kind) {
    if (!m_isOpen || kind == DisplayKind::ShortForm)
        return;
    if (m_showData)
        m_showData(text, kind);
    log.WriteTrafficLog(text);
}
