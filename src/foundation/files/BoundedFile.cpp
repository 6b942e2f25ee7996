#include "foundation/files/BoundedFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

QString OpenRegularFile(QFile& file) {
    const QFileInfo info(file.fileName());
    if (info.exists() && !info.isFile())
        return QStringLiteral("%1 is not a file").arg(file.fileName());
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? QString() : file.errorString();
}

std::optional<QByteArray> ReadBoundedFile(const QString& path, qint64 limit, QString& reason) {
    QFile file(path);
    reason = OpenRegularFile(file);
    if (!reason.isEmpty())
        return std::nullopt;
    QByteArray bytes = file.read(std::min(file.size(), limit) + 1); // room for as much is made at once
    if (file.error() != QFileDevice::NoError)
        reason = file.errorString();
    else if (bytes.size() > limit)
        reason = QStringLiteral("%1 is larger than %2 bytes").arg(path).arg(limit);
    else
        return bytes;
    return std::nullopt;
}
