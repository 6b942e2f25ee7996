#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <utility>

class IniText;

/// The settings file. Every operation reads or writes the file at once and takes, as its last argument,
/// another file to use instead. No operation reports an error: what cannot be read is absent.
///
/// A write replaces the file whole, through a symbolic link where it is one; a new file is readable by its
/// owner alone. Text is Windows-1252.
class clsIni {
public:
    /// As many characters of a value are read back.
    static constexpr qsizetype longestValue = 499;

    /// `file` is the default path; where it is empty, operations without a file do nothing.
    explicit clsIni(QString file)
        : m_file(std::move(file)) {}

    void DeleteSection(const QString& section, const QString& file = {});
    void DeleteKey(const QString& section, const QString& key, const QString& file = {});

    /// Whether `text` is "TRUE", "YES", "1" or "ON" in any case. Upper-cases the caller's text.
    static bool IsItTrue(QString& text);

    /// [0] the keys of a section, [1] their values, in file order from index 1: index 0 is always empty. Key
    /// names beyond a total of 9,998 characters, an end mark counted for each, are cut off.
    using KeyTable = std::array<QStringList, 2>;
    KeyTable LoadAllKeysInSection(const QString& section, const QString& file = {}) const;

    /// "TRUE" or "FALSE".
    static QString TrueOrFalse(bool value);

    /// The value, cut to longestValue characters, or the default when the key is absent.
    QString GetIniString(const QString& section, const QString& key, const QString& defaultValue,
                         const QString& file = {}) const;

    /// Writes the value as given, the empty one as two double quotes.
    void SaveIniString(const QString& section, const QString& key, const QString& value,
                       const QString& file = {});

    /// The value; where the key is absent, writes the default (in double quotes when it begins or ends with a
    /// blank) and returns it.
    QString GetIniStringWriteDefault(const QString& section, const QString& key, const QString& defaultValue,
                                     const QString& file = {});

    /// All keys of a section with their values, in file order, however many they are. For what the program
    /// writes back with SaveSection: a key not read would be lost there.
    QList<std::pair<QString, QString>> LoadSection(const QString& section, const QString& file = {}) const;

    /// Replaces a section by these keys and values in one write, so that no crash leaves half of them.
    void SaveSection(const QString& section, const QList<std::pair<QString, QString>>& values,
                     const QString& file = {});

    /// Called once, with the file and the system's reason, when a write fails for the first time.
    void SetWriteFailed(std::function<void(const QString& file, const QString& reason)> writeFailed) {
        m_writeFailed = std::move(writeFailed);
    }

private:
    const QString& PathOf(const QString& file) const { return file.isEmpty() ? m_file : file; }
    void Change(const QString& file, const std::function<void(IniText&)>& change);
    void ReportFailure(const QString& file, const QString& reason);

    const QString m_file;
    std::function<void(const QString&, const QString&)> m_writeFailed;
};
