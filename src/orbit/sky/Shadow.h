#pragma once

#include "orbit/geometry/Vector3.h"

namespace orbitmath {

/// What a satellite has of the sun.
enum class Light {
    Sunlit,
    Penumbra, ///< the earth covers a part of the sun's disc
    Umbra,    ///< it covers all of it
};

/// The light at a place, by the cones that touch sun and earth, the earth a sphere of its equatorial radius
/// without air (O. Montenbruck and E. Gill, Satellite Orbits, section 3.4.2). Both places in km from the
/// centre of the earth, in any frame that they share.
Light LightAt(const Vector3& satellite, const Vector3& sun);

} // namespace orbitmath
