// Positions as typed and as stored: what is accepted is in form, stays as it is when checked again, and comes
// back from the settings; whatever stands there instead does no harm.
//
// An input is a latitude, a line end, and a longitude.

#include "Input.h"
#include "Require.h"
#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"
#include "orbit/service/LatLongText.h"
#include "station/identity/PositionText.h"

#include <cmath>
#include <cstring>

namespace {

using PositionText::Axis;

bool IsInForm(const QString& text, Axis axis) {
    const QString form = axis == Axis::Latitude ? QStringLiteral("dd.dd.dd") : QStringLiteral("ddd.dd.dd");
    if (text.size() != form.size() + 1 || text[form.size() - 3] != u'.')
        return false;
    for (qsizetype i = 0; i < form.size(); ++i)
        if (form[i] == u'.' ? text[i] != u'.' : text[i] < u'0' || text[i] > u'9')
            return false;
    return axis == Axis::Latitude ? text.endsWith(u'N') || text.endsWith(u'S')
                                  : text.endsWith(u'E') || text.endsWith(u'W');
}

double Degrees(const QString& stored, Axis axis) {
    return axis == Axis::Latitude ? QIRUtil::LatToDegrees(stored) : QIRUtil::LongToDegrees(stored);
}

// The stored form of an entry; empty when it is no position.
QString CheckEntry(const QString& entry, Axis axis) {
    const auto shown = PositionText::ValidateLatLong(entry, axis, false);
    const auto orBlank = PositionText::ValidateLatLong(entry, axis, true);
    const bool isBlank = entry.trimmed().isEmpty();
    Require(isBlank ? !shown && orBlank == entry : shown == orBlank, "only a blank may be allowed or not");
    if (!shown)
        return {};
    Require(IsInForm(*shown, axis), "an accepted position is in form");
    Require(PositionText::ValidateLatLong(*shown, axis, false) == shown, "a position in form stays as it is");
    const QString stored = PositionText::ToStored(*shown, axis);
    Require(PositionText::ToDisplayed(stored, axis) == shown, "a position comes back from the settings");
    const double degrees = Degrees(stored, axis);
    const double limit = axis == Axis::Latitude ? 90 : 180;
    Require(std::abs(degrees) <= limit, "a position lies on the globe");
    const auto again =
        axis == Axis::Latitude ? LatLongText::Latitude(degrees) : LatLongText::Longitude(degrees);
    if (degrees != 0)
        Require(again && again->first(again->size() - 1) == shown->first(shown->size() - 1) &&
                    again->back() == shown->back(),
                "degrees and text mean the same");
    return stored;
}

void CheckLocator(const QString& latitude, const QString& longitude, bool isPosition) {
    const auto locator = PositionText::Locator(latitude, longitude);
    Require(locator || !isPosition, "a position has a locator");
    if (!locator)
        return;
    const auto isBetween = [&](int at, char16_t first, char16_t last) {
        return (*locator)[at] >= first && (*locator)[at] <= last;
    };
    Require(locator->size() == 6 && isBetween(0, u'A', u'S') && isBetween(1, u'A', u'S') &&
                isBetween(2, u'0', u'9') && isBetween(3, u'0', u'9') && isBetween(4, u'A', u'X') &&
                isBetween(5, u'A', u'X'),
            "a locator is in form");
}

// A number of any kind as degrees: shown, or refused.
void CheckDegrees(double degrees) {
    for (const auto separator : {LatLongText::Separator::Off, LatLongText::Separator::On}) {
        const auto latitude = LatLongText::Latitude(degrees, separator);
        const auto longitude = LatLongText::Longitude(degrees, separator);
        Require(latitude.has_value() == longitude.has_value(), "both directions refuse the same");
        Require(latitude.has_value() == (std::abs(degrees) * 60.0 < 32768.0), "what fits is shown");
        if (latitude)
            Require(latitude->size() <= 10 && longitude->size() <= 10, "a position is short");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input = Input(data, size);
    if (size >= sizeof(double)) {
        double degrees = 0;
        std::memcpy(&degrees, data, sizeof degrees);
        CheckDegrees(degrees);
    }
    const QString latitude = QString::fromUtf8(Bytes(TakeUntil(input, '\n')));
    const QString longitude = QString::fromUtf8(Bytes(input));
    CheckDegrees(Text::LeadingNumber(latitude, Text::Exponent::Yes));
    const QString storedLatitude = CheckEntry(latitude, Axis::Latitude);
    const QString storedLongitude = CheckEntry(longitude, Axis::Longitude);
    CheckLocator(storedLatitude, storedLongitude, !storedLatitude.isEmpty() && !storedLongitude.isEmpty());
    CheckLocator(latitude, longitude, false); // as a settings file may hold them
    CheckDegrees(Degrees(latitude, Axis::Latitude));
    return 0;
}
