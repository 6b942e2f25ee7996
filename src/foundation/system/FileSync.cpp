#include "foundation/system/FileSync.h"

#include "foundation/system/SyncToDisk.h"

#include <QFile>

#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

std::optional<FileIdentity> IdentityIn(const struct stat& status) {
    return FileIdentity{status.st_dev, status.st_ino};
}

} // namespace

std::optional<FileIdentity> FileIdentity::Of(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 ? IdentityIn(status) : std::nullopt;
}

std::optional<FileIdentity> FileIdentity::Of(const QString& path) {
    struct stat status {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? IdentityIn(status) : std::nullopt;
}

void FileSync::Start(int descriptor, const QString& folder) {
    (void)Wait();
    const int own = dup(descriptor); // the caller may close its own meanwhile
    m_isRunning = true;
    try {
        m_thread = std::thread([this, own, folder] { Run(own, folder); });
    } catch (const std::system_error&) { // no thread to be had: then it takes as long as it takes
        Run(own, folder);
    }
}

QString FileSync::Wait() {
    if (m_thread.joinable())
        m_thread.join();
    return std::exchange(m_reason, QString());
}

void FileSync::Run(int descriptor, const QString& folder) {
    const int error = descriptor < 0 ? EMFILE : fdatasync(descriptor) != 0 ? errno : 0;
    // A file system that has no such thing (EINVAL) does what it can.
    if (error != 0 && error != EINVAL)
        m_reason = QString::fromStdString(std::generic_category().message(error));
    if (descriptor >= 0)
        close(descriptor);
    if (!folder.isEmpty())
        SyncFolderToDisk(folder);
    m_isRunning = false;
}
