#include "foundation/settings/clsIni.h"
#include "keps/ScriptedServer.h"
#include "sharing/ForwardQueue.h"
#include "support/TemporaryProgramFolder.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

/// A process that forwards is killed at random moments, and what it had queued arrives all the same.
class ForwardKillTest : public QObject {
    Q_OBJECT

private:
    static constexpr int kills = 10;
    QList<int> m_arrived;           // numbers of frames, in the order of their coming
    QMap<int, QByteArray> m_bodies; // of them
    QList<int> m_changed;           // came again with other bytes
    TemporaryProgramFolder m_folder;

    static bool IsRefused(int number) { return number % 10 == 3; }

    ScriptedServer::Answer Take(const QByteArray& request) {
        static const QRegularExpression frame(u"&frame=([0-9A-F]*)&"_s);
        const QByteArray body = request.mid(request.indexOf("\r\n\r\n") + 4);
        const QString hex = frame.match(QString::fromLatin1(body)).captured(1);
        const int number = QByteArray::fromHex(hex.toLatin1()).toInt();
        if (m_bodies.value(number, body) != body)
            m_changed.append(number);
        m_bodies[number] = body;
        m_arrived.append(number);
        return {IsRefused(number) ? ScriptedServer::Http("400 Bad Request", "three")
                                  : ScriptedServer::Http("201 Created", "")};
    }

    // Lets a child work until it has queued a few frames, kills it at some moment, and answers what it said.
    QList<int> Kill(int first, int milliseconds) {
        QProcess child;
        QByteArray said;
        connect(&child, &QProcess::readyReadStandardOutput, this,
                [&] { said += child.readAllStandardOutput(); });
        child.start(QStringLiteral(FORWARD_CHILD), {m_folder.Program().Path(), QString::number(first)});
        const qsizetype before = m_arrived.size();
        (void)QTest::qWaitFor([&] { return !said.isEmpty() && m_arrived.size() > before; }, 10'000);
        QTest::qWait(milliseconds);
        child.kill();
        child.waitForFinished();
        said += child.readAllStandardOutput();
        QList<int> numbers;
        said.truncate(said.lastIndexOf('\n')); // a number may be torn
        for (const QByteArray& line : said.split('\n'))
            numbers.append(line.toInt());
        return numbers;
    }

private Q_SLOTS:
    void WhatWasQueuedArrivesInOrderAndTwiceOnlyForAKill() {
        ScriptedServer server([this](const QByteArray& request) { return Take(request); });
        clsIni ini(m_folder.IniFile());
        ini.SaveIniString(u"FORWARD"_s, u"USE"_s, u"TRUE"_s);
        ini.SaveIniString(u"FORWARD"_s, u"URL"_s, server.Url(u"/"_s));
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        qInfo("seed %u", seed);
        QList<int> queued;
        for (int kill = 0; kill < kills; ++kill) {
            const QList<int> more = Kill(queued.isEmpty() ? 1 : queued.last() + 1, random.bounded(150));
            QVERIFY2(!more.isEmpty(), "the child works");
            queued += more;
        }
        QProcess child;
        child.start(QStringLiteral(FORWARD_CHILD), {m_folder.Program().Path(), u"drain"_s});
        QTRY_COMPARE_WITH_TIMEOUT(child.state(), QProcess::NotRunning, 60'000);

        QCOMPARE(m_changed, QList<int>());
        QList<int> firstArrivals;
        QSet<int> seen;
        for (const int number : m_arrived)
            if (!seen.contains(number)) {
                seen.insert(number);
                firstArrivals.append(number);
            }
        QVERIFY2(std::ranges::is_sorted(firstArrivals), "in the order in which they were heard");
        QVERIFY2(m_arrived.size() - seen.size() <= kills, "again only where no answer was stored");
        const ForwardList list = ForwardQueue::Read(m_folder.Program());
        int refused = 0;
        for (const int number : queued) {
            QVERIFY2(seen.contains(number), qPrintable(QString::number(number)));
            refused += IsRefused(number) ? 1 : 0;
        }
        QCOMPARE(list.Counts().waiting, 0);
        QCOMPARE(list.Counts().dropped, 0);
        QVERIFY(list.Counts().parked >= refused); // and those that were killed before they were printed
        for (const auto& [number, frame] : list.Frames())
            QCOMPARE(frame.words, u"400 Bad Request: three"_s);
        qInfo("%lld frames queued, %lld sent again", static_cast<long long>(queued.size()),
              static_cast<long long>(m_arrived.size() - seen.size()));
    }
};

QTEST_GUILESS_MAIN(ForwardKillTest)
#include "ForwardKillTest.moc"
