#include "keps/KepsFetch.h"

#include "keps/ConvertKepsFile.h"
#include "keps/FakeTransfer.h"
#include "keps/HttpTransfer.h"
#include "keps/ScriptedServer.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QTest>

using Outcome = KepsFetchResult::Outcome;

class KepsFetchTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<TestClock> m_clock;
    std::unique_ptr<FakeTransfer> m_inet;
    std::unique_ptr<HttpTransfer> m_http;
    std::unique_ptr<KepsFetch> m_fetch;
    QList<KepsFetchResult> m_results;
    int m_finished = 0;

    static constexpr auto nothingNew =
        "GP data has not updated since your last successful download of GROUP=amateur.";
    static constexpr double twoHours = 7200.0;

    static QString One() { return QStringLiteral("one.org/first.txt"); }
    static QString Two() { return QStringLiteral("two.org/second.txt"); }
    static QByteArray Elements(char letter = 'x') { return QByteArray(100, letter) + "\r\n"; }
    static QByteArray Stored(char letter = 'x') { return Elements(letter) + "\r\n"; }

    void Use(InternetTransfer& inet) {
        m_fetch.reset();
        m_results.clear();
        m_finished = 0;
        m_fetch = std::make_unique<KepsFetch>(inet, m_folder->Program(), *m_clock);
        connect(m_fetch.get(), &KepsFetch::Finished, this, [this](const QList<KepsFetchResult>& results) {
            m_results = results;
            ++m_finished;
        });
    }
    void Start(const QString& one, const QString& two = {}, bool force = false) {
        m_finished = 0;
        m_inet->executed.clear();
        m_inet->code = 200;
        m_inet->refusal.clear();
        QVERIFY(m_fetch->Start({one, two}, force));
    }
    void AwaitRequest(int count = 1) const { QTRY_COMPARE(m_inet->executed.size(), count); }
    void AwaitEnd() const { QTRY_COMPARE(m_finished, 1); }
    void Refuse(int code, const char* words) const {
        m_inet->refusal = QString::fromLatin1(words);
        m_inet->Fail(code, QStringLiteral("Said No"));
    }
    // Fetches an address from the fake server with success.
    void Succeed(const QString& address) {
        Start(address);
        AwaitRequest();
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results.value(0).outcome, Outcome::Stored);
    }
    QByteArray Keps(const char* name) const {
        return m_folder->Read(QStringLiteral("Keps/") + QLatin1String(name));
    }
    QStringList Files() const {
        return QDir(m_folder->Program().Path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

private Q_SLOTS:
    void init() {
        m_fetch.reset();
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_clock = std::make_unique<TestClock>();
        m_inet = std::make_unique<FakeTransfer>();
        m_http = std::make_unique<HttpTransfer>();
        Use(*m_inet);
    }
    void cleanup() { m_fetch.reset(); }

    void BothAddressesAreFetchedOneAfterTheOther() {
        Start(One(), Two());
        QVERIFY(m_inet->executed.isEmpty()); // all of it happens in the event loop
        AwaitRequest();
        QCOMPARE(m_inet->executed, QStringList{QStringLiteral("GET http://one.org/first.txt")});
        m_inet->Complete(Elements('1'));
        AwaitRequest(2);
        QCOMPARE(m_inet->executed[1], QStringLiteral("GET http://two.org/second.txt"));
        m_inet->Complete(Elements('2'));
        AwaitEnd();
        QCOMPARE(m_results.size(), 2);
        QCOMPARE(m_results[0].outcome, Outcome::Stored);
        QCOMPARE(m_results[0].address, One());
        QCOMPARE(m_results[0].fileName, QStringLiteral("first.txt"));
        QVERIFY(m_results[0].text.isEmpty());
        QCOMPARE(m_results[1].outcome, Outcome::Stored);
        QCOMPARE(Keps("first.txt"), Stored('1'));
        QCOMPARE(Keps("second.txt"), Stored('2'));
        QCOMPARE(Files(),
                 QStringList{QStringLiteral("KepsFetched.txt")}); // neither lock nor work files, nor settings
    }

    void BlankAddressesArePassedOver() {
        Start(QStringLiteral("  "), Two());
        AwaitRequest();
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results.size(), 1);
        QCOMPARE(m_results[0].address, Two());
        Start({}, {});
        AwaitEnd();
        QVERIFY(m_results.isEmpty());
    }

    void AnAddressThatNamesNoFileFailsAndTheOtherIsFetched() {
        Start(QStringLiteral("host/dir/"), Two());
        AwaitRequest();
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Failed);
        QCOMPARE(m_results[0].text, QStringLiteral("the address names no file"));
        QCOMPARE(m_results[1].outcome, Outcome::Stored);
    }

    void WithinTwoHoursOfASuccessAnAddressIsNotAskedAgain() {
        Succeed(One());
        m_clock->Advance(twoHours - 1);
        Start(One(), Two());
        AwaitRequest();
        QCOMPARE(m_inet->executed, QStringList{QStringLiteral("GET http://two.org/second.txt")});
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::NotYet);
        QVERIFY(m_results[0].IsCurrent());
        QCOMPARE(
            m_results[0].text,
            QStringLiteral("fetched at 2026-11-21T00:00:00Z, not asked again before 2026-11-21T02:00:00Z"));
        m_clock->Advance(1);
        Succeed(One());
    }

    void ASuccessIsRememberedAcrossStarts() {
        Succeed(One());
        Use(*m_inet);
        Start(One());
        AwaitEnd();
        QVERIFY(m_inet->executed.isEmpty());
        QCOMPARE(m_results[0].outcome, Outcome::NotYet);
    }

    void ForcedItIsAskedAllTheSame() {
        Succeed(One());
        Start(One(), {}, true);
        AwaitRequest();
        m_inet->Complete(Elements('n'));
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Stored);
        QCOMPARE(Keps("first.txt"), Stored('n'));
    }

    void ATimeInTheFutureDoesNotHoldItOff() {
        Succeed(One());
        m_clock->Advance(-1);
        Succeed(One());
    }

    void AFailureIsNoSuccess() {
        Start(One());
        AwaitRequest();
        m_inet->Fail(3, QStringLiteral("Host not found"));
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Failed);
        QCOMPARE(m_results[0].text, QStringLiteral("3 Host not found"));
        QVERIFY(!m_results[0].IsCurrent());
        Succeed(One());
    }

    void NothingNewIsCurrentAlready() {
        Succeed(One());
        m_clock->Advance(twoHours);
        Start(One(), Two());
        AwaitRequest();
        Refuse(403, nothingNew);
        AwaitRequest(2); // no refusal that ends it
        m_inet->code = 200;
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::CurrentAlready);
        QVERIFY(m_results[0].IsCurrent());
        QCOMPARE(m_results[0].text, QString::fromLatin1(nothingNew));
        QCOMPARE(m_results[1].outcome, Outcome::Stored);
        QCOMPARE(Keps("first.txt"), Stored());
        Start(One());
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::NotYet); // it has just been told that there is nothing
    }

    void NothingNewWithoutACopyIsARefusal() {
        Start(One());
        AwaitRequest();
        Refuse(403, nothingNew);
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Refused);
        QVERIFY2(m_results[0].text.endsWith(u"; but there is no first.txt in Keps"),
                 qPrintable(m_results[0].text));
    }

    void AnyOtherRefusalEndsIt_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("words");
        QTest::newRow("403 with other words") << 403 << QByteArray("You are shut out");
        QTest::newRow("403 without words") << 403 << QByteArray();
        QTest::newRow("404 with these words") << 404 << QByteArray(nothingNew);
        QTest::newRow("400") << 400 << QByteArray("Bad query");
        QTest::newRow("429") << 429 << QByteArray("Slow down");
        QTest::newRow("500") << 500 << QByteArray("Oops");
    }
    void AnyOtherRefusalEndsIt() {
        QFETCH(int, code);
        QFETCH(QByteArray, words);
        m_folder->Write(QStringLiteral("Keps/first.txt"), "old");
        Start(One(), Two());
        AwaitRequest();
        Refuse(code, words.constData());
        AwaitEnd();
        QCOMPARE(m_inet->executed.size(), 1);
        QCOMPARE(m_results.size(), 2);
        QCOMPARE(m_results[0].outcome, Outcome::Refused);
        QCOMPARE(m_results[0].text,
                 QStringLiteral("%1 Said No").arg(code) +
                     (words.isEmpty() ? QString() : QStringLiteral(": ") + QString::fromLatin1(words)));
        QCOMPARE(m_results[1].outcome, Outcome::NotAsked);
        QVERIFY(!m_results[1].IsCurrent());
        QCOMPARE(Keps("first.txt"), QByteArray("old"));
    }

    void AFailureOfTheNetworkDoesNotEndIt() {
        Start(One(), Two());
        AwaitRequest();
        m_inet->Fail(3, QStringLiteral("Host not found"));
        AwaitRequest(2);
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results[1].outcome, Outcome::Stored);
    }

    void WhatIsNoFileOfElementsLeavesTheOldOne() {
        m_folder->Write(QStringLiteral("Keps/first.txt"), "old");
        const QByteArray page = "<html>" + QByteArray(100, 'x') + "</html>";
        for (const QByteArray& body : {QByteArray(), QByteArray(79, 'x'), page}) {
            Start(One());
            AwaitRequest();
            m_inet->Complete(body);
            AwaitEnd();
            QCOMPARE(m_results[0].outcome, Outcome::Failed);
            QVERIFY(!m_results[0].text.isEmpty());
            QCOMPARE(Keps("first.txt"), QByteArray("old"));
        }
        QVERIFY(m_results[0].text.startsWith(u"The data appears to be an HTML file. Have a look at "));
        QVERIFY(m_folder->Read(QStringLiteral("File1.HTML")).startsWith("<html>"));
    }

    void APageWithARefusalIsPutAsideAndEndsIt() {
        Start(One(), Two());
        AwaitRequest();
        m_inet->code = 404;
        m_inet->info = QStringLiteral("Not Found");
        m_inet->refusal = QStringLiteral("<html>");
        m_inet->Complete("<html>" + QByteArray(100, 'x'));
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Refused);
        QCOMPARE(m_results[0].text,
                 QStringLiteral("404 Not Found: The data appears to be an HTML file. Have a look at ") +
                     m_folder->File(QStringLiteral("File1.HTML")));
        QCOMPARE(m_results[1].outcome, Outcome::NotAsked);
    }

    void ATimeThatCannotBeNotedIsSaid() {
        QVERIFY(QDir().mkdir(m_folder->File(QStringLiteral("KepsFetched.txt"))));
        Start(One());
        AwaitRequest();
        m_inet->Complete(Elements());
        AwaitEnd();
        QCOMPARE(m_results[0].outcome, Outcome::Stored);
        QVERIFY2(m_results[0].text.startsWith(u"(the time could not be noted: "),
                 qPrintable(m_results[0].text));
    }

    void OneFetchesAtATime() {
        FakeTransfer otherInet;
        KepsFetch other(otherInet, m_folder->Program(), *m_clock);
        Start(One());
        AwaitRequest();
        QFile work(KepsFiles::Target(m_folder->Program()));
        QVERIFY(work.open(QIODevice::WriteOnly));
        QVERIFY(!other.Start({One(), Two()}, true));
        QVERIFY2(other.Holder().startsWith(u"process "), qPrintable(other.Holder()));
        other.Cancel();
        QVERIFY(work.exists()); // what is at work stays
        m_inet->Complete(Elements());
        AwaitEnd();
        QVERIFY(other.Start({One(), Two()}, true));
    }

    void CancelledItSaysNothingAndLeavesNothing() {
        Start(One(), Two());
        m_fetch->Cancel(); // before it began
        Start(One(), Two());
        AwaitRequest();
        m_inet->Complete(Elements());
        AwaitRequest(2);
        m_fetch->Cancel();
        m_inet->Complete(Elements());
        QCOMPARE(m_finished, 0);
        QCOMPARE(Files(), QStringList{QStringLiteral("KepsFetched.txt")});
        QVERIFY(Keps("second.txt").isNull());
        Succeed(Two());
    }

    void FilesLeftByACrashAreRemoved() {
        m_folder->Write(QStringLiteral("tempkeps.$$$"), "left");
        m_folder->Write(QStringLiteral("Keps/TEMPKEPS.$$$"), "left");
        m_folder->Write(QStringLiteral("Keps.lock"), "left");
        Start(One());
        QVERIFY(m_folder->Read(QStringLiteral("tempkeps.$$$")).isNull());
        QVERIFY(Keps("TEMPKEPS.$$$").isNull());
    }

    void TheServersWordsDecideOverHttp() {
        QByteArray answer = ScriptedServer::Http("200 OK", Elements());
        ScriptedServer server([&](const QByteArray&) { return ScriptedServer::Answer{answer}; });
        const QString address = server.Address() + QStringLiteral("/gp.php?GROUP=amateur&FORMAT=tle");
        Use(*m_http);
        const auto fetch = [&](const QByteArray& given) {
            answer = given;
            Start(address, {}, true);
            AwaitEnd();
            return m_results.value(0);
        };
        QCOMPARE(fetch(answer).outcome, Outcome::Stored);
        QCOMPARE(fetch(ScriptedServer::Http("403 Forbidden", nothingNew)).outcome, Outcome::CurrentAlready);
        const KepsFetchResult refused = fetch(ScriptedServer::Http("403 Forbidden", "Go away"));
        QCOMPARE(refused.outcome, Outcome::Refused);
        QCOMPARE(refused.text, QStringLiteral("403 Forbidden: Go away"));
        QCOMPARE(fetch(ScriptedServer::Http("404 Not Found", "<html>sorry</html>")).outcome,
                 Outcome::Refused);
        QCOMPARE(fetch(ScriptedServer::Http("200 OK", Elements('n')).chopped(1)).outcome, Outcome::Failed);
        QCOMPARE(fetch(ScriptedServer::Http("200 OK", "No GP data found")).outcome, Outcome::Failed);
        QCOMPARE(fetch(ScriptedServer::Http("206 Partial Content", Elements('n'))).outcome, Outcome::Failed);
        QCOMPARE(fetch(QByteArray()).outcome, Outcome::Failed);
        QCOMPARE(Keps("amateur.tle"), Stored());
        QCOMPARE(fetch(ScriptedServer::Http("200 OK", Elements('n'))).outcome, Outcome::Stored);
        QCOMPARE(Keps("amateur.tle"), Stored('n'));
    }

    void AnAddressThatIsNoneIsToldLikeTheRest() {
        Use(*m_http);
        Start(QStringLiteral("host:99999/a.txt"), QStringLiteral("[::1/b.txt"));
        AwaitEnd();
        QCOMPARE(m_results.size(), 2);
        for (const KepsFetchResult& result : m_results)
            QCOMPARE(result.text, QStringLiteral("301 The address is not valid"));
    }
};

QTEST_GUILESS_MAIN(KepsFetchTest)
#include "KepsFetchTest.moc"
