#include "foundation/system/FileSync.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

std::optional<FileIdentity> IdentityIn(const struct stat& status) {
    return FileIdentity{status.st_dev, status.st_ino};
}

// Puts on the disk what was written through the descriptor; the system's reason when that fails.
QString SyncDescriptor(int descriptor) {
    // A file system that has no such thing (EINVAL) does what it can.
    if (fdatasync(descriptor) == 0 || errno == EINVAL)
        return {};
    return qt_error_string(errno);
}

} // namespace

QString SyncToDisk(QFileDevice& file) {
    return file.flush() ? SyncDescriptor(file.handle()) : file.errorString();
}

void SyncFolderToDisk(const QString& folder) {
    const int entries = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (entries < 0)
        return;
    (void)fsync(entries);
    close(entries);
}

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
    m_reason = descriptor < 0 ? qt_error_string(EMFILE) : SyncDescriptor(descriptor);
    if (descriptor >= 0)
        close(descriptor);
    if (!folder.isEmpty())
        SyncFolderToDisk(folder);
    m_isRunning = false;
}
