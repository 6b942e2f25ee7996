#include "foundation/system/EndRequests.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <unistd.h>

class EndRequestsTest : public QObject {
    Q_OBJECT

public:
    /// As in the program: held back before Qt Test starts its own thread, which would let them through.
    static void initMain() { EndRequests::Hold(); }

private Q_SLOTS:
    void EverySignalThatAsksForTheEndIsAnEvent_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void EverySignalThatAsksForTheEndIsAnEvent() {
        QFETCH(const int, signal);
        EndRequests::Hold();
        EndRequests requests;
        QSignalSpy requested(&requests, &EndRequests::Requested);
        QCOMPARE(kill(getpid(), signal), 0);
        QTRY_COMPARE(requested.count(), 1);
    }

    void NothingIsRequestedWithoutASignal() {
        EndRequests::Hold();
        EndRequests requests;
        QSignalSpy requested(&requests, &EndRequests::Requested);
        QCoreApplication::processEvents();
        QCOMPARE(requested.count(), 0);
    }

    void AfterItsEndTheSignalsAreTheSystemsAgain() {
        EndRequests::Hold();
        { const EndRequests requests; }
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        QCOMPARE(sigismember(&blocked, SIGTERM), 0);
    }
};

QTEST_GUILESS_MAIN(EndRequestsTest)

#include "EndRequestsTest.moc"
