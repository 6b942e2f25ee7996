#pragma once

#include <QString>

struct LimitEvent;

/// Texts of the main window that depend on what the program found at start-up.
namespace Texts {

/// The program's title.
QString Title();

/// The window caption: the program's title, its version and the version record's file description. The
/// version is major, ".", minor and the revision with no point before it.
QString Caption(const QString& title);

/// The version as "2.4.2".
QString VersionNumber();

/// The product that calendars name as their maker: the same for both programs, as is what they write.
QString CalendarMaker();

/// The version for people, as in the about box.
QString Version();

/// What stands under the grids.
QString CubeExplanation();

/// The warning that pass predictions need the station's position.
QString PositionUnknown();

/// The monitor line that settings are lost, and why.
QString CannotSave(const QString& file, const QString& reason);

/// The monitor line that something heard is not kept in a file, and why.
QString CannotWrite(const QString& file, const QString& reason);

/// The monitor line that a line of a file (0: the file as a whole) does not count, and why.
QString WrongLine(const QString& file, std::size_t line, const QString& reason);

/// A channel and what its value came to: "A POWER Batt A: low warning".
QString Crossed(const LimitEvent& event);

/// For standard error: where a formula file is to be put, and where an example is.
QString WhereFormulaeBelong(const QString& path);

/// The notice of a second start in the same folder.
QString AlreadyRunning();

/// The caption of that notice, which names the folder.
QString InFolder(const QString& folder);

/// That no log has been written yet, and how to have one.
QString NoLogs();

/// For a folder that the desktop does not open.
QString CannotOpen(const QString& folder);

/// Why the last start ended at once, and how to find every such line.
QString LastStartEnded(const QString& reason);

/// For standard error: who keeps the program folder for itself.
QString HeldBy(const QString& folder, const QString& holder);

} // namespace Texts
