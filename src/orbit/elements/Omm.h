#pragma once

#include "orbit/elements/Elements.h"

#include <array>

namespace orbitmath {

/// The keywords of an Orbit Mean-Elements Message (CCSDS 502.0) that count here.
inline constexpr std::array<std::string_view, 17> ommKeywords{
    "OBJECT_NAME",    "NORAD_CAT_ID",        "EPOCH",
    "MEAN_MOTION",    "ECCENTRICITY",        "INCLINATION",
    "RA_OF_ASC_NODE", "ARG_OF_PERICENTER",   "MEAN_ANOMALY",
    "BSTAR",          "MEAN_MOTION_DOT",     "MEAN_MOTION_DDOT",
    "EPHEMERIS_TYPE", "MEAN_ELEMENT_THEORY", "CENTER_NAME",
    "REF_FRAME",      "TIME_SYSTEM"};

/// Their values as they stand in the message, without blanks at both ends, in the keywords' order; empty
/// where there is none.
using OmmFields = std::array<std::string_view, ommKeywords.size()>;

inline constexpr std::size_t ommName = 0;
inline constexpr std::size_t ommNumber = 1;

/// The place of a keyword; nothing for one that does not count here.
std::optional<std::size_t> OmmPlace(std::string_view keyword);

/// The elements of a message, or the first thing that is wrong with it. Angles and the mean motion are what
/// the message says, to the last digit.
///
/// Epochs are 1957 to 2056, with any number of decimals, of which six count; dates are of a month or of a
/// year. Refused are a frame, a centre, a time and a theory other than those of SGP4.
std::variant<Elements, ElementFault> ReadOmm(const OmmFields& fields);

} // namespace orbitmath
