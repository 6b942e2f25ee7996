#pragma once

#include <QString>

#include <array>
#include <map>
#include <optional>

/// How far a value lies outside its limits, from low to high.
enum class Level { LowAlarm = -2, LowWarning = -1, Normal = 0, HighWarning = 1, HighAlarm = 2 };

/// "low alarm", "low warning", "normal", "high warning", "high alarm".
QByteArrayView LevelName(Level level);

/// The level of this name; none for any other text.
std::optional<Level> LevelOf(QByteArrayView name);

/// What is known of a channel's values beside their calibration.
struct ChannelLimits {
    static constexpr int mostPersistence = 1000;

    QString unit; ///< empty: not known
    std::optional<double> lowAlarm;
    std::optional<double> lowWarning;
    std::optional<double> highWarning;
    std::optional<double> highAlarm;
    int persistence = 1; ///< readings in a row that a change of level takes

    /// The level of a value by the limits alone; a value at a limit is still inside.
    Level Outside(double value) const;

    /// The level of a value of a channel whose level was `before`. Back across a limit it takes a twentieth
    /// of the distance between the two limits of that level, or of the limit's magnitude where there is one
    /// only, so that noise does not ring.
    Level Judge(double value, Level before) const;

private:
    bool IsBack(double value, Level from) const;
};

/// A cell of the grids: side (0 A, 1 B), grid (0 POWER, 1 CURRENT, 2 TEMP) and row (from 1).
struct LimitCell {
    int side = 0;
    int grid = 0;
    int row = 0;

    auto operator<=>(const LimitCell&) const = default;
};

using LimitTable = std::map<LimitCell, ChannelLimits>;

/// A value that was heard longer ago than this is no longer the satellite's present one.
constexpr qint64 staleAfter = qint64{24} * 60 * 60 * 1000;

/// Both in milliseconds since 1970-01-01 00:00 UTC.
constexpr bool IsStale(qint64 heard, qint64 now) {
    return now - heard > staleAfter;
}
