#pragma once

#include <QString>

#include <functional>

/// Housekeeping of the telemetry files in the data folder, made ready for a history of decoded values.
namespace TelemetryFiles {

/// What is done with one input of the history.
using ImportStep = std::function<void(const QString& path, const QString& historyPath)>;

/// Without effect until there is a history.
void ImportTelemetryFile(const QString& path, const QString& historyPath);

/// Deletes the history "tlm.txt" and imports every "2001*.txt" anew. `dataFolder` ends in a separator.
void PurgeTelemetryFiles(const QString& dataFolder, const ImportStep& import = ImportTelemetryFile);

} // namespace TelemetryFiles
