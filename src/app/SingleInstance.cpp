#include "app/SingleInstance.h"

#include "foundation/ProgramFolder.h"

SingleInstance::SingleInstance(const ProgramFolder& folder)
    : m_lock(folder.File(QStringLiteral("QiranDecode.lock"))) {
    m_lock.setStaleLockTime(0); // a lock is stale when its process is gone, however old it is
}

bool SingleInstance::IsAnotherRunning() {
    return !m_lock.tryLock() && m_lock.error() == QLockFile::LockFailedError;
}
