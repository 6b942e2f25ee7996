#include "foundation/files/Csv.h"

#include <QTest>

using LineEnds = Csv::Reader::LineEnds;

namespace {

QStringList Texts(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

} // namespace

class CsvTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fieldsAreQuotedWhereTheyMustBe_data();
    void fieldsAreQuotedWhereTheyMustBe();
    void aLineIsItsFieldsAndALineFeed();
    void recordsAreReadAsTheyWereMeant_data();
    void recordsAreReadAsTheyWereMeant();
    void aRecordThatIsDamagedIsRefused_data();
    void aRecordThatIsDamagedIsRefused();
    void aDamagedRecordCostsItsFirstLineOnly_data();
    void aDamagedRecordCostsItsFirstLineOnly();
    void whereLineEndsEndRecordsAQuoteDoesNotReachFurther();
    void linesAreCountedThroughQuotes();
    void aRecordAsLongAsAllowedIsReadAndALongerOneIsNot();
    void manyQuotesThatAreNotClosedTakeNoLongTime();

private:
    static QStringList Read(std::string_view text, LineEnds lineEnds = LineEnds::MayStandInQuotes) {
        QStringList records;
        Csv::Reader reader(text, lineEnds);
        while (reader.Next()) {
            QStringList fields;
            for (const std::string_view field : reader.Fields())
                fields.append(QString::fromUtf8(field.data(), static_cast<qsizetype>(field.size())));
            records.append(reader.IsSound() ? fields.join(u'|') : QStringLiteral("damaged"));
        }
        return records;
    }
};

void CsvTest::fieldsAreQuotedWhereTheyMustBe_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char* field, const char* written) {
        QTest::newRow(field) << QByteArray(field) << QByteArray(written);
    };
    row("", "");
    row("T#024", "T#024");
    row(" blanks ", " blanks ");
    row("a,b", "\"a,b\"");
    row("\"", "\"\"\"\"");
    row("a\"b", "\"a\"\"b\"");
    row("a\nb", "\"a\nb\"");
    row("a\r", "\"a\r\"");
    row("\xC3\xA4;'\t", "\xC3\xA4;'\t");
}

void CsvTest::fieldsAreQuotedWhereTheyMustBe() {
    QFETCH(const QByteArray, field);
    QFETCH(const QByteArray, written);
    QByteArray line;
    Csv::AppendField(line, field);
    QCOMPARE(line, written);
    Csv::Record record;
    QVERIFY(record.Split(line.toStdString()));
    QCOMPARE(record.Fields().size(), 1U);
    const std::string kept = line.toStdString();
    QVERIFY(record.Split(kept));
    QCOMPARE(QByteArray(record.Fields()[0].data(), static_cast<qsizetype>(record.Fields()[0].size())), field);
}

void CsvTest::aLineIsItsFieldsAndALineFeed() {
    QCOMPARE(Csv::Line({"a", "", "b,c"}), "a,,\"b,c\"\n");
    QCOMPARE(Csv::Line({"", ""}), ",\n");
    QCOMPARE(Csv::Line({""}), "\n");
}

void CsvTest::recordsAreReadAsTheyWereMeant_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("records");
    const auto row = [](const char* name, const char* text, std::initializer_list<const char*> records) {
        QTest::newRow(name) << QByteArray(text) << Texts(records);
    };
    row("nothing", "", {});
    row("line feeds", "a,b\nc,d\n", {"a|b", "c|d"});
    row("carriage returns", "a,b\r\nc,d\r\n", {"a|b", "c|d"});
    row("no end", "a,b\nc,d", {"a|b", "c|d"});
    row("empty lines", "\n\r\na\n\n", {"a"});
    row("empty fields", ",\n,,\n", {"|", "||"});
    row("blanks stay", " a , b \n", {" a | b "});
    row("comma in quotes", "\"a,b\",c\n", {"a,b|c"});
    row("doubled quotes", "\"a\"\"b\",\"\"\"\",\"\"\n", {"a\"b|\"|"});
    row("line ends in quotes", "\"a\nb\r\nc\",d\ne\n", {"a\nb\r\nc|d", "e"});
    row("quote inside", "a\"b,c\"\n", {"a\"b|c\""});
    row("last field in quotes", "a,\"b\"", {"a|b"});
    row("byte 0 and high ones", "\xFF,\x01\n", {"\xEF\xBF\xBD|\x01"});
}

void CsvTest::recordsAreReadAsTheyWereMeant() {
    QFETCH(const QByteArray, text);
    QFETCH(const QStringList, records);
    QCOMPARE(Read(text.toStdString()), records);
}

void CsvTest::aRecordThatIsDamagedIsRefused_data() {
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"\"a", "\"", "a,\"b", "\"a\"b", "\"a\" ,b", "\"a\"\"", "a,\"\"\""})
        QTest::newRow(text) << QByteArray(text);
    QTest::newRow("one field too many") << QByteArray(Csv::Record::mostFields, ',');
}

void CsvTest::aRecordThatIsDamagedIsRefused() {
    QFETCH(const QByteArray, text);
    Csv::Record record;
    QVERIFY(!record.Split(text.toStdString()));
    QCOMPARE(Read(text.toStdString()), Texts({"damaged"}));
    const std::string allowed(Csv::Record::mostFields - 1, ',');
    QVERIFY(record.Split(allowed));
    QCOMPARE(record.Fields().size(), Csv::Record::mostFields);
}

void CsvTest::aDamagedRecordCostsItsFirstLineOnly_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("records");
    QTest::newRow("torn in a quote") << QByteArray("1,\"to\n2,b\n3,c\n") << Texts({"damaged", "2|b", "3|c"});
    QTest::newRow("and a quote later")
        << QByteArray("1,\"to\n2,b\n3,\"c\nd\"\n") << Texts({"damaged", "2|b", "3|c\nd"});
    QTest::newRow("and many") << QByteArray("1,\"to\n\"2\",b\n\"3\",c\n") << Texts({"damaged", "2|b", "3|c"});
}

void CsvTest::aDamagedRecordCostsItsFirstLineOnly() {
    QFETCH(const QByteArray, text);
    QFETCH(const QStringList, records);
    QCOMPARE(Read(text.toStdString()), records);
}

void CsvTest::whereLineEndsEndRecordsAQuoteDoesNotReachFurther() {
    QCOMPARE(Read("1,\"to\n2,b,\"\"\r\n\"3\n4,\"\"\"\"\n", LineEnds::EndRecords),
             Texts({"damaged", "2|b|", "damaged", "4|\""}));
    QCOMPARE(Read("1,\"torn\n2\",b\n", LineEnds::EndRecords), Texts({"damaged", "2\"|b"}));
}

void CsvTest::linesAreCountedThroughQuotes() {
    Csv::Reader reader("a\n\n\"b\nc\"\n\"torn\nd\n");
    QList<std::size_t> numbers;
    while (reader.Next())
        numbers.append(reader.LineNumber());
    QCOMPARE(numbers, (QList<std::size_t>{1, 3, 5, 6}));
}

void CsvTest::aRecordAsLongAsAllowedIsReadAndALongerOneIsNot() {
    const std::string allowed(Csv::Reader::longestRecord, 'x');
    for (const LineEnds lineEnds : {LineEnds::EndRecords, LineEnds::MayStandInQuotes}) {
        QCOMPARE(Read(allowed + "\nnext\n", lineEnds), Texts({allowed.c_str(), "next"}));
        QCOMPARE(Read(allowed + "y\nnext\n", lineEnds), Texts({"damaged", "next"}));
        QCOMPARE(Read(std::string(1024 * 1024, 'z') + "\nnext\n", lineEnds), Texts({"damaged", "next"}));
    }
}

void CsvTest::manyQuotesThatAreNotClosedTakeNoLongTime() {
    std::string text = "\"\n";
    for (int i = 0; i < 100'000; ++i)
        text += "x,\"y\"\"z\n";
    QCOMPARE(Read(text).size(), 100'001);
}

QTEST_GUILESS_MAIN(CsvTest)
#include "CsvTest.moc"
