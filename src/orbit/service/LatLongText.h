#pragma once

#include <QString>

#include <optional>

/// Positions on the earth as the tracking display shows them.
namespace LatLongText {

/// The mark between degrees and minutes. Without it, the decimal mark (which always stands in the place that
/// it has in a text with separator) covers a digit: nothing uses that form.
enum class Separator { Off, On };

/// Degrees, minutes with two decimals and hemisphere, for example "51.30.25N". Minutes that round up to 60
/// are shown so and do not carry into the degrees. Nothing when the minutes of `degrees` do not fit 16 bits.
std::optional<QString> Latitude(double degrees, Separator separator = Separator::On);

/// The same with three digits of degrees, for example "000.07.50W".
std::optional<QString> Longitude(double degrees, Separator separator = Separator::On);

} // namespace LatLongText
