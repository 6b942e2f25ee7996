// A process that does nothing but save, for tests that kill it or take its disk away.
//
// SavingChild FOLDER        saves, logs and stores elements until it is killed; prints each number as soon as
//                           the log has taken its line
// SavingChild FOLDER once   does each once, and prints what could not be saved
// SavingChild FOLDER fetch ADDRESS        downloads elements from ADDRESS over and over until it is killed or
// fails;
//                                         prints what the download's status box and messages say
// SavingChild FOLDER fetch ADDRESS once   does it once
// SavingChild FOLDER hear FIRST           hears telemetry frames, numbered from FIRST, until it is killed;
// prints each
//                                         number as soon as the history has it
// SavingChild FOLDER import FIRST FILE    the same, and brings FILE into the history and takes it back, over
// and over

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Clock.h"
#include "keps/ConvertKepsFile.h"
#include "keps/DownloadSequence.h"
#include "keps/HttpTransfer.h"
#include "station/log/TrafficLog.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/history/HistoryWriter.h"
#include "telemetry/imports/HistoryImport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <string>

namespace {

constexpr int keyCount = 40;
constexpr int elementLines = 3000;

void Say(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void SaveSettings(clsIni& ini, int round) {
    for (int key = 0; key < keyCount; ++key)
        ini.SaveIniString(QStringLiteral("SETUP"), QStringLiteral("KEY_%1").arg(key), QString::number(round));
}

void StoreElements(const ProgramFolder& folder, int round) {
    QFile source(KepsFiles::Target(folder));
    const QByteArray elements =
        QByteArray(68, static_cast<char>('A' + round % 26)).append('\n').repeated(elementLines);
    if (!source.open(QIODevice::WriteOnly) || source.write(elements) != elements.size() || !source.flush()) {
        Say("elements: nothing fetched");
        return;
    }
    source.close();
    const KepsConversion stored =
        ConvertKepsFile(folder, source.fileName(), QStringLiteral("amateur.txt"), 0);
    if (!stored.error.isEmpty())
        Say("elements: " + stored.error.toUtf8());
}

int Fetch(const ProgramFolder& folder, clsIni& ini, const QString& address, bool once) {
    HttpTransfer inet;
    DownloadSequence sequence(inet, ini, folder);
    sequence.findChild<QTimer*>(QStringLiteral("Timer1"))->setInterval(0);
    const auto say = [](const QString& text) {
        Say(text.toUtf8());
        if (text.startsWith(u"Error - "))
            QCoreApplication::exit(1);
    };
    const auto again = [&] { sequence.Download({address, {}}); };
    QObject::connect(&sequence, &DownloadSequence::Status, say);
    QObject::connect(&sequence, &DownloadSequence::Message, say);
    if (once)
        QObject::connect(&sequence, &DownloadSequence::Finished, &QCoreApplication::quit);
    else
        QObject::connect(&sequence, &DownloadSequence::Finished, &sequence, again, Qt::QueuedConnection);
    QTimer::singleShot(0, &sequence, again);
    return QCoreApplication::exec();
}

void Hear(HistoryWriter& history, int number) {
    const std::string line = "T#" + std::to_string(number) + ",1,2,3,4,0,0,00111111,0";
    const auto fields = *SplitAtCommas<TelemetryFrame::fieldsInLine>(line);
    TelemetryFrame frame{.utc = QDateTime::currentMSecsSinceEpoch(), .source = "QIRAN-3", .side = 1};
    for (std::size_t i = 0; i < fields.size(); ++i)
        frame.fields[i] = QByteArrayView(fields[i].data(), static_cast<qsizetype>(fields[i].size()));
    history.Take(frame);
    Say(QByteArray::number(number));
    QCoreApplication::processEvents();
}

int HearAll(const ProgramFolder& folder, int number) {
    HistoryWriter history(folder.File(QStringLiteral("tlm.txt")),
                          [](const QString& reason) { Say(reason.toUtf8()); });
    while (true)
        Hear(history, number++);
}

int ImportAll(const ProgramFolder& folder, int number, const QString& file) {
    const QString path = folder.File(QStringLiteral("tlm.txt"));
    HistoryWriter history(path, [](const QString& reason) { Say(reason.toUtf8()); });
    const auto hear = [&](qint64, qint64) {
        Hear(history, number++);
        return true;
    };
    while (true) {
        HistoryImport import(path, {{"QIRAN-3", 1}});
        using Result = HistoryImport::Result;
        if (import.Count({file}, {}, hear) != Result::Done || import.Prepare(hear) != Result::Done ||
            import.Commit() != Result::Done)
            qFatal("%s", qPrintable(import.Reason()));
        hear(0, 0);
        if (const QString reason = HistoryImport::Undo(path); !reason.isEmpty())
            qFatal("%s", qPrintable(reason));
        hear(0, 0);
    }
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::signal(SIGXFSZ, SIG_IGN); // as the program does
    const QStringList arguments = QCoreApplication::arguments();
    const ProgramFolder folder(arguments.value(1), QStringLiteral("QiranDecode"));
    const bool once = arguments.last() == u"once";
    const Clock clock;
    clsIni ini(folder.IniFile());
    ini.SetWriteFailed([](const QString&, const QString& reason) { Say("settings: " + reason.toUtf8()); });
    if (arguments.value(2) == u"fetch")
        return Fetch(folder, ini, arguments.value(3), once);
    if (arguments.value(2) == u"hear")
        return HearAll(folder, arguments.value(3).toInt());
    if (arguments.value(2) == u"import")
        return ImportAll(folder, arguments.value(3).toInt(), arguments.value(4));
    TrafficLog log(ini, clock, folder);
    if (!once)
        log.ToggleLogging();
    for (int round = 0; !once || round == 0; ++round) {
        log.WriteTrafficLog("line " + QByteArray::number(round) + "\r\n");
        Say(QByteArray::number(round));
        SaveSettings(ini, round);
        StoreElements(folder, round);
    }
    return 0;
}
