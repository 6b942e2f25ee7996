#include "orbit/service/KVRSatLib.h"

#include "orbit/elements/ElementFile.h"
#include "orbit/sgp4/SiderealTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <iostream>

using namespace orbitmath;

namespace {

constexpr double wholePhase = 256; // of a turn

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
    const std::chrono::sys_seconds time{
        std::chrono::seconds(seconds - dayOf1970 * static_cast<std::int64_t>(secondsPerDay))};
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

double MinutesAfterEpoch(double utc, const Elements& elements) {
    return (utc - elements.epochUtc) * minutesPerDay;
}

/// Ready for as far as the clock is away from the epoch: old elements are asked for again and again.
Propagator MakePropagator(const Elements& elements, double utc) {
    constexpr double tenDays = 10 * minutesPerDay;
    constexpr double sixtyDays = 60 * minutesPerDay;
    return Propagator(elements, std::clamp(std::abs(MinutesAfterEpoch(utc, elements)) + tenDays, sixtyDays,
                                           Propagator::farthest));
}

ElementSource SourceOf(const Elements& elements, std::string_view name, const std::string& file,
                       std::size_t line, ElementFormat format) {
    return {.name = std::string(name),
            .file = file,
            .epochUtc = elements.epochUtc,
            .meanMotion = elements.meanMotion * (minutesPerDay / twoPi),
            .number = elements.number,
            .line = line,
            .format = NameOf(format)};
}

std::string_view WhyNot(PropagationError error) {
    switch (error) {
    case PropagationError::None:
        return {};
    case PropagationError::Decayed:
        return "by these elements it has fallen to the earth, or its orbit goes through it";
    case PropagationError::OutOfRange:
        return "these elements, or the time, are out of all bounds";
    case PropagationError::MeanEccentricity:
    case PropagationError::MeanMotion:
    case PropagationError::PerturbedEccentricity:
    case PropagationError::SemiLatusRectum:
        break;
    }
    return "these elements give no orbit at this time: they are too old, or were never right";
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
    m_path = path;
    m_folder = std::move(*folder);
    ForgetTracks();
    return true;
}

void KVRSatLib::ForgetTracks() {
    m_cache->last = nullptr;
    m_cache->byName.clear();
    m_cache->propagators.clear();
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

const Propagator* KVRSatLib::Track(const std::string& object, double utc) const {
    const Cache::Named* const last = m_cache->last.load(std::memory_order_acquire);
    if (last != nullptr && last->first == object)
        return last->second;
    const std::lock_guard guard(m_cache->lock);
    auto named = m_cache->byName.find(object);
    if (named == m_cache->byName.end()) {
        const ElementSet* set = m_folder.Find(object);
        if (set == nullptr)
            return nullptr;
        auto known = m_cache->propagators.find(set->elements.number);
        if (known == m_cache->propagators.end())
            known =
                m_cache->propagators.emplace(set->elements.number, MakePropagator(set->elements, utc)).first;
        named = m_cache->byName.emplace(object, &known->second).first;
    }
    m_cache->last.store(&*named, std::memory_order_release);
    return named->second;
}

std::optional<LibraryPosition> KVRSatLib::Position(const std::string& object, double libraryTime,
                                                   double thresholdDegrees) const {
    const double utc = libraryTime - julianDateOfZero;
    if (!std::isfinite(utc) || std::isnan(thresholdDegrees))
        return {};
    const Propagator* propagator = Track(object, utc);
    if (propagator == nullptr)
        return {};
    const Propagation found =
        propagator->At(MinutesAfterEpoch(utc, propagator->GetElements()), SiderealTime(utc));
    if (!found)
        return {};
    const EarthState earth = OnEarth(found.state);
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
    position.phase = Turned(found.state.meanAnomaly) * (wholePhase / twoPi);
    return position;
}

std::optional<PassList> KVRSatLib::Passes(const std::string& object, double startUtc, int passesPerDay,
                                          int days) const {
    const Propagator* propagator = std::isfinite(startUtc) ? Track(object, startUtc) : nullptr;
    if (propagator == nullptr)
        return {};
    const std::int64_t most = std::int64_t{std::max(passesPerDay, 0)} * std::max(days, 0);
    return FindPasses(*propagator, m_observer, startUtc, days, static_cast<std::size_t>(most));
}

std::optional<std::string> KVRSatLib::ListPasses(const std::string& object, double startUtc, int passesPerDay,
                                                 int days, std::int32_t /*reserved1*/,
                                                 std::int32_t /*reserved2*/) const {
    const std::optional<PassList> found = Passes(object, startUtc, passesPerDay, days);
    if (!found || found->error != PropagationError::None)
        return {};
    std::string list;
    for (const Pass& pass : found->passes)
        AppendItem(pass, list);
    return list;
}

SatPasses KVRSatLib::PassesOf(const PassQuery& query) const {
    const ElementSet* set = m_folder.Find(query.object);
    if (set == nullptr)
        return {.fault = SatPasses::Fault::UnknownObject, .passes = {}};
    if (!(std::abs(query.latitude) <= 90 && query.longitude >= -180 && query.longitude <= 360) ||
        !std::isfinite(query.startUtc) || !(query.days >= 0 && query.days <= longestSearchDays))
        return {.fault = SatPasses::Fault::NoPlace, .passes = {}};
    // Made for this one question: one that many objects are asked keeps none of them.
    const Propagator propagator = MakePropagator(set->elements, query.startUtc);
    const PassList found = FindPasses(propagator, Observer(query.latitude, query.longitude), query.startUtc,
                                      query.days, query.most);
    if (found.error != PropagationError::None)
        return {.fault = SatPasses::Fault::NoPosition, .passes = {}};
    SatPasses answer;
    answer.passes.reserve(found.passes.size());
    for (const Pass& pass : found.passes) {
        answer.passes.push_back({.riseUtc = pass.riseUtc,
                                 .culminationUtc = pass.highestUtc,
                                 .setUtc = pass.setUtc,
                                 .riseAzimuth = pass.riseAzimuth / radiansPerDegree,
                                 .setAzimuth = pass.setAzimuth / radiansPerDegree,
                                 .maxElevation = pass.maxElevation / radiansPerDegree,
                                 .durationSeconds = (pass.setUtc - pass.riseUtc) * secondsPerDay,
                                 .sets = pass.sets});
    }
    return answer;
}

std::optional<double> KVRSatLib::ConvertTime(double utc) const {
    constexpr double farthest =
        1e7; // days; beyond it a Julian date would lose more than a tenth of a millisecond
    if (!(std::abs(utc) < farthest))
        return {};
    return utc + julianDateOfZero;
}

std::optional<ElementSource> KVRSatLib::ElementsOf(const std::string& object) const {
    const ElementSet* set = m_folder.Find(object);
    if (set == nullptr)
        return {};
    return SourceOf(set->elements, set->name, m_folder.FileOf(*set), set->line, set->format);
}

std::string KVRSatLib::WhyNoPosition(const std::string& object, double utc) const {
    const std::optional<ElementSource> source = ElementsOf(object);
    const Propagator* propagator = source && std::isfinite(utc) ? Track(object, utc) : nullptr;
    if (propagator == nullptr)
        return {};
    const Propagation found = propagator->At(MinutesAfterEpoch(utc, propagator->GetElements()));
    if (found)
        return {};
    return source->file + ", line " + std::to_string(source->line) + ": " + std::string(WhyNot(found.error));
}

std::string KVRSatLib::ElementTextOf(const std::string& object) const {
    const ElementSet* set = m_folder.Find(object);
    if (set == nullptr)
        return {};
    std::string text;
    ReadElementFile(m_path + '/' + m_folder.FileOf(*set), [&](const ElementRecord& record) {
        const auto* elements = std::get_if<Elements>(&record.content);
        if (elements != nullptr && elements->number == set->elements.number &&
            elements->epochUtc == set->elements.epochUtc)
            text = record.Text();
        return text.empty();
    });
    return text;
}

bool KVRSatLib::ForEachElementSet(const TakeSource& take) const {
    const std::optional<std::vector<std::string>> files = ElementFilesIn(m_path);
    if (!files)
        return false;
    for (const std::string& file : *files) {
        ReadElementFile(m_path + '/' + file, [&](const ElementRecord& record) {
            if (const auto* elements = std::get_if<Elements>(&record.content))
                take(SourceOf(*elements, record.name, file, record.line, record.format));
            return true;
        });
    }
    return true;
}
