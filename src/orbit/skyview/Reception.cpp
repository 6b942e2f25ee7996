#include "orbit/skyview/Reception.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

constexpr int azimuthWidth = 360 / Reception::azimuths;
constexpr int elevationWidth = 90 / Reception::elevations;

} // namespace

void Reception::Add(const SkyPoint& direction) {
    const auto cell = [](double angle, int width, int cells) {
        return std::clamp(static_cast<int>(std::floor(angle / width)), 0, cells - 1);
    };
    const int azimuth = cell(direction.azimuth, azimuthWidth, azimuths);
    const int elevation = cell(direction.elevation, elevationWidth, elevations);
    ++m_cells[static_cast<std::size_t>(elevation * azimuths + azimuth)];
}

int Reception::Most() const {
    return *std::ranges::max_element(m_cells);
}

int Reception::Frames() const {
    return std::accumulate(m_cells.begin(), m_cells.end(), 0);
}

QByteArray Reception::Csv() const {
    QByteArray csv = "azimuth_from,azimuth_to,elevation_from,elevation_to,frames\r\n";
    for (int elevation = 0; elevation < elevations; ++elevation)
        for (int azimuth = 0; azimuth < azimuths; ++azimuth)
            for (const auto& [value, end] :
                 {std::pair(azimuth * azimuthWidth, ","), std::pair((azimuth + 1) * azimuthWidth, ","),
                  std::pair(elevation * elevationWidth, ","),
                  std::pair((elevation + 1) * elevationWidth, ","),
                  std::pair(In(azimuth, elevation), "\r\n")})
                csv += QByteArray::number(value) + end;
    return csv;
}

ReceptionSum::ReceptionSum(std::vector<DateTime> frames, DirectionAt directionAt)
    : m_frames(std::move(frames))
    , m_directionAt(std::move(directionAt)) {}

bool ReceptionSum::Step(std::size_t count) {
    for (const std::size_t end = m_next + std::min(count, m_frames.size() - m_next); m_next < end; ++m_next) {
        if (const std::optional<SkyPoint> direction = m_directionAt(m_frames[m_next]))
            m_sum.Add(*direction);
        else
            m_sum.AddUnknown();
    }
    return !IsDone();
}
