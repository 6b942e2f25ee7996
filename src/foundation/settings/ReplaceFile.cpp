#include "foundation/settings/ReplaceFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {

// The file grows before its old bytes are touched, so that a full disk leaves it as it was; line ends fill
// the room meanwhile, which a text file bears should the program be killed.
QString WriteInPlace(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return file.errorString();
    const qint64 before = file.size();
    const QByteArray room(std::max<qint64>(bytes.size() - before, 0), '\n');
    if (!file.seek(before) || file.write(room) != room.size()) {
        QString reason = file.errorString();
        file.resize(before);
        return reason;
    }
    const bool isWritten = file.seek(0) && file.write(bytes) == bytes.size() && file.resize(bytes.size());
    return isWritten ? QString() : file.errorString();
}

} // namespace

QString ReplaceFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path); // follows links, also one that leads nowhere yet
    const QFileInfo old(path);
    const bool isNew = !old.exists();
    if (!file.open(QIODevice::WriteOnly)) // its folder may take no new file
        return old.isFile() ? WriteInPlace(path, bytes) : file.errorString();
    // commit() alone would put a file in place that the disk has taken only in part.
    const bool isWritten = (!isNew || file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) &&
                           file.write(bytes) == bytes.size() && file.flush() && file.size() == bytes.size();
    if (isWritten && file.commit())
        return {};
    const bool mayNotBeReplaced = isWritten && old.isFile() && file.error() == QFileDevice::RenameError;
    return mayNotBeReplaced ? WriteInPlace(path, bytes) : file.errorString(); // what is not committed goes
}
