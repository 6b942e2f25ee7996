#include "app/SingleInstance.h"

#include "foundation/ProgramFolder.h"

#include <QDateTime>
#include <QFileInfo>

SingleInstance::SingleInstance(const ProgramFolder& folder)
    : m_lock(folder.File(QStringLiteral("QiranDecode.lock"))) {
    m_lock.setStaleLockTime(0); // a lock is stale when its process is gone, however old it is
}

bool SingleInstance::IsAnotherRunning() {
    if (m_lock.tryLock() || m_lock.error() != QLockFile::LockFailedError)
        return false;
    qint64 process = 0;
    QString host;
    QString application;
    if (m_lock.getLockInfo(&process, &host, &application))
        return true;
    // Something else stands in the lock's place: damaged by a crash, or no file at all. A lock that names
    // nobody is one in the making for a moment only, and is not removed while its maker holds it.
    constexpr qint64 making = 2; // seconds
    const QFileInfo place(m_lock.fileName());
    if (place.isSymLink() || !place.isFile())
        return false;
    const bool isOld = place.lastModified().secsTo(QDateTime::currentDateTime()) >= making;
    return !isOld || !m_lock.removeStaleLockFile() || IsAnotherRunning();
}
