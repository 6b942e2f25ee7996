#include "foundation/text/Text.h"

#include <QLocale>
#include <QTest>

#include <cfenv>
#include <clocale>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

class TextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void leadingNumber_data();
    void leadingNumber();
    void leadingNumberIsTheSameInEveryLocale();
    void leadingNumberOfALongTextIsQuick();
    void roundingToSixteenBitsIsHalfToEven_data();
    void roundingToSixteenBitsIsHalfToEven();
    void everyByteSurvivesTheRoundTrip();
    void everyCharacterOfTheCodePageSurvivesTheRoundTrip();
    void whatTheCodePageLacksIsAQuestionMark();
    void generalNumber_data();
    void generalNumber();
    void aStrangersTextIsOneLineThatCanBeSeen();
};

void TextTest::leadingNumber_data() {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("plain");
    QTest::addColumn<double>("withExponent");
    const auto row = [](const QByteArray& text, double plain, double withExponent) {
        QTest::newRow(text.isEmpty() ? "empty" : text.left(40).constData()) << text << plain << withExponent;
    };
    row("", 0, 0);
    row("+5", 5, 5);
    row("-5", -5, -5);
    row(".5", .5, .5);
    row("5.", 5, 5);
    row("-.5x", -.5, -.5);
    row(".", 0, 0);
    row("-", 0, 0);
    row("+-5", 0, 0);
    row(" 7", 7, 7);
    row("\t 7 8", 7, 7);
    row("1e400", 1, infinite);
    row("-1e400", -1, -infinite);
    row("1e-400", 1, 0);
    row("0e400", 0, 0);
    row("1.5E-3", 1.5, .0015);
    row("1.5e+3x", 1.5, 1500);
    row("1e", 1, 1);
    row("1e+", 1, 1);
    row("1ex", 1, 1);
    row("e5", 0, 0);
    row("nan", 0, 0);
    row("inf", 0, 0);
    row("0x10", 0, 0);
    row("12,5", 12, 12);
    row("1 000", 1, 1);
    row("1.2.3", 1.2, 1.2);
    row("59.11N", 59.11, 59.11);
    row("abc", 0, 0);
    row("\n5", 0, 0);
    row("007", 7, 7);
    row(QByteArray(400, '9'), infinite, infinite);
    row('1' + QByteArray(400, '0') + "E-10", infinite, infinite);
    row("0." + QByteArray(400, '0') + "1E5", 0, 0);
    row('1' + QByteArray(400, '0') + "E-400", infinite, 1);
    row("1E99999999999999999999", 1, infinite);
    row("1E-99999999999999999999", 1, 0);
}

void TextTest::leadingNumber() {
    QFETCH(QByteArray, text);
    QFETCH(double, plain);
    QFETCH(double, withExponent);
    QCOMPARE(Text::LeadingNumber(text.toStdString()), plain);
    QCOMPARE(Text::LeadingNumber(text.toStdString(), Text::Exponent::Yes), withExponent);
    QCOMPARE(Text::LeadingNumber(QString::fromLatin1(text)), plain);
    QCOMPARE(Text::LeadingNumber(QString::fromLatin1(text), Text::Exponent::Yes), withExponent);
    QCOMPARE(Text::LeadingNumber(QString::fromLatin1(text) + u"é"_s), plain);
}

void TextTest::leadingNumberIsTheSameInEveryLocale() {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // where it is installed
    QCOMPARE(Text::LeadingNumber(u"1.5"_s), 1.5);
    QCOMPARE(Text::LeadingNumber(u"1,5"_s), 1.0);
    QCOMPARE(Text::LeadingNumber(u"٣"_s), 0.0); // digits of another script are none
    QCOMPARE(Text::GeneralNumber(1.5), u"1.5"_s);
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(before);
}

void TextTest::leadingNumberOfALongTextIsQuick() {
    QCOMPARE(Text::LeadingNumber("0." + std::string(1 << 20, '3')), 1.0 / 3.0);
}

void TextTest::roundingToSixteenBitsIsHalfToEven_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("rounded"); // 99999: a fault
    const auto row = [](double value, int rounded) {
        QTest::newRow(qPrintable(QString::number(value, 'g', 17))) << value << rounded;
    };
    row(0.5, 0);
    row(1.5, 2);
    row(2.5, 2);
    row(-0.5, 0);
    row(-1.5, -2);
    row(2.4999999, 2);
    row(32767.4, 32767);
    row(32767.5, 99999);
    row(-32768.5, -32768);
    row(-32768.6, 99999);
    row(1e300, 99999);
    row(std::nan(""), 99999);
    row(-std::numeric_limits<double>::infinity(), 99999);
}

void TextTest::roundingToSixteenBitsIsHalfToEven() {
    QFETCH(double, value);
    QFETCH(int, rounded);
    const std::optional<qint16> answer = Text::RoundToInt16(value);
    QCOMPARE(answer ? int(*answer) : 99999, rounded);
}

void TextTest::everyByteSurvivesTheRoundTrip() {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    QCOMPARE(Text::FromBytes(bytes).size(), 256);
    QCOMPARE(Text::ToBytes(Text::FromBytes(bytes)), bytes);
}

void TextTest::everyCharacterOfTheCodePageSurvivesTheRoundTrip() {
    const QString text = u"€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ ÿ"_s;
    QCOMPARE(Text::FromBytes(Text::ToBytes(text)), text);
    QCOMPARE(Text::ToBytes(u"€Ÿé"), "\x80\x9F\xE9");
}

void TextTest::whatTheCodePageLacksIsAQuestionMark() {
    QCOMPARE(Text::ToBytes(u"a漢b"), "a?b");
    QCOMPARE(Text::ToBytes(u"😀"), "?");                           // one character, one mark
    QCOMPARE(Text::ToBytes(QString(QChar(0xD83D)) + u'x'), "?x"); // half a character
    QCOMPARE(Text::ToBytes(u"e\u0301"), "e?");
}

void TextTest::generalNumber_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const QString& text) {
        QTest::newRow(qPrintable(text)) << value << text;
    };
    row(0, u"0"_s);
    row(-0.0, u"0"_s);
    row(3.5, u"3.5"_s);
    row(-20, u"-20"_s);
    row(0.1 + 0.2, u"0.3"_s);
    row(1.0 / 3.0, u"0.333333333333333"_s);
    row(123456789012345.0, u"123456789012345"_s);
    row(1e15, u"1E+15"_s);
    row(1.5e-7, u"1.5E-07"_s);
}

void TextTest::generalNumber() {
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(Text::GeneralNumber(value), text);
}

void TextTest::aStrangersTextIsOneLineThatCanBeSeen() {
    QCOMPARE(Text::OneLine(u" a\t\r\n b\u001B[2Jc\u202Ed \U0001F6F0 "_s, 200), u"a b?[2Jc?d \U0001F6F0"_s);
    QCOMPARE(Text::OneLine(QString(300, u'x'), 200), QString(200, u'x'));
    QCOMPARE(Text::OneLine({}, 200), QString());
}

QTEST_GUILESS_MAIN(TextTest)
#include "TextTest.moc"
