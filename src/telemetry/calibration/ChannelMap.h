#pragma once

#include <QtGlobal>

#include <array>

/// The place of a channel's value.
struct ChannelCell {
    qint16 grid = 0; ///< 0 POWER, 1 CURRENT, 2 TEMP
    qint16 row = 0;  ///< from 1
};

/// Which quantity each channel of a telemetry frame carries.
class ChannelMap {
public:
    static constexpr int sides = 2;
    static constexpr int frameTypes = 4;
    static constexpr int channels = 4;

    /// Fills the table; once, before the formulae are loaded.
    void BuildChannelMap();

    /// Null for an index outside the table.
    const ChannelCell* At(int side, int frameType, int channel) const;

private:
    std::array<std::array<std::array<ChannelCell, channels>, frameTypes>, sides> m_cells{};
};
