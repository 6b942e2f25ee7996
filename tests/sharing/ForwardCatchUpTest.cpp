#include "sharing/ForwardCatchUp.h"

#include "sharing/ForwardRoom.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ForwardCatchUpTest : public QObject {
    Q_OBJECT

private:
    static HeardFrame Frame(const QByteArray& raw, int number) {
        HeardFrame frame;
        frame.utc = ForwardRoom::Utc(number);
        frame.origin = HeardFrame::Origin::Replayed;
        frame.source = "QIRAN-3";
        frame.raw = raw;
        return frame;
    }

private Q_SLOTS:
    void RequestsAreThoseThatWereMadeHadTheFramesBeenForwarded() {
        const ForwardRoom room;
        ForwardCatchUp catchUp(room.callsigns, room.station, 10);
        for (int number = 1; number <= 3; ++number) {
            const QByteArray raw = ForwardRoom::Raw(number);
            catchUp.Take(Frame(raw, number));
        }
        QCOMPARE(catchUp.Bodies(), room.Bodies(1, 3));
    }

    void RawFramesOfTheSatelliteWithATimeAreTakenAndOthersCounted() {
        const ForwardRoom room;
        ForwardCatchUp catchUp(room.callsigns, room.station, 10);
        const QByteArray raw = "raw";
        HeardFrame frame = Frame(raw, 1);
        frame.source = "DL1ABC";
        catchUp.Take(frame);
        frame = Frame(raw, 1);
        frame.kind = HeardFrame::Kind::T;
        catchUp.Take(frame);
        frame = Frame(raw, 1);
        frame.utc = 0;
        catchUp.Take(frame);
        catchUp.Take(Frame({}, 1)); // a text alone
        QCOMPARE(catchUp.Bodies(), QByteArrayList());
        QCOMPARE(catchUp.NotTheSatellites(), 2);
        QCOMPARE(catchUp.NotWhole(), 2);
    }

    void NewestAreKept() {
        const ForwardRoom room;
        ForwardCatchUp catchUp(room.callsigns, room.station, 2);
        for (int number = 1; number <= 5; ++number) {
            const QByteArray raw = ForwardRoom::Raw(number);
            catchUp.Take(Frame(raw, number));
        }
        QCOMPARE(catchUp.Bodies(), room.Bodies(4, 5));
        QCOMPARE(catchUp.TooMany(), 3);
    }
};

QTEST_GUILESS_MAIN(ForwardCatchUpTest)
#include "ForwardCatchUpTest.moc"
