#include "telemetry/calibration/ChannelMap.h"

#include "telemetry/calibration/Inside.h"

void ChannelMap::BuildChannelMap() {
    constexpr qint16 power = 0;
    constexpr qint16 current = 1;
    constexpr qint16 temp = 2;
    // The two sides are built differently, and so are their rows here.
    m_cells = {{{{
                    {{{current, 1}, {current, 5}, {current, 3}, {current, 2}}},
                    {{{temp, 3}, {temp, 8}, {temp, 9}, {temp, 5}}},
                    {{{temp, 1}, {temp, 7}, {current, 4}, {current, 7}}},
                    {{{power, 1}, {power, 2}, {power, 3}, {power, 4}}},
                }},
                {{
                    {{{current, 2}, {current, 6}, {current, 4}, {current, 1}}},
                    {{{temp, 4}, {temp, 8}, {temp, 9}, {temp, 6}}},
                    {{{temp, 2}, {temp, 7}, {current, 3}, {current, 7}}},
                    {{{power, 1}, {power, 2}, {power, 3}, {power, 4}}},
                }}}};
}

const ChannelCell* ChannelMap::At(int side, int frameType, int channel) const {
    if (!Inside(side, sides) || !Inside(frameType, frameTypes) || !Inside(channel, channels))
        return nullptr;
    return &m_cells[static_cast<std::size_t>(side)][static_cast<std::size_t>(frameType)]
                   [static_cast<std::size_t>(channel)];
}
