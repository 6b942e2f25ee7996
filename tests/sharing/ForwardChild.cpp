// A process that does nothing but forward, for a test that kills it.
//
// ForwardChild FOLDER FIRST   queues one frame after the other, numbered from FIRST, until it is killed;
// prints
//                             each number as soon as the queue has its frame
// ForwardChild FOLDER drain   ends when nothing waits any more

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Clock.h"
#include "sharing/Forwarder.h"
#include "sharing/HttpPost.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/HeardFrame.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const ProgramFolder folder(arguments.value(1), QStringLiteral("QiranDecode"));
    const bool isDraining = arguments.value(2) == u"drain";
    int number = arguments.value(2).toInt();
    const Clock clock;
    clsIni ini(folder.IniFile());
    CallsignList callsigns(ini);
    callsigns.LoadCallsigns();
    HttpPost post;
    const SidsStation station{QStringLiteral("DL1ABC"),           true, 49.7, 8.9, QStringLiteral("90417"),
                              QStringLiteral("QiranDecode-2.4.2")};
    Forwarder forwarder(
        {folder, ini, clock, callsigns, post, [&] { return station; }, [] { return 0.0; }, 1});
    QObject::connect(&forwarder, &Forwarder::Changed, &application, [&] {
        if (isDraining && forwarder.Counts().waiting == 0)
            QCoreApplication::quit();
    });
    forwarder.Start();
    if (isDraining && forwarder.Counts().waiting == 0)
        return 0;
    QTimer hear;
    QObject::connect(&hear, &QTimer::timeout, &application, [&] {
        const QByteArray raw = QByteArray::number(number);
        HeardFrame frame;
        frame.utc = 1795274923120 + number;
        frame.source = "QIRAN-3";
        frame.raw = raw;
        forwarder.Take(frame);
        std::printf("%d\n", number++);
        std::fflush(stdout);
    });
    if (!isDraining)
        hear.start(2);
    return QCoreApplication::exec();
}
