#include "telemetry/limits/ChannelLimits.h"

#include <QByteArrayView>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr std::array<const char*, 5> names{"low alarm", "low warning", "normal", "high warning",
                                           "high alarm"};
constexpr double backShare = 20.0; // a twentieth

// How far back across a limit a value must come.
double Margin(const std::optional<double>& low, const std::optional<double>& high) {
    return (low && high ? *high - *low : std::abs(low ? *low : *high)) / backShare;
}

} // namespace

QByteArrayView LevelName(Level level) {
    return names.at(static_cast<std::size_t>(static_cast<int>(level) + 2));
}

std::optional<Level> LevelOf(QByteArrayView name) {
    const auto found = std::ranges::find(names, name, [](const char* each) { return QByteArrayView(each); });
    return found == names.end()
               ? std::nullopt
               : std::optional(static_cast<Level>(static_cast<int>(found - names.begin()) - 2));
}

Level ChannelLimits::Outside(double value) const {
    if (lowAlarm && value < *lowAlarm)
        return Level::LowAlarm;
    if (highAlarm && value > *highAlarm)
        return Level::HighAlarm;
    if (lowWarning && value < *lowWarning)
        return Level::LowWarning;
    return highWarning && value > *highWarning ? Level::HighWarning : Level::Normal;
}

Level ChannelLimits::Judge(double value, Level before) const {
    const int outside = static_cast<int>(Outside(value));
    int level = static_cast<int>(before);
    if (level * outside < 0 || std::abs(outside) >= std::abs(level))
        return static_cast<Level>(outside);
    const int inwards = level > 0 ? -1 : 1;
    while (level != outside && IsBack(value, static_cast<Level>(level)))
        level += inwards;
    return static_cast<Level>(level);
}

// Whether a value has left a level behind it; there may be no limit of that level any more.
bool ChannelLimits::IsBack(double value, Level from) const {
    const bool isAlarm = from == Level::LowAlarm || from == Level::HighAlarm;
    const std::optional<double>& low = isAlarm ? lowAlarm : lowWarning;
    const std::optional<double>& high = isAlarm ? highAlarm : highWarning;
    if (from > Level::Normal)
        return !high || value <= *high - Margin(low, high);
    return !low || value >= *low + Margin(low, high);
}
