#include "orbit/elements/Omm.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <numbers>

namespace orbitmath {

namespace {

enum Place : std::size_t {
    Name,
    Number,
    EpochPlace,
    MeanMotion,
    Eccentricity,
    Inclination,
    Node,
    Perigee,
    Anomaly,
    Bstar,
    MeanMotionDot,
    MeanMotionDdot,
    EphemerisType,
    Theory,
    CenterName,
    RefFrame,
    TimeSystem
};
static_assert(ommKeywords[Name] == "OBJECT_NAME" && ommKeywords[Number] == "NORAD_CAT_ID" &&
              ommKeywords[Bstar] == "BSTAR" && ommKeywords[TimeSystem] == "TIME_SYSTEM");

ElementFault FaultAt(Place place, std::string_view what) {
    return {.field = ommKeywords[place], .what = what};
}

/// The nearest double to a finite decimal number.
std::optional<double> Decimal(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || last != end || !std::isfinite(value))
        return {};
    return value;
}

/// Digits and nothing else.
std::optional<int> Whole(std::string_view text) {
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return {};
        value = value * 10 + (c - '0');
    }
    return text.empty() ? std::nullopt : std::optional(value);
}

/// "2026-11-21" or "2026-325".
std::optional<std::chrono::sys_days> Day(std::string_view text) {
    using namespace std::chrono;
    if ((text.size() != 10 || text[7] != '-') && text.size() != 8)
        return {};
    const auto yearNumber = Whole(text.substr(0, 4));
    if (!yearNumber || text[4] != '-' || *yearNumber < 1957 || *yearNumber > 2056)
        return {};
    if (text.size() == 8) {
        const auto dayOfYear = Whole(text.substr(5));
        const int daysInYear = year(*yearNumber).is_leap() ? 366 : 365;
        if (!dayOfYear || *dayOfYear < 1 || *dayOfYear > daysInYear)
            return {};
        return sys_days(year(*yearNumber) / January / 1) + days(*dayOfYear - 1);
    }
    const auto monthNumber = Whole(text.substr(5, 2));
    const auto dayNumber = Whole(text.substr(8));
    if (!monthNumber || !dayNumber)
        return {};
    const year_month_day date(year(*yearNumber), month(static_cast<unsigned>(*monthNumber)),
                              day(static_cast<unsigned>(*dayNumber)));
    return date.ok() ? std::optional(sys_days(date)) : std::nullopt;
}

/// Microseconds of ".1" to ".123456"; what stands behind these digits is cut off.
std::optional<int> Microseconds(std::string_view fraction) {
    constexpr std::size_t digits = 6;
    if (fraction.empty())
        return 0;
    if (fraction.size() < 2 || fraction.front() != '.')
        return {};
    fraction.remove_prefix(1);
    if (!std::ranges::all_of(fraction, [](char c) { return c >= '0' && c <= '9'; }))
        return {};
    const std::size_t count = std::min(fraction.size(), digits);
    int value = *Whole(fraction.substr(0, count));
    for (std::size_t k = count; k < digits; ++k)
        value *= 10;
    return value;
}

/// The date-time of "2026-11-21T15:28:43.120000", with or without a "Z".
std::optional<double> Epoch(std::string_view text) {
    using namespace std::chrono;
    if (text.ends_with('Z'))
        text.remove_suffix(1);
    const std::size_t t = text.find('T');
    if (t == std::string_view::npos || text.size() < t + 9 || text[t + 3] != ':' || text[t + 6] != ':')
        return {};
    const auto day = Day(text.substr(0, t));
    const auto hour = Whole(text.substr(t + 1, 2));
    const auto minute = Whole(text.substr(t + 4, 2));
    const auto second = Whole(text.substr(t + 7, 2));
    const auto fraction = Microseconds(text.substr(t + 9));
    if (!day || !hour || !minute || !second || !fraction || *hour > 23 || *minute > 59 || *second > 59)
        return {};
    // Counted from 1949-12-31 as propagators are used to: the same rounding gives the same last digit.
    constexpr sys_days start = 1949y / December / 31;
    constexpr double dayOfStart = 18263;
    const auto time = microseconds(*day - start) + hours(*hour) + minutes(*minute) + seconds(*second) +
                      microseconds(*fraction);
    return static_cast<double>(time.count()) / 1e6 / 86400.0 + dayOfStart;
}

/// What the message says about its theory and its frame, where it says it.
std::optional<ElementFault> FaultOfTheory(const OmmFields& fields) {
    const std::string_view type = fields[EphemerisType];
    if (type == "4" || fields[Theory] == "SGP4-XP")
        return FaultAt(type == "4" ? EphemerisType : Theory, sgp4Xp);
    const auto isOneOf = [](std::string_view value, auto... known) {
        return value.empty() || ((value == known) || ...);
    };
    if (!isOneOf(type, "0", "2", "3"))
        return FaultAt(EphemerisType, "elements of another theory than SGP4");
    if (!isOneOf(fields[Theory], "SGP4", "SGP/SGP4", "SGP4/SDP4", "SDP4"))
        return FaultAt(Theory, "elements of another theory than SGP4");
    if (!isOneOf(fields[CenterName], "EARTH", "Earth"))
        return FaultAt(CenterName, "it does not circle the earth");
    if (!isOneOf(fields[RefFrame], "TEME"))
        return FaultAt(RefFrame, "elements in another frame than TEME");
    if (!isOneOf(fields[TimeSystem], "UTC"))
        return FaultAt(TimeSystem, "a time other than UTC");
    return {};
}

std::optional<ElementFault> ReadAngles(const OmmFields& fields, Elements& elements) {
    const struct {
        Place place;
        double greatest; // degrees
        double* element;
        std::string_view fault;
    } angles[] = {
        {Inclination, 180, &elements.inclination, "it is no angle from 0 to 180 degrees"},
        {Node, 360, &elements.node, "it is no angle from 0 to 360 degrees"},
        {Perigee, 360, &elements.argumentOfPerigee, "it is no angle from 0 to 360 degrees"},
        {Anomaly, 360, &elements.meanAnomaly, "it is no angle from 0 to 360 degrees"},
    };
    for (const auto& angle : angles) {
        const std::optional<double> degrees = Decimal(fields[angle.place]);
        if (!degrees || !(*degrees >= 0 && *degrees <= angle.greatest))
            return FaultAt(angle.place, angle.fault);
        *angle.element = *degrees * radiansPerDegree;
    }
    return {};
}

std::optional<ElementFault> ReadMotion(const OmmFields& fields, Elements& elements) {
    constexpr double mostRevolutions = 20; // a day; the surface itself is passed 17 times
    const std::optional<double> revolutions = Decimal(fields[MeanMotion]);
    if (!revolutions || !(*revolutions > 0 && *revolutions < mostRevolutions))
        return FaultAt(MeanMotion, "the mean motion is no number or cannot be");
    const std::optional<double> eccentricity = Decimal(fields[Eccentricity]);
    if (!eccentricity || !(*eccentricity >= 0 && *eccentricity <= 0.9999999))
        return FaultAt(Eccentricity, "it is no number from 0 to 0.9999999");
    const std::optional<double> bstar = Decimal(fields[Bstar]);
    if (!bstar)
        return FaultAt(Bstar, "the drag term is no number");
    for (const Place derivative : {MeanMotionDot, MeanMotionDdot}) {
        if (!fields[derivative].empty() && !Decimal(fields[derivative]))
            return FaultAt(derivative, "it is no number");
    }
    elements.meanMotion = *revolutions / (minutesPerDay / 2) * std::numbers::pi;
    elements.eccentricity = *eccentricity;
    elements.bstar = *bstar;
    return {};
}

} // namespace

std::optional<std::size_t> OmmPlace(std::string_view keyword) {
    const auto place = std::ranges::find(ommKeywords, keyword);
    return place == ommKeywords.end() ? std::nullopt
                                      : std::optional(static_cast<std::size_t>(place - ommKeywords.begin()));
}

std::variant<Elements, ElementFault> ReadOmm(const OmmFields& fields) {
    if (const auto fault = FaultOfTheory(fields))
        return *fault;
    for (const Place needed :
         {Number, EpochPlace, MeanMotion, Eccentricity, Inclination, Node, Perigee, Anomaly, Bstar}) {
        if (fields[needed].empty())
            return FaultAt(needed, "it is missing");
    }
    const std::optional<std::uint32_t> number = CatalogueNumber(fields[Number]);
    if (!number)
        return FaultAt(Number, "the catalogue number is none");
    const std::optional<double> epoch = Epoch(fields[EpochPlace]);
    if (!epoch)
        return FaultAt(EpochPlace, "it is no time from 1957 to 2056");
    Elements elements;
    elements.number = *number;
    elements.epochUtc = *epoch;
    if (const auto fault = ReadAngles(fields, elements))
        return *fault;
    if (const auto fault = ReadMotion(fields, elements))
        return *fault;
    return elements;
}

} // namespace orbitmath
