#include "keps/StoreResponse.h"

#include "keps/InternetTransfer.h"
#include "keps/KepsText.h"

#include <QFile>

namespace {

constexpr qsizetype chunkSize = 1024;

// Writes the response to the target file and counts its bytes; the reason when that fails.
QString WriteTarget(InternetTransfer& inet, const QString& path, qsizetype& length) {
    QFile::remove(path); // left by a crash, or a link to somewhere else
    QFile target(path);
    bool written = target.open(QIODevice::WriteOnly);
    for (QByteArray chunk = inet.GetChunk(chunkSize); written && !chunk.isEmpty();
         chunk = inet.GetChunk(chunkSize)) {
        written = target.write(chunk) == chunk.size();
        length += chunk.size();
    }
    written = written && target.write("\r\n") == 2 && target.flush();
    target.close();
    return written && target.error() == QFileDevice::NoError ? QString() : target.errorString();
}

} // namespace

KepsConversion StoreResponse(InternetTransfer& inet, const ProgramFolder& folder, const QString& name,
                             qint16 index) {
    const QString target = KepsFiles::Target(folder);
    qsizetype length = 0; // the line end added to the target does not count
    if (const QString reason = WriteTarget(inet, target, length); !reason.isEmpty())
        return {false, QStringLiteral("The file could not be stored: ") + reason};
    return length < KepsText::shortest ? KepsConversion() : ConvertKepsFile(folder, target, name, index);
}
