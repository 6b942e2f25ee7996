#pragma once

#include <QString>

/// The folder in which the program runs and in which everything that the user owns lies.
class ProgramFolder {
public:
    /// `folder` as the platform reports it; `executable` is the program's name without extension.
    ProgramFolder(QString folder, QString executable);

    /// The folder and the name of the running executable.
    static ProgramFolder OfExecutable();

    /// The folder, ending in one separator.
    const QString& Path() const { return m_path; }

    /// The path of `name` in the folder.
    QString File(const QString& name) const { return m_path + name; }

    /// The settings file: named after the executable, ending in ".INI".
    QString IniFile() const;

    /// The folder of the orbital elements, "Keps"; no separator at the end.
    QString KepsFolder() const { return File(QStringLiteral("Keps")); }

    /// The folder of the traffic logs, "LOGS"; no separator at the end.
    QString LogsFolder() const { return File(QStringLiteral("LOGS")); }

private:
    QString m_folder;
    QString m_path;
    QString m_executable;
};
