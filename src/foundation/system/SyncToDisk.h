#pragma once

#include <QString>

class QFileDevice;

/// Waits until the disk has all that was written to an open file: a power cut afterwards cannot take it away.
/// Answers an empty text, or the system's reason.
QString SyncToDisk(QFileDevice& file);

/// The same of a folder's entries: names that were given, changed and taken away in it. Where the file system
/// has no such thing, it does what it can.
void SyncFolderToDisk(const QString& folder);
