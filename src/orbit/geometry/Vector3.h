#pragma once

#include <cmath>

namespace orbitmath {

/// Three Cartesian components; the unit and the frame are the user's.
struct Vector3 {
    double x = 0;
    double y = 0;
    double z = 0;

    friend constexpr Vector3 operator+(const Vector3& a, const Vector3& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr Vector3 operator-(const Vector3& a, const Vector3& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr Vector3 operator*(double s, const Vector3& a) { return {s * a.x, s * a.y, s * a.z}; }
    friend constexpr bool operator==(const Vector3&, const Vector3&) = default;
};

constexpr double Dot(const Vector3& a, const Vector3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double Length(const Vector3& a) {
    return std::sqrt(Dot(a, a));
}

} // namespace orbitmath
