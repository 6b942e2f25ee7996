#include "foundation/settings/ShippedFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QString ShippedFile(const QString& path) {
    const QFileInfo own(path);
    if (own.exists())
        return path;
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString shared = QStringLiteral("qirandecode/") + own.fileName();
    for (const QString& place :
         {programs.filePath(own.fileName()), programs.filePath(QStringLiteral("../../share/") + shared)})
        if (QFileInfo(place).isFile())
            return QDir::cleanPath(place);
    const QString found = QStandardPaths::locate(QStandardPaths::GenericDataLocation, shared);
    return found.isEmpty() ? path : found;
}
