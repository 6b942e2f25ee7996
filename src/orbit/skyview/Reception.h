#pragma once

#include "orbit/skyview/SkyPath.h"

#include <QByteArray>

#include <array>
#include <functional>
#include <optional>
#include <vector>

/// When frames of the satellite whose telemetry is decoded were heard, from one time to another, UTC, in
/// order.
using HeardBetween = std::function<std::vector<DateTime>(DateTime from, DateTime to)>;

/// Where that satellite stood at a time (UTC) by the elements of that time; nothing where there are none.
using DirectionAt = std::function<std::optional<SkyPoint>(DateTime utc)>;

/// Where in the sky frames were heard: their numbers in cells of direction.
class Reception {
public:
    static constexpr int azimuths = 24;  ///< cells around, 15 degrees each, the first from north to east
    static constexpr int elevations = 9; ///< cells upwards, 10 degrees each, the first at the horizon

    /// Counts a frame. What is below the horizon counts as on it: elements are not exact.
    void Add(const SkyPoint& direction);
    void AddUnknown() { ++m_unknown; }

    int In(int azimuth, int elevation) const {
        return m_cells[static_cast<std::size_t>(elevation * azimuths + azimuth)];
    }
    int Most() const;
    int Frames() const;                       ///< with a direction
    int Unknown() const { return m_unknown; } ///< without elements of their time

    /// "azimuth_from,azimuth_to,elevation_from,elevation_to,frames", a line each cell, ended by CR LF.
    QByteArray Csv() const;

private:
    std::array<int, static_cast<std::size_t>(azimuths* elevations)> m_cells{};
    int m_unknown = 0;
};

/// Sums the reception of many frames up, some at a time, so that a window stays alive meanwhile.
class ReceptionSum {
public:
    ReceptionSum(std::vector<DateTime> frames, DirectionAt directionAt);

    /// Takes the next frames, `count` of them. False once all are taken.
    bool Step(std::size_t count);

    bool IsDone() const { return m_next == m_frames.size(); }
    const Reception& Sum() const { return m_sum; }

private:
    const std::vector<DateTime> m_frames;
    const DirectionAt m_directionAt;
    std::size_t m_next = 0;
    Reception m_sum;
};
