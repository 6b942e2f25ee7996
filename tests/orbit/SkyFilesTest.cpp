#include "orbit/skyview/FrequenciesFile.h"
#include "orbit/skyview/HorizonFile.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

class SkyFilesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void horizonIsReadInAnyOrder();
    void wrongLineOfTheHorizonIsTold_data();
    void wrongLineOfTheHorizonIsTold();
    void frequenciesAreThoseOfTheirSatellite();
    void wrongLineOfTheFrequenciesIsTold_data();
    void wrongLineOfTheFrequenciesIsTold();
    void frequenciesAreBounded();
    void missingFilesAreNoFault();
    void filesThatCannotBeReadAreToldAsAWhole();
    void shippedExamplesAreGood();
};

void SkyFilesTest::horizonIsReadInAnyOrder() {
    const auto file = HorizonFile::Parse("\xEF\xBB\xBF# note\r\n 180 , +12.5\r\n\r\n\"0\",0\n90,-3");
    QCOMPARE(file.Faults().size(), 0U);
    QCOMPARE(file.Around().Points().size(), 3U);
    QCOMPARE(file.Around().ElevationAt(180), 12.5);
    QCOMPARE(file.Around().ElevationAt(90), -3.0);
    QCOMPARE(file.Around().ElevationAt(270), 6.25);
}

void SkyFilesTest::wrongLineOfTheHorizonIsTold_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const char* line, const char16_t* reason) {
        QTest::newRow(name) << QByteArray(line) << QString::fromUtf16(reason);
    };
    row("one field", "90", u"1 fields in place of 2");
    row("three", "90,1,2", u"3 fields in place of 2");
    row("words", "east,1", u"the azimuth is 0 to 360 degrees, not \"east\"");
    row("comma as mark", "90;1,5", u"the azimuth is 0 to 360 degrees, not \"90;1\"");
    row("negative", "-1,1", u"the azimuth is 0 to 360 degrees, not \"-1\"");
    row("beyond", "360.1,1", u"the azimuth is 0 to 360 degrees, not \"360.1\"");
    row("not a number", "nan,1", u"the azimuth is 0 to 360 degrees, not \"nan\"");
    row("too low", "90,-10.1", u"the elevation is -10 to 90 degrees, not \"-10.1\"");
    row("too high", "90,91", u"the elevation is -10 to 90 degrees, not \"91\"");
    row("empty", "90,", u"the elevation is -10 to 90 degrees, not \"\"");
    row("twice", "10.0,3", u"line 1 is for the same azimuth");
    row("quote", "\"90,1", u"a quote is out of place, or the line is too long");
    row("unseen", "9\x01,1", u"the azimuth is 0 to 360 degrees, not \"9?\"");
}

void SkyFilesTest::wrongLineOfTheHorizonIsTold() {
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    const auto file = HorizonFile::Parse("10,1\n" + line + "\n20,2\n");
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 2U);
    QCOMPARE(file.Faults().front().reason, reason);
    QCOMPARE(file.Around().Points().size(), 2U); // the others count
    QCOMPARE(HorizonFile::Parse("0,1\n360,2\n").Faults().size(), 1U);
}

void SkyFilesTest::frequenciesAreThoseOfTheirSatellite() {
    const auto file = FrequenciesFile::Parse(
        "qiran, Telemetry, 437.8\n25544, Packet, 145.825\nISS,\"Voice, down\", 145.8\n00090417,x,1\n");
    QCOMPARE(file.Faults().size(), 0U);
    const auto qiran = file.Of(QStringLiteral("QIRAN"), QStringLiteral("90417"));
    QCOMPARE(qiran.size(), 2U);
    QCOMPARE(qiran[0].name, QStringLiteral("Telemetry"));
    QCOMPARE(qiran[0].megahertz, 437.8);
    QCOMPARE(qiran[1].name, QStringLiteral("x"));
    const auto iss = file.Of(QStringLiteral("ISS"), QStringLiteral("25544"));
    QCOMPARE(iss.size(), 2U);
    QCOMPARE(iss[1].name, QStringLiteral("Voice, down"));
}

void SkyFilesTest::wrongLineOfTheFrequenciesIsTold_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const QByteArray& line, const char16_t* reason) {
        QTest::newRow(name) << line << QString::fromUtf16(reason);
    };
    row("two fields", "QIRAN, 437.8", u"2 fields in place of 3");
    row("satellite", "Sputnik,a,20", u"the satellite is QIRAN, ISS or a catalogue number, not \"Sputnik\"");
    row("long number", "1234567890,a,20",
        u"the satellite is QIRAN, ISS or a catalogue number, not \"1234567890\"");
    row("no satellite", ",a,20", u"the satellite is QIRAN, ISS or a catalogue number, not \"\"");
    row("no name", "QIRAN,,20", u"the name has 1 to 32 characters, not 0");
    row("long name", "QIRAN," + QByteArray(33, 'n') + ",20", u"the name has 1 to 32 characters, not 33");
    row("unseen", "QIRAN,a\x02z,20", u"the name holds what cannot be shown");
    row("not UTF-8", "QIRAN,\xE9,20", u"the name is not in UTF-8");
    row("kHz", "QIRAN,a,437800", u"the frequency is 1 to 300000 MHz, not \"437800\"");
    row("unit", "QIRAN,a,437.8 MHz", u"the frequency is 1 to 300000 MHz, not \"437.8 MHz\"");
    row("none", "QIRAN,a,0", u"the frequency is 1 to 300000 MHz, not \"0\"");
}

void SkyFilesTest::wrongLineOfTheFrequenciesIsTold() {
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    const auto file = FrequenciesFile::Parse("ISS,a,145.8\n" + line + "\nISS,b,145.825\n");
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 2U);
    QCOMPARE(file.Faults().front().reason, reason);
    QCOMPARE(file.Frequencies().size(), 2U);
}

void SkyFilesTest::frequenciesAreBounded() {
    const auto file = FrequenciesFile::Parse(QByteArray("ISS,a,145.8\n").repeated(65));
    QCOMPARE(file.Frequencies().size(), 64U);
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 65U);
    QCOMPARE(file.Faults().front().reason, QStringLiteral("more than 64 frequencies"));
}

void SkyFilesTest::missingFilesAreNoFault() {
    const TemporaryProgramFolder folder;
    QCOMPARE(HorizonFile::Read(folder.File(QStringLiteral("horizon.txt"))).Faults().size(), 0U);
    QVERIFY(!HorizonFile::Read(folder.File(QStringLiteral("horizon.txt"))).Around().IsKnown());
    QCOMPARE(FrequenciesFile::Read(folder.File(QStringLiteral("frequencies.txt"))).Faults().size(), 0U);
}

void SkyFilesTest::filesThatCannotBeReadAreToldAsAWhole() {
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("a/file"), "");
    const auto asFolder = HorizonFile::Read(folder.File(QStringLiteral("a")));
    QCOMPARE(asFolder.Faults().size(), 1U);
    QCOMPARE(asFolder.Faults().front().line, 0U);
    folder.Write(QStringLiteral("large"), QByteArray(64 * 1024 + 1, '#'));
    QCOMPARE(FrequenciesFile::Read(folder.File(QStringLiteral("large"))).Faults().size(), 1U);
}

void SkyFilesTest::shippedExamplesAreGood() {
    const auto horizon = HorizonFile::Read(QStringLiteral(QIRAN_DATA_FOLDER "/horizon.example.txt"));
    QCOMPARE(horizon.Faults().size(), 0U);
    QCOMPARE(horizon.Around().Points().size(), 10U);
    const auto frequencies =
        FrequenciesFile::Read(QStringLiteral(QIRAN_DATA_FOLDER "/frequencies.example.txt"));
    QCOMPARE(frequencies.Faults().size(), 0U);
    QCOMPARE(frequencies.Frequencies().size(), 4U);
}

QTEST_MAIN(SkyFilesTest)
#include "SkyFilesTest.moc"
