#pragma once

#include "Input.h"
#include "Require.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A folder for the files of one fuzzer, in memory where the system has such a place, gone with the fuzzer.
class ScratchFolder {
public:
    QString File(const QString& name) const { return m_folder.filePath(name); }
    QString Path() const { return m_folder.path(); }

    QString Write(const QString& name, std::string_view bytes) const {
        QFile file(File(name));
        Require(file.open(QIODevice::WriteOnly) &&
                    file.write(bytes.data(), static_cast<qint64>(bytes.size())) ==
                        static_cast<qint64>(bytes.size()),
                "the scratch folder takes files");
        return file.fileName();
    }

    QByteArray Read(const QString& name) const {
        QFile file(File(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    static QString Template() {
        const QString memory = QStringLiteral("/dev/shm");
        return (QDir(memory).exists() ? memory : QDir::tempPath()) + QStringLiteral("/qiran-fuzz-XXXXXX");
    }

    QTemporaryDir m_folder{Template()};
};
