#include "sharing/ForwardRequest.h"

#include "foundation/system/FolderLock.h"
#include "sharing/ForwardRoom.h"

#include <QTest>

using Kind = ForwardRequest::Kind;
using namespace Qt::StringLiterals;

class ForwardRequestTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ForwardRoom> m_room;

    const ProgramFolder& Folder() const { return m_room->folder.Program(); }
    ForwardCounts Counts() const { return m_room->forwarder->Counts(); }

    // A station with one frame parked and another under way.
    void StartWithParked() const {
        m_room->forwarder->Start();
        m_room->Hear(1);
        m_room->Hear(2);
        m_room->post.Answer(400, u"400 no"_s);
        m_room->PassTime();
        m_room->post.Answer(503);
    }

private Q_SLOTS:
    void init() { m_room = std::make_unique<ForwardRoom>(); }
    void cleanup() { m_room.reset(); }

    void RunningStationCarriesOutWhatIsAskedWithinTwoSeconds() {
        StartWithParked();
        FolderLock lock = FolderLock::OfProgram(Folder());
        QVERIFY(lock.TryLock());
        QVERIFY(ForwardRequest{Kind::Retry}.DoOrLeave(Folder(), 10).isLeft);
        QTRY_COMPARE_WITH_TIMEOUT(Counts(), (ForwardCounts{2, 0, 0, 0, 0}), 2000);
        QCOMPARE(m_room->post.requests.last().body, m_room->Body(1)); // at once
        m_room->post.Answer(400, u"400 no"_s);
        QVERIFY(!ForwardRequest::IsLeft(Folder()));
        QVERIFY(ForwardRequest{Kind::Discard}.DoOrLeave(Folder(), 10).isLeft);
        QTRY_COMPARE_WITH_TIMEOUT(Counts(), (ForwardCounts{1, 0, 0, 1, 0}), 2000);
        const ForwardRequest queue{Kind::Queue, m_room->Bodies(1, 4)};
        QVERIFY(queue.DoOrLeave(Folder(), 10).isLeft);
        QTRY_COMPARE_WITH_TIMEOUT(Counts(), (ForwardCounts{4, 0, 0, 1, 0}), 2000);
        QVERIFY(!ForwardRequest::IsLeft(Folder()));
    }

    void RequestIsCarriedOutAlsoWhileForwardingIsOff() {
        StartWithParked();
        m_room->Set("USE", u"FALSE"_s);
        m_room->Restart();
        QCOMPARE(ForwardRequest{Kind::Discard}.Leave(Folder()), QString());
        QTRY_COMPARE_WITH_TIMEOUT(Counts(), (ForwardCounts{1, 0, 0, 1, 0}), 2000);
    }

    void WithoutAStationItIsDoneAtOnce() {
        StartWithParked();
        m_room->forwarder->Stop();
        auto outcome = ForwardRequest{Kind::Queue, m_room->Bodies(1, 5)}.DoOrLeave(Folder(), 10);
        QCOMPARE(outcome.frames, 3); // two are there
        QVERIFY(!outcome.isLeft && outcome.error.isEmpty());
        outcome = ForwardRequest{Kind::Retry}.DoOrLeave(Folder(), 10);
        QCOMPARE(outcome.frames, 1);
        QCOMPARE(ForwardQueue::Read(Folder()).Counts(), (ForwardCounts{5, 0, 0, 0, 0}));
        QVERIFY(!ForwardRequest::IsLeft(Folder()));
    }

    void OneRequestLiesThereAtATime() {
        QCOMPARE(ForwardRequest{Kind::Discard}.Leave(Folder()), QString());
        QCOMPARE(ForwardRequest{Kind::Retry}.Leave(Folder()), u"an earlier request waits for the station"_s);
        QCOMPARE(m_room->folder.Read(ForwardRequest::FileName()), QByteArray("discard\n"));
        QCOMPARE(QDir(Folder().Path()).entryList({u"ForwardRequest*"_s}),
                 QStringList{ForwardRequest::FileName()});
    }

    // The station was killed after it had carried out a request and before it could remove it.
    void RequestThatIsFoundAgainQueuesNothingTwice() {
        const ForwardRequest queue{Kind::Queue, m_room->Bodies(1, 3)};
        QCOMPARE(queue.Leave(Folder()), QString());
        const QByteArray text = m_room->folder.Read(ForwardRequest::FileName());
        m_room->forwarder->Start();
        m_room->post.Answer(201);
        m_room->folder.Write(ForwardRequest::FileName(), text);
        m_room->Restart();
        QCOMPARE(Counts(), (ForwardCounts{2, 0, 1, 0, 0}));
        QVERIFY(!ForwardRequest::IsLeft(Folder()));
    }

    void NonsenseIsSaidAndRemoved() {
        for (const QByteArray& text : {QByteArray(), QByteArray("dance\n"), QByteArray(100'000, 'x')}) {
            m_room->lines.clear();
            m_room->folder.Write(ForwardRequest::FileName(), text);
            m_room->Restart();
            QCOMPARE(m_room->lines, QStringList{u"ForwardRequest.txt says nothing sensible"_s});
            QVERIFY(!ForwardRequest::IsLeft(Folder()));
        }
        m_room->folder.Write(ForwardRequest::FileName(), "queue\nnonsense\n\n" + m_room->Body(1) + "\n");
        m_room->Restart();
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(1, 1));
    }
};

QTEST_GUILESS_MAIN(ForwardRequestTest)
#include "ForwardRequestTest.moc"
