#include "foundation/system/SyncToDisk.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

QString SyncToDisk(QFileDevice& file) {
    if (!file.flush())
        return file.errorString();
    return fsync(file.handle()) == 0 ? QString() : qt_error_string(errno);
}

void SyncFolderToDisk(const QString& folder) {
    const int entries = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (entries < 0)
        return;
    (void)fsync(entries);
    close(entries);
}
