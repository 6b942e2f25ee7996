#include "keps/ScriptedServer.h"
#include "sharing/ForwardRoom.h"
#include "sharing/HttpPost.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class ForwarderTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ForwardRoom> m_room;

    void Start() { m_room->forwarder->Start(); }
    ForwardCounts Counts() const { return m_room->forwarder->Counts(); }
    int Pause() const { return m_room->TimNext().isActive() ? m_room->TimNext().interval() : -1; }

private Q_SLOTS:
    void init() { m_room = std::make_unique<ForwardRoom>(); }
    void cleanup() { m_room.reset(); }

    void FramesOfTheSatelliteAreSentOneAtATimeInTheirOrder() {
        Start();
        for (int number = 1; number <= 3; ++number)
            m_room->Hear(number);
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(1, 1));
        QCOMPARE(m_room->post.requests[0].url, QUrl(u"https://db.satnogs.org/api/telemetry/"_s));
        QCOMPARE(m_room->post.requests[0].token, QByteArray());
        m_room->post.Answer(201);
        QCOMPARE(Pause(), Forwarder::leastInterval); // the rate is limited
        QCOMPARE(m_room->post.requests.size(), 1);
        m_room->PassTime();
        m_room->post.Answer(200);
        m_room->PassTime();
        m_room->post.Answer(204);
        m_room->PassTime();
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(1, 3));
        QCOMPARE(Counts(), (ForwardCounts{0, 0, 3, 0, 0}));
        QCOMPARE(m_room->lines, QStringList());
    }

    void OnlyLiveRawFramesOfTheSatelliteAreQueued() {
        Start();
        const QByteArray raw = "raw";
        HeardFrame frame;
        frame.utc = ForwardRoom::firstUtc;
        frame.source = "QIRAN-3";
        frame.raw = raw;
        const auto waiting = [&](const auto& change) {
            HeardFrame changed = frame;
            change(changed);
            m_room->forwarder->Take(changed);
            return Counts().waiting;
        };
        QCOMPARE(waiting([](HeardFrame& f) { f.origin = HeardFrame::Origin::Replayed; }), 0);
        QCOMPARE(waiting([](HeardFrame& f) { f.kind = HeardFrame::Kind::T; }), 0);
        QCOMPARE(waiting([](HeardFrame& f) { f.source = "DL1ABC"; }), 0);
        QCOMPARE(waiting([](HeardFrame& f) { f.raw = {}; }), 0);
        const QByteArray large(SidsRequest::largestFrame + 1, 'x');
        QCOMPARE(waiting([&](HeardFrame& f) { f.raw = large; }), 0);
        QCOMPARE(waiting([](HeardFrame& f) { f.utc = 0; }), 0);
        QCOMPARE(waiting([](HeardFrame&) {}), 1);
    }

    void NothingIsQueuedOrSentUntilItIsSwitchedOn() {
        m_room = std::make_unique<ForwardRoom>();
        m_room->ini.DeleteSection(u"FORWARD"_s);
        m_room->Restart();
        QVERIFY(!m_room->forwarder->WantsRawFrames());
        m_room->Hear(1);
        QCOMPARE(Counts(), ForwardCounts());
        QVERIFY(m_room->folder.Read(ForwardQueue::FileName()).isNull());
        QCOMPARE(m_room->Get("USE"), u"absent"_s); // nor is a setting written
        QSignalSpy wants(m_room->forwarder.get(), &Forwarder::WantsRawFramesChanged);
        ForwardSettings settings = m_room->forwarder->Settings();
        settings.use = true;
        m_room->forwarder->SetSettings(settings);
        QCOMPARE(wants.value(0).value(0).toBool(), true);
        QCOMPARE(m_room->Get("USE"), u"TRUE"_s);
        QCOMPARE(m_room->Get("URL"), u"absent"_s);
        m_room->Hear(2);
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(2, 2));
    }

    void WhatIsMissingIsSaidOnceUntilItChanges() {
        m_room->station = {};
        m_room->Set("URL", u"db.satnogs.org"_s);
        m_room->Restart();
        m_room->Hear(1);
        m_room->Hear(2);
        QCOMPARE(m_room->lines,
                 QStringList{u"missing: callsign, position, catalogue number, address of a server"_s});
        m_room->station = ForwardRoom().station;
        m_room->station.isPositionKnown = false;
        m_room->Set("URL", u"http://127.0.0.1/"_s);
        m_room->Restart();
        m_room->Hear(3);
        QCOMPARE(m_room->lines.last(), u"missing: position"_s);
        QCOMPARE(Counts(), ForwardCounts());
        m_room->station.isPositionKnown = true;
        m_room->Hear(4);
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(4, 4));
        QCOMPARE(m_room->lines.size(), 2);
    }

    void DryRunWritesToTheStatusLineOnly() {
        m_room->Set("DRY_RUN", u"TRUE"_s);
        m_room->Set("TOKEN", u"secret"_s);
        Start();
        m_room->Hear(1);
        QCOMPARE(m_room->lines, QStringList{u"dry run, nothing is sent to db.satnogs.org: "_s +
                                            QString::fromLatin1(m_room->Body(1))});
        QVERIFY(m_room->post.requests.isEmpty());
        QVERIFY(m_room->folder.Read(ForwardQueue::FileName()).isNull());
    }

    void DryRunHoldsBackWhatWaits() {
        Start();
        m_room->Hear(1);
        m_room->Hear(2);
        ForwardSettings settings = m_room->forwarder->Settings();
        settings.dryRun = true;
        m_room->forwarder->SetSettings(settings);
        m_room->post.Answer(201);
        m_room->PassTime();
        QCOMPARE(m_room->post.requests.size(), 1);
        settings.dryRun = false;
        m_room->forwarder->SetSettings(settings);
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(1, 2));
    }

    void AnswersSayWhetherAFrameIsSentWaitsOrIsParked_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<char>("becomes"); // sent, waiting, parked
        for (const int status : {200, 201, 202, 204})
            QTest::addRow("%d", status) << status << 's';
        for (const int status : {0, 301, 302, 308, 408, 429, 500, 502, 503, 504, 599})
            QTest::addRow("%d", status) << status << 'w';
        for (const int status : {400, 401, 403, 404, 405, 413, 422, 499})
            QTest::addRow("%d", status) << status << 'p';
    }
    void AnswersSayWhetherAFrameIsSentWaitsOrIsParked() {
        QFETCH(const int, status);
        QFETCH(const char, becomes);
        Start();
        m_room->Hear(1);
        m_room->post.Answer(status, u"the words"_s);
        QCOMPARE(Counts(), (ForwardCounts{becomes == 'w', becomes == 'p', becomes == 's', 0, 0}));
        m_room->Hear(2);
        m_room->PassTime();
        QCOMPARE(m_room->post.requests.last().body, m_room->Body(becomes == 'w' ? 1 : 2));
    }

    void ServerIsAskedAfterGrowingPausesAndTheNextFrameWaitsItsTurn() {
        Start();
        m_room->Hear(1);
        m_room->Hear(2);
        int last = 0;
        for (int failure = 0; failure < 20; ++failure) {
            m_room->random = failure % 2 == 0 ? 0.99 : 0.0;
            m_room->post.Answer(503, u"503 Down"_s);
            QVERIFY(Pause() > last || Pause() >= RetryPause::longest);
            last = Pause();
            m_room->Hear(100 + failure); // a new frame is no reason to ask sooner
            QCOMPARE(m_room->post.requests.size(), failure + 1);
            m_room->PassTime();
        }
        for (const QByteArray& body : m_room->post.Bodies())
            QCOMPARE(body, m_room->Body(1));
        QCOMPARE(m_room->lines, QStringList{u"db.satnogs.org cannot take frames now: 503 Down"_s});
        m_room->post.Answer(201);
        QCOMPARE(m_room->lines.last(), u"db.satnogs.org answers again"_s);
        m_room->PassTime();
        QCOMPARE(m_room->post.requests.last().body, m_room->Body(2));
        m_room->random = 0.0;
        m_room->post.Answer(0, u"Connection refused"_s);
        QCOMPARE(Pause(), int(RetryPause::first));
    }

    void ServerThatSaysWhenIsNotAskedSooner() {
        Start();
        m_room->Hear(1);
        m_room->post.Answer(429, u"429"_s, "3600");
        QCOMPARE(Pause(), 3'600'000);
        m_room->PassTime();
        m_room->clock.SetMilliseconds(1795274923000); // 15:28:43
        m_room->post.Answer(503, u"503"_s, "Sat, 21 Nov 2026 16:28:43 GMT");
        QCOMPARE(Pause(), 3'600'000);
    }

    void ParkedFrameIsSaidOncePerReasonAndRetriedByTheUser() {
        Start();
        for (int number = 1; number <= 3; ++number)
            m_room->Hear(number);
        m_room->post.Answer(400, u"400 no"_s);
        m_room->PassTime();
        m_room->post.Answer(400, u"400 no"_s);
        m_room->PassTime();
        m_room->post.Answer(503);
        QCOMPARE(m_room->lines.filter(u"refuses"_s), QStringList{u"db.satnogs.org refuses: 400 no"_s});
        m_room->forwarder->Retry({2});
        QCOMPARE(m_room->post.requests.last().body, m_room->Body(2)); // at once, and before the third
        m_room->forwarder->Discard({1});
        QCOMPARE(Counts(), (ForwardCounts{2, 0, 0, 1, 0}));
    }

    void AfterARestartTheFrameWithoutAnAnswerIsSentAgainByteForByte() {
        Start();
        m_room->Hear(1);
        m_room->Hear(2);
        const QByteArrayList bodies = m_room->Bodies(1, 2);
        m_room->post.Answer(201);
        m_room->PassTime();
        m_room->forwarder->Stop();
        QVERIFY(!m_room->post.isUnderWay);
        m_room->station.callsign = u"DL9XYZ"_s; // who heard it then is not who hears now
        m_room->clock.Advance(86400.0);
        m_room->Restart();
        QCOMPARE(m_room->post.Bodies(), (QByteArrayList{bodies[0], bodies[1], bodies[1]}));
        m_room->post.Answer(201);
        m_room->Restart();
        QCOMPARE(m_room->post.requests.size(), 3);
    }

    void FullQueueIsSaidOnceAndCounted() {
        m_room->Set("KEEP_AT_MOST", u"4"_s);
        Start();
        for (int number = 1; number <= 10; ++number)
            m_room->Hear(number);
        QCOMPARE(Counts(), (ForwardCounts{4, 0, 0, 0, 6}));
        QCOMPARE(m_room->lines, QStringList{u"more than 4 frames wait, the oldest are dropped"_s});
        m_room->post.Answer(201); // to the first, which is no more
        m_room->PassTime();
        QCOMPARE(m_room->post.requests.last().body, m_room->Body(7));
    }

    void AnotherServerIsAskedAtOnce() {
        Start();
        m_room->Hear(1);
        m_room->post.Answer(0, u"Host not found"_s);
        ForwardSettings settings = m_room->forwarder->Settings();
        settings.url = u"http://127.0.0.1:8080/api"_s;
        settings.token = u" t0ken "_s;
        m_room->forwarder->SetSettings(settings);
        QCOMPARE(m_room->post.requests.last().url, QUrl(settings.url));
        QCOMPARE(m_room->post.requests.last().token, QByteArray("t0ken"));
    }

    void NothingIsTakenBeforeTheStartAndAfterTheEnd() {
        m_room->Hear(1);
        Start();
        m_room->forwarder->Stop();
        m_room->forwarder->Stop();
        m_room->Hear(2);
        m_room->forwarder->SetSettings(m_room->forwarder->Settings());
        QCOMPARE(Counts(), ForwardCounts());
        QVERIFY(m_room->post.requests.isEmpty());
    }

    void DamagedQueueIsSaid() {
        m_room->folder.Write(ForwardQueue::FileName(), "what is this\n1 queued " + m_room->Body(1) + "\n");
        Start();
        QCOMPARE(m_room->lines, QStringList{u"1 lines of ForwardQueue.txt cannot be read"_s});
        QCOMPARE(m_room->post.Bodies(), m_room->Bodies(1, 1));
    }

    // The whole road: half of the pass finds the server down.
    void FramesArriveThoughTheServerWasDownForHalfOfThePass() {
        bool isDown = true;
        ScriptedServer server([&](const QByteArray&) {
            return ScriptedServer::Answer{isDown ? ScriptedServer::Http("503 Down", "later")
                                                 : ScriptedServer::Http("201 Created", "")};
        });
        m_room->Set("URL", server.Url(u"/api/telemetry/"_s));
        HttpPost post;
        Forwarder forwarder({m_room->folder.Program(), m_room->ini, m_room->clock, m_room->callsigns, post,
                             [this] { return m_room->station; }, [] { return 0.0; }, 1});
        forwarder.Start();
        const auto hear = [&](int number) {
            const QByteArray raw = ForwardRoom::Raw(number);
            HeardFrame frame;
            frame.utc = ForwardRoom::Utc(number);
            frame.source = "QIRAN-3";
            frame.raw = raw;
            forwarder.Take(frame);
        };
        for (int number = 1; number <= 5; ++number)
            hear(number);
        QTRY_COMPARE(server.Requests().size(), 1);
        isDown = false;
        for (int number = 6; number <= 10; ++number)
            hear(number);
        QTRY_VERIFY(forwarder.findChild<QTimer*>(u"timNext"_s)->isActive());
        forwarder.findChild<QTimer*>(u"timNext"_s)->setInterval(0);
        QTRY_COMPARE(forwarder.Counts().sent, 10);
        QByteArrayList bodies;
        for (const QByteArray& request : server.Requests().mid(1))
            bodies.append(request.mid(request.indexOf("\r\n\r\n") + 4));
        QCOMPARE(bodies, m_room->Bodies(1, 10));
    }
};

QTEST_GUILESS_MAIN(ForwarderTest)
#include "ForwarderTest.moc"
