#include "foundation/settings/clsIni.h"
#include "keps/DownloadSequence.h"
#include "keps/GzipFile.h"
#include "keps/HttpTransfer.h"
#include "keps/KepsFetch.h"
#include "keps/ScriptedServer.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QTest>

using Outcome = KepsFetchResult::Outcome;
using namespace Qt::StringLiterals;

/// What becomes of the answers that servers give, by the command line's fetch and by the window's download.
class DownloadAnswersTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void AnswersAreTakenOrLeaveTheOldFile_data();
    void AnswersAreTakenOrLeaveTheOldFile();
    void TheWindowTellsTheServersWords_data();
    void TheWindowTellsTheServersWords();

private:
    static QByteArray Old() { return "The old file\r\n"; }
};

namespace {

const QByteArray lines = "SAPPHIRE\n"
                         "1 90417U 01043A   26325.50000000  .00000100  00000-0  10000-4 0  9000\n"
                         "2 90417  97.6000 208.9163 0006317  69.9862  25.2906 14.59560532 14774\n";
const QByteArray header =
    "OBJECT_NAME,NORAD_CAT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,"
    "ARG_OF_PERICENTER,MEAN_ANOMALY,BSTAR,EPHEMERIS_TYPE\n";
const QByteArray csvRow =
    "SAPPHIRE,90417,2026-11-21T12:00:00.000000,14.59560532,.0006317,97.6,208.9163,69.9862,25.2906,"
    ".1E-4,0\n";
const QByteArray rowOfAnotherTheory = QByteArray(csvRow).replace(",0\n", ",4\n");
const QByteArray object =
    R"({"OBJECT_NAME":"SAPPHIRE","NORAD_CAT_ID":90417,"EPOCH":"2026-11-21T12:00:00.000000","MEAN_MOTION":14.5956,)"
    R"("ECCENTRICITY":0.0006317,"INCLINATION":97.6,"RA_OF_ASC_NODE":208.9163,"ARG_OF_PERICENTER":69.9862,)"
    R"("MEAN_ANOMALY":25.2906,"BSTAR":0.00001})";
const QByteArray message =
    "<omm><OBJECT_NAME>SAPPHIRE</OBJECT_NAME><NORAD_CAT_ID>90417</NORAD_CAT_ID><EPOCH>2026-11-21T12:00:00</"
    "EPOCH>"
    "<MEAN_MOTION>14.5956</MEAN_MOTION><ECCENTRICITY>0</ECCENTRICITY><INCLINATION>97.6</INCLINATION>"
    "<RA_OF_ASC_NODE>1</RA_OF_ASC_NODE><ARG_OF_PERICENTER>2</ARG_OF_PERICENTER><MEAN_ANOMALY>3</MEAN_ANOMALY>"
    "<BSTAR>0</BSTAR></omm>";

QByteArray InNdm(const QByteArray& messages) {
    return "<?xml version=\"1.0\"?>\n<ndm>\n" + messages + "\n</ndm>\n";
}

QByteArray Page(const QByteArray& words) {
    return "<!DOCTYPE html>\n<HTML><head><title>Sorry</title></head><body>" + words + "</body></HTML>" +
           QByteArray(80, ' ');
}

// As an old server sends a file: its end is that of the connection, so that nothing tells when it is cut.
QByteArray Unmeasured(const QByteArray& body) {
    return "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n" + body;
}

} // namespace

void DownloadAnswersTest::AnswersAreTakenOrLeaveTheOldFile_data() {
    using S = ScriptedServer;
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* name, const QByteArray& answer, Outcome outcome,
                        const QString& words = {}) { QTest::newRow(name) << answer << outcome << words; };
    const QByteArray nothingNew =
        "GP data has not updated since your last successful download of GROUP=amateur.";
    row("two lines", S::Http("200 OK", lines), Outcome::Stored);
    row("CSV", S::Http("200 OK", header + csvRow), Outcome::Stored);
    row("JSON, a list", S::Http("200 OK", '[' + object + ',' + object + ']'), Outcome::Stored);
    row("JSON, an object", S::Http("200 OK", object), Outcome::Stored);
    row("XML", S::Http("200 OK", InNdm(message)), Outcome::Stored);
    row("packed", S::Http("200 OK", GzipFile(header + csvRow, 6), "Content-Encoding: gzip\r\n"),
        Outcome::Stored);
    row("CSV with one damaged line", S::Http("200 OK", header + csvRow + "torn\n" + csvRow), Outcome::Stored);
    row("two lines, unmeasured", Unmeasured(lines), Outcome::Stored);
    row("some other text", S::Http("200 OK", QByteArray(100, 'x')),
        Outcome::Stored); // the user's own business

    row("nothing new", S::Http("403 Forbidden", nothingNew), Outcome::CurrentAlready,
        QString::fromLatin1(nothingNew));
    row("refused", S::Http("403 Forbidden", "Your address is blocked."), Outcome::Refused,
        u"403 Forbidden: Your address is blocked."_s);
    row("refused, a page", S::Http("403 Forbidden", Page("Your address is blocked.")), Outcome::Refused,
        u"403 Forbidden: Your address is blocked."_s);
    row("nothing new, a page", S::Http("403 Forbidden", Page(nothingNew)), Outcome::CurrentAlready,
        QString::fromLatin1(nothingNew));
    row("not found", S::Http("404 Not Found", "no such group"), Outcome::Refused,
        u"404 Not Found: no such group"_s);
    row("not found, a page", S::Http("404 Not Found", Page("no such group")), Outcome::Refused,
        u"404 Not Found: The data appears to be an HTML file."_s);
    row("too many requests", S::Http("429 Too Many Requests", ""), Outcome::Refused,
        u"429 Too Many Requests"_s);
    row("server at fault", S::Http("500 Internal Server Error", R"({"error":"database"})"), Outcome::Refused,
        u"500 Internal Server Error: {"_s);
    row("server busy", S::Http("503 Service Unavailable", "later"), Outcome::Refused, u"503"_s);
    row("a page instead", S::Http("200 OK", Page("Welcome")), Outcome::Failed,
        u"The data appears to be an HTML file."_s);
    row("a short word", S::Http("200 OK", "No GP data found"), Outcome::Failed, u"too short"_s);
    row("nothing", S::Http("200 OK", ""), Outcome::Failed, u"too short"_s);
    row("no content", S::Http("204 No Content", "", "\r\n"), Outcome::Failed);
    row("a part", S::Http("206 Partial Content", lines), Outcome::Failed);
    row("an error in JSON",
        S::Http("200 OK", R"({"error":"You've violated your query rate limit.","more":")" +
                              QByteArray(60, 'x') + R"("})"),
        Outcome::Failed, u"The file holds no elements: line 1, record 1, NORAD_CAT_ID: it is missing"_s);
    row("an empty list", S::Http("200 OK", '[' + QByteArray(90, ' ') + ']'), Outcome::Failed,
        u"The file holds no elements"_s);
    row("an error in XML",
        S::Http("200 OK",
                "<?xml version='1.0'?><Error><Code>AccessDenied</Code>" + QByteArray(60, 'x') + "</Error>"),
        Outcome::Failed, u"The file holds no elements"_s);
    row("a header alone", S::Http("200 OK", header), Outcome::Failed, u"The file holds no elements"_s);
    row("another theory", S::Http("200 OK", header + rowOfAnotherTheory), Outcome::Failed,
        u"EPHEMERIS_TYPE: elements of another theory"_s);
    row("cut, measured", S::Http("200 OK", header + csvRow).chopped(20), Outcome::Failed);
    const QString isCut = u"The file is cut"_s;
    row("cut within line 1", Unmeasured(lines + lines.left(60)), Outcome::Failed, isCut);
    row("cut within line 2", Unmeasured(lines + lines.chopped(20)), Outcome::Failed, isCut);
    row("cut CSV", Unmeasured(header + csvRow + csvRow.chopped(10)), Outcome::Failed, isCut);
    row("cut JSON", Unmeasured('[' + object + ',' + object.chopped(10)), Outcome::Failed, isCut);
    row("cut JSON between objects", Unmeasured('[' + object + ','), Outcome::Failed, isCut);
    row("cut XML", Unmeasured(InNdm(message + message).chopped(30)), Outcome::Failed, isCut);
    row("cut XML between messages", Unmeasured(InNdm(message).chopped(8)), Outcome::Failed, isCut);
    row("no answer", QByteArray(), Outcome::Failed);
}

void DownloadAnswersTest::AnswersAreTakenOrLeaveTheOldFile() {
    QFETCH(const QByteArray, answer);
    QFETCH(const Outcome, outcome);
    QFETCH(const QString, words);
    const ScriptedServer server(ScriptedServer::Answer{answer});
    const QString address = server.Address() + u"/gp.php?GROUP=amateur&FORMAT=csv"_s;
    TemporaryProgramFolder folder;
    folder.Write(u"Keps/amateur.csv"_s, Old());
    TestClock clock;
    HttpTransfer inet;
    QList<KepsFetchResult> results;
    {
        KepsFetch fetch(inet, folder.Program(), clock);
        connect(&fetch, &KepsFetch::Finished, this, [&](const auto& found) { results = found; });
        QVERIFY(fetch.Start({address, {}}, false));
        QTRY_COMPARE(results.size(), 1);
    }
    QCOMPARE(results.front().outcome, outcome);
    QVERIFY2(results.front().text.contains(words), qPrintable(results.front().text));
    const QByteArray stored = folder.Read(u"Keps/amateur.csv"_s);
    QCOMPARE(stored != Old(), outcome == Outcome::Stored);

    folder.Write(u"Keps/amateur.csv"_s, Old());
    clsIni ini(folder.IniFile());
    DownloadSequence sequence(inet, ini, folder.Program());
    sequence.findChild<QTimer*>(u"Timer1"_s)->setInterval(0);
    bool isOver = false;
    connect(&sequence, &DownloadSequence::Finished, this, [&] { isOver = true; });
    connect(&sequence, &DownloadSequence::Status, this,
            [&](const QString& line) { isOver = isOver || line.startsWith(u"Error - "); });
    sequence.Download({address, {}});
    QTRY_VERIFY(isOver);
    QCOMPARE(folder.Read(u"Keps/amateur.csv"_s), outcome == Outcome::Stored ? stored : Old());
    QVERIFY(!QFile::exists(folder.Program().File(u"tempkeps.$$$"_s)));
}

void DownloadAnswersTest::TheWindowTellsTheServersWords_data() {
    QTest::addColumn<QByteArray>("body");
    const QByteArray words = "GP data has not updated since your last successful download.\nWait.";
    QTest::newRow("text") << words;
    QTest::newRow("a short page") << "<html>" + words;
    QTest::newRow("a page") << Page("<p>" + words + "</p>");
}

void DownloadAnswersTest::TheWindowTellsTheServersWords() {
    QFETCH(const QByteArray, body);
    const ScriptedServer server(ScriptedServer::Answer{ScriptedServer::Http("403 Forbidden", body)});
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    HttpTransfer inet;
    DownloadSequence sequence(inet, ini, folder.Program());
    QStringList status;
    connect(&sequence, &DownloadSequence::Status, this, [&](const QString& line) { status.append(line); });
    sequence.Download({server.Address() + u"/amateur.txt"_s, u"two.org/second.txt"_s});
    QTRY_VERIFY(status.size() > 1 && status[status.size() - 2].startsWith(u"Error"_s));
    QCOMPARE(status[status.size() - 2], u"Error - 403 Forbidden"_s);
    QCOMPARE(status.back(), u"GP data has not updated since your last successful download. Wait."_s);
    QVERIFY(!sequence.Result());
    QVERIFY(!QFile::exists(folder.Program().File(u"File1.HTML"_s)));
    QCOMPARE(server.Requests().size(), 1);
}

QTEST_GUILESS_MAIN(DownloadAnswersTest)
#include "DownloadAnswersTest.moc"
