#pragma once

#include <QString>

class ProgramFolder;

/// Why the last start in a program folder ended before there was a window to say it in. Kept in the file
/// "LastStart.txt" until a start gets further.
namespace LastStart {

/// The reason that waits; empty when there is none.
QString Reason(const ProgramFolder& folder);

void Keep(const ProgramFolder& folder, const QString& reason);
void Forget(const ProgramFolder& folder);

} // namespace LastStart
