#include "telemetry/limits/ChannelsFile.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ChannelsFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aLineGivesUnitLimitsAndPersistence();
    void whatIsEmptyIsNotThere();
    void aStarIsBothSidesAndALineForOneGoesBefore();
    void notesBlanksCaseMarkAndLineEndsDoNotCount();
    void aWrongLineIsToldWithItsReasonAndTheOthersCount_data();
    void aWrongLineIsToldWithItsReasonAndTheOthersCount();
    void aSecondLineForTheSameChannelIsTold();
    void equalLimitsOfOneSideAreAllowed();
    void noFileHasNeitherLimitsNorFaults();
    void aFileThatCannotBeReadIsTold();
    void theExampleIsRight();
};

void ChannelsFileTest::aLineGivesUnitLimitsAndPersistence() {
    const ChannelsFile file = ChannelsFile::Parse("A,POWER,Batt A,V,6,6.5,8.2,+8.4,3\n"
                                                  "B,TEMP,Xmtr,\"\xC2\xB0"
                                                  "C\",-2e1,-10,40,55,\n");
    QVERIFY(file.Faults().empty());
    QCOMPARE(file.Limits().size(), 2U);
    const ChannelLimits& battery = file.Limits().at({0, 0, 1});
    QCOMPARE(battery.unit, u"V"_s);
    QCOMPARE(battery.lowAlarm, 6.0);
    QCOMPARE(battery.lowWarning, 6.5);
    QCOMPARE(battery.highWarning, 8.2);
    QCOMPARE(battery.highAlarm, 8.4);
    QCOMPARE(battery.persistence, 3);
    const ChannelLimits& transmitter = file.Limits().at({1, 2, 9});
    QCOMPARE(transmitter.unit, u"°C"_s);
    QCOMPARE(transmitter.lowAlarm, -20.0);
    QCOMPARE(transmitter.persistence, 1);
}

void ChannelsFileTest::whatIsEmptyIsNotThere() {
    const ChannelsFile file = ChannelsFile::Parse("A,CURRENT,X+,,,,,,\n");
    QVERIFY(file.Faults().empty());
    const ChannelLimits& limits = file.Limits().at({0, 1, 1});
    QVERIFY(limits.unit.isEmpty() && !limits.lowAlarm && !limits.lowWarning && !limits.highWarning &&
            !limits.highAlarm);
    QCOMPARE(limits.Outside(1e9), Level::Normal);
}

void ChannelsFileTest::aStarIsBothSidesAndALineForOneGoesBefore() {
    for (const char* text : {"*,POWER,P Out,W,,,2,,\nB,POWER,P Out,W,,,3,,\n",
                             "B,POWER,P Out,W,,,3,,\n*,POWER,P Out,W,,,2,,\n"}) {
        const ChannelsFile file = ChannelsFile::Parse(text);
        QVERIFY(file.Faults().empty());
        QCOMPARE(file.Limits().at({0, 0, 3}).highWarning, 2.0);
        QCOMPARE(file.Limits().at({1, 0, 3}).highWarning, 3.0);
    }
}

void ChannelsFileTest::notesBlanksCaseMarkAndLineEndsDoNotCount() {
    const ChannelsFile file = ChannelsFile::Parse("\xEF\xBB\xBF"
                                                  "# limits, as measured\r\n\r\n  \t\r\n  # more\r\n"
                                                  " b ,\tpower , 8v reg , V , , 7.5 , , , 2 ");
    QVERIFY(file.Faults().empty());
    QCOMPARE(file.Limits().at({1, 0, 4}).lowWarning, 7.5);
    QCOMPARE(file.Limits().at({1, 0, 4}).persistence, 2);
}

void ChannelsFileTest::aWrongLineIsToldWithItsReasonAndTheOthersCount_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const auto row = [](const QByteArray& line, const QString& reason) {
        QTest::newRow(line.first(std::min<qsizetype>(line.size(), 40)).constData()) << line << reason;
    };
    const QString order = u"the limits do not rise from low alarm to high alarm"_s;
    row("side,grid,row,unit,low alarm,low warning,high warning,high alarm,persistence",
        u"the side is A, B or *, not \"side\""_s);
    row("C,POWER,Batt A,V,,,,,", u"the side is A, B or *, not \"C\""_s);
    row(",POWER,Batt A,V,,,,,", u"the side is A, B or *, not \"\""_s);
    row("A,TEMPS,X+,C,,,,,", u"no such grid: \"TEMPS\""_s);
    row("A,POWER,Batt,V,,,,,", u"the grid has no such row: \"Batt\""_s);
    row("A,POWER,Batt A,V,,,,", u"8 fields in place of 9"_s);
    row("A,POWER,Batt A,V,,,,,,", u"10 fields in place of 9"_s);
    row("A;POWER;Batt A;V;;;;;", u"1 fields in place of 9"_s);
    row("A,POWER,Batt A,V,six,,,,", u"no number: \"six\""_s);
    row("A,POWER,Batt A,V,,6 V,,,", u"no number: \"6 V\""_s);
    row("A,POWER,Batt A,V,,,nan,,", u"no number: \"nan\""_s);
    row("A,POWER,Batt A,V,,,,inf,", u"no number: \"inf\""_s);
    row("A,POWER,Batt A,V,,,,1e999,", u"no number: \"1e999\""_s);
    row("A,POWER,Batt A,V,\"6,5\",,,,", u"no number: \"6,5\""_s);
    row("A,POWER,Batt A,V,,,,,0", u"the persistence is 1 to 1000 readings, not \"0\""_s);
    row("A,POWER,Batt A,V,,,,,1.5", u"the persistence is 1 to 1000 readings, not \"1.5\""_s);
    row("A,POWER,Batt A,V,,,,,1001", u"the persistence is 1 to 1000 readings, not \"1001\""_s);
    row("A,POWER,Batt A,V,7,6,,,", order);
    row("A,POWER,Batt A,V,,6,5,,", order);
    row("A,POWER,Batt A,V,,6,6,,", order);
    row("A,POWER,Batt A,V,6,,,6,", order);
    row("A,POWER,Batt A,V,,,9,8,", order);
    row("A,POWER,Batt A,V,9,,,8,", order);
    row("A,POWER,Batt A,\xB0"
        "C,,,,,",
        u"the unit is not in UTF-8"_s);
    row("A,POWER,Batt A," + QByteArray(17, 'x') + ",,,,,", u"the unit is longer than 16 characters"_s);
    row("A,POWER,Batt A,a\tb,,,,,", u"the unit holds what cannot be shown"_s);
    row("A,POWER,\"Batt A,V,,,,,", u"a quote is out of place, or the line is too long"_s);
    row("A,POWER,\x1B[31m" + QByteArray(100, 'y') + ",V,,,,,",
        u"the grid has no such row: \"?[31m"_s + QString(35, u'y') + u'"');
}

void ChannelsFileTest::aWrongLineIsToldWithItsReasonAndTheOthersCount() {
    QFETCH(const QByteArray, line);
    QFETCH(const QString, reason);
    const ChannelsFile file =
        ChannelsFile::Parse("# notes\n*,POWER,P Out,W,,,2,,\n" + line + "\nB,POWER,8V Reg,V,,,9,,\n");
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 3U);
    QCOMPARE(file.Faults().front().reason, reason);
    QCOMPARE(file.Limits().size(), 3U);
}

void ChannelsFileTest::aSecondLineForTheSameChannelIsTold() {
    const ChannelsFile file = ChannelsFile::Parse("A,POWER,P Out,W,,,2,,\n\na,power,p out,W,,,3,,\n");
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 3U);
    QCOMPARE(file.Faults().front().reason, u"line 1 is for the same channel"_s);
    QCOMPARE(file.Limits().at({0, 0, 3}).highWarning, 2.0);
}

void ChannelsFileTest::equalLimitsOfOneSideAreAllowed() {
    QVERIFY(ChannelsFile::Parse("A,POWER,P Out,W,1,1,3,3,\n").Faults().empty());
}

void ChannelsFileTest::noFileHasNeitherLimitsNorFaults() {
    const TemporaryProgramFolder folder;
    const ChannelsFile file = ChannelsFile::Read(folder.File(u"channels.txt"_s));
    QVERIFY(file.Limits().empty() && file.Faults().empty());
}

void ChannelsFileTest::aFileThatCannotBeReadIsTold() {
    const TemporaryProgramFolder folder;
    QVERIFY(QDir().mkpath(folder.File(u"channels.txt"_s)));
    ChannelsFile file = ChannelsFile::Read(folder.File(u"channels.txt"_s));
    QCOMPARE(file.Faults().size(), 1U);
    QCOMPARE(file.Faults().front().line, 0U);
    QVERIFY(file.Faults().front().reason.endsWith(u" is not a file"_s));
    folder.Write(u"large"_s, QByteArray(ChannelsFile::largestFile + 1, '\n'));
    file = ChannelsFile::Read(folder.File(u"large"_s));
    QCOMPARE(file.Faults().size(), 1U);
}

void ChannelsFileTest::theExampleIsRight() {
    const ChannelsFile file = ChannelsFile::Read(QStringLiteral(QIRAN_DATA_FOLDER "/channels.example.txt"));
    for (const ChannelsFile::Fault& fault : file.Faults())
        qWarning("line %zu: %s", fault.line, qPrintable(fault.reason));
    QVERIFY(file.Faults().empty());
    QCOMPARE(file.Limits().size(), 40U); // every cell of both sides has its unit
    for (const auto& [cell, limits] : file.Limits())
        QVERIFY(!limits.unit.isEmpty());
}

QTEST_GUILESS_MAIN(ChannelsFileTest)
#include "ChannelsFileTest.moc"
