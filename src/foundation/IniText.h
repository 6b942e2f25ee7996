#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>

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

    /// The keys of a section in file order.
    QStringList Keys(const QString& section) const;

    /// Line ends in `value` become blanks: a value is one line.
    void SetValue(const QString& section, const QString& key, const QString& value);
    void RemoveKey(const QString& section, const QString& key);
    void RemoveSection(const QString& section);

private:
    // Lines of a section: its header, and one past its last line.
    using Range = std::pair<qsizetype, qsizetype>;
    std::optional<Range> Find(const QString& section) const;
    qsizetype FindKey(const Range& range, const QString& key) const;
    void EndLastLine();

    QByteArrayList m_lines; // each with its line end
};
