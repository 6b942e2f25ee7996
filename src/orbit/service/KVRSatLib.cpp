#include "orbit/service/KVRSatLib.h"

#include "orbit/sgp4/SiderealTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <iostream>

using namespace orbitmath;

namespace {

constexpr double secondsPerDay = 86400;

/// Two decimals and ".", whatever the locale.
std::string TwoDecimals(double value) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 2);
    return {text.data(), end.ptr};
}

std::string Digits(std::int64_t value, std::size_t width) {
    std::string digits = std::to_string(value);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

/// "yyyymmddhhmmss" of whole seconds since 1899-12-30 00:00.
std::string Stamp(std::int64_t seconds) {
    constexpr std::int64_t dayOf1970 = 25569;
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds - dayOf1970 * 86400)};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    return Digits(static_cast<int>(date.year()), 4) + Digits(static_cast<unsigned>(date.month()), 2) +
           Digits(static_cast<unsigned>(date.day()), 2) + Digits(clock.hours().count(), 2) +
           Digits(clock.minutes().count(), 2) + Digits(clock.seconds().count(), 2);
}

void AppendItem(const Pass& pass, std::string& list) {
    const auto start = static_cast<std::int64_t>(std::ceil(pass.riseUtc * secondsPerDay));
    const auto duration = static_cast<std::int64_t>((pass.setUtc - pass.riseUtc) * secondsPerDay);
    list += list.empty() ? "(" : ",(";
    list += Stamp(start);
    for (const double angle : {pass.riseAzimuth, pass.setAzimuth, pass.maxElevation}) {
        list += ' ';
        list += TwoDecimals(angle / radiansPerDegree);
    }
    list += ' ';
    list += std::to_string(duration);
    list += ')';
}

} // namespace

KVRSatLib::KVRSatLib()
    : KVRSatLib([](const std::string& line) { std::cerr << line << '\n'; }) {}

KVRSatLib::KVRSatLib(ElementFolder::Report report)
    : m_report(std::move(report)) {}

bool KVRSatLib::SetElementFolder(const std::string& path) {
    std::optional<ElementFolder> folder = ElementFolder::Read(path, m_report);
    if (!folder)
        return false;
    m_folder = std::move(*folder);
    m_propagators.clear();
    m_last = {};
    return true;
}

bool KVRSatLib::SetObserverLatitude(double degrees) {
    if (!(degrees >= -90 && degrees <= 90))
        return false;
    m_latitude = degrees;
    m_observer = Observer(m_latitude, m_longitude);
    return true;
}

bool KVRSatLib::SetObserverLongitude(double degreesEast) {
    if (!(degreesEast >= 0 && degreesEast <= 360))
        return false;
    m_longitude = degreesEast;
    m_observer = Observer(m_latitude, m_longitude);
    return true;
}

const KVRSatLib::Tracked* KVRSatLib::Track(const std::string& object, double utc) {
    if (m_last.set && m_last.object == object)
        return &m_last;
    const ElementSet* set = m_folder.Find(object);
    if (!set)
        return nullptr;
    const Elements& elements = set->elements;
    auto known = m_propagators.find(elements.number);
    if (known == m_propagators.end()) {
        // Ready for as far as the clock is away from the epoch: old elements are asked for again and again.
        constexpr double tenDays = 10 * 1440;
        constexpr double sixtyDays = 60 * 1440;
        const double ready =
            std::clamp(std::abs(utc - elements.epochUtc) * 1440 + tenDays, sixtyDays, Propagator::farthest);
        known = m_propagators.emplace(elements.number, Propagator(elements, ready)).first;
    }
    m_last = {object, set, &known->second};
    return &m_last;
}

std::optional<LibraryPosition> KVRSatLib::Position(const std::string& object, double libraryTime,
                                                   double thresholdDegrees) {
    const double utc = libraryTime - julianDateOfZero;
    if (!std::isfinite(utc) || std::isnan(thresholdDegrees))
        return {};
    const Tracked* tracked = Track(object, utc);
    if (!tracked)
        return {};
    const Propagation found = tracked->propagator->At((utc - tracked->set->elements.epochUtc) * 1440);
    if (!found)
        return {};
    const EarthState earth = ToEarth(found.state, SiderealTime(utc));
    const LookAngles look = m_observer.Look(earth);
    const Geodetic point = ToGeodetic(earth.position);

    LibraryPosition position;
    position.visible = look.elevation > thresholdDegrees * radiansPerDegree;
    position.south = point.latitude < 0;
    position.azimuth = look.azimuth;
    position.elevation = look.elevation;
    position.longitude = point.longitude;
    position.latitude = point.latitude;
    position.range = look.range;
    position.rangeRate = look.rangeRate;
    position.altitude = point.altitude;
    position.phase = Turned(found.state.meanAnomaly) * (256 / twoPi);
    return position;
}

std::optional<PassList> KVRSatLib::Passes(const std::string& object, double startUtc, int passesPerDay,
                                          int days) {
    const Tracked* tracked = std::isfinite(startUtc) ? Track(object, startUtc) : nullptr;
    if (!tracked)
        return {};
    const std::int64_t most = std::int64_t{std::max(passesPerDay, 0)} * std::max(days, 0);
    return FindPasses(*tracked->propagator, m_observer, startUtc, days, static_cast<std::size_t>(most));
}

std::optional<std::string> KVRSatLib::ListPasses(const std::string& object, double startUtc, int passesPerDay,
                                                 int days, std::int32_t /*reserved1*/,
                                                 std::int32_t /*reserved2*/) {
    const std::optional<PassList> found = Passes(object, startUtc, passesPerDay, days);
    if (!found || found->error != PropagationError::None)
        return {};
    std::string list;
    for (const Pass& pass : found->passes)
        AppendItem(pass, list);
    return list;
}

std::optional<double> KVRSatLib::ConvertTime(double utc) {
    constexpr double farthest =
        1e7; // days; beyond it a Julian date would lose more than a tenth of a millisecond
    if (!(std::abs(utc) < farthest))
        return {};
    return utc + julianDateOfZero;
}

std::optional<ElementSource> KVRSatLib::ElementsOf(const std::string& object) const {
    const ElementSet* set = m_folder.Find(object);
    if (!set)
        return {};
    return ElementSource{.name = set->name,
                         .file = m_folder.FileOf(*set),
                         .epochUtc = set->elements.epochUtc,
                         .meanMotion = set->elements.meanMotion * (1440 / twoPi)};
}
