#pragma once

#include <QString>

class ProgramFolder;

/// A lock on a program folder, held by one process at a time. It ends with its process, so that what a
/// crashed run leaves behind does not block.
///
/// The lock is a file of its own, there while it is held, and with it a folder that stands in for the file
/// where none can be made: who may only read the folder is held off as well, and holds others off.
class FolderLock {
public:
    /// "QiranDecode.lock": one station, and one change of its settings from outside, at a time.
    static FolderLock OfProgram(const ProgramFolder& folder);

    /// "Keps.lock": one fetch of elements at a time, whoever runs the station.
    static FolderLock OfKeps(const ProgramFolder& folder);

    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

    /// Takes the lock unless it is ours already. False when another holds it; where neither file nor folder
    /// can be locked, nobody is assumed to.
    bool TryLock();

    /// Gives the lock back, if it is ours.
    void Unlock();

    bool IsOurs() const { return m_isOurs; }

    /// Who holds the lock now, for a sentence: "process 4711 (QiranDecode --folder /home/me/station)", or "an
    /// unknown process" where the system does not tell.
    QString Holder() const;

private:
    FolderLock(const QString& file, const QString& standIn);
    bool LockFile();
    bool LockStandIn();

    const QByteArray m_path;
    const QByteArray m_standInPath;
    int m_file = -1; // descriptors, below 0 where there is nothing to hold
    int m_standIn = -1;
    bool m_isOurs = false;
};
