#include "orbit/panel/TrackingDisplay.h"

#include "foundation/text/QIRUtil.h"

#include <algorithm>
#include <cmath>

namespace {

const QString unknown = QStringLiteral("-");

// How long the in-view count of a satellite lasts.
constexpr qint16 inViewCount = 5;

// A whole number, halves away from zero.
QString Whole(double value) {
    return QString::number(std::llround(value));
}

} // namespace

TrackingLabels TrackingDisplay::ApplyStationPosition(double latitude, double longitude) {
    m_locationKnown = QIRUtil::IsPositionKnown(latitude, longitude);
    m_labels.newBackground.reset();
    if (!m_locationKnown) {
        m_labels.strAz = m_labels.strEl = m_labels.strDue = unknown;
        SetBackground(TrackingLabels::Background::Window);
    }
    return m_labels;
}

TrackingLabels TrackingDisplay::Refresh() {
    m_labels.newBackground.reset();
    TrackedSatellite& satellite = m_satellites.Selected();
    const std::optional<SatInfo> info = m_cSats.SatInfoAt(
        satellite.strObjNum, m_cSats.datGmtTime(), m_locationKnown ? clsSats::Due::Yes : clsSats::Due::No);
    const bool inView = info && m_locationKnown && info->blnvisible;
    m_labels.strLat = info ? info->strLat : unknown;
    m_labels.strLong = info ? info->strLong : unknown;
    m_labels.strDue = info && m_locationKnown ? info->strDue : unknown;
    m_labels.strDueTip = info && m_locationKnown && !inView ? DueTip() : QString();
    m_labels.strAz = inView ? Whole(info->dblAz) : unknown;
    m_labels.strEl = inView ? Whole(info->dblEl) : unknown;
    if (inView)
        satellite.intInView = inViewCount;
    SetBackground(inView ? TrackingLabels::Background::InView : TrackingLabels::Background::Window);
    return m_labels;
}

// A search of passes costs, so it is asked for only when another pass is the next.
QString TrackingDisplay::DueTip() {
    const QString question = m_satellites.Selected().strObjNum + u' ' + m_labels.strDue;
    if (question != m_askedFor)
        m_due = m_cSats.GetNextPassTime(m_satellites.Selected().strObjNum);
    m_askedFor = question;
    if (!m_due || std::floor(*m_due) <= std::floor(m_cSats.datTime()))
        return {};
    return FormatDateTime(*m_due, u"yyyy-mmm-dd hh:nn:ss");
}

void TrackingDisplay::SetBackground(TrackingLabels::Background background) {
    if (m_background != background)
        m_labels.newBackground = background;
    m_background = background;
}

QString TrackingDisplay::Caption() const {
    return m_satellites.DisplayName() + QStringLiteral(" Current Location");
}

QString TrackingDisplay::DueCaption() const {
    return m_cSats.blnLocalTime() ? QStringLiteral("Due (local)") : QStringLiteral("Due (UTC)");
}

TrackingDisplay::ElementsAge TrackingDisplay::AgeOfElements() const {
    const TrackedSatellite& satellite = m_satellites.Selected();
    const std::optional<ElementSource> elements = m_cSats.ElementsOf(satellite.strObjNum);
    if (!elements)
        return {};
    const double age = m_cSats.datGmtTime() - elements->epochUtc;
    const bool isOld = age > maxElementDays;
    const QString text =
        QStringLiteral("The elements of %1 are %2 days old%3.\nEpoch %4 UTC, file %5")
            .arg(satellite.strBaseName, QString::number(std::floor(std::max(age, 0.0)), 'f', 0),
                 isOld ? QStringLiteral(": passes may be wrong") : QString(),
                 FormatDateTime(elements->epochUtc, u"yyyy-mmm-dd hh:nn"),
                 QString::fromStdString(elements->file));
    return {text, isOld};
}
