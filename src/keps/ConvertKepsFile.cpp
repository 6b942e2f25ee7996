#include "keps/ConvertKepsFile.h"

#include "keps/KepsText.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace {

constexpr qint64 pieceSize = 8192;
constexpr qint64 shortestFile = 80;

KepsConversion Failed(const QString& reason) {
    return {false, QStringLiteral("The file could not be stored: ") + reason};
}

// Writes the source, mended, to the work file; the reason when that fails.
QString WriteWorkFile(QFile& source, const QString& path, KepsText& text) {
    QFile::remove(path); // left by a crash, or a link to somewhere else
    QFile work(path);
    if (!work.open(QIODevice::WriteOnly))
        return work.errorString();
    while (!source.atEnd()) {
        const QByteArray piece = source.read(pieceSize);
        if (piece.isEmpty())
            return source.errorString();
        const QByteArray converted = text.Convert(piece);
        if (work.write(converted) != converted.size())
            return work.errorString();
    }
    work.close();
    return work.error() == QFileDevice::NoError ? QString() : work.errorString();
}

// Copies a file over another, which is replaced whole or not at all; the reason when that fails.
QString Install(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly))
        return target.errorString();
    while (!source.atEnd()) {
        const QByteArray piece = source.read(pieceSize);
        if (piece.isEmpty())
            return source.errorString();
        if (target.write(piece) != piece.size())
            return target.errorString();
    }
    // commit() alone would put a file in place that the disk has taken only in part.
    if (!target.flush() || target.size() != source.size()) {
        QString reason = target.errorString();
        target.cancelWriting();
        return reason;
    }
    return target.commit() ? QString() : target.errorString();
}

} // namespace

QString KepsFiles::WorkName() {
    return QStringLiteral("TEMPKEPS.$$$");
}

QString KepsFiles::Target(const ProgramFolder& folder) {
    return folder.File(QStringLiteral("tempkeps.$$$"));
}

QString KepsFiles::Work(const ProgramFolder& folder) {
    return folder.KepsFolder() + QDir::separator() + WorkName();
}

QString KepsFiles::HtmlCopy(const ProgramFolder& folder, qint16 index) {
    return folder.File(QStringLiteral("File%1.HTML").arg(index + 1));
}

KepsConversion ConvertKepsFile(const ProgramFolder& folder, const QString& source, const QString& name,
                               qint16 index) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return Failed(file.errorString());
    if (file.size() < shortestFile)
        return {};
    if (!QDir().mkpath(folder.KepsFolder()))
        return Failed(QStringLiteral("the folder %1 could not be made").arg(folder.KepsFolder()));

    const QString work = KepsFiles::Work(folder);
    const QString htmlCopy = KepsFiles::HtmlCopy(folder, index);
    KepsText text;
    QString reason = WriteWorkFile(file, work, text);
    if (reason.isEmpty())
        reason = Install(work, text.IsHtml() ? htmlCopy : folder.KepsFolder() + QDir::separator() + name);
    QFile::remove(work);
    if (!reason.isEmpty())
        return Failed(reason);
    if (!text.IsHtml())
        return {true, {}};
    return {true, QStringLiteral("The data appears to be an HTML file. Have a look at ") + htmlCopy};
}
