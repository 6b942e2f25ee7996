#include "foundation/settings/ReplaceFile.h"

#include <QFileInfo>
#include <QSaveFile>

QString ReplaceFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path); // follows links, also one that leads nowhere yet
    const bool isNew = !QFileInfo::exists(path);
    // commit() alone would put a file in place that the disk has taken only in part.
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           (!isNew || file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) &&
                           file.write(bytes) == bytes.size() && file.flush() && file.size() == bytes.size();
    return isWritten && file.commit() ? QString() : file.errorString(); // what is not committed goes
}
