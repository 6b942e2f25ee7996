#pragma once

#include <QtGlobal>

/// The kind that goes with every text shown in the monitor pane and in the terminal.
namespace DisplayKind {
constexpr qint16 Status = 0;      ///< status and error lines of the link
constexpr qint16 ShortForm = 1;   ///< a satellite frame in short form: the monitor pane only
constexpr qint16 Frame = 2;       ///< any frame heard, in full form
constexpr qint16 Information = 3; ///< an information frame of a connection
constexpr qint16 Transmitted = 4; ///< a frame that the packet engine sent itself
constexpr qint16 Supervisory = 5; ///< a supervisory frame of a connection
} // namespace DisplayKind
