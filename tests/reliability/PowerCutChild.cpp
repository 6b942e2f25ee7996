// A process that writes what a power cut may hit, and one that reads what the cut has left.
//
// PowerCutChild list              prints a line for each kind of writing: its name, and how its file changes
// PowerCutChild act NAME FOLDER   does that writing
// PowerCutChild show NAME         reads folders from standard input, a line each; of each prints a line with
// what
//                                 it holds, then one with what it holds after something more was written. The
//                                 parts of a line stand between "|"

#include "foundation/settings/clsIni.h"
#include "keps/ConvertKepsFile.h"
#include "orbit/history/ElementsHistory.h"
#include "sharing/ForwardQueue.h"
#include "sharing/SidsRequest.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/history/HistoryWriter.h"
#include "telemetry/imports/HistoryImport.h"
#include "telemetry/limits/EventFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <array>
#include <iostream>
#include <string>

namespace {

constexpr qint64 start = 1795262400000;               // 2026-11-21 12:00 UTC
constexpr auto wait = std::chrono::milliseconds(120); // see powerCutTest.py

struct Kind {
    const char* name;
    const char* change; // "appended": only ever grows; "replaced": as a whole, or not at all
    void (*act)(const ProgramFolder& folder);
    void (*more)(const ProgramFolder& folder);
    QByteArrayList (*show)(const ProgramFolder& folder);
};

void Loop(std::chrono::milliseconds time) {
    QTimer::singleShot(time, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

QString HistoryOf(const ProgramFolder& folder) {
    return folder.File(QStringLiteral("tlm.txt"));
}

void Hear(HistoryWriter& writer, int number, std::chrono::milliseconds time = wait) {
    const std::string line = "T#" + std::to_string(number) + ",1,2,3,4,0,0,00111111,0";
    TelemetryFrame frame;
    frame.utc = start + number * 60'000;
    frame.source = "QIRAN-3";
    frame.side = 1;
    const auto fields = *SplitAtCommas<TelemetryFrame::fieldsInLine>(line);
    for (std::size_t i = 0; i < fields.size(); ++i)
        frame.fields[i] = QByteArrayView(fields[i].data(), static_cast<qsizetype>(fields[i].size()));
    writer.Take(frame);
    Loop(time);
}

void HearSome(const ProgramFolder& folder, int first, int last) {
    HistoryWriter writer(HistoryOf(folder), [](const QString&) {});
    for (int number = first; number <= last; ++number)
        Hear(writer, number);
}

void HearAll(const ProgramFolder& folder) {
    HearSome(folder, 0, 11); // the second writer finds what the first has left
    HearSome(folder, 12, 15);
}

void HearMore(const ProgramFolder& folder) {
    HistoryWriter writer(HistoryOf(folder), [](const QString&) {});
    Hear(writer, 999, {});
}

QByteArrayList ShowHistory(const ProgramFolder& folder) {
    ChannelMap map;
    map.BuildChannelMap();
    TelemetryHistory history(HistoryOf(folder), map, {}, {{"QIRAN-3", 1}});
    if (history.Open() != TelemetryHistory::Opened::Done)
        return {"unreadable"};
    std::vector<quint32> frames(history.Frames());
    for (quint32 i = 0; i < history.Frames(); ++i)
        frames[i] = i;
    const std::vector<QByteArray> sequences = history.Sequences(frames);
    return {sequences.begin(), sequences.end()};
}

// Hears, takes other frames in, hears on, puts the history back, and hears on.
void ImportBetween(const ProgramFolder& folder) {
    HistoryWriter writer(HistoryOf(folder), [](const QString&) {});
    Hear(writer, 0);
    Hear(writer, 1);
    const QString other =
        QDir::cleanPath(folder.Path() + QStringLiteral("../other.txt")); // on no disk of ours
    {
        QFile file(other);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no file to import");
        file.write(HistoryLayout::Header());
        for (int number = 0; number < 5; ++number)
            file.write(HistoryLayout::LineOf(start + number * 60'000 + 30'000, "QIRAN-3", 1,
                                             {"I#" + std::string(1, static_cast<char>('0' + number)), "1",
                                              "2", "3", "4", "0", "0", "00111111", "0"}));
    }
    HistoryImport import(HistoryOf(folder), {{"QIRAN-3", 1}});
    using Result = HistoryImport::Result;
    if (import.Count({other}, {}) != Result::Done || import.Prepare() != Result::Done)
        qFatal("the import failed");
    Hear(writer, 2);
    if (import.Commit() != Result::Done)
        qFatal("the import failed");
    Hear(writer, 3);
    Hear(writer, 4);
    if (!HistoryImport::Undo(HistoryOf(folder)).isEmpty())
        qFatal("the import cannot be taken back");
    Hear(writer, 5);
}

void SaveSetting(const ProgramFolder& folder, const QString& value) {
    clsIni(folder.IniFile()).SaveIniString(QStringLiteral("SETUP"), QStringLiteral("COMMENT"), value);
}

void SaveSettings(const ProgramFolder& folder) {
    for (int round = 0; round < 5; ++round)
        SaveSetting(folder, QString(round * 7 + 1, QChar(u'a' + round)));
}

void SaveMore(const ProgramFolder& folder) {
    SaveSetting(folder, QStringLiteral("more"));
}

QByteArrayList ShowSettings(const ProgramFolder& folder) {
    const clsIni ini(folder.IniFile());
    return {ini.GetIniString(QStringLiteral("SETUP"), QStringLiteral("COMMENT"), QStringLiteral("none"))
                .toUtf8()};
}

void StoreSet(const ProgramFolder& folder, char letter) {
    QFile source(KepsFiles::Target(folder));
    if (!source.open(QIODevice::WriteOnly) ||
        source.write(QByteArray(68, letter).append('\n').repeated(20)) < 0)
        qFatal("nothing to store");
    source.close();
    if (!ConvertKepsFile(folder, source.fileName(), QStringLiteral("amateur.txt"), 0).error.isEmpty())
        qFatal("not stored");
}

void StoreElements(const ProgramFolder& folder) {
    for (const char letter : {'A', 'B', 'C'})
        StoreSet(folder, letter);
}

void StoreMore(const ProgramFolder& folder) {
    StoreSet(folder, 'M');
}

QByteArrayList ShowElements(const ProgramFolder& folder) {
    QFile file(KepsFiles::Result(folder, QStringLiteral("amateur.txt")));
    return {file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : "none"};
}

void AddEvents(const ProgramFolder& folder, int first, int last, std::chrono::milliseconds time) {
    EventFile events(folder.File(QStringLiteral("events.txt")), [](const QString&) {});
    for (int number = first; number <= last; ++number) {
        events.Append({start + number, {0, 0, 1}, number + 0.5, Level::Normal, Level::LowWarning});
        Loop(time);
    }
}

void AddAllEvents(const ProgramFolder& folder) {
    AddEvents(folder, 0, 11, wait);
}

void AddAnotherEvent(const ProgramFolder& folder) {
    AddEvents(folder, 999, 999, {});
}

QByteArrayList ShowEvents(const ProgramFolder& folder) {
    QByteArrayList shown;
    for (const LimitEvent& event : EventFile::Read(folder.File(QStringLiteral("events.txt"))))
        shown += QByteArray::number(event.value);
    return shown;
}

// The sets of different seconds: those of the same millisecond are one.
qint64 EpochOf(int number) {
    return start + number * qint64{1000};
}

void KeepFlown(const ProgramFolder& folder, int first, int last, std::chrono::milliseconds time) {
    ElementsHistory history(folder.File(QStringLiteral("elements-history.txt")), [](const QString&) {});
    history.Load();
    for (int number = first; number <= last; ++number) {
        history.Keep({.firstSeen = start,
                      .number = 90417,
                      .epoch = EpochOf(number),
                      .elements = "QIRAN\n1 90417U\n2 90417 " + QByteArray::number(number)});
        Loop(time);
    }
}

void KeepAllFlown(const ProgramFolder& folder) {
    KeepFlown(folder, 0, 11, wait);
}

void KeepMoreFlown(const ProgramFolder& folder) {
    KeepFlown(folder, 999, 999, {});
}

QByteArrayList ShowFlown(const ProgramFolder& folder) {
    ElementsHistory history(folder.File(QStringLiteral("elements-history.txt")), {});
    history.Load();
    QByteArrayList shown;
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 999})
        if (history.Holds(90417, EpochOf(number)))
            shown += history.Nearest(90417, EpochOf(number))->elements.split(' ').back();
    return shown;
}

QByteArray ForwardBody(int number) {
    const SidsStation station{QStringLiteral("DL1ABC"),           true, 49.7, 8.9, QStringLiteral("90417"),
                              QStringLiteral("QiranDecode-2.4.2")};
    return *SidsRequest::Body(station, start + number, "frame " + QByteArray::number(number));
}

// Queues, sends and is refused; a second queue finds a torn line at the end, so that it is written anew.
void ForwardAll(const ProgramFolder& folder) {
    constexpr qsizetype keepAtMost = 100;
    {
        ForwardQueue queue(folder, [](const QString&) {});
        queue.Open(keepAtMost);
        for (int number = 0; number < 8; number += 2) {
            queue.Add({ForwardBody(number), ForwardBody(number + 1)});
            Loop(wait);
            queue.NoteSent(queue.List().FirstWaiting());
            Loop(wait);
        }
        queue.Park(queue.List().FirstWaiting(), QStringLiteral("400 Bad Request"));
        Loop(wait);
    }
    QFile file(folder.File(ForwardQueue::FileName()));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) || file.write("9 sent 1f0c") < 0)
        qFatal("no torn line");
    file.close();
    ForwardQueue queue(folder, [](const QString&) {});
    queue.Open(keepAtMost);
    for (int number = 8; number < 12; ++number) {
        queue.Add({ForwardBody(number)});
        Loop(wait);
        queue.NoteSent(queue.List().FirstWaiting());
        Loop(wait);
    }
}

void ForwardMore(const ProgramFolder& folder) {
    ForwardQueue queue(folder, [](const QString&) {});
    queue.Open(ForwardList::mostFrames);
    queue.Add({ForwardBody(999)});
}

// What is known of each frame, in the order in which it came about.
QByteArrayList ShowForward(const ProgramFolder& folder) {
    const ForwardList list = ForwardQueue::Read(folder);
    QByteArrayList shown;
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 999}) {
        const QByteArray body = ForwardBody(number);
        if (!list.IsKnown(SidsRequest::FrameKey(body)))
            continue;
        const QByteArray name = QByteArray::number(number);
        shown += name + " queued";
        const auto waits =
            std::ranges::find(list.Frames(), body, [](const auto& entry) { return entry.second.body; });
        if (waits == list.Frames().end())
            shown += name + " sent";
        else if (waits->second.isParked)
            shown += name + " parked";
    }
    return shown;
}

constexpr std::array kinds{
    Kind{"history", "appended", HearAll, HearMore, ShowHistory},
    Kind{"import", "appended", ImportBetween, HearMore, ShowHistory},
    Kind{"events", "appended", AddAllEvents, AddAnotherEvent, ShowEvents},
    Kind{"flown", "appended", KeepAllFlown, KeepMoreFlown, ShowFlown},
    Kind{"forward", "appended", ForwardAll, ForwardMore, ShowForward},
    Kind{"settings", "replaced", SaveSettings, SaveMore, ShowSettings},
    Kind{"elements", "replaced", StoreElements, StoreMore, ShowElements},
};

int Show(const Kind& kind) {
    for (std::string path; std::getline(std::cin, path);) {
        const ProgramFolder folder(QString::fromStdString(path), QStringLiteral("QiranDecode"));
        std::cout << kind.show(folder).join('|').constData() << '\n';
        kind.more(folder);
        std::cout << kind.show(folder).join('|').constData() << std::endl;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    for (const Kind& kind : kinds) {
        if (arguments.value(1) == u"list")
            std::cout << kind.name << ' ' << kind.change << '\n';
        if (arguments.value(2) != QLatin1StringView(kind.name))
            continue;
        if (arguments.value(1) == u"show")
            return Show(kind);
        kind.act(ProgramFolder(arguments.value(3), QStringLiteral("QiranDecode")));
    }
    return 0;
}
