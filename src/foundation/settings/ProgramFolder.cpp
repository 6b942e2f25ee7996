#include "foundation/settings/ProgramFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <utility>

ProgramFolder::ProgramFolder(QString folder, QString executable)
    : m_folder(std::move(folder))
    , m_path(m_folder)
    , m_executable(std::move(executable)) {
    if (!m_path.endsWith(QDir::separator()))
        m_path += QDir::separator();
}

ProgramFolder ProgramFolder::OfExecutable() {
    const QFileInfo executable(QCoreApplication::applicationFilePath());
    return {executable.path(), executable.completeBaseName()};
}

QString ProgramFolder::IniFile() const {
    // A root folder keeps its doubled separator here: to the file system both paths are one.
    return m_folder + QDir::separator() + m_executable + QStringLiteral(".INI");
}
