#pragma once

#include "telemetry/frames/HeardFrame.h"

#include <array>
#include <optional>
#include <span>

/// One decoded channel of a telemetry line. Its views hold as long as the call that hands it over; texts are
/// Windows-1252.
struct Reading {
    qint64 utc = 0;                ///< of arrival, milliseconds since 1970-01-01 00:00
    QByteArrayView source{};       ///< the callsign that sent it
    int side = 0;                  ///< 0 A, 1 B
    QByteArrayView sequence{};     ///< the line's first field
    int frameType = 0;             ///< 0 to 3
    int channel = 0;               ///< 0 to 3
    int grid = 0;                  ///< 0 POWER, 1 CURRENT, 2 TEMP
    int row = 0;                   ///< of the grid, from 1
    double raw = 0.0;              ///< as sent
    std::optional<double> value{}; ///< in the channel's unit; none where no formula converts it
};

/// One telemetry line of the satellite, with what was decoded from it.
struct TelemetryFrame {
    static constexpr std::size_t fieldsInLine = 9;
    static constexpr std::size_t channels = 4;

    qint64 utc = 0;
    HeardFrame::Origin origin = HeardFrame::Origin::Live;
    QByteArrayView source{};
    int side = 0;      ///< 0 A, 1 B
    int frameType = 0; ///< outside 0 to 3 it names no channels, and there are no readings
    QByteArrayView line{};
    std::array<QByteArrayView, fieldsInLine> fields{};

    std::array<Reading, channels> found{}; ///< the first `count` are set
    std::size_t count = 0;

    std::span<const Reading> Readings() const { return std::span(found).first(count); }
};
