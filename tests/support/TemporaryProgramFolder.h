#pragma once

#include "foundation/settings/ProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A program folder of a test's own, gone with the test.
class TemporaryProgramFolder {
public:
    TemporaryProgramFolder()
        : m_program(m_folder.path(), QStringLiteral("QiranDecode")) {}

    const ProgramFolder& Program() const { return m_program; }
    QString IniFile() const { return m_program.IniFile(); }
    QString File(const QString& name) const { return m_program.File(name); }

    /// Writes a file of the folder, its folders with it.
    void Write(const QString& name, const QByteArray& bytes) const {
        QDir(m_folder.path()).mkpath(QFileInfo(name).path());
        QFile file(File(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
    }

    /// The bytes of a file of the folder; null when there is none.
    QByteArray Read(const QString& name) const {
        QFile file(File(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
    ProgramFolder m_program;
};
