#pragma once

#include <QString>

class QFileDevice;

/// Waits until the disk has all that was written to an open file: a power cut afterwards cannot take it away.
/// Answers an empty text, or the system's reason.
QString SyncToDisk(QFileDevice& file);
