#pragma once

#include "orbit/geometry/Vector3.h"
#include "orbit/map/MapGeometry.h"

#include <cstdint>
#include <vector>

namespace MapGeometry {

/// How dark it is where the map's pixels lie, line by line: 0 by day, then one more below each of
/// `orbitmath::twilights`, so 4 at night. `sun`: its place over the earth.
std::vector<std::uint8_t> NightLevels(const orbitmath::Vector3& sun, int width, int height);

/// The terminator: where the sun's centre stands on the horizon.
std::vector<Piece> Terminator(const orbitmath::Vector3& sun);

} // namespace MapGeometry
