#include "foundation/system/SingleInstance.h"

#include "foundation/settings/ProgramFolder.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool IsSameFile(int descriptor, const QByteArray& path) {
    struct stat opened {};
    struct stat named {};
    return fstat(descriptor, &opened) == 0 && lstat(path.constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// A lock that we may not open belongs to another user.
bool IsSomebodyElses(const QByteArray& path, int error) {
    struct stat named {};
    return error == EACCES && lstat(path.constData(), &named) == 0 && S_ISREG(named.st_mode);
}

} // namespace

// No QLockFile: it waits until the disk has its file, which is a good part of the program's start.
SingleInstance::SingleInstance(const ProgramFolder& folder)
    : m_path(QFile::encodeName(folder.File(QStringLiteral("QiranDecode.lock")))) {}

SingleInstance::~SingleInstance() {
    if (m_lock < 0)
        return;
    unlink(m_path.constData()); // still locked, so that it is nobody else's
    close(m_lock);
}

bool SingleInstance::IsAnotherRunning() {
    while (m_lock < 0) {
        const int lock =
            open(m_path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (lock < 0)
            return IsSomebodyElses(m_path, errno);
        if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
            const bool isHeld = errno == EWOULDBLOCK;
            close(lock);
            return isHeld;
        }
        if (IsSameFile(lock, m_path))
            m_lock = lock;
        else
            close(lock); // its holder ended this moment and removed it
    }
    return false;
}
