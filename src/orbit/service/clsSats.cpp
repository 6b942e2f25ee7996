#include "orbit/service/clsSats.h"

#include "foundation/text/Text.h"
#include "orbit/service/LatLongText.h"
#include "orbit/service/PassTable.h"

#include <QFile>

#include <cmath>
#include <numbers>

namespace {

constexpr double degreesPerRadian = 180.0 / std::numbers::pi;

constexpr int daysOfNextPass = 2;

} // namespace

clsSats::clsSats(std::unique_ptr<OrbitLibrary> library, const Clock& clock)
    : m_library(std::move(library))
    , m_clock(clock) {}

bool clsSats::setStrKeplerPath(const QString& strKeplerPath) {
    return m_library->SetElementFolder(QFile::encodeName(strKeplerPath).toStdString());
}

bool clsSats::setDblObsLat(double dblL) {
    return m_library->SetObserverLatitude(dblL);
}

bool clsSats::setDblObsLong(double dblL) {
    return m_library->SetObserverLongitude(dblL < 0.0 ? dblL + 360.0 : dblL);
}

DateTime clsSats::datGmtTime() const {
    return FromCalendar(m_clock.Utc());
}

DateTime clsSats::datTime() const {
    return m_blnLocalTime ? FromCalendar(m_clock.Local()) : datGmtTime();
}

DateTime clsSats::datTimeAt(qint64 utc) const {
    const CalendarRecord record = Clock::UtcAt(utc);
    return FromCalendar(m_blnLocalTime ? m_clock.LocalOf(record) : record);
}

DateTime clsSats::GmtToLocal(DateTime datT) const {
    const CalendarRecord utc = ToCalendar(datT);
    const bool isDate = std::abs(FromCalendar(utc) - datT) < 1.0; // what is none became day 0
    const std::optional<CalendarRecord> local = isDate ? m_clock.ToLocal(utc) : std::nullopt;
    return local ? FromCalendar(*local) : datT;
}

double clsSats::DateToJulianDate(DateTime datT) {
    return 2450000.0 + (datT - (DateOf(1995, 10, 9) + 0.5));
}

std::optional<SatPosition> clsSats::PositionAt(const QString& strSat, DateTime datT,
                                               double dblThresholdDeg) const {
    const std::optional<double> time = m_library->ConvertTime(datT);
    if (!time)
        return std::nullopt;
    const std::optional<LibraryPosition> answer =
        m_library->Position(strSat.toStdString(), *time, dblThresholdDeg);
    if (!answer)
        return std::nullopt;
    const double longitude = answer->longitude * degreesPerRadian;
    return SatPosition{.blnvisible = answer->visible,
                       .blnSouth = answer->south,
                       .dblAz = answer->azimuth * degreesPerRadian,
                       .dblEl = answer->elevation * degreesPerRadian,
                       .dblLat = answer->latitude * degreesPerRadian,
                       .dblLong = longitude > 180.0 ? longitude - 360.0 : longitude,
                       .dblRange = answer->range,
                       .dblRangeRate = answer->rangeRate,
                       .dblAltitude = answer->altitude,
                       .dblPhase = answer->phase};
}

std::optional<SatInfo> clsSats::SatInfoAt(const QString& strSat, DateTime datT, Due due) const {
    SatInfo info;
    const bool done =
        GetSatInfo(info.blnvisible, strSat, datT, 0.0, info.blnSouth, info.dblAz, info.dblEl, info.dblLong,
                   info.dblLat, info.strLong, info.strLat, info.dblRange, info.dblRangeRate, info.dblAltitude,
                   info.dblPhase, due == Due::Yes ? &info.strDue : nullptr);
    return done ? std::optional(info) : std::nullopt;
}

bool clsSats::GetSatInfo(bool& blnvisible, const QString& strSat, DateTime datT, double dblThresholdDeg,
                         bool& blnSouth, double& dblAz, double& dblEl, double& dblLong, double& dblLat,
                         QString& strLong, QString& strLat, double& dblRange, double& dblRangeRate,
                         double& dblAltitude, double& dblPhase, QString* strDue) const {
    const std::optional<SatPosition> position = PositionAt(strSat, datT, dblThresholdDeg);
    if (!position)
        return false;
    const std::optional<QString> latitude = LatLongText::Latitude(position->dblLat);
    const std::optional<QString> longitude = LatLongText::Longitude(position->dblLong);
    if (!latitude || !longitude)
        return false;
    if (strDue != nullptr) {
        const std::optional<DateTime> next =
            position->blnvisible ? std::optional(0.0) : GetNextPassTime(strSat);
        if (!next)
            return false;
        *strDue = position->blnvisible ? QStringLiteral("Now!") : FormatDateTime(*next, u"hh:nn:ss");
    }
    blnvisible = position->blnvisible;
    blnSouth = position->blnSouth;
    dblAz = position->dblAz;
    dblEl = position->dblEl;
    dblLong = position->dblLong;
    dblLat = position->dblLat;
    strLong = *longitude;
    strLat = *latitude;
    dblRange = position->dblRange;
    dblRangeRate = position->dblRangeRate;
    dblAltitude = position->dblAltitude;
    dblPhase = position->dblPhase;
    return true;
}

std::optional<DateTime> clsSats::GetNextPassTime(const QString& strSat) const {
    const DateTime now = datGmtTime();
    const std::optional<std::string> passes =
        m_library->ListPasses(strSat.toStdString(), std::floor(now), passesPerDay, daysOfNextPass, 0, 0);
    const std::optional<DateTime> next = passes ? PassList::NextStart(*passes, now) : std::nullopt;
    return next ? std::optional(ToDisplayTime(*next)) : std::nullopt;
}

std::optional<qint16> clsSats::AzimuthAt(const QString& strSat, DateTime datT) const {
    const std::optional<SatPosition> position = PositionAt(strSat, datT);
    return position ? Text::RoundToInt16(position->dblAz) : std::nullopt;
}

clsSats::PassInfo clsSats::PassInfoOf(const QString& strObject) const {
    const DateTime now = datGmtTime();
    const std::optional<std::string> passes =
        m_library->ListPasses(strObject.toStdString(), now, passesPerDay, daysOfTable, 0, 0);
    if (!passes)
        return {};
    std::vector<DateTime> starts;
    PassTable table(m_blnLocalTime ? PassTable::Zone::Local : PassTable::Zone::Utc, PassTable::Names::None);
    for (const std::string_view item : PassList::Items(*passes)) {
        const std::optional<Pass> pass = PassList::Parse(item);
        const std::optional<PassEnds> ends = pass ? EndsOf(strObject, *pass) : std::nullopt;
        if (!ends)
            return {};
        AddToTable(table, *pass, *ends);
        starts.push_back(pass->startUtc);
    }
    return {table.Text(), std::move(starts), now};
}

std::optional<clsSats::PassEnds> clsSats::EndsOf(const QString& strObject, const Pass& pass) const {
    const std::optional<qint16> startAzimuth = AzimuthAt(strObject, pass.startUtc);
    const std::optional<qint16> endAzimuth =
        AzimuthAt(strObject, pass.startUtc + pass.durationSeconds / secondsPerDay);
    return startAzimuth && endAzimuth ? std::optional(PassEnds{*startAzimuth, *endAzimuth}) : std::nullopt;
}

void clsSats::AddToTable(PassTable& table, const Pass& pass, const PassEnds& ends,
                         const QString& name) const {
    table.Add(ToDisplayTime(pass.startUtc), pass, ends.startAzimuth, ends.endAzimuth, name);
}

std::optional<ElementSource> clsSats::ElementsOf(const QString& strSat) const {
    return m_library->ElementsOf(strSat.toStdString());
}

QByteArray clsSats::ElementTextOf(const QString& strSat) const {
    return QByteArray::fromStdString(m_library->ElementTextOf(strSat.toStdString()));
}

QString clsSats::WhyNoPosition(const QString& strSat) const {
    return QFile::decodeName(
        QByteArray::fromStdString(m_library->WhyNoPosition(strSat.toStdString(), datGmtTime())));
}
