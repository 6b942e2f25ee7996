#include "keps/ConvertKepsFile.h"

#include "foundation/system/FileSync.h"
#include "keps/KepsText.h"
#include "orbit/elements/ElementFile.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>

namespace {

constexpr qint64 pieceSize = 8192;

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
    return SyncToDisk(work); // before it takes another file's place, where a power cut must not find it empty
}

// Why a file of elements does not count as one; empty when it does. What has none of the known forms is the
// user's own business.
QString WhyRefused(const QString& path) {
    using namespace orbitmath;
    std::size_t sets = 0;
    QString fault;
    const ElementFileKind kind =
        ReadElementFile(QFile::encodeName(path).toStdString(), [&](const ElementRecord& record) {
            if (std::holds_alternative<Elements>(record.content))
                ++sets;
            else if (fault.isEmpty())
                fault =
                    QString::fromStdString(": " + FaultText(record, std::get<ElementFault>(record.content)));
            return true;
        });
    if (kind.isCut)
        return QStringLiteral("The file is cut: it ends within a set of elements");
    if (kind.format != ElementFormat::TwoLines && sets == 0)
        return QStringLiteral("The file holds no elements") + fault;
    return {};
}

// Moves a finished file to where another may be, which is replaced in one step; the reason when that fails.
QString Install(const QString& from, const QString& to) {
    const bool isMoved =
        std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    return isMoved ? QString() : qt_error_string(errno);
}

// Moves a page out of the Keps folder, which may lie on another disk; the reason when that fails.
QString PutAside(const QString& from, const QString& to) {
    QFile::remove(to);
    QFile page(from);
    return page.rename(to) ? QString() : page.errorString();
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

QString KepsFiles::Result(const ProgramFolder& folder, const QString& name) {
    return folder.KepsFolder() + QDir::separator() + name;
}

void KepsFiles::RemoveWork(const ProgramFolder& folder) {
    QFile::remove(Target(folder));
    QFile::remove(Work(folder));
}

QString KepsFiles::HtmlCopy(const ProgramFolder& folder, qint16 index) {
    return folder.File(QStringLiteral("File%1.HTML").arg(index + 1));
}

KepsConversion ConvertKepsFile(const ProgramFolder& folder, const QString& source, const QString& name,
                               qint16 index) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return Failed(file.errorString());
    if (file.size() < KepsText::shortest)
        return {};
    if (!QDir().mkpath(folder.KepsFolder()))
        return Failed(QStringLiteral("the folder %1 could not be made").arg(folder.KepsFolder()));

    const QString work = KepsFiles::Work(folder);
    const QString htmlCopy = KepsFiles::HtmlCopy(folder, index);
    KepsText text;
    QString reason = WriteWorkFile(file, work, text);
    if (const QString refusal = reason.isEmpty() && !text.IsHtml() ? WhyRefused(work) : QString();
        !refusal.isEmpty()) {
        QFile::remove(work);
        return {false, refusal};
    }
    if (reason.isEmpty())
        reason = text.IsHtml() ? PutAside(work, htmlCopy) : Install(work, KepsFiles::Result(folder, name));
    QFile::remove(work); // where it could not be moved
    if (!reason.isEmpty())
        return Failed(reason);
    if (!text.IsHtml())
        return {true, {}};
    return {true, QStringLiteral("The data appears to be an HTML file. Have a look at ") + htmlCopy};
}
