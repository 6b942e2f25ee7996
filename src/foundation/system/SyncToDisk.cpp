#include "foundation/system/SyncToDisk.h"

#include <QFileDevice>

#include <cerrno>
#include <unistd.h>

QString SyncToDisk(QFileDevice& file) {
    if (!file.flush())
        return file.errorString();
    return fsync(file.handle()) == 0 ? QString() : qt_error_string(errno);
}
