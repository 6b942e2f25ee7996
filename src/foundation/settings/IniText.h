#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

/// The text of a private-profile (INI) file: sections in square brackets, "key=value" lines, ";" before a
/// comment. Names match without case, and the first of two equal ones counts. A change is made in place;
/// lines that it does not concern keep their bytes.
class IniText {
public:
    explicit IniText(const QByteArray& bytes);

    QByteArray Bytes() const { return m_lines.join(); }

    /// The value, trimmed and without one pair of enclosing double quotes; nothing when the key is absent.
    std::optional<QString> Value(const QString& section, const QString& key) const;

    using Entry = std::pair<QString, QString>;

    /// The keys of a section in file order, each with what Value answers for it.
    QList<Entry> Entries(const QString& section) const;

    /// Line ends in names and values become blanks. A name that a line cannot carry (an empty key, "=" in a
    /// key, ";" or "[" at its start, "]" in a section) is not written.
    void SetValue(const QString& section, const QString& key, const QString& value);

    /// Afterwards the section or key is absent, however often it stood in the text.
    void RemoveKey(const QString& section, const QString& key);
    void RemoveSection(const QString& section);

    /// Removes the section and writes these entries in its place, of equal keys the last value.
    void ReplaceSection(const QString& section, const QList<Entry>& entries);

private:
    // Lines of a section: its header, and one past its last line.
    using Range = std::pair<qsizetype, qsizetype>;
    std::optional<Range> Find(const QString& section) const;
    QString ValueIn(qsizetype line) const;
    qsizetype FindKey(const Range& range, const QString& key) const;
    void EndLastLine();

    QByteArrayList m_lines; // each with its line end
};
