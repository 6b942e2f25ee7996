#include "telemetry/history/TelemetryFiles.h"

#include <QDir>
#include <QFile>

namespace TelemetryFiles {

void ImportTelemetryFile(const QString&, const QString&) {}

void PurgeTelemetryFiles(const QString& dataFolder, const ImportStep& import) {
    const QString history = dataFolder + QStringLiteral("tlm.txt");
    if (QFile::exists(history))
        QFile::remove(history);
    const QStringList inputs =
        QDir(dataFolder).entryList({QStringLiteral("2001*.txt")}, QDir::Files, QDir::Unsorted);
    for (const QString& input : inputs)
        import(dataFolder + input, history);
}

} // namespace TelemetryFiles
