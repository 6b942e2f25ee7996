#include "cli/commands/FrameRecords.h"
#include "cli/output/RecordWriter.h"
#include "cli/output/Records.h"
#include "orbit/service/PassRecords.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/HeardFrame.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QTest>

#include <limits>

class RecordTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void jsonHasTheTypeFirstAndTheFieldsInOrder();
    void fieldsWithoutAValueAreAbsentInJsonAndEmptyInCsv();
    void jsonEscapesWhatItMust();
    void csvQuotesWhatItMust_data();
    void csvQuotesWhatItMust();
    void numbersHaveTheirDecimalsAndAPointInEveryLocale();
    void aListIsAnArrayInJsonAndOneCellInCsv();
    void namesOfFieldsAreTheContract();
    void aFrameWithoutItsEnginesTextIsToldByItsBytes();
};

namespace {

const RecordType sample{"sample",
                        u"",
                        {{"text", Column::Kind::Text, 0, 0, u""},
                         {"whole", Column::Kind::Whole, 0, 0, u""},
                         {"number", Column::Kind::Decimal, 2, 0, u""},
                         {"exact", Column::Kind::Decimal, -1, 0, u""},
                         {"when", Column::Kind::Moment, 0, 0, u""},
                         {"list", Column::Kind::List, 0, 0, u""}}};

Record Whole() {
    return {QStringLiteral("a"),
            qint64{24},
            57.204,
            7.61,
            qint64{1795274923120},
            QStringList{QStringLiteral("X*")}};
}

Record Empty() {
    return {FieldValue(), FieldValue(), FieldValue(), FieldValue(), FieldValue(), FieldValue()};
}

QByteArray Names(const RecordType& type) {
    return RecordText::CsvHead(type);
}

} // namespace

void RecordTextTest::jsonHasTheTypeFirstAndTheFieldsInOrder() {
    QCOMPARE(RecordText::Json(sample, Whole()),
             QByteArray(R"({"type":"sample","text":"a","whole":24,"number":57.20,"exact":7.61,)"
                        R"("when":"2026-11-21T15:28:43.120Z","list":["X*"]})"));
}

void RecordTextTest::fieldsWithoutAValueAreAbsentInJsonAndEmptyInCsv() {
    QCOMPARE(RecordText::Json(sample, Empty()), QByteArray(R"({"type":"sample"})"));
    QCOMPARE(RecordText::Csv(sample, Empty()), QByteArray(",,,,,"));
    Record notANumber = Empty();
    notANumber[2] = std::numeric_limits<double>::quiet_NaN();
    notANumber[3] = std::numeric_limits<double>::infinity();
    QCOMPARE(RecordText::Json(sample, notANumber), QByteArray(R"({"type":"sample"})"));
}

void RecordTextTest::jsonEscapesWhatItMust() {
    QString all;
    for (char16_t c = 0; c < 0x180; ++c)
        all += QChar(c);
    all += QStringLiteral("\u20ac\U0001F6F0 \\n \"");
    const QByteArray json = R"({"text":)" + RecordText::JsonString(all) + '}';
    QJsonParseError error{};
    const QJsonObject object = QJsonDocument::fromJson(json, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(object.value(QStringLiteral("text")).toString(), all);
    QVERIFY(!json.contains('\n'));
}

void RecordTextTest::csvQuotesWhatItMust_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("cell");
    QTest::newRow("plain") << QStringLiteral("a b;c") << QByteArray("a b;c");
    QTest::newRow("a comma") << QStringLiteral("a,b") << QByteArray("\"a,b\"");
    QTest::newRow("quotes") << QStringLiteral("a \"b\"") << QByteArray("\"a \"\"b\"\"\"");
    QTest::newRow("CR") << QStringLiteral("a\rb") << QByteArray("\"a\rb\"");
    QTest::newRow("LF") << QStringLiteral("a\nb") << QByteArray("\"a\nb\"");
}

void RecordTextTest::csvQuotesWhatItMust() {
    QFETCH(const QString, text);
    QFETCH(const QByteArray, cell);
    Record record = Empty();
    record[0] = text;
    QCOMPARE(RecordText::Csv(sample, record), cell + ",,,,,");
}

void RecordTextTest::numbersHaveTheirDecimalsAndAPointInEveryLocale() {
    QLocale::setDefault(QLocale(QLocale::Finnish));
    Record record = Empty();
    record[1] = qint64{-1234567};
    record[2] = -0.0049;
    record[3] = 1e-7;
    const QByteArray csv = RecordText::Csv(sample, record);
    QLocale::setDefault(QLocale::c());
    QCOMPARE(csv, QByteArray(",-1234567,0.00,1e-07,,"));
}

void RecordTextTest::aListIsAnArrayInJsonAndOneCellInCsv() {
    Record record = Empty();
    record[5] = QStringList{QStringLiteral("QIRAN-1*"), QStringLiteral("WIDE2-2")};
    QCOMPARE(RecordText::Json(sample, record),
             QByteArray(R"({"type":"sample","list":["QIRAN-1*","WIDE2-2"]})"));
    QCOMPARE(RecordText::Csv(sample, record), QByteArray(",,,,,\"QIRAN-1*,WIDE2-2\""));
}

void RecordTextTest::namesOfFieldsAreTheContract() {
    QCOMPARE(Names(PassRecords::type),
             QByteArray("satellite,number,rise,culmination,set,rise_azimuth,set_azimuth,"
                        "max_elevation,duration_s"));
    QCOMPARE(Names(Records::position),
             QByteArray("utc,satellite,number,latitude,longitude,altitude_km,azimuth,elevation,range_km,"
                        "range_rate_km_s,doppler_hz,due"));
    QCOMPARE(Names(Records::elements), QByteArray("file,format,number,name,epoch,age_days"));
    QCOMPARE(Names(Records::setting), QByteArray("section,key,value,default"));
}

void RecordTextTest::aFrameWithoutItsEnginesTextIsToldByItsBytes() {
    const std::string raw =
        Ax25Frame{.destination = {"CQ"}, .source = {"A1"}, .information = "hello"}.ToBytes().value();
    HeardFrame frame{.source = "A1", .destination = "CQ"};
    frame.raw = {raw.data(), static_cast<qsizetype>(raw.size())};
    QCOMPARE(RecordText::Json(Records::frame, RecordOf(frame)),
             QByteArray(R"({"type":"frame","port":1,"kind":"U","source":"A1","destination":"CQ",)"
                        R"("text":"hello","hex":"68656C6C6F"})"));
    // What its engine shows of it stays the text.
    frame.engineText = " 1:Fm A1 To CQ <UI >\rhell\r";
    frame.information = "hell";
    QCOMPARE(RecordText::Json(Records::frame, RecordOf(frame)),
             QByteArray(R"({"type":"frame","port":1,"kind":"U","source":"A1","destination":"CQ",)"
                        R"("text":"hell","hex":"68656C6C6F"})"));
}

QTEST_GUILESS_MAIN(RecordTextTest)
#include "RecordTextTest.moc"
