#include "telemetry/imports/HistoryImport.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/system/FileSync.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/imports/HistoryWalk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <unistd.h>
#include <utility>

namespace {

constexpr qint64 pieceSize = 65536;
constexpr int mostSectionChanges = 1000; // far below what the history reads in one file

QString Real(const QString& path) {
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

QString Beside(const QString& path, const char* name) {
    return QFileInfo(path).dir().filePath(QLatin1String(name));
}

QString BackupOf(const QString& path) {
    return Beside(path, "tlm.before-import.txt");
}

QString NewOf(const QString& path) {
    return Beside(path, "tlm.importing.txt");
}

QString Rename(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0
               ? QString()
               : QString::fromLocal8Bit(std::strerror(errno));
}

// Appends a file's bytes from a place on to an open one.
QString AppendFrom(const QString& path, qint64 from, QFile& to) {
    QFile file(path);
    QString reason = OpenRegularFile(file);
    if (!reason.isEmpty())
        return reason;
    if (!file.seek(from))
        return file.errorString();
    for (QByteArray piece; !(piece = file.read(pieceSize)).isEmpty();)
        if (to.write(piece) != piece.size())
            return to.errorString();
    return file.error() == QFileDevice::NoError ? QString() : file.errorString();
}

// Whether a line of a file ends at this place, or none has begun yet.
bool IsLineEnd(const QString& path, qint64 place) {
    QFile file(path);
    char last = '\n';
    return file.open(QIODevice::ReadOnly) &&
           (place == 0 || (file.seek(place - 1) && file.getChar(&last) && last == '\n'));
}

// What is written to the file from now on is to be found under this name, also after a power cut.
QString PutInPlace(const QString& from, const QString& to) {
    const QString reason = Rename(from, to);
    if (reason.isEmpty())
        SyncFolderToDisk(QFileInfo(to).absolutePath());
    return reason;
}

QString Finish(QFile& file) {
    return file.flush() ? SyncToDisk(file) : file.errorString();
}

} // namespace

HistoryImport::HistoryImport(const QString& path, HistorySides sides)
    : m_path(Real(path))
    , m_sides(std::move(sides)) {}

HistoryImport::~HistoryImport() {
    Drop();
}

void HistoryImport::Drop() {
    if (m_new)
        m_new->remove();
    m_new.reset();
}

HistoryImport::Result HistoryImport::Fail(const QString& reason) {
    m_reason = reason;
    return Result::Failed;
}

HistoryImport::Result HistoryImport::Count(const QStringList& files, const ImportOptions& options,
                                           const Progress& progress) {
    m_count = {};
    m_incoming = {};
    if (const Result known = AddKnown(progress); known != Result::Done)
        return known;
    bool isFull = false;
    bool isCancelled = false;
    ImportReader reader(
        m_sides, options,
        [&](qint64 utc, std::string_view source, int side, const HistoryLayout::Fields& fields) {
            isFull = !m_incoming.Add(utc, source, side, fields);
            return !isFull;
        });
    for (const QString& file : files) {
        const bool isRead = reader.Read(file, [&](qint64 done, qint64 total) {
            isCancelled = progress && !progress(done, total);
            return !isCancelled;
        });
        if (isCancelled)
            return Result::Cancelled;
        if (isFull)
            return Fail(QStringLiteral("these are more frames than can be imported at once"));
        if (!isRead)
            return Fail(QStringLiteral("%1 cannot be read: %2").arg(file, reader.Reason()));
    }
    m_incoming.Sort();
    m_count = {.frames = static_cast<qint64>(m_incoming.Count()),
               .known = m_incoming.Known(),
               .others = reader.Others(),
               .notUnderstood = reader.NotUnderstood(),
               .examples = reader.Examples(),
               .span = {}};
    if (m_incoming.Count() > 0)
        m_count.span = {m_incoming.Utc(0), m_incoming.Utc(m_incoming.Count() - 1)};
    return Result::Done;
}

HistoryImport::Result HistoryImport::AddKnown(const Progress& progress) {
    if (!QFileInfo::exists(m_path))
        return Result::Done;
    HistoryWalk walk(m_path);
    if (const QString reason = walk.Open(); !reason.isEmpty())
        return Fail(reason);
    qint64 told = 0;
    while (walk.Next()) {
        if (walk.What() == HistoryWalk::Kind::Frame)
            m_incoming.AddKnown(walk.Frame().utc, walk.Frame().source, walk.Fields());
        if (progress && walk.Position() - told >= pieceSize &&
            !progress(told = walk.Position(), std::max(walk.Position(), walk.Size())))
            return Result::Cancelled;
    }
    return walk.Reason().isEmpty() ? Result::Done : Fail(walk.Reason());
}

HistoryImport::Result HistoryImport::Prepare(const Progress& progress) {
    m_next = 0;
    m_sectionChanges = 0;
    m_oldSize = 0;
    m_new = std::make_unique<QFile>(NewOf(m_path));
    if (!m_new->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        const QString reason = m_new->errorString();
        m_new.reset();
        return Fail(reason);
    }
    std::optional<HistoryWalk> old;
    QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner;
    if (QFileInfo::exists(m_path)) {
        permissions = QFile::permissions(m_path);
        if (const QString reason = old.emplace(m_path).Open(); !reason.isEmpty())
            return Fail(reason);
    }
    m_new->setPermissions(permissions);
    if (!Merge(old ? &*old : nullptr, progress))
        return m_new->error() == QFileDevice::NoError ? Result::Cancelled : Fail(m_new->errorString());
    if (old && !old->Reason().isEmpty())
        return Fail(old->Reason());
    const QString reason = Finish(*m_new);
    return reason.isEmpty() ? Result::Done : Fail(reason);
}

// Writes the old lines and, in the order of their times among them, those that come in, between two headers
// of the newest layout if need be.
bool HistoryImport::Merge(HistoryWalk* old, const Progress& progress) {
    const QByteArray header = HistoryLayout::Header();
    const HistoryLayout newest = HistoryLayout::Newest();
    QByteArray section = header; // the header of the lines that are being written
    HistoryLayout layout = newest;
    qint64 told = 0;
    Write(ToView(header));
    while (old != nullptr && old->Next()) {
        std::string_view bytes = old->Bytes();
        if (old->What() == HistoryWalk::Kind::Header) {
            const bool isRepeated = old->Layout() == layout;
            layout = old->Layout();
            if (isRepeated)
                bytes = {};
            else
                section = QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
        } else if (old->What() == HistoryWalk::Kind::Frame) {
            WriteUntil(old->Frame().utc, ToView(section), layout == newest);
        }
        Write(bytes);
        m_oldSize = old->Position();
        if (!bytes.empty() && !bytes.ends_with('\n') && old->Position() >= old->Size())
            Write("\n");
        if (progress && old->Position() - told >= pieceSize &&
            !progress(told = old->Position(), std::max(old->Position(), old->Size())))
            return false;
    }
    const bool isNewest = layout == newest;
    if (!isNewest)
        Write(ToView(header));
    WriteUntil(std::numeric_limits<qint64>::max(), {}, true);
    return m_new->error() == QFileDevice::NoError;
}

// Writes what comes in before `utc`. Among lines of another layout it stands between headers of its own,
// unless that happens too often: then it waits for the end of the section.
void HistoryImport::WriteUntil(qint64 utc, std::string_view section, bool isNewest) {
    const auto isDue = [&] { return m_next < m_incoming.Count() && m_incoming.Utc(m_next) < utc; };
    if (!isDue() || (!isNewest && m_sectionChanges == mostSectionChanges))
        return;
    if (!isNewest) {
        ++m_sectionChanges;
        Write(ToView(HistoryLayout::Header()));
    }
    while (isDue())
        Write(m_incoming.Line(m_next++));
    if (!isNewest)
        Write(section);
}

bool HistoryImport::Write(std::string_view bytes) {
    return m_new->error() == QFileDevice::NoError &&
           m_new->write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size());
}

HistoryImport::Result HistoryImport::Commit() {
    QString reason = CopyTail();
    if (reason.isEmpty())
        reason = KeepOld();
    if (reason.isEmpty())
        reason = PutInPlace(m_new->fileName(), m_path);
    if (!reason.isEmpty())
        return Fail(reason);
    m_new.reset();
    return Result::Done;
}

// What was appended to the old file since it was read, and a header: what comes to stand behind that one was
// heard after the import, and is not in the old file.
QString HistoryImport::CopyTail() {
    const qint64 size = QFileInfo::exists(m_path) ? QFileInfo(m_path).size() : 0;
    if (size < m_oldSize || (size > m_oldSize && !IsLineEnd(m_path, m_oldSize)))
        return QStringLiteral("the history was changed meanwhile");
    const QString reason = size > m_oldSize ? AppendFrom(m_path, m_oldSize, *m_new) : QString();
    if (!reason.isEmpty())
        return reason;
    if (size > m_oldSize && !IsLineEnd(m_path, size))
        Write("\n");
    return Write(ToView(HistoryLayout::Header())) ? Finish(*m_new) : m_new->errorString();
}

// The old file under its second name. At no moment is there no history.
QString HistoryImport::KeepOld() const {
    const QString backup = BackupOf(m_path);
    const QString making = backup + QStringLiteral(".new");
    (void)QFile::remove(making);
    if (!QFileInfo::exists(m_path)) {
        QFile empty(making);
        const QByteArray header = HistoryLayout::Header();
        if (!empty.open(QIODevice::WriteOnly) || empty.write(header) != header.size())
            return empty.errorString();
    } else if (link(QFile::encodeName(m_path).constData(), QFile::encodeName(making).constData()) != 0) {
        QFile old(m_path); // a file system without links
        if (!old.copy(making))
            return old.errorString();
    }
    QFile kept(making); // what was heard last may be on its way to the disk still
    if (const QString reason = kept.open(QIODevice::ReadOnly) ? SyncToDisk(kept) : kept.errorString();
        !reason.isEmpty())
        return reason;
    return Rename(making, backup);
}

bool HistoryImport::CanUndo(const QString& path) {
    const QString backup = BackupOf(Real(path));
    return QFileInfo(backup).isFile() && FileIdentity::Of(backup) != FileIdentity::Of(path);
}

QString HistoryImport::Undo(const QString& path) {
    HistoryImport import(path, {});
    return import.PrepareUndo() == Result::Done && import.CommitUndo() == Result::Done ? QString()
                                                                                       : import.Reason();
}

HistoryImport::Result HistoryImport::PrepareUndo(const Progress& progress) {
    Drop();
    m_heard = 0;
    if (!CanUndo(m_path))
        return Fail(QStringLiteral("there is no import to undo"));
    if (QFileInfo::exists(m_path)) {
        HistoryWalk now(m_path);
        if (const QString reason = now.Open(); !reason.isEmpty())
            return Fail(reason);
        qint64 told = 0;
        while (now.Next()) {
            if (now.What() == HistoryWalk::Kind::Header)
                m_heard = now.Position();
            if (progress && now.Position() - told >= pieceSize &&
                !progress(told = now.Position(), std::max(now.Position(), now.Size())))
                return Result::Cancelled;
        }
        if (!now.Reason().isEmpty())
            return Fail(now.Reason());
    }
    const QString reason = IsHeardSince() ? WriteUndone() : QString();
    if (reason.isEmpty())
        return Result::Done;
    Drop();
    return Fail(reason);
}

// Whether something stands behind the last header.
bool HistoryImport::IsHeardSince() const {
    return m_heard > 0 && QFileInfo(m_path).size() != m_heard;
}

// The old history and what was heard since, with a header between them, so that to undo once more, where this
// ends before the old file is gone, does the same.
QString HistoryImport::WriteUndone() {
    const QString backup = BackupOf(m_path);
    auto file = std::make_unique<QFile>(NewOf(m_path));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Truncate))
        return file->errorString();
    m_new = std::move(file);
    m_new->setPermissions(QFile::permissions(backup));
    if (const QString reason = AppendFrom(backup, 0, *m_new); !reason.isEmpty())
        return reason;
    if (!IsLineEnd(backup, QFileInfo(backup).size()))
        Write("\n");
    Write(ToView(HistoryLayout::Header()));
    m_oldSize = m_heard;
    return AppendHeard();
}

// What was heard since, and is not in the new file yet.
QString HistoryImport::AppendHeard() {
    if (QFileInfo(m_path).size() < m_oldSize)
        return QStringLiteral("the history was changed meanwhile");
    const qint64 before = m_new->pos();
    const QString reason = AppendFrom(m_path, m_oldSize, *m_new);
    m_oldSize += m_new->pos() - before;
    return reason.isEmpty() ? Finish(*m_new) : reason;
}

HistoryImport::Result HistoryImport::CommitUndo() {
    const QString backup = BackupOf(m_path);
    if (!m_new && !IsHeardSince()) {
        const QString reason = PutInPlace(backup, m_path);
        return reason.isEmpty() ? Result::Done : Fail(reason);
    }
    QString reason = m_new ? AppendHeard() : WriteUndone();
    if (reason.isEmpty())
        reason = PutInPlace(m_new->fileName(), m_path);
    if (!reason.isEmpty()) {
        Drop();
        return Fail(reason);
    }
    m_new.reset();
    (void)QFile::remove(backup);
    SyncFolderToDisk(QFileInfo(m_path).absolutePath());
    return Result::Done;
}
