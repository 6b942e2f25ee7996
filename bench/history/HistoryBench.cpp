// What the history costs: opening a file, asking for readings, following a line. history.py makes the file
// and sets the figures beside its peer.
//
//   HistoryBench FILE        prints one JSON object

#include "telemetry/history/TelemetryHistory.h"

#include <QFile>

#include <array>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>

namespace {

constexpr qint64 never = std::numeric_limits<qint64>::min();
constexpr qint64 ever = std::numeric_limits<qint64>::max();

// Processor time of this process, which does not depend on what else the machine does.
double Milliseconds() {
    timespec spent{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) * 1e-6;
}

double ResidentMiB() {
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("VmHWM:")) // the most that it ever was
            return line.sliced(6).chopped(3).trimmed().toDouble() / 1024;
    return 0;
}

FormulaTable Formulae();

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    ChannelMap map;
    map.BuildChannelMap();
    const double memoryBefore = ResidentMiB();
    TelemetryHistory history(path, map, Formulae(), {{"XQ9ZZ-1", 0}, {"QIRAN-3", 1}});
    const double begun = Milliseconds();
    if (history.Open() != TelemetryHistory::Opened::Done)
        return 1;
    const double opened = Milliseconds();
    const double memory = ResidentMiB() - memoryBefore;
    const std::array six{HistoryChannel{0, 0, 1}, HistoryChannel{0, 0, 2}, HistoryChannel{0, 0, 3},
                         HistoryChannel{1, 0, 1}, HistoryChannel{1, 2, 8}, HistoryChannel{0, 1, 7}};
    std::size_t readings = 0;
    for (const HistoryColumns& column : history.Readings(six, never, ever))
        readings += column.utc.size();
    const double asked = Milliseconds();
    (void)history.Shown(six, ever);
    const double shown = Milliseconds();
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return 1;
    file.write("2050-01-01T00:00:00.000Z,XQ9ZZ-1,A,T#1,1,2,3,4,0,0,00110000,0\n");
    file.close();
    const double appended = Milliseconds();
    if (history.Follow() != TelemetryHistory::Followed::Appended)
        return 1;
    const double followed = Milliseconds();
    std::printf(
        "{\"frames\": %u, \"foreign\": %lld, \"open_ms\": %.2f, \"open_mib\": %.2f, \"readings\": %zu, "
        "\"readings_ms\": %.2f, \"shown_ms\": %.3f, \"follow_ms\": %.3f}\n",
        history.Frames(), static_cast<long long>(history.ForeignLines().lines), opened - begun, memory,
        readings, asked - opened, shown - asked, followed - appended);
    return 0;
}

namespace {

// A cubic for each cell of the six.
FormulaTable Formulae() {
    FormulaTable table;
    for (const char* side : {"A", "B"})
        for (const char* row : {"BATT A", "BATT B", "P OUT"})
            (void)table.StoreFormulaLine({side, "3", "POWER", row, "1E-6", "-4E-4", "0.55", "-50"});
    (void)table.StoreFormulaLine({"B", "1", "TEMP", "BATT", "1E-6", "-4E-4", "0.55", "-50"});
    (void)table.StoreFormulaLine({"A", "2", "CURRENT", "BATT", "1E-6", "-4E-4", "0.55", "-50"});
    return table;
}

} // namespace
