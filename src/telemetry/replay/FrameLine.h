#pragma once

#include "telemetry/replay/LineTime.h"

#include <optional>
#include <string>
#include <string_view>

/// What may stand for a callsign in a line: 1 to 9 letters, digits and "-".
bool IsCallsignText(std::string_view text);

/// Appends digipeaters, between commas and "*" behind the last one that has repeated the frame, with "*"
/// behind every one that has. False, with some of them appended, when one is no callsign.
bool AppendPath(std::string_view digipeaters, std::string& path);

/// A frame in one line of bytes, as monitors write it, "SOURCE>DESTINATION,DIGI1,DIGI2*:information" (TNC2),
/// or as a telemetry line behind its callsign, "SOURCE,T#...". Before it may stand a time, and text in
/// brackets as Dire Wolf and kissutil write it: the radio channel, more, perhaps a time ("[0.3] ",
/// "[0 2026-11-21T17:45:27] "; "[0L] " and "[0H] " before what they send).
struct FrameLine {
    std::string_view source;      ///< this and the next stand in the line
    std::string_view destination; ///< empty behind a callsign alone
    std::string path;             ///< between commas, "*" behind every digipeater that has repeated the frame
    std::string information; ///< "<0xNN>" read as its byte, where it stands for a blank or no visible letter
    std::optional<LineTime> time; ///< none where the line tells none, or one that is not understood
    int channel = 0;              ///< from 0; 0 where the line tells none
    bool isTransmitted = false;
    /// 'U', 'I' or 'S'. Dire Wolf names other frames than plain UI text in front of the information,
    /// "(RR res, n(r)=1, f=0)": that is taken off.
    char kind = 'U';

    /// Nothing when the line is no such line.
    static std::optional<FrameLine> Read(std::string_view line);
};
