#include "core/StationStatus.h"

#include "core/GroundStation.h"
#include "core/Texts.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Text.h"
#include "orbit/panel/TrackingDisplay.h"
#include "telemetry/frames/ByteViews.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double daysAhead = 3.0;
constexpr double searchAgain = 1.0 / 24.0; // days
constexpr double lastSeconds = 120.0;      // of a countdown, which shows them
constexpr int minutesOfAnHour = 60;

constexpr int retryStep =
    10000; // milliseconds: a line that changes every second would catch the eye, and cost

int RoundUp(int value, int step) {
    return (value + step - 1) / step * step;
}

QString Countdown(double seconds) {
    if (seconds < lastSeconds)
        return QStringLiteral("%1 s").arg(std::max(0LL, std::llround(seconds)));
    const auto minutes = static_cast<int>(std::ceil(seconds / 60.0));
    if (minutes < minutesOfAnHour)
        return QStringLiteral("%1 min").arg(minutes);
    return QStringLiteral("%1 h %2 min").arg(minutes / minutesOfAnHour).arg(minutes % minutesOfAnHour);
}

} // namespace

StationStatus::StationStatus(GroundStation& station)
    : m_station(station) {
    m_station.heard.Add([this](const HeardFrame& frame) { Take(frame); });
    QObject::connect(&m_station, &GroundStation::LimitCrossed, &m_station,
                     [this](const LimitEvent& event) { m_event = event; });
}

void StationStatus::Take(const HeardFrame& frame) {
    if (frame.kind == HeardFrame::Kind::T || frame.source.isEmpty())
        return; // our own, or bytes that are no frame
    m_lastSource.assign(ToView(frame.source));
    m_lastUtc = frame.utc;
    if (m_station.callsigns.Find(frame.source) == nullptr)
        return;
    TurnDay();
    ++m_today;
}

StatusTexts StationStatus::Now() {
    StatusTexts texts;
    TurnDay();
    texts.today = QStringLiteral("%1 today").arg(m_today);
    texts.link = Link();
    texts.lastFrame = LastFrame();
    if (m_event)
        texts.event = Texts::Crossed(*m_event);
    AddElements(texts);
    AddRise(texts);
    return texts;
}

QString StationStatus::Link() const {
    if (m_station.link.blnConectedToAgw())
        return QStringLiteral("Connected to %1").arg(m_station.link.HostName());
    if (const int wait = m_station.link.RetryIn(); wait >= 0)
        return QStringLiteral("Retrying in %1 s").arg(RoundUp(wait, retryStep) / 1000);
    return QStringLiteral("Connecting to %1").arg(m_station.link.HostName());
}

QString StationStatus::LastFrame() const {
    if (m_lastUtc == 0)
        return QStringLiteral("No frame heard");
    return QStringLiteral("%1 at %2")
        .arg(Text::FromBytes(QByteArrayView(m_lastSource)),
             FormatDateTime(m_station.cSats.datTimeAt(m_lastUtc), u"hh\\:nn\\:ss"));
}

// The date that people see now; a frame counts for the date on which it came.
void StationStatus::TurnDay() {
    const double day = std::floor(m_station.cSats.datTime());
    if (day != m_day)
        m_today = 0;
    m_day = day;
}

void StationStatus::AddElements(StatusTexts& texts) const {
    const auto elements = m_station.cSats.ElementsOf(m_station.satellites.Selected().strObjNum);
    if (!elements) {
        texts.elements = QStringLiteral("No elements");
        texts.areElementsOld = true;
        return;
    }
    const double age = m_station.cSats.datGmtTime() - elements->epochUtc;
    texts.elements = QStringLiteral("Elements %1 d").arg(std::floor(std::max(age, 0.0)), 0, 'f', 0);
    texts.areElementsOld = age > TrackingDisplay::maxElementDays;
}

void StationStatus::AddRise(StatusTexts& texts) {
    const TrackedSatellite& satellite = m_station.satellites.Selected();
    const auto elements = m_station.cSats.ElementsOf(satellite.strObjNum);
    if (!m_station.station.PositionKnown() || !elements) {
        m_rise.reset();
        m_question = {};
        return;
    }
    const DateTime now = m_station.cSats.datGmtTime();
    const Question question{satellite.strObjNum, m_station.station.dblLat(), m_station.station.dblLong(),
                            elements->epochUtc};
    const bool isOver = now >= (m_rise ? m_rise->utc : m_askedAt + searchAgain);
    const bool hasRunBack = now < m_askedAt; // a pass may lie between
    if (isOver || hasRunBack || question != m_question)
        FindRise(question, now);
    if (!m_rise) {
        texts.nextRise =
            QStringLiteral("%1 does not rise in %2 days").arg(satellite.strBaseName).arg(daysAhead);
        return;
    }
    const double seconds = (m_rise->utc - now) * secondsPerDay;
    texts.nextRise = QStringLiteral("%1 rises in %2").arg(satellite.strBaseName, Countdown(seconds));
    texts.isRiseNear = m_notice.IsNear(m_rise->utc, m_rise->maxElevation, now);
    if (texts.isRiseNear && m_notice.TellOnce(question.object, m_rise->utc))
        m_riseNotice =
            QStringLiteral("%1, up to %2°").arg(texts.nextRise).arg(m_rise->maxElevation, 0, 'f', 0);
}

void StationStatus::FindRise(const Question& question, DateTime now) {
    m_question = question;
    m_rise.reset();
    m_askedAt = now;
    m_notice.SetWish({Settings::NumberOf(m_station.cIni, Settings::noticeMinutes),
                      Settings::NumberOf(m_station.cIni, Settings::noticeMinElevation)});
    const SatPasses answer = m_station.cSats.PassesOf({.object = question.object.toStdString(),
                                                       .latitude = question.latitude,
                                                       .longitude = question.longitude,
                                                       .startUtc = now,
                                                       .days = daysAhead,
                                                       .most = 1});
    if (!answer.passes.empty())
        m_rise = Rise{answer.passes.front().riseUtc, answer.passes.front().maxElevation};
}

QString StationStatus::TakeRiseNotice() {
    return std::exchange(m_riseNotice, {});
}
