#pragma once

#include <QList>
#include <QString>

#include <optional>
#include <utility>

class ProgramFolder;

/// When each address last gave its elements. Kept in "KepsFetched.txt" in the program folder, a line each,
/// the newest last: the time in ISO 8601 and the address.
class FetchTimes {
public:
    explicit FetchTimes(const ProgramFolder& folder);

    /// UTC milliseconds; nothing for an address that has given none, or not lately: twenty are remembered.
    std::optional<qint64> Last(const QString& url) const;

    /// Notes that the address gave its elements now. Answers an empty text, or why the file could not be
    /// written.
    QString Note(const QString& url, qint64 utc) const;

private:
    QList<std::pair<qint64, QString>> Read() const;

    QString m_path;
};
