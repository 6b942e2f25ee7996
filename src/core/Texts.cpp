#include "core/Texts.h"

#include "core/Version.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/limits/LimitJudge.h"

namespace Texts {

QString Title() {
    return QStringLiteral("QIRAN Telemetry Decoder");
}

QString Caption(const QString& title) {
    return QStringLiteral("%1    V%2.%3%4%5")
        .arg(title)
        .arg(::Version::major)
        .arg(::Version::minor)
        .arg(::Version::revision)
        .arg(QStringView(::Version::fileDescription));
}

QString VersionNumber() {
    return QStringLiteral("%1.%2.%3").arg(::Version::major).arg(::Version::minor).arg(::Version::revision);
}

QString CalendarMaker() {
    return QStringLiteral("qirandecode-cli ") + VersionNumber();
}

QString Version() {
    return QStringLiteral("Version %1.%2 revision %3")
        .arg(::Version::major)
        .arg(::Version::minor)
        .arg(::Version::revision);
}

QString CubeExplanation() {
    return QStringLiteral("The satellite is a cube.\r\n"
                          "X+, X-, Y+, Y-, Z+ and Z- refer to the six sides of the cube.");
}

QString PositionUnknown() {
    return QStringLiteral(
        "Pass predictions will not be not available until you input your latitude and longitude in  "
        "'Station Information'.");
}

QString CannotSave(const QString& file, const QString& reason) {
    return QStringLiteral("*** The settings cannot be saved in %1 - %2\r\n").arg(file, reason);
}

QString CannotWrite(const QString& file, const QString& reason) {
    return QStringLiteral("*** What is heard cannot be kept in %1 - %2\r\n").arg(file, reason);
}

QString WrongLine(const QString& file, std::size_t line, const QString& reason) {
    const QString place = line == 0 ? file : QStringLiteral("%1, line %2").arg(file).arg(line);
    return QStringLiteral("*** %1: %2\r\n").arg(place, reason);
}

QString Crossed(const LimitEvent& event) {
    return QStringLiteral("%1 %2 %3: %4")
        .arg(event.cell.side == 0 ? QLatin1StringView("A") : QLatin1StringView("B"),
             QLatin1StringView(GridLayout::Tag(event.cell.grid)),
             QLatin1StringView(GridLayout::RowName(event.cell.grid, event.cell.row)),
             QLatin1StringView(LevelName(event.to)));
}

QString WhereFormulaeBelong(const QString& path) {
    return QStringLiteral(
               "QiranDecode: put the satellite's calibration formulae into the file %1\n"
               "An example to begin with is formula.example.txt among the files that came with the "
               "program.\n")
        .arg(path);
}

QString AlreadyRunning() {
    return QStringLiteral("QiranDecode is already running. ");
}

QString InFolder(const QString& folder) {
    return QStringLiteral("QiranDecode in %1").arg(folder);
}

QString NoLogs() {
    return QStringLiteral(
        "There are no logs yet. Tick 'Log All Data' in the terminal, and everything that is heard is "
        "written to a file a day.");
}

QString CannotOpen(const QString& folder) {
    return QStringLiteral("Nothing on this desktop opens folders. The folder is %1").arg(folder);
}

QString LastStartEnded(const QString& reason) {
    return QStringLiteral(
               "The program ended at its last start because of %1. Mend the line, and start it again. "
               "'qirandecode-cli decode --check' names every line that is wrong.")
        .arg(reason);
}

QString HeldBy(const QString& folder, const QString& holder) {
    return QStringLiteral("QiranDecode: the folder %1 is held by %2\n").arg(folder, holder);
}

} // namespace Texts
