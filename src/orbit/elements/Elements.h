#pragma once

#include "orbit/geometry/SinCos.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace orbitmath {

/// The mean elements of one object, as a two-line set or an OMM carries them. Angles in radians.
struct Elements {
    std::uint32_t number = 0; ///< catalogue number, at most nine digits; of a two-line set at most 339,999
    double epochUtc = 0;      ///< days since 1899-12-30 00:00 UTC
    double inclination = 0;   ///< 0 to pi
    double node = 0;          ///< right ascension of the ascending node, 0 to 2 pi
    double eccentricity = 0;  ///< 0 to 0.9999999
    double argumentOfPerigee = 0; ///< 0 to 2 pi
    double meanAnomaly = 0;       ///< 0 to 2 pi
    double meanMotion = 0;        ///< Kozai's, radians per minute, above 0
    double bstar = 0;             ///< drag, per earth radius
};

/// Why elements are refused, and where.
struct ElementFault {
    int line = 1;                ///< of a two-line set: 1 or 2
    std::size_t column = 0;      ///< where it begins, counted from 1; 0: nowhere in particular
    std::string_view field = {}; ///< of an OMM: "EPOCH"; empty: nowhere in particular
    std::string_view what;       ///< "the checksum is wrong"
};

/// Said of elements that another propagator is needed for.
inline constexpr std::string_view sgp4Xp = "elements of another theory (SGP4-XP)";

/// Reads the two lines of a set. Columns are fixed; blanks at both ends are the caller's to cut off. Answers
/// the first fault when the set is damaged: wrong columns, a wrong checksum, values that cannot be.
///
/// Epochs are 1957 to 2056. Catalogue numbers are plain or of the Alpha-5 form (a letter but I and O, and
/// four digits).
std::variant<Elements, ElementFault> ReadElements(std::string_view line1, std::string_view line2);

/// The catalogue number written in `text` (blanks around it do not count): 1 to 9 digits, or Alpha-5. Nothing
/// when it is no number.
std::optional<std::uint32_t> CatalogueNumber(std::string_view text);

} // namespace orbitmath
