#include "telemetry/calibration/TelemetryDecoder.h"

#include "telemetry/TelemetryRoom.h"

#include <QTest>

class TelemetryDecoderTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void channelMapIsAsTheSatelliteIsBuilt();
    void channelMapHasNothingOutside();
    void frameTypeTwoOfSideA();
    void frameTypeTwoOfSideB();
    void otherNumbersOfFieldsChangeNothing_data();
    void otherNumbersOfFieldsChangeNothing();
    void nineEmptyFieldsAreTypeZeroOfZeros();
    void frameTypes_data();
    void frameTypes();
    void rawValues_data();
    void rawValues();
    void onlyACapitalBIsSideB_data();
    void onlyACapitalBIsSideB();
    void firstEntryOfACallsignDecides();
    void labelNamesFrameAndTime();
    void laterFrameReplacesEarlierValue();
    void aFailingChannelDoesNotStopTheOthers();
    void aFailingChannelKeepsItsCells();
    void channelsWithoutFormulaStayUndisplayed();
    void thereAreNoReadingsOutsideTheMap();
    void aLineIsHandedOnWithItsReadings();
    void aChannelWithoutFormulaIsReadRaw();
    void replayedFramesAreDecodedForThoseWhoTakeThem();
    void onlyUiFramesAreDecoded();
};

namespace {

QByteArray Line(const QByteArray& typeField) {
    return "T#7,10,20,30,40,0,0," + typeField + ",0";
}

} // namespace

void TelemetryDecoderTest::channelMapIsAsTheSatelliteIsBuilt() {
    const QStringList expected = {
        QStringLiteral("CURRENT X+,CURRENT Z+,CURRENT Y+,CURRENT X-"),
        QStringLiteral("TEMP Y+,TEMP Batt,TEMP Xmtr,TEMP Z+"),
        QStringLiteral("TEMP X+,TEMP Stack,CURRENT Y-,CURRENT Batt"),
        QStringLiteral("POWER Batt A,POWER Batt B,POWER P Out,POWER 8V Reg"),
        QStringLiteral("CURRENT X-,CURRENT Z-,CURRENT Y-,CURRENT X+"),
        QStringLiteral("TEMP Y-,TEMP Batt,TEMP Xmtr,TEMP Z-"),
        QStringLiteral("TEMP X-,TEMP Stack,CURRENT Y+,CURRENT Batt"),
        QStringLiteral("POWER Batt A,POWER Batt B,POWER P Out,POWER 8V Reg"),
    };
    const TelemetryRoom room;
    QStringList built;
    for (int side = 0; side < 2; ++side)
        for (int type = 0; type < 4; ++type) {
            QStringList names;
            for (int channel = 0; channel < 4; ++channel) {
                const ChannelCell* cell = room.map.At(side, type, channel);
                QVERIFY(cell != nullptr);
                const TelemetryGrid& grid = *room.grids[static_cast<std::size_t>(cell->grid)];
                names.append(QString::fromLatin1(grid.Tag()) + u' ' + grid.TextMatrix(cell->row, 0));
            }
            built.append(names.join(u','));
        }
    QCOMPARE(built, expected);
}

void TelemetryDecoderTest::channelMapHasNothingOutside() {
    const TelemetryRoom room;
    for (const auto& [side, type, channel] :
         {std::array{-1, 0, 0}, {2, 0, 0}, {0, -1, 0}, {0, 4, 0}, {0, 0, -1}, {0, 0, 4}})
        QVERIFY(room.map.At(side, type, channel) == nullptr);
}

void TelemetryDecoderTest::frameTypeTwoOfSideA() {
    TelemetryRoom room;
    room.Decode("XQ9ZZ", "T#001,10,20,30,40,0,0,00101111,0");
    QCOMPARE(room.Cell(2, "X+", TelemetryGrid::ValueA), QStringLiteral("3010"));
    QCOMPARE(room.Cell(2, "Stack", TelemetryGrid::ValueA), QStringLiteral("3020"));
    QCOMPARE(room.Cell(1, "Y-", TelemetryGrid::ValueA), QStringLiteral("3030"));
    QCOMPARE(room.Cell(1, "Batt", TelemetryGrid::ValueA), QStringLiteral("3040"));
    QCOMPARE(room.FilledCells(), 8);
}

void TelemetryDecoderTest::frameTypeTwoOfSideB() {
    TelemetryRoom room;
    room.Decode("QIRAN-3", "T#001,10,20,30,40,0,0,00101111,0");
    QCOMPARE(room.Cell(2, "X-", TelemetryGrid::ValueB), QStringLiteral("13010"));
    QCOMPARE(room.Cell(2, "Stack", TelemetryGrid::ValueB), QStringLiteral("13020"));
    QCOMPARE(room.Cell(1, "Y+", TelemetryGrid::ValueB), QStringLiteral("13030"));
    QCOMPARE(room.Cell(1, "Batt", TelemetryGrid::ValueB), QStringLiteral("13040"));
    QCOMPARE(room.FilledCells(), 8);
}

void TelemetryDecoderTest::otherNumbersOfFieldsChangeNothing_data() {
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one") << QByteArray("hello");
    QTest::newRow("eight") << QByteArray("T#001,10,20,30,40,0,0,00101111");
    QTest::newRow("ten") << QByteArray("T#001,10,20,30,40,0,0,00101111,0,0");
    QTest::newRow("sixty thousand") << QByteArray(60000, ',');
}

void TelemetryDecoderTest::otherNumbersOfFieldsChangeNothing() {
    QFETCH(const QByteArray, line);
    TelemetryRoom room;
    room.Decode("XQ9ZZ", line);
    QCOMPARE(room.FilledCells(), 0);
}

void TelemetryDecoderTest::nineEmptyFieldsAreTypeZeroOfZeros() {
    TelemetryRoom room;
    room.Decode("XQ9ZZ", ",,,,,,,,");
    for (const char* row : {"X+", "Z+", "Y+", "X-"}) {
        QCOMPARE(room.Cell(1, row, TelemetryGrid::ValueA), QStringLiteral("1000"));
        QCOMPARE(room.Cell(1, row, TelemetryGrid::LabelA), QStringLiteral("  2002-Mar-05 14:07"));
    }
    QCOMPARE(room.FilledCells(), 8);
}

void TelemetryDecoderTest::frameTypes_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("type"); // -1: displays nothing
    const auto row = [](const char* field, int type) { QTest::newRow(field) << QByteArray(field) << type; };
    row("", 0);
    row("1", 0);
    row("11", 0);
    row("001", 2);
    row("000", 0);
    row("0010", 2);
    row("00011", 1);
    row("001100", 3);
    row("0000111", 0);
    row("11001111", 0);
    row("abcdefgh", 0);
    row("ab1d", 2);
    row("001x", 2);
    row("00x1", 1);
    row("00-1", 1);
    row("00.1", 1);
    row("00 1", 1);
    row("0002", 2); // no binary digit, yet within the types
    row("0003", 3);
    row("0004", -1);
    row("0020", -1);
    row("0099", -1);
}

void TelemetryDecoderTest::frameTypes() {
    QFETCH(const QByteArray, field);
    QFETCH(const int, type);
    TelemetryRoom room;
    room.Decode("XQ9ZZ", Line(field));
    QCOMPARE(room.FilledCells(), type < 0 ? 0 : 8);
    if (type < 0)
        return;
    const ChannelCell& cell = *room.map.At(0, type, 0);
    QCOMPARE(room.grids[static_cast<std::size_t>(cell.grid)]->TextMatrix(cell.row, TelemetryGrid::ValueA),
             QString::number(1010 + 1000 * type));
}

void TelemetryDecoderTest::rawValues_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("text"); // of raw + 1000
    const auto row = [](const char* field, const char16_t* text) {
        QTest::newRow(field) << QByteArray(field) << QString::fromUtf16(text);
    };
    row("7", u"1007");
    row(" 7", u"1007");
    row("+5", u"1005");
    row("-5", u"995");
    row(".5", u"1000.5");
    row("5.", u"1005");
    row("5.25x", u"1005.25");
    row("1e400", u"1001"); // an exponent is no part of a raw value
    row("nan", u"1000");
    row("inf", u"1000");
    row("0x10", u"1000");
    row("", u"1000");
    row("- 5", u"1000");
}

void TelemetryDecoderTest::rawValues() {
    QFETCH(const QByteArray, field);
    TelemetryRoom room;
    room.Decode("XQ9ZZ", "T#7," + field + ",20,30,40,0,0,00000000,0");
    QTEST(room.Cell(1, "X+", TelemetryGrid::ValueA), "text");
}

void TelemetryDecoderTest::onlyACapitalBIsSideB_data() {
    QTest::addColumn<QString>("side");
    QTest::addColumn<int>("index");
    QTest::newRow("A") << QStringLiteral("A") << 0;
    QTest::newRow("B") << QStringLiteral("B") << 1;
    QTest::newRow("b") << QStringLiteral("b") << 0;
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("BB") << QStringLiteral("BB") << 0;
}

void TelemetryDecoderTest::onlyACapitalBIsSideB() {
    QFETCH(const QString, side);
    TelemetryRoom room;
    room.callsigns.setCCallsigns({{QStringLiteral("X1"), side}});
    QTEST(static_cast<int>(room.decoder.SideIndexOf("X1")), "index");
    QCOMPARE(room.decoder.SideIndexOf("X2"), 0);
}

void TelemetryDecoderTest::firstEntryOfACallsignDecides() {
    TelemetryRoom room;
    const QString callsign = QStringLiteral("X1");
    room.callsigns.setCCallsigns({{callsign, QStringLiteral("B")}, {callsign, QStringLiteral("A")}});
    QCOMPARE(room.decoder.SideIndexOf("X1"), 1);
}

void TelemetryDecoderTest::labelNamesFrameAndTime() {
    TelemetryRoom room;
    room.Decode("XQ9ZZ", "T#123,10,20,30,40,0,0,00000000,0");
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::LabelA), QStringLiteral("T#123  2002-Mar-05 14:07"));
    room.Decode("XQ9ZZ", "\x80,10,20,30,40,0,0,00000000,0");
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::LabelA), QStringLiteral("€  2002-Mar-05 14:07"));
}

void TelemetryDecoderTest::laterFrameReplacesEarlierValue() {
    TelemetryRoom room;
    room.Decode("XQ9ZZ", "T#1,10,20,30,40,0,0,00000000,0");
    room.clock.Advance(60);
    room.Decode("XQ9ZZ", "T#2,11,20,30,40,0,0,00000000,0");
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::ValueA), QStringLiteral("1011"));
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::LabelA), QStringLiteral("T#2  2002-Mar-05 14:08"));
    QCOMPARE(room.FilledCells(), 8);
}

void TelemetryDecoderTest::aFailingChannelDoesNotStopTheOthers() {
    TelemetryRoom room;
    QCOMPARE(room.Store({"A", "0", "CURRENT", "X+", "1e300", "0", "0", "0"}), FormulaTable::Store::Done);
    room.Decode("XQ9ZZ", "T#1,1000,20,30,40,0,0,00000000,0");
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::ValueA), QString());
    QCOMPARE(room.Cell(1, "Z+", TelemetryGrid::ValueA), QStringLiteral("1020"));
    QCOMPARE(room.FilledCells(), 6);
}

void TelemetryDecoderTest::aFailingChannelKeepsItsCells() {
    TelemetryRoom room;
    room.Decode("XQ9ZZ", "T#1,10,20,30,40,0,0,00000000,0");
    room.Decode("XQ9ZZ", "T#2," + QByteArray(400, '9') + ",20,30,40,0,0,00000000,0");
    QCOMPARE(room.Cell(1, "X+", TelemetryGrid::ValueA), QStringLiteral("1010"));
    QVERIFY(room.Cell(1, "X+", TelemetryGrid::LabelA).startsWith(u"T#1 "));
    QVERIFY(room.Cell(1, "Z+", TelemetryGrid::LabelA).startsWith(u"T#2 "));
}

void TelemetryDecoderTest::channelsWithoutFormulaStayUndisplayed() {
    TelemetryRoom room;
    room.formulae = FormulaTable();
    room.Decode("XQ9ZZ", "T#1,10,20,30,40,0,0,00000000,0");
    QCOMPARE(room.FilledCells(), 0);
    QCOMPARE(room.Store({"B", "1", "TEMP", "Xmtr", "0", "0", "1", "0"}), FormulaTable::Store::Done);
    room.Decode("XQ9ZZ", "T#1,10,20,30,40,0,0,00000000,0"); // rows there now, and empty
    QCOMPARE(room.FilledCells(), 0);
}

void TelemetryDecoderTest::thereAreNoReadingsOutsideTheMap() {
    const TelemetryRoom room;
    QVERIFY(room.decoder.ReadChannel({.side = 1, .frameType = 3}, 3));
    QVERIFY(!room.decoder.ReadChannel({.side = 2, .frameType = 0}, 0));
    QVERIFY(!room.decoder.ReadChannel({.side = 0, .frameType = 4}, 0));
    QVERIFY(!room.decoder.ReadChannel({.side = 0, .frameType = 0}, 4));
}

void TelemetryDecoderTest::aLineIsHandedOnWithItsReadings() {
    TelemetryRoom room;
    std::vector<TelemetryFrame> frames;
    room.decoder.Decoded().Add([&](const TelemetryFrame& frame) { frames.push_back(frame); });
    const QByteArray line = "T#024,168,1.5,x,-4,0,0,00111111,0";
    room.Decode("QIRAN-3", line);
    QCOMPARE(frames.size(), 1U);
    QCOMPARE(frames[0].utc, room.clock.Milliseconds());
    QCOMPARE(frames[0].side, 1);
    QCOMPARE(frames[0].frameType, 3);
    QCOMPARE(frames[0].fields[7], QByteArrayView("00111111"));
    QCOMPARE(frames[0].Readings().size(), 4U);
    const Reading& second = frames[0].Readings()[1];
    QCOMPARE(second.source, QByteArrayView("QIRAN-3"));
    QCOMPARE(second.sequence, QByteArrayView("T#024"));
    QCOMPARE(second.channel, 1);
    QCOMPARE(second.grid, 0);
    QCOMPARE(second.row, 2);
    QCOMPARE(second.raw, 1.5);
    QCOMPARE(second.value, std::optional(14001.5));
    // A type that the map does not know has no readings, and the line is handed on all the same.
    room.Decode("QIRAN-3", "T#025,1,2,3,4,0,0,00901111,0");
    QCOMPARE(frames.size(), 2U);
    QVERIFY(frames[1].Readings().empty());
}

void TelemetryDecoderTest::aChannelWithoutFormulaIsReadRaw() {
    TelemetryRoom room;
    room.formulae = FormulaTable();
    const std::optional<Reading> reading = room.decoder.ReadChannel({.fields = {"", "12"}}, 0);
    QVERIFY(reading);
    QCOMPARE(reading->raw, 12.0);
    QVERIFY(!reading->value);
}

void TelemetryDecoderTest::replayedFramesAreDecodedForThoseWhoTakeThem() {
    TelemetryRoom room;
    int all = 0;
    room.decoder.Decoded().Add([&](const TelemetryFrame&) { ++all; },
                               FanOut<TelemetryFrame>::Takes::LiveAndReplayed);
    HeardFrame frame{.utc = 1, .origin = HeardFrame::Origin::Replayed, .source = "XQ9ZZ"};
    frame.information = "T#1,10,20,30,40,0,0,00000000,0";
    room.decoder.Take(frame);
    QCOMPARE(all, 1);
    QCOMPARE(room.FilledCells(), 0); // the grids show what is heard now
}

void TelemetryDecoderTest::onlyUiFramesAreDecoded() {
    TelemetryRoom room;
    for (const auto kind :
         {HeardFrame::Kind::I, HeardFrame::Kind::S, HeardFrame::Kind::T, HeardFrame::Kind::U}) {
        HeardFrame frame{.kind = kind, .source = "XQ9ZZ"};
        frame.information = "T#1,10,20,30,40,0,0,00000000,0\rmore";
        room.decoder.Take(frame);
        QCOMPARE(room.FilledCells() > 0, kind == HeardFrame::Kind::U);
    }
}

QTEST_GUILESS_MAIN(TelemetryDecoderTest)
#include "TelemetryDecoderTest.moc"
