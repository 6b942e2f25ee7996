#include "station/log/TrafficLog.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"

#include <QDir>

#include <algorithm>

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
    m_file.setFileName(m_logsFolder + QDir::separator() + FormatDateTime(today, u"yyyymmdd") +
                       QStringLiteral(".TXT"));
    // Where this fails, the file stays closed and the next write tries again.
    (void)m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    NoteActivity(today);
}

void TrafficLog::CloseTrafficLog() {
    if (!m_file.isOpen())
        return;
    m_file.close();
    NoteActivity(Today());
}

void TrafficLog::WriteTrafficLog(QByteArrayView text) {
    if (!m_isLogging)
        return;
    const DateTime today = Today();
    if (m_file.isOpen() && m_lastDate < today) {
        CloseTrafficLog();
        m_torn.clear();
    }
    if (!m_file.isOpen())
        OpenFor(today);
    if (m_file.isOpen())
        Append(text);
    NoteActivity(today);
}

// A full disk may have taken the start of a text only: its end goes before the next text, so that no line is
// glued to half of another.
void TrafficLog::Append(QByteArrayView text) {
    const QByteArray withTorn = m_torn.isEmpty() ? QByteArray() : m_torn + text.toByteArray();
    const QByteArrayView bytes = m_torn.isEmpty() ? text : QByteArrayView(withTorn);
    const qsizetype written = std::max<qint64>(m_file.write(bytes.data(), bytes.size()), 0);
    if (written <= m_torn.size())
        m_torn.remove(0, written);
    else
        m_torn = bytes.sliced(written).toByteArray();
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
