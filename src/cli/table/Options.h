#pragma once

#include "cli/table/Option.h"

/// Every option of the command line; which command takes which stands in Commands.cpp.
namespace Options {

inline constexpr Option folder{.name = u"folder",
                               .value = u"DIR",
                               .takes = Takes::Folder,
                               .help = u"Use this program folder instead of the executable's: it holds the "
                                       u"settings, formula.txt, the elements "
                                       u"and the logs."};
inline constexpr Option help{.name = u"help", .help = u"Print help, of a command behind its name."};
inline constexpr Option version{.name = u"version", .help = u"Print the version."};

inline constexpr Option format{
    .name = u"format",
    .value = u"text|csv|json",
    .takes = Takes::Choice,
    .help = u"How it is printed: as text (unless told otherwise), as CSV with a line of "
            u"names, or as one JSON object a line."};
inline constexpr Option passFormat{
    .name = u"format",
    .value = u"text|csv|json|ical",
    .takes = Takes::Choice,
    .help =
        u"How it is printed: as the table of the pass window (unless told otherwise), as CSV with a line of "
        u"names, as one JSON object a line, or as a calendar with an alarm before each pass."};
inline constexpr Option local{.name = u"local",
                              .help = u"Times in text are local ones. CSV, JSON and calendars stay UTC."};
inline constexpr Option satellite{.name = u"satellite",
                                  .value = u"QIRAN|ISS|NUMBER|all",
                                  .takes = Takes::Satellite,
                                  .help = u"Which one: QIRAN (unless told otherwise), ISS, any other in the "
                                          u"Keps folder by its catalogue number, "
                                          u"or all that are there."};
inline constexpr Option at{
    .name = u"at",
    .value = u"LAT,LON",
    .takes = Takes::Position,
    .help =
        u"For this place instead of the station's: degrees with a decimal point, north and east positive."};
inline constexpr Option days{
    .name = u"days",
    .value = u"N",
    .takes = Takes::Whole,
    .help = u"How many days to look ahead; 3 unless told otherwise, 1 for all satellites.",
    .least = 1,
    .greatest = 366};
inline constexpr Option count{
    .name = u"count",
    .value = u"N",
    .takes = Takes::Whole,
    .help =
        u"At most so many passes of each satellite; unless told otherwise ten for each day, as in the pass "
        u"window.",
    .least = 1,
    .greatest = 100000};
inline constexpr Option from{.name = u"from",
                             .value = u"UTC",
                             .takes = Takes::Utc,
                             .help = u"From this moment instead of now on, for example 2026-11-21T15:00Z."};
inline constexpr Option since{.name = u"from",
                              .value = u"UTC",
                              .takes = Takes::Utc,
                              .help = u"Only from this moment on, for example 2026-11-21T15:00Z."};
inline constexpr Option until{
    .name = u"to", .value = u"UTC", .takes = Takes::Utc, .help = u"Only until this moment."};
inline constexpr Option side{
    .name = u"side", .value = u"A|B", .takes = Takes::Choice, .help = u"Only this side of the satellite."};
inline constexpr Option channel{.name = u"channel",
                                .value = u"GRID/ROW",
                                .takes = Takes::Text,
                                .help = u"Only this channel, for example 'POWER/Batt A'."};
inline constexpr Option minElevation{.name = u"min-elevation",
                                     .value = u"DEG",
                                     .takes = Takes::Decimal,
                                     .help = u"Only passes that come at least so high, in degrees.",
                                     .least = 0,
                                     .greatest = 90};
inline constexpr Option frequency{.name = u"frequency",
                                  .value = u"MHZ",
                                  .takes = Takes::Decimal,
                                  .help = u"Adds the Doppler shift of a signal on this frequency.",
                                  .least = 0.001,
                                  .greatest = 300000};
inline constexpr Option every{.name = u"every",
                              .value = u"SECONDS",
                              .takes = Takes::Whole,
                              .help = u"Again and again, until it is asked to end (Ctrl+C).",
                              .least = 1,
                              .greatest = 86400};
inline constexpr Option listenFormat{
    .name = u"format",
    .value = u"text|json",
    .takes = Takes::Choice,
    .help = u"How it is printed: as text (unless told otherwise), or as one JSON object a line."};
inline constexpr Option quiet{.name = u"quiet", .help = u"Print nothing; messages are still said."};
inline constexpr Option kiss{.name = u"kiss",
                             .value = u"HOST:PORT",
                             .takes = Takes::HostAndPort,
                             .help = u"Hear by the KISS TNC there, whatever the settings say."};
inline constexpr Option record{.name = u"record",
                               .value = u"FILE",
                               .takes = Takes::File,
                               .help = u"Append every frame that is heard to this recording, KISS frames "
                                       u"with their times; 'import' and 'decode' read it."};
inline constexpr Option fetchKeps{
    .name = u"fetch-keps",
    .value = u"DAYS",
    .takes = Takes::Whole,
    .help = u"Fetch orbital elements when the newest in the Keps folder are older than this.",
    .least = 1,
    .greatest = 366};
inline constexpr Option check{
    .name = u"check",
    .help = u"Decode nothing, but name every line of the program folder's "
            u"formula.txt, channels.txt, horizon.txt and frequencies.txt that is wrong."};
inline constexpr Option zone{
    .name = u"zone",
    .value = u"utc|local|ZONE",
    .takes = Takes::Text,
    .help =
        u"Of times without one, in logs for example: utc (unless told otherwise), local, or a name such as "
        u"Europe/Berlin."};
inline constexpr Option recordingTime{
    .name = u"time",
    .value = u"UTC",
    .takes = Takes::Utc,
    .help = u"Of recordings that tell no times, for example 2026-11-21T15:00Z."};
inline constexpr Option dryRun{.name = u"dry-run", .help = u"Only count what would come in."};
inline constexpr Option undo{.name = u"undo", .help = u"Take the last import back."};
inline constexpr Option force{.name = u"force",
                              .help = u"Also within two hours of the last download that was a success."};

} // namespace Options
