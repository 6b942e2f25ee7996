#include "station/log/TrafficLog.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"

#include <QDir>

namespace {

constexpr qint64 idleMilliseconds = 300'000;

} // namespace

TrafficLog::TrafficLog(clsIni& cIni, const Clock& clock, const ProgramFolder& folder)
    : m_cIni(cIni)
    , m_clock(clock)
    , m_logsFolder(folder.LogsFolder()) {}

void TrafficLog::Load() {
    QString logging = Settings::Read(m_cIni, Settings::logging);
    m_isLogging = clsIni::IsItTrue(logging);
    if (m_isLogging)
        OpenTrafficLog();
}

void TrafficLog::ToggleLogging() {
    if (m_isLogging)
        CloseTrafficLog();
    m_isLogging = !m_isLogging;
    Settings::Save(m_cIni, Settings::logging, m_isLogging ? QStringLiteral("True") : QStringLiteral("False"));
}

void TrafficLog::OpenTrafficLog() {
    OpenFor(Today());
}

void TrafficLog::OpenFor(DateTime today) {
    CloseTrafficLog();
    QDir().mkdir(m_logsFolder);
    // Where this fails, the file stays closed and the next write tries again.
    (void)m_file.Open(m_logsFolder + QDir::separator() + FormatDateTime(today, u"yyyymmdd") +
                      QStringLiteral(".TXT"));
    NoteActivity(today);
}

void TrafficLog::CloseTrafficLog() {
    if (!m_file.IsOpen())
        return;
    m_file.Close();
    NoteActivity(Today());
}

void TrafficLog::WriteTrafficLog(QByteArrayView text) {
    if (!m_isLogging)
        return;
    const DateTime today = Today();
    if (m_file.IsOpen() && m_lastDate < today)
        CloseTrafficLog();
    if (!m_file.IsOpen())
        OpenFor(today);
    if (m_file.IsOpen())
        (void)m_file.Append(text);
    NoteActivity(today);
}

void TrafficLog::CloseWhenIdle() {
    if (m_isLogging && m_clock.Milliseconds() - m_lastMilliseconds > idleMilliseconds)
        CloseTrafficLog();
}

DateTime TrafficLog::Today() const {
    const CalendarRecord local = m_clock.Local();
    return DateOf(local.year, local.month, local.day);
}

void TrafficLog::NoteActivity(DateTime today) {
    m_lastDate = today;
    m_lastMilliseconds = m_clock.Milliseconds();
}
