#include "sharing/ForwardRequest.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/system/FileSync.h"
#include "foundation/system/FolderLock.h"
#include "sharing/ForwardQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <array>

namespace {

const QString earlierWaits = QStringLiteral("an earlier request waits for the station");

constexpr std::array<QByteArrayView, 3> words{"retry", "discard", "queue"};

QString PathIn(const ProgramFolder& folder) {
    return folder.File(ForwardRequest::FileName());
}

} // namespace

// Written under a name of its own and then given the one that is looked for, unless that is taken: whoever
// reads it reads all of it.
QString ForwardRequest::Leave(const ProgramFolder& folder) const {
    QByteArray text = words[static_cast<std::size_t>(kind)].toByteArray() + '\n';
    for (const QByteArray& body : bodies)
        text += body + '\n';
    if (text.size() > largest)
        return QStringLiteral("more than %1 bytes at once").arg(largest);
    QFile file(PathIn(folder) + u'.' + QString::number(QCoreApplication::applicationPid()));
    if (!file.open(QIODevice::WriteOnly, QFile::ReadOwner | QFile::WriteOwner))
        return file.errorString();
    QString reason = file.write(text) == text.size() ? SyncToDisk(file) : file.errorString();
    file.close();
    if (reason.isEmpty() && !file.rename(PathIn(folder)))
        reason = earlierWaits; // though it may be carried out by now
    if (!reason.isEmpty())
        file.remove();
    return reason;
}

bool ForwardRequest::IsLeft(const ProgramFolder& folder) {
    return QFileInfo(PathIn(folder)).isFile();
}

std::optional<ForwardRequest> ForwardRequest::Find(const ProgramFolder& folder) {
    QFile file(PathIn(folder));
    if (!IsLeft(folder) || !file.open(QIODevice::ReadOnly) || file.size() > largest)
        return std::nullopt;
    const QByteArray word = file.readLine(ForwardQueue::largestLine).trimmed();
    const auto found = std::ranges::find(words, QByteArrayView(word));
    if (found == words.end())
        return std::nullopt;
    ForwardRequest request{static_cast<Kind>(found - words.begin())};
    while (!file.atEnd())
        request.bodies += file.readLine(ForwardQueue::largestLine).trimmed();
    return request;
}

void ForwardRequest::Remove(const ProgramFolder& folder) {
    QFile::remove(PathIn(folder));
}

qsizetype ForwardRequest::CarryOut(ForwardQueue& queue) const {
    const QList<qint64> parked = queue.Parked();
    switch (kind) {
    case Kind::Retry:
        queue.Retry(parked);
        return parked.size();
    case Kind::Discard:
        queue.Discard(parked);
        return parked.size();
    case Kind::Queue:
        return queue.Add(bodies);
    }
    return 0;
}

ForwardRequest::Outcome ForwardRequest::DoOrLeave(const ProgramFolder& folder, qsizetype keepAtMost) const {
    FolderLock lock = FolderLock::OfProgram(folder);
    Outcome outcome;
    if (!lock.TryLock()) {
        outcome.error = Leave(folder);
        outcome.isLeft = outcome.error.isEmpty();
        outcome.isBusy = outcome.error == earlierWaits;
        return outcome;
    }
    ForwardQueue queue(folder, {});
    queue.Open(keepAtMost);
    outcome.frames = CarryOut(queue);
    outcome.error = queue.Close();
    return outcome;
}
