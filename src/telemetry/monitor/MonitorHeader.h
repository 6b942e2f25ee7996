#pragma once

#include <QtGlobal>

#include <string>
#include <string_view>

/// How a monitored frame's header is shown.
enum class HeaderForm {
    Full, ///< "12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:"
    Short ///< "12:00:01 XQ9ZZ-1>APRS,WIDE2-2:"
};

/// Appends to `text` the packet engine's header line " 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=42 >…"
/// in our own form; a header of any other layout is appended unchanged. `kind` is the frame's DisplayKind,
/// `time` the present time as "hh:mm:ss".
void FormatMonitorHeader(std::string_view header, qint16 kind, HeaderForm form, std::string_view time,
                         std::string& text);
