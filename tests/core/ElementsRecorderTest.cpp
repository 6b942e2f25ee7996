#include "core/StationRig.h"
#include "foundation/text/UtcTime.h"
#include "orbit/history/ElementsHistory.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ElementsRecorderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void eachNewSetOfTheTwoIsKeptOnce();
    void messagesAreKeptAsTheyCame_data();
    void messagesAreKeptAsTheyCame();
    void aStartDoesNotWaitForIt();
    void whatIsNotWantedIsNotKept();
    void aFolderThatTakesNothingIsSaid();

private:
    static QString File() { return u"elements-history.txt"_s; }
    static void Settle(const StationRig& rig, int milliseconds = 0) {
        for (QTimer* timer : rig.station->findChildren<QTimer*>(u"timKeepElements"_s))
            timer->setInterval(milliseconds);
    }
    static void StartWith(StationRig& rig, const QByteArray& elements) {
        rig.folder.Write(u"Keps/all.txt"_s, elements);
        Settle(rig);
        QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    }
    // As a download or the watch has it.
    static void ReadAgain(StationRig& rig, const QByteArray& elements) {
        rig.folder.Write(u"Keps/all.txt"_s, elements);
        rig.station->LoadElements();
    }
};

namespace {

const QByteArray qiran1 = "1 90417U 01043A   26325.50000000  .00000100  00000-0  10000-4 0  9000\r\n";
const QByteArray qiran2 = "2 90417  97.6000 208.9163 0006317  69.9862  25.2906 14.59560532 14774\r\n";
const QByteArray iss = "0 ISS (ZARYA)\r\n"
                       "1 25544U 98067A   26325.50000000  .00016717  00000-0  10270-3 0  9000\r\n"
                       "2 25544  51.6400 208.9163 0006317  69.9862  25.2906 15.49560532 14777\r\n";
const QByteArray other = "1 00005U 58002B   26325.50000000  .00000100  00000-0  10000-4 0  9001\r\n"
                         "2 00005  97.6000 208.9163 0006317  69.9862  25.2906 14.59560532 14778\r\n";
const QByteArray newer =
    "NORAD_CAT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,ARG_OF_PERICENTER,"
    "MEAN_ANOMALY,BSTAR\r\n"
    "90417,2026-11-22T00:00:00.000000,14.59,0,97.6,1,2,3,0\r\n";

} // namespace

void ElementsRecorderTest::eachNewSetOfTheTwoIsKeptOnce() {
    StationRig rig;
    rig.clock.Set(DateOf(2026, 11, 22) + 0.5);
    const QByteArray first = "utc,number,epoch,elements\n"
                             "2026-11-22T12:00:00.000Z,90417,2026-11-21T12:00:00.000Z,\"" +
                             QByteArray(qiran1 + qiran2).replace("\r", "") +
                             "\"\n"
                             "2026-11-22T12:00:00.000Z,25544,2026-11-21T12:00:00.000Z,\"" +
                             QByteArray(iss).replace("\r", "").replace("0 ISS", "ISS") + "\"\n";
    StartWith(rig, other + qiran1 + qiran2 + iss);
    QTRY_COMPARE(rig.folder.Read(File()), first);

    ReadAgain(rig, iss + qiran1 + qiran2); // nothing new
    rig.folder.Write(u"Keps/new.csv"_s, newer);
    rig.clock.Set(DateOf(2026, 11, 23));
    rig.station->LoadElements();
    const QByteArray second = "2026-11-23T00:00:00.000Z,90417,2026-11-22T00:00:00.000Z,\"" +
                              QByteArray(newer).replace("\r", "") + "\"\n";
    QTRY_COMPARE(rig.folder.Read(File()), first + second);

    rig.station->Stop();
    rig.station.reset();
    rig.station = std::make_unique<GroundStation>(rig.folder.Program(), rig.clock, rig.messages, rig.roof);
    rig.folder.Write(u"Keps/old.txt"_s, qiran1 + qiran2);
    StartWith(rig, QByteArray(iss).replace("26325.5", "26326.5").replace("9000\r", "9001\r"));
    QTRY_COMPARE(rig.folder.Read(File()).count('\n'), 15);

    ElementsHistory history(rig.folder.File(File()), {});
    history.Load();
    const qint64 noon = UtcTime::FromDateTime(DateOf(2026, 11, 21) + 0.5);
    QCOMPARE(history.ElementsAt(90417, noon)->epochUtc, DateOf(2026, 11, 21) + 0.5);
    QCOMPARE(history.ElementsAt(90417, noon + 40'000'000)->epochUtc, DateOf(2026, 11, 22));
    QCOMPARE(history.ElementsAt(25544, noon + 86'400'000)->epochUtc, DateOf(2026, 11, 22) + 0.5);
}

void ElementsRecorderTest::messagesAreKeptAsTheyCame_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("kept");
    const QByteArray json =
        R"({"NORAD_CAT_ID":90417,"EPOCH":"2026-11-22T00:00:00","MEAN_MOTION":14.59,"ECCENTRICITY":0,)"
        R"("INCLINATION":97.6,"RA_OF_ASC_NODE":1,"ARG_OF_PERICENTER":2,"MEAN_ANOMALY":3,"BSTAR":0})";
    const QByteArray xml =
        "<omm><NORAD_CAT_ID>90417</NORAD_CAT_ID><EPOCH>2026-11-22T00:00:00</EPOCH><MEAN_MOTION>14.59</"
        "MEAN_MOTION>"
        "<ECCENTRICITY>0</ECCENTRICITY><INCLINATION>97.6</INCLINATION><RA_OF_ASC_NODE>1</RA_OF_ASC_NODE>"
        "<ARG_OF_PERICENTER>2</ARG_OF_PERICENTER><MEAN_ANOMALY>3</MEAN_ANOMALY><BSTAR>0</BSTAR></omm>";
    QTest::newRow("JSON") << QByteArray("[{},\n" + json + "]") << json;
    QTest::newRow("XML") << QByteArray("<ndm>" + xml + "</ndm>") << xml;
}

void ElementsRecorderTest::messagesAreKeptAsTheyCame() {
    QFETCH(const QByteArray, file);
    QFETCH(const QByteArray, kept);
    StationRig rig;
    StartWith(rig, file);
    QTRY_VERIFY(QFile::exists(rig.folder.File(File())));
    ElementsHistory history(rig.folder.File(File()), {});
    history.Load();
    const qint64 epoch = UtcTime::FromDateTime(DateOf(2026, 11, 22));
    QCOMPARE(history.Nearest(90417, epoch)->elements, kept + "\n");
    QCOMPARE(history.ElementsAt(90417, epoch)->epochUtc, DateOf(2026, 11, 22));
}

void ElementsRecorderTest::aStartDoesNotWaitForIt() {
    StationRig rig;
    rig.folder.Write(u"Keps/all.txt"_s, iss);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    const auto* timer = rig.station->findChild<QTimer*>(u"timKeepElements"_s);
    QVERIFY(timer != nullptr && timer->isActive() && timer->interval() >= 2000);
    QVERIFY(!QFile::exists(rig.folder.File(File())));
    rig.station->Stop();
    QVERIFY(!timer->isActive());
    QVERIFY(!QFile::exists(rig.folder.File(File())));
}

void ElementsRecorderTest::whatIsNotWantedIsNotKept() {
    StationRig rig;
    rig.Set("HISTORY", "KEEP", u"FALSE"_s);
    StartWith(rig, iss);
    QTRY_VERIFY(!rig.station->findChild<QTimer*>(u"timKeepElements"_s)->isActive());
    QVERIFY(!QFile::exists(rig.folder.File(File())));
}

void ElementsRecorderTest::aFolderThatTakesNothingIsSaid() {
    StationRig rig;
    QVERIFY(QDir().mkpath(rig.folder.File(File()))); // a folder stands in its place
    QStringList lines;
    connect(rig.station.get(), &GroundStation::StatusLine, this,
            [&](const QString& line) { lines.append(line); });
    StartWith(rig, iss);
    QTRY_COMPARE(lines.filter(File()).size(), 1);
}

QTEST_GUILESS_MAIN(ElementsRecorderTest)
#include "ElementsRecorderTest.moc"
