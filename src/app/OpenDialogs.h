#pragma once

/// Closes what stands open over the program's windows (a menu, a message box, a dialog), the uppermost one,
/// as Escape would. True when nothing is open any more and whoever opened it has gone on. Otherwise to be
/// called again from a later event, since only then the opener is told.
bool DismissOpenDialogs();
