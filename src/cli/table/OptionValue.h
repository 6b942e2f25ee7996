#pragma once

#include "cli/table/Option.h"

#include <QString>

#include <variant>

/// A place on the earth, in degrees, north and east positive.
struct PlaceOnEarth {
    double latitude = 0;
    double longitude = 0;
};

/// Where a server listens.
struct HostAndPort {
    QString host;
    int port = 0; ///< 1 to 65535
};

/// What the user wrote behind an option: a text (also a choice in its own spelling, a path, "QIRAN", "ISS",
/// "all" or a number), a decimal number, a whole one, a moment in milliseconds since 1970-01-01 00:00 UTC, a
/// place, or a server.
using OptionValue = std::variant<QString, double, int, qint64, PlaceOnEarth, HostAndPort>;

/// The value of an option that takes one, or why it cannot be, in words that go on after its name.
std::variant<OptionValue, QString> ReadOptionValue(const Option& option, const QString& text);
