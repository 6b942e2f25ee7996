#pragma once

/// What stands behind an option.
enum class Takes {
    Nothing,
    Text,
    Choice,    ///< one of the words in `value`, "|" between them
    Whole,     ///< a whole number from `least` to `greatest`
    Decimal,   ///< a number from `least` to `greatest`
    Utc,       ///< a moment, ISO 8601
    Position,  ///< LAT,LON in degrees
    Satellite, ///< QIRAN, ISS, a catalogue number or all
    Folder,    ///< one that is there
    File,
    HostAndPort, ///< HOST:PORT
};

/// An option of the command line. Parsing, help, manual page and completion are made from it.
struct Option {
    const char16_t* name;        ///< without dashes
    const char16_t* value = u""; ///< how help calls what stands behind it
    Takes takes = Takes::Nothing;
    const char16_t* help;
    double least = 0;
    double greatest = 0;
};
