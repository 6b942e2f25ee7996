#include "core/LastStart.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/ReplaceFile.h"
#include "foundation/text/Text.h"

#include <QFile>

namespace LastStart {
namespace {

constexpr qint64 largestFile = 4096;

QString FileIn(const ProgramFolder& folder) {
    return folder.File(QStringLiteral("LastStart.txt"));
}

} // namespace

QString Reason(const ProgramFolder& folder) {
    QString reason;
    const std::optional<QByteArray> bytes = ReadBoundedFile(FileIn(folder), largestFile, reason);
    return bytes ? Text::OneLine(QString::fromUtf8(*bytes), largestFile).trimmed() : QString();
}

void Keep(const ProgramFolder& folder, const QString& reason) {
    ReplaceFile(FileIn(folder), reason.toUtf8() + '\n'); // where it cannot be kept, standard error has it
}

void Forget(const ProgramFolder& folder) {
    QFile::remove(FileIn(folder));
}

} // namespace LastStart
