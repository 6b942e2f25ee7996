#include "keps/FetchTimes.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/ReplaceFile.h"
#include "foundation/text/IsoTime.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr qsizetype mostRemembered = 20;
constexpr qint64 largestFile = 64 * 1024;

} // namespace

FetchTimes::FetchTimes(const ProgramFolder& folder)
    : m_path(folder.File(QStringLiteral("KepsFetched.txt"))) {}

std::optional<qint64> FetchTimes::Last(const QString& url) const {
    const auto times = Read();
    const auto found =
        std::ranges::find_if(times, [&](const auto& entry) { return entry.second == url.simplified(); });
    return found == times.end() ? std::nullopt : std::optional(found->first);
}

QString FetchTimes::Note(const QString& url, qint64 utc) const {
    auto times = Read();
    times.removeIf([&](const auto& entry) { return entry.second == url.simplified(); });
    times.append({utc, url.simplified()});
    QByteArray text;
    for (const auto& [time, address] : times.last(std::min(times.size(), mostRemembered)))
        text += IsoTime::Seconds(time) + ' ' + address.toUtf8() + '\n';
    return ReplaceFile(m_path, text);
}

// What is no such line is passed over.
QList<std::pair<qint64, QString>> FetchTimes::Read() const {
    QList<std::pair<qint64, QString>> times;
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return times;
    for (const QByteArray& line : file.read(largestFile).split('\n')) {
        const qsizetype blank = line.indexOf(' ');
        const std::optional<qint64> time =
            blank > 0 ? IsoTime::Read({line.constData(), static_cast<std::size_t>(blank)}) : std::nullopt;
        const QString url = QString::fromUtf8(line.mid(blank + 1)).simplified();
        if (time && !url.isEmpty())
            times.append({*time, url});
    }
    return times;
}
