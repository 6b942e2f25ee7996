#include "orbit/service/PassTable.h"

#include <cmath>

namespace {

const QString lineEnd = QStringLiteral("\r\n");

} // namespace

void PassTable::Add(DateTime start, const Pass& pass, qint16 startAzimuth, qint16 endAzimuth,
                    const QString& name) {
    const double day = std::floor(start);
    if (m_day && *m_day != day)
        m_lines += lineEnd;
    m_day = day;
    m_lines += PassList::TableLine(start, pass, startAzimuth, endAzimuth);
    if (m_names == Names::Shown)
        m_lines += QStringLiteral("    ") + name;
    m_lines += lineEnd;
}

QString PassTable::Head() const {
    const bool hasNames = m_names == Names::Shown;
    const QString note = m_zone == Zone::Local ? QStringLiteral("'Start Time' is local time.")
                                               : QStringLiteral("'Start Time' is UTC.");
    const QString head = QStringLiteral("      Start Time       Duration  Start Az  End Az  Max Elev");
    const QString rule = QStringLiteral("      ----------       --------  --------  ------  --------");
    return note + lineEnd + lineEnd + head + (hasNames ? QStringLiteral(" Satellite") : QString()) + lineEnd +
           rule + (hasNames ? QStringLiteral(" ---------") : QString()) + lineEnd;
}
