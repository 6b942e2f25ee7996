#include "orbit/service/TrackedSatellites.h"

#include "foundation/settings/Settings.h"
#include "orbit/service/KVRSatLib.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

const QByteArray line1 = "1 25544U 98067A   26325.50000000  .00016717  00000-0  10270-3 0  9000";
const QByteArray line2 = "2 25544  51.6400 208.9163 0006317  69.9862  25.2906 15.49560532 14777";
const QByteArray qiran1 = "1 90417U 01043A   26325.50000000  .00000100  00000-0  10000-4 0  9000";
const QByteArray qiran2 = "2 90417  97.6000 208.9163 0006317  69.9862  25.2906 14.59560532 14774";

QByteArray Iss(const QByteArray& name = "ISS (ZARYA)", const QByteArray& end = "\r\n") {
    return name + end + line1 + end + line2 + end;
}

QByteArray Qiran(const QByteArray& name = "SAPPHIRE", const QByteArray& end = "\r\n") {
    return name + end + qiran1 + end + qiran2 + end;
}

/// Satellites of a program folder with settings at their defaults.
struct Fixture {
    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    TrackedSatellites satellites;

    Fixture() {
        satellites.LoadSettings(ini);
        QDir(folder.Program().Path()).mkpath(QStringLiteral("Keps"));
    }
    void Find() { satellites.FindInKeps(folder.Program().KepsFolder()); }

    /// The same folder read by the true library, at the elements' epoch, and what is said about it.
    QStringList Untracked() {
        Find();
        sats.setStrKeplerPath(folder.Program().KepsFolder());
        return satellites.UntrackedMessages(sats);
    }
    bool IsIssTracked() const {
        return sats.PositionAt(QStringLiteral("25544"), sats.datGmtTime()).has_value();
    }

    TestClock clock{DateOf(2026, 11, 21) + 0.5};
    clsSats sats{std::make_unique<KVRSatLib>([](const std::string&) {}), clock};
    QString NameOf(qint16 index, const QByteArray& file) {
        folder.Write(QStringLiteral("Keps/a.txt"), file);
        Find();
        satellites.setIntObjIndex(index);
        return satellites.DisplayName();
    }
};

} // namespace

class TrackedSatellitesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void settingsAreReadAndWrittenBack();
    void selectionIsSaved();
    void anyOtherIndexSelectsTheFirst_data();
    void anyOtherIndexSelectsTheFirst();
    void displayNames_data();
    void displayNames();
    void groupsAreFoundInEveryShape_data();
    void groupsAreFoundInEveryShape();
    void theSecondFileIsNeverOpenedWhenBothAreFound();
    void theSearchGoesOnWhileOneIsMissing();
    void anewSearchForgetsWhatWasFound();
    void missingElementsAreNamed();
    void aByteOrderMarkIsNoPartOfTheName();
    void messagesAreFoundAsGroupsOfThreeLines_data();
    void messagesAreFoundAsGroupsOfThreeLines();
    void theFirstOfSeveralFormatsNamesIt();
    void alpha5NumbersAreFound_data();
    void alpha5NumbersAreFound();
    void whatIsFoundIsTrackedOrItIsSaidWhy_data();
    void whatIsFoundIsTrackedOrItIsSaidWhy();
    void aGoodSetElsewhereIsTrackedAlthoughADamagedOneNamesIt();
    void whatFellFromTheSkyIsSaid();
    void hiddenFilesAreNeitherFoundNorTracked();
    void hugeAndBinaryFilesEndSoon();
    void whatIsNoFileIsPassedOver();
    void everyTenthTickRefreshes();
    void aForcedTickRefreshesAndStartsOver();
};

void TrackedSatellitesTest::settingsAreReadAndWrittenBack() {
    Fixture f;
    QCOMPARE(f.satellites.At(0).strObjNum, QStringLiteral("90417"));
    QCOMPARE(f.satellites.At(1).strObjNum, QStringLiteral("25544"));
    QCOMPARE(f.satellites.intObjIndex(), qint16(0));
    const QByteArray file = f.folder.Read(QStringLiteral("QiranDecode.INI"));
    QVERIFY2(file.contains("QIRAN_OBJ_NUM=90417\r\nISS_OBJ_NUM=25544\r\nOBJ_INDEX=0\r\n"), file.constData());
}

void TrackedSatellitesTest::selectionIsSaved() {
    Fixture f;
    f.satellites.Toggle();
    f.satellites.SaveSettings(f.ini);
    TrackedSatellites others;
    others.LoadSettings(f.ini);
    QCOMPARE(others.intObjIndex(), qint16(1));
    others.Toggle();
    QCOMPARE(others.intObjIndex(), qint16(0));
}

void TrackedSatellitesTest::anyOtherIndexSelectsTheFirst_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("index");
    for (const char* stored : {"0", "2", "-1", "70000", "1e9", "", "one"})
        QTest::newRow(stored) << QString::fromLatin1(stored) << (qstrcmp(stored, "1e9") == 0 ? 1 : 0);
    QTest::newRow("1") << QStringLiteral("1") << 1;
}

void TrackedSatellitesTest::anyOtherIndexSelectsTheFirst() {
    QFETCH(QString, stored);
    QFETCH(int, index);
    Fixture f;
    Settings::Save(f.ini, Settings::objIndex, stored);
    f.satellites.LoadSettings(f.ini);
    QCOMPARE(int(f.satellites.intObjIndex()), index);
    f.satellites.Toggle();
    QCOMPARE(int(f.satellites.intObjIndex()), 1 - index);
}

void TrackedSatellitesTest::displayNames_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("nameLine");
    QTest::addColumn<QString>("displayName");
    QTest::newRow("ISS begins so") << 1 << QByteArray("ISS (ZARYA)") << QStringLiteral("ISS");
    QTest::newRow("iss begins so") << 1 << QByteArray("iss") << QStringLiteral("ISS");
    QTest::newRow("ZARYA") << 1 << QByteArray("ZARYA") << QStringLiteral("ISS (ZARYA)");
    QTest::newRow("IS") << 1 << QByteArray("IS") << QStringLiteral("ISS (IS)");
    QTest::newRow("SAPPHIRE") << 0 << QByteArray("  SAPPHIRE ") << QStringLiteral("QIRAN (SAPPHIRE)");
    QTest::newRow("Qiran") << 0 << QByteArray("Qiran") << QStringLiteral("QIRAN");
    QTest::newRow("QIRAN-1") << 0 << QByteArray("QIRAN-1") << QStringLiteral("QIRAN (QIRAN-1)");
}

void TrackedSatellitesTest::displayNames() {
    QFETCH(int, index);
    QFETCH(QByteArray, nameLine);
    Fixture f;
    f.satellites.setIntObjIndex(index);
    QCOMPARE(f.satellites.DisplayName(), index == 0 ? QStringLiteral("QIRAN") : QStringLiteral("ISS"));
    QTEST(f.NameOf(qint16(index), Iss(nameLine) + Qiran(nameLine)), "displayName");
}

void TrackedSatellitesTest::groupsAreFoundInEveryShape_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("found");
    QTest::newRow("CR LF") << Iss() << true;
    QTest::newRow("LF") << Iss("ISS", "\n") << true;
    QTest::newRow("no last line end") << Iss().chopped(2) << true;
    QTest::newRow("blanks all over") << QByteArray("  ISS  \n  1    25544U  x\n   2    25544   y  \n")
                                     << true;
    QTest::newRow("rubbish before") << "hello\r\n\r\n2 25544 x\r\n1 25544\r\n" + Iss() << true;
    QTest::newRow("another's elements before") << Qiran() + Iss() << true;
    QTest::newRow("a number that only begins so on line 1")
        << QByteArray("A\n1 255447U\n2 25544 x\n") << true;
    QTest::newRow("a number that only begins so on line 2")
        << QByteArray("A\n1 25544U\n2 255447 x\n") << false;
    QTest::newRow("another number on line 1") << QByteArray("A\n1 90417U\n2 25544 x\n") << false;
    QTest::newRow("no name line") << line1 + "\n" + line2 + "\n" << false;
    QTest::newRow("an empty name line") << "   \n" + line1 + "\n" + line2 + "\n" << false;
    QTest::newRow("a blank line between") << "ISS\n" + line1 + "\n\n" + line2 + "\n" << false;
    QTest::newRow("line 2 alone") << line2 << false;
    QTest::newRow("line 2 of one field") << QByteArray("A\n1 25544U\n2 \n") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void TrackedSatellitesTest::groupsAreFoundInEveryShape() {
    QFETCH(QByteArray, file);
    Fixture f;
    f.NameOf(1, file);
    QTEST(f.satellites.At(1).blnFound, "found");
    QCOMPARE(f.satellites.At(1).strName.isEmpty(), !f.satellites.At(1).blnFound);
}

void TrackedSatellitesTest::theSecondFileIsNeverOpenedWhenBothAreFound() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/a.txt"), Iss("FIRST") + Qiran("FIRST"));
    f.folder.Write(QStringLiteral("Keps/b.txt"), Iss("SECOND") + Qiran("SECOND"));
    // An opened file shows its time of access; both are set back to long ago.
    const auto pathOf = [&](const char* name) {
        return QFile::encodeName(f.folder.Program().KepsFolder() + QStringLiteral("/") +
                                 QString::fromLatin1(name));
    };
    for (const char* name : {"a.txt", "b.txt"}) {
        const timespec long_ago[2] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 2, .tv_nsec = 0}};
        QCOMPARE(utimensat(AT_FDCWD, pathOf(name).constData(), long_ago, 0), 0);
    }
    f.Find();
    int opened = 0;
    for (const char* name : {"a.txt", "b.txt"}) {
        struct stat status {};
        QCOMPARE(stat(pathOf(name).constData(), &status), 0);
        opened += status.st_atime != 1 ? 1 : 0;
    }
    if (opened == 0)
        QSKIP("this file system does not keep the time of access");
    QCOMPARE(opened, 1);
    QCOMPARE(f.satellites.At(0).strName, f.satellites.At(1).strName);
}

void TrackedSatellitesTest::theSearchGoesOnWhileOneIsMissing() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/a.txt"), Iss());
    f.folder.Write(QStringLiteral("Keps/b.txt"), Qiran());
    f.Find();
    QVERIFY(f.satellites.At(0).blnFound && f.satellites.At(1).blnFound);
}

void TrackedSatellitesTest::anewSearchForgetsWhatWasFound() {
    Fixture f;
    f.NameOf(0, Iss() + Qiran());
    QVERIFY(f.satellites.At(0).blnFound);
    f.NameOf(0, Iss());
    QVERIFY(!f.satellites.At(0).blnFound);
    QVERIFY(f.satellites.At(1).blnFound);
}

void TrackedSatellitesTest::missingElementsAreNamed() {
    Fixture f;
    f.Find();
    QCOMPARE(f.satellites.NoKepsMessage(), QStringLiteral("No Keps found for QIRAN and ISS."));
    f.NameOf(0, Iss());
    QCOMPARE(f.satellites.NoKepsMessage(), QStringLiteral("No Keps found for QIRAN."));
    f.NameOf(0, Qiran());
    QCOMPARE(f.satellites.NoKepsMessage(), QStringLiteral("No Keps found for ISS."));
    f.NameOf(0, Qiran() + Iss());
    QCOMPARE(f.satellites.NoKepsMessage(), QString());
}

void TrackedSatellitesTest::aByteOrderMarkIsNoPartOfTheName() {
    Fixture f;
    QCOMPARE(f.NameOf(1, "\xEF\xBB\xBF" + Iss("ZARYA")), QStringLiteral("ISS (ZARYA)"));
}

void TrackedSatellitesTest::messagesAreFoundAsGroupsOfThreeLines_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("name");
    const QByteArray csv = "OBJECT_NAME,NORAD_CAT_ID,EPOCH\r\n";
    QTest::newRow("CSV") << csv + "OTHER,1,x\r\nSAPPHIRE,90417,x\r\n" << QStringLiteral("SAPPHIRE");
    QTest::newRow("CSV without a name") << csv + ",90417,x\r\n" << QString();
    QTest::newRow("CSV, another number") << csv + "SAPPHIRE,904170,x\r\n" << QString();
    QTest::newRow("JSON") << QByteArray(R"([{"OBJECT_NAME":" T\u00e4hti ","NORAD_CAT_ID":90417}])")
                          << QStringLiteral("T\u00e4hti");
    QTest::newRow("JSON, numbers as texts")
        << QByteArray(R"({"OBJECT_NAME":"A","NORAD_CAT_ID":"90417"})") << QStringLiteral("A");
    QTest::newRow("XML") << QByteArray("<ndm><omm><a><OBJECT_NAME>B</OBJECT_NAME></a>"
                                       "<b><NORAD_CAT_ID>90417</NORAD_CAT_ID></b></omm></ndm>")
                         << QStringLiteral("B");
}

void TrackedSatellitesTest::messagesAreFoundAsGroupsOfThreeLines() {
    QFETCH(const QByteArray, file);
    QFETCH(const QString, name);
    Fixture fixture;
    fixture.folder.Write(QStringLiteral("Keps/a.dat"), file);
    fixture.Find();
    QCOMPARE(fixture.satellites.At(0).blnFound, !name.isEmpty());
    QCOMPARE(fixture.satellites.At(0).strName, name);
}

void TrackedSatellitesTest::theFirstOfSeveralFormatsNamesIt() {
    Fixture fixture;
    fixture.ini.SaveIniString(QStringLiteral("SETUP"), QStringLiteral("QIRAN_OBJ_NUM"),
                              QStringLiteral("123456789"));
    fixture.satellites.LoadSettings(fixture.ini);
    fixture.folder.Write(
        QStringLiteral("Keps/a.xml"),
        "<ndm><omm><OBJECT_NAME>FIRST</OBJECT_NAME><NORAD_CAT_ID>123456789</NORAD_CAT_ID></omm>"
        "<omm><OBJECT_NAME>SECOND</OBJECT_NAME><NORAD_CAT_ID>123456789</NORAD_CAT_ID></omm></ndm>" +
            Iss());
    fixture.folder.Write(QStringLiteral("Keps/iss.json"), R"({"OBJECT_NAME":"ISS","NORAD_CAT_ID":25544})");
    fixture.Find();
    QCOMPARE(fixture.satellites.At(0).strName, QStringLiteral("FIRST"));
    QCOMPARE(fixture.satellites.At(1).strName, QStringLiteral("ISS"));
    QVERIFY(fixture.satellites.At(0).strFault.startsWith(QStringLiteral("a.xml, line 1, record 1, EPOCH: ")));
}

void TrackedSatellitesTest::alpha5NumbersAreFound_data() {
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("found");
    QTest::newRow("as the file has it") << QStringLiteral("T0417") << true;
    QTest::newRow("in digits") << QStringLiteral("270417") << true;
    QTest::newRow("another") << QStringLiteral("270418") << false;
    QTest::newRow("none") << QString() << false;
}

void TrackedSatellitesTest::alpha5NumbersAreFound() {
    QFETCH(QString, number);
    Fixture f;
    Settings::Save(f.ini, Settings::issObjNum, number);
    f.satellites.LoadSettings(f.ini);
    f.NameOf(1, "A\n1 T0417U x\n2 T0417 x\n");
    QTEST(f.satellites.At(1).blnFound, "found");
}

void TrackedSatellitesTest::whatIsFoundIsTrackedOrItIsSaidWhy_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("why");
    const auto with = [](QByteArray one, QByteArray two) { return "ZARYA\n" + one + "\n" + two + "\n"; };
    QTest::newRow("good") << Iss() << QString();
    QTest::newRow("with a byte order mark") << "\xEF\xBB\xBF" + Iss() << QString();
    QTest::newRow("with blanks in front") << with("  " + line1, "\t" + line2) << QString();
    QTest::newRow("with blanks behind") << with(line1 + "  \r", line2 + " ") << QString();
    QTest::newRow("a wrong checksum")
        << with(line1, line2.chopped(1) + "0") << QStringLiteral("line 3, column 69: the checksum is wrong");
    QTest::newRow("68 columns") << with(line1.chopped(1), line2)
                                << QStringLiteral("line 2, column 69: the line is too short");
    QTest::newRow("little more than the numbers")
        << with("1 25544U x", "2 25544 x") << QStringLiteral("line 2, column 11: the line is too short");
    QTest::newRow("below another's elements")
        << Qiran() + with(line1 + "1", line2) << QStringLiteral("line 5, column 70: the line is too long");
}

void TrackedSatellitesTest::whatIsFoundIsTrackedOrItIsSaidWhy() {
    QFETCH(QByteArray, file);
    QFETCH(QString, why);
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/a file.txt"), file);
    const QStringList said = f.Untracked();
    QVERIFY(f.satellites.At(1).blnFound);
    QCOMPARE(f.IsIssTracked(), why.isEmpty());
    QCOMPARE(said, why.isEmpty() ? QStringList()
                                 : QStringList(QStringLiteral("*** ISS cannot be tracked - a file.txt, ") +
                                               why + QStringLiteral("\r\n")));
}

void TrackedSatellitesTest::aGoodSetElsewhereIsTrackedAlthoughADamagedOneNamesIt() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/both.txt"), Iss("ZARYA").replace("9000", "9001") + Iss("ISS"));
    QCOMPARE(f.Untracked(), QStringList());
    QCOMPARE(f.satellites.At(1).strName, QStringLiteral("ZARYA"));
    QVERIFY(f.IsIssTracked());
}

void TrackedSatellitesTest::whatFellFromTheSkyIsSaid() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/old.txt"), Iss());
    f.clock.Set(DateOf(2036, 11, 21));
    const QStringList said = f.Untracked();
    QCOMPARE(said.size(), 1);
    QVERIFY2(said[0].startsWith(QStringLiteral("*** ISS cannot be tracked - old.txt, line 2: ")),
             qPrintable(said[0]));
}

void TrackedSatellitesTest::hiddenFilesAreNeitherFoundNorTracked() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/.a.txt"), Iss());
    QCOMPARE(f.Untracked(), QStringList());
    QVERIFY(!f.satellites.At(1).blnFound);
    QVERIFY(!f.IsIssTracked());
}

void TrackedSatellitesTest::hugeAndBinaryFilesEndSoon() {
    Fixture f;
    QByteArray binary(1 << 20, '\0');
    for (qsizetype i = 0; i < binary.size(); ++i)
        binary[i] = static_cast<char>(i * 7 % 256);
    f.folder.Write(QStringLiteral("Keps/binary"), binary);
    f.folder.Write(QStringLiteral("Keps/oneline"), QByteArray(8 << 20, '2'));
    // 100 MiB of nothing, with elements at its end: beyond what is read.
    f.folder.Write(QStringLiteral("Keps/huge"), {});
    QFile huge(f.folder.File(QStringLiteral("Keps/huge")));
    QVERIFY(huge.open(QIODevice::ReadWrite));
    QVERIFY(huge.resize(100LL << 20) && huge.seek(100LL << 20) && huge.write("\n" + Iss()) > 0);
    huge.close();
    f.Find();
    QVERIFY(!f.satellites.At(1).blnFound);
    f.folder.Write(QStringLiteral("Keps/late"), binary + "\n" + QByteArray(5000, 'x') + "\n" + Iss());
    f.Find();
    QVERIFY(f.satellites.At(1).blnFound);
}

void TrackedSatellitesTest::whatIsNoFileIsPassedOver() {
    Fixture f;
    const QString keps = f.folder.Program().KepsFolder();
    QVERIFY(QDir(keps).mkpath(QStringLiteral("folder.txt")));
    QVERIFY(QFile::link(keps, keps + QStringLiteral("/self")));
    QVERIFY(QFile::link(keps + QStringLiteral("/nowhere"), keps + QStringLiteral("/dangling")));
    QCOMPARE(mkfifo(QFile::encodeName(keps + QStringLiteral("/pipe")).constData(), 0600), 0);
    f.Find(); // and does not wait for the pipe
    QVERIFY(!f.satellites.At(0).blnFound);
    TrackedSatellites nowhere;
    nowhere.FindInKeps(keps + QStringLiteral("/nowhere"));
    QVERIFY(!nowhere.At(0).blnFound);
}

void TrackedSatellitesTest::everyTenthTickRefreshes() {
    Fixture f;
    for (int round = 0; round < 3; ++round) {
        for (int tick = 1; tick <= 9; ++tick)
            QVERIFY(!f.satellites.Tick());
        QVERIFY(f.satellites.Tick());
    }
}

void TrackedSatellitesTest::aForcedTickRefreshesAndStartsOver() {
    Fixture f;
    for (int tick = 1; tick <= 5; ++tick)
        QVERIFY(!f.satellites.Tick());
    QVERIFY(f.satellites.Tick(true));
    for (int tick = 1; tick <= 9; ++tick)
        QVERIFY(!f.satellites.Tick());
    QVERIFY(f.satellites.Tick());
}

QTEST_GUILESS_MAIN(TrackedSatellitesTest)
#include "TrackedSatellitesTest.moc"
