#pragma once

#include "foundation/settings/clsIni.h"
#include "sharing/FakePost.h"
#include "sharing/Forwarder.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/HeardFrame.h"

#include <QStringList>
#include <QTimer>

#include <memory>

/// A forwarder with all that it needs, in a program folder of its own.
class ForwardRoom {
public:
    static constexpr qint64 firstUtc = 1795274923120; ///< 2026-11-21T15:28:43.120Z

    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    TestClock clock;
    CallsignList callsigns{ini};
    FakePost post;
    SidsStation station{QStringLiteral("DL1ABC"),           true, 49.7349, 8.9551, QStringLiteral("90417"),
                        QStringLiteral("QiranDecode-2.4.2")};
    double random = 0.0;
    QStringList lines; ///< status lines, without what stands before and behind each
    std::unique_ptr<Forwarder> forwarder;

    ForwardRoom() {
        callsigns.LoadCallsigns();
        clock.SetMilliseconds(firstUtc);
        Set("USE", QStringLiteral("TRUE"));
        Make();
    }

    void Set(const char* key, const QString& value) {
        ini.SaveIniString(QStringLiteral("FORWARD"), QString::fromLatin1(key), value);
    }
    QString Get(const char* key) const {
        return ini.GetIniString(QStringLiteral("FORWARD"), QString::fromLatin1(key),
                                QStringLiteral("absent"));
    }

    /// Another one in the same folder, as after a restart.
    void Make() {
        forwarder.reset();
        forwarder = std::make_unique<Forwarder>(
            Forwarder::Surroundings{folder.Program(), ini, clock, callsigns, post, [this] { return station; },
                                    [this] { return random; }});
        QObject::connect(forwarder.get(), &Forwarder::StatusText, forwarder.get(),
                         [this](const QString& text) {
                             const QString before = QStringLiteral("*** Forwarding - ");
                             if (!text.startsWith(before) || !text.endsWith(u"\r\n"))
                                 qFatal("no status line: %s", qPrintable(text));
                             lines.append(text.mid(before.size()).chopped(2));
                         });
    }
    void Restart() {
        Make();
        forwarder->Start();
    }

    static QByteArray Raw(int number) { return "raw frame " + QByteArray::number(number); }
    static qint64 Utc(int number) { return firstUtc + 1000 * number; }
    QByteArray Body(int number) const { return *SidsRequest::Body(station, Utc(number), Raw(number)); }
    QByteArrayList Bodies(int first, int last) const {
        QByteArrayList bodies;
        for (int number = first; number <= last; ++number)
            bodies.append(Body(number));
        return bodies;
    }

    void Hear(int number) {
        const QByteArray raw = Raw(number);
        HeardFrame frame;
        frame.utc = Utc(number);
        frame.source = "QIRAN-3";
        frame.raw = raw;
        forwarder->Take(frame);
    }

    QTimer& TimNext() const { return *forwarder->findChild<QTimer*>(QStringLiteral("timNext")); }

    /// The pause before the next request is over.
    void PassTime() const {
        QTimer& timer = TimNext();
        if (!timer.isActive())
            return;
        timer.stop();
        QMetaObject::invokeMethod(&timer, "timeout");
    }
};
