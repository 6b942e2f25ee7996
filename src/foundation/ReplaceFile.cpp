#include "foundation/ReplaceFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace {

// Where a chain of links ends.
QString TargetOf(QString path) {
    constexpr int longestChain = 40;
    for (int link = 0; link < longestChain && QFileInfo(path).isSymLink(); ++link)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

} // namespace

QString ReplaceFile(const QString& path, const QByteArray& bytes) {
    const QString place = TargetOf(path);
    QSaveFile file(place);
    const bool isNew = !QFileInfo::exists(place);
    // commit() alone would put a file in place that the disk has taken only in part.
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           (!isNew || file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) &&
                           file.write(bytes) == bytes.size() && file.flush() && file.size() == bytes.size();
    const QString reason = file.errorString();
    if (isWritten && file.commit())
        return {};
    if (!isWritten)
        file.cancelWriting();
    return isWritten ? file.errorString() : reason;
}
