#include "orbit/FakeLibrary.h"
#include "orbit/service/PassList.h"
#include "orbit/service/clsSats.h"
#include "support/TestClock.h"

#include <QTest>

#include <cmath>

namespace {

const QString object = QStringLiteral("90417");

const QString head = QStringLiteral("\r\n\r\n      Start Time       Duration  Start Az  End Az  Max Elev\r\n"
                                    "      ----------       --------  --------  ------  --------\r\n");
const QString utcHead = QStringLiteral("'Start Time' is UTC.") + head;
const QString localHead = QStringLiteral("'Start Time' is local time.") + head;

struct Fixture {
    TestClock clock{DateOf(2026, 11, 21) + 0.5};
    FakeLibrary* library = new FakeLibrary;
    clsSats sats{std::unique_ptr<OrbitLibrary>(library), clock};

    // The azimuth is `start` until `change`, and `end` from then on.
    void Azimuths(double start, double end, DateTime change = 1e9) {
        library->position = [=](const std::string&, double utc) {
            return LibraryPosition{.azimuth = (utc < change ? start : end) * radian};
        };
    }
    QString Body() const {
        const QString table = sats.strPassInfo(object);
        return table.startsWith(utcHead) ? table.sliced(utcHead.size())
                                         : QStringLiteral("no table: ") + table;
    }
};

} // namespace

class PassTableTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void noPassesGiveTheHeadAlone();
    void passesAreAskedForFromThisVerySecond();
    void aPassIsOneLine();
    void valuesStandUnderTheirHeadings();
    void azimuthsAreThoseOfTheUtcEnds();
    void numbersRoundHalfToEven_data();
    void numbersRoundHalfToEven();
    void daysAreBlocks();
    void theDayIsTheDisplayedOne();
    void theTableIsTheSameInEveryLocale_data();
    void theTableIsTheSameInEveryLocale();
    void aDurationBeyondADayShowsItsTimeOfDay();
    void aFailureGivesAnEmptyText_data();
    void aFailureGivesAnEmptyText();
    void printedTextHasMargins();
};

void PassTableTest::noPassesGiveTheHeadAlone() {
    Fixture f;
    QCOMPARE(f.sats.strPassInfo(object), utcHead);
    f.sats.setBlnLocalTime(true);
    QCOMPARE(f.sats.strPassInfo(object), localHead);
}

void PassTableTest::passesAreAskedForFromThisVerySecond() {
    Fixture f;
    QVERIFY(!f.sats.strPassInfo(object).isEmpty());
    const FakeLibrary::ListCall& call = f.library->listCalls.front();
    QCOMPARE(call.object, std::string("90417"));
    QCOMPARE(call.startUtc, DateOf(2026, 11, 21) + 0.5);
    QCOMPARE(call.passesPerDay, 10);
    QCOMPARE(call.days, 3);
    QCOMPARE(call.reserved1, 0);
    QCOMPARE(call.reserved2, 0);
}

void PassTableTest::aPassIsOneLine() {
    Fixture f;
    f.Azimuths(5, 187, DateOf(2026, 11, 21) + 14.0 / 24);
    f.library->passes = "(20261121135000 1 2 42 754)";
    QCOMPARE(f.Body(), QStringLiteral("2026-Nov-21 13:50:00   00:12:34      5      187       42\r\n"));
}

void PassTableTest::valuesStandUnderTheirHeadings() {
    Fixture f;
    f.Azimuths(5, 187, DateOf(2026, 11, 21) + 14.0 / 24);
    f.library->passes = "(20261121135000 1 2 7 754)";
    const QString line = f.Body();
    QCOMPARE(line.mid(0, 22), QStringLiteral("2026-Nov-21 13:50:00  "));
    QCOMPARE(line.mid(22, 1), QStringLiteral(" "));
    QCOMPARE(line.mid(23, 12), QStringLiteral("00:12:34    "));
    QCOMPARE(line.mid(35, 3), QStringLiteral("  5"));
    QCOMPARE(line.mid(38, 6), QString(6, u' '));
    QCOMPARE(line.mid(44, 3), QStringLiteral("187"));
    QCOMPARE(line.mid(47, 6), QString(6, u' '));
    QCOMPARE(line.mid(53), QStringLiteral("  7\r\n"));
}

void PassTableTest::azimuthsAreThoseOfTheUtcEnds() {
    Fixture f;
    f.clock.SetOffsetHours(9);
    f.sats.setBlnLocalTime(true);
    std::vector<double> asked;
    f.library->position = [&](const std::string&, double utc) {
        asked.push_back(utc);
        return LibraryPosition{};
    };
    f.library->passes = "(20261121180000 1 2 3 3600)";
    QVERIFY(f.sats.strPassInfo(object).contains(QStringLiteral("2026-Nov-22 03:00:00")));
    QCOMPARE(asked.size(), 2U);
    QCOMPARE(asked[0], DateOf(2026, 11, 21) + 18.0 / 24);
    QVERIFY(std::abs(asked[1] - (DateOf(2026, 11, 21) + 19.0 / 24)) < 1e-9);
}

void PassTableTest::numbersRoundHalfToEven_data() {
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<QByteArray>("elevation");
    QTest::addColumn<QString>("columns");
    QTest::newRow("359.5") << 359.5 << QByteArray("0.5") << QStringLiteral("360      360        0");
    QTest::newRow("up") << 4.6 << QByteArray("1.5") << QStringLiteral("  5        5        2");
    QTest::newRow("even") << 90.5 << QByteArray("88.5") << QStringLiteral(" 90       90       88");
    QTest::newRow("more than three characters")
        << 12.0 << QByteArray("-1234") << QStringLiteral(" 12       12      234");
}

void PassTableTest::numbersRoundHalfToEven() {
    QFETCH(double, azimuth);
    QFETCH(QByteArray, elevation);
    QFETCH(QString, columns);
    Fixture f;
    f.Azimuths(azimuth, azimuth);
    f.library->passes = "(20261121180000 1 2 " + elevation.toStdString() + " 60)";
    QCOMPARE(f.Body().mid(35), columns + QStringLiteral("\r\n"));
}

void PassTableTest::daysAreBlocks() {
    Fixture f;
    f.library->passes = "(20261121130000 1 2 3 60),(20261121235959 1 2 3 60),(20261122000000 1 2 3 60),"
                        "(20261124010000 1 2 3 60)";
    const QString columns = QStringLiteral("   00:01:00      0        0        3\r\n");
    QCOMPARE(f.Body(), QStringLiteral("2026-Nov-21 13:00:00") + columns +
                           QStringLiteral("2026-Nov-21 23:59:59") + columns +
                           QStringLiteral("\r\n2026-Nov-22 00:00:00") + columns +
                           QStringLiteral("\r\n2026-Nov-24 01:00:00") + columns);
}

void PassTableTest::theDayIsTheDisplayedOne() {
    Fixture f;
    f.library->passes = "(20261121210000 1 2 3 60),(20261121220000 1 2 3 60),(20261122010000 1 2 3 60)";
    f.clock.SetOffsetHours(2);
    f.sats.setBlnLocalTime(true);
    const QString columns = QStringLiteral("   00:01:00      0        0        3\r\n");
    QCOMPARE(f.sats.strPassInfo(object), localHead + QStringLiteral("2026-Nov-21 23:00:00") + columns +
                                             QStringLiteral("\r\n2026-Nov-22 00:00:00") + columns +
                                             QStringLiteral("2026-Nov-22 03:00:00") + columns);
}

void PassTableTest::theTableIsTheSameInEveryLocale_data() {
    QTest::addColumn<QString>("locale");
    for (const char* name : {"fi", "ca", "vi", "ja", "de", "en_GB"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void PassTableTest::theTableIsTheSameInEveryLocale() {
    QFETCH(QString, locale);
    Fixture f;
    QString expected;
    const QStringList months = QStringLiteral("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec").split(u' ');
    f.library->passes->clear();
    for (int month = 1; month <= 12; ++month) {
        const QString digits = QStringLiteral("%1").arg(month, 2, 10, QChar(u'0'));
        *f.library->passes +=
            (month == 1 ? "(2026" : ",(2026") + digits.toStdString() + "05135007 1 2 42 754)";
        expected += (month == 1 ? QString() : QStringLiteral("\r\n")) +
                    QStringLiteral("2026-%1-05 13:50:07   00:12:34      0        0       42\r\n")
                        .arg(months[month - 1]);
    }
    const QLocale before;
    QLocale::setDefault(QLocale(locale));
    const QString body = f.Body();
    QLocale::setDefault(before);
    QCOMPARE(body, expected);
}

void PassTableTest::aDurationBeyondADayShowsItsTimeOfDay() {
    Fixture f;
    f.library->passes = "(20261121180000 1 2 3 90061)";
    QCOMPARE(f.Body().mid(23, 12), QStringLiteral("01:01:01    "));
}

void PassTableTest::aFailureGivesAnEmptyText_data() {
    QTest::addColumn<QByteArray>("list");
    const QByteArray good = "(20261121180000 1 2 3 60)";
    QTest::newRow("letters") << QByteArray("rubbish");
    QTest::newRow("one character") << QByteArray("(");
    QTest::newRow("a good one before") << good + ",(x)";
    QTest::newRow("an empty item") << good + ",," + good;
    QTest::newRow("a comma alone") << QByteArray(",");
    QTest::newRow("thirteen digits") << QByteArray("(2026112118000 1 2 3 60)");
    QTest::newRow("fifteen digits") << QByteArray("(202611211800000 1 2 3 60)");
    QTest::newRow("month 13") << QByteArray("(20261321180000 1 2 3 60)");
    QTest::newRow("day 0") << QByteArray("(20261100180000 1 2 3 60)");
    QTest::newRow("hour 24") << QByteArray("(20261121240000 1 2 3 60)");
    QTest::newRow("year 0") << QByteArray("(00001121180000 1 2 3 60)");
    QTest::newRow("a field less") << QByteArray("(20261121180000 1 2 3)");
    QTest::newRow("elevation beyond 16 bits") << QByteArray("(20261121180000 1 2 40000 60)");
    QTest::newRow("negative duration") << QByteArray("(20261121180000 1 2 3 -60)");
    QTest::newRow("endless duration") << "(20261121180000 1 2 3 " + QByteArray(400, '9') + ")";
    QTest::newRow("bytes 0 to 255") << [] {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes.append(static_cast<char>(i));
        return bytes;
    }();
}

void PassTableTest::aFailureGivesAnEmptyText() {
    QFETCH(QByteArray, list);
    Fixture f;
    f.library->passes = list.toStdString();
    QCOMPARE(f.sats.strPassInfo(object), QString());
    f.library->passes.reset();
    QCOMPARE(f.sats.strPassInfo(object), QString());
    f.library->passes = "(20261121180000 1 2 3 60)";
    f.library->position = [](const std::string&, double) { return std::nullopt; };
    QCOMPARE(f.sats.strPassInfo(object), QString());
}

void PassTableTest::printedTextHasMargins() {
    QCOMPARE(
        PassList::PrintText(QStringLiteral("ISS Pass Predictions"), QStringLiteral("one\r\n\r\ntwo\r\n")),
        QStringLiteral("\r\n\r\n\r\n      ISS Pass Predictions\r\n      one\r\n      \r\n      two"));
}

QTEST_GUILESS_MAIN(PassTableTest)
#include "PassTableTest.moc"
