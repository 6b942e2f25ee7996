#include "station/identity/FieldRules.h"

#include <QRandomGenerator>
#include <QTest>

class FieldRulesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void charactersAreRaisedKeptOrRefused();
    void callsignsMayBeEmptyButNotLowerCase();
    void aViaPathIsNormalised_data();
    void aViaPathIsNormalised();
    void normalisingTwiceChangesNothing();
    void aPathOfMillionsOfPiecesIsNormalised();
    void thePortIsHeldAgainstTheEngines_data();
    void thePortIsHeldAgainstTheEngines();
};

void FieldRulesTest::charactersAreRaisedKeptOrRefused() {
    using Rule = std::optional<QChar> (*)(QChar);
    const auto kept = [](Rule rule) {
        QString characters;
        for (int code = 0; code <= 0xFFFF; ++code)
            if (const auto character = rule(QChar(code)))
                characters += *character;
        return characters;
    };
    const QString digits = QStringLiteral("0123456789");
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    QCOMPARE(kept(FieldRules::PositionCharacter), QStringLiteral(" .") + digits + letters + letters);
    QCOMPARE(kept(FieldRules::ViaCharacter), QStringLiteral(" ,-") + digits + letters + letters);
}

void FieldRulesTest::callsignsMayBeEmptyButNotLowerCase() {
    QVERIFY(FieldRules::IsCallsignOrEmpty(u""));
    QVERIFY(FieldRules::IsCallsignOrEmpty(u"XQ9ZZ-15"));
    QVERIFY(!FieldRules::IsCallsignOrEmpty(u"xq9zz"));
    QVERIFY(!FieldRules::IsCallsignOrEmpty(u"XQ9ZZ-16"));
    QVERIFY(!FieldRules::IsCallsignOrEmpty(u" "));
}

void FieldRulesTest::aViaPathIsNormalised_data() {
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("wrong");
    QTest::newRow("empty") << ""
                           << ""
                           << "";
    QTest::newRow("blanks") << "   "
                            << ""
                            << "";
    QTest::newRow("only commas") << ",,,,"
                                 << ""
                                 << "";
    QTest::newRow("commas and blanks") << " , ,, "
                                       << ""
                                       << "";
    QTest::newRow("one") << "QIRAN-1"
                         << "QIRAN-1"
                         << "";
    QTest::newRow("mixed") << "  QIRAN-1   WIDE2-2,,RELAY"
                           << "QIRAN-1,WIDE2-2,RELAY"
                           << "";
    QTest::newRow("comma at the ends") << ",A,B,"
                                       << "A,B"
                                       << "";
    QTest::newRow("eight") << "A1 A2 A3 A4 A5 A6 A7 A8"
                           << "A1,A2,A3,A4,A5,A6,A7,A8"
                           << "";
    QTest::newRow("nine, with SSIDs")
        << "ABCDEF-15,ABCDEF-14,ABCDEF-13,ABCDEF-12,ABCDEF-11,ABCDEF-10,ABCDEF-9,ABCDEF-8,ABCDEF-7"
        << "ABCDEF-15,ABCDEF-14,ABCDEF-13,ABCDEF-12,ABCDEF-11,ABCDEF-10,ABCDEF-9,ABCDEF-8,ABCDEF-7"
        << "";
    QTest::newRow("lower case") << "QIRAN-1,relay"
                                << ""
                                << "relay";
    QTest::newRow("first wrong one") << "A,TOOLONG1,WIDE2-99"
                                     << ""
                                     << "TOOLONG1";
    QTest::newRow("tab") << "A\tB"
                         << ""
                         << "A\tB";
}

void FieldRulesTest::aViaPathIsNormalised() {
    QFETCH(const QString, entry);
    const FieldRules::ViaPath via = FieldRules::NormaliseVia(entry);
    QTEST(via.path, "path");
    QTEST(via.wrong, "wrong");
}

void FieldRulesTest::normalisingTwiceChangesNothing() {
    QRandomGenerator random(61);
    const QString alphabet = QStringLiteral("  ,,,AB1-");
    int valid = 0;
    for (int run = 0; run < 20000; ++run) {
        QString entry;
        for (int i = random.bounded(14); i > 0; --i)
            entry += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
        const FieldRules::ViaPath once = FieldRules::NormaliseVia(entry);
        if (!once.wrong.isEmpty())
            continue;
        ++valid;
        const FieldRules::ViaPath twice = FieldRules::NormaliseVia(once.path);
        QCOMPARE(twice.path, once.path);
        QCOMPARE(twice.wrong, QString());
    }
    QVERIFY(valid > 1000);
}

void FieldRulesTest::aPathOfMillionsOfPiecesIsNormalised() {
    QCOMPARE(FieldRules::NormaliseVia(QString(4'000'000, u' ')).path, QString());
    QCOMPARE(FieldRules::NormaliseVia(QStringLiteral(", ").repeated(2'000'000)).path, QString());
    QCOMPARE(FieldRules::NormaliseVia(QStringLiteral("A ").repeated(1'000'000)).path.size(), 1'999'999);
}

void FieldRulesTest::thePortIsHeldAgainstTheEngines_data() {
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("portCount");
    QTest::addColumn<bool>("available");
    QTest::addColumn<int>("port"); // 99999: none
    QTest::newRow("empty") << "" << 2 << true << 1;
    QTest::newRow("0") << "0" << 2 << true << 1;
    QTest::newRow("1") << "1" << 1 << true << 1;
    QTest::newRow("3 of 2") << "3" << 2 << false << 3;
    QTest::newRow("3 of 3") << "3" << 3 << true << 3;
    QTest::newRow("2 of unknown") << "2" << 0 << true << 2;
    QTest::newRow("3 of unknown") << "3" << 0 << false << 3;
    QTest::newRow("65536") << "65536" << 2 << false << 99999;
    QTest::newRow("-1") << "-1" << 2 << true << -1;
    QTest::newRow("1.5 of 1") << "1.5" << 1 << false << 2;
    QTest::newRow("1.5 of 2") << "1.5" << 2 << true << 2;
    QTest::newRow("2.5 of 2") << "2.5" << 2 << false << 2;
    QTest::newRow("2.5 of 3") << "2.5" << 3 << true << 2;
    QTest::newRow("0.5") << "0.5" << 2 << true << 1;
    QTest::newRow("no number") << "x" << 2 << true << 1;
}

void FieldRulesTest::thePortIsHeldAgainstTheEngines() {
    QFETCH(const QString, entry);
    QFETCH(const int, portCount);
    QFETCH(const int, port);
    QTEST(FieldRules::IsPortAvailable(entry, portCount), "available");
    const std::optional<qint16> answer = FieldRules::PortOf(entry);
    QCOMPARE(answer ? *answer : 99999, port);
    QCOMPARE(FieldRules::PortMessage(2), QStringLiteral("The highest available port is 2."));
    QCOMPARE(FieldRules::PortMessage(0), QStringLiteral("The highest available port is 2."));
}

QTEST_GUILESS_MAIN(FieldRulesTest)
#include "FieldRulesTest.moc"
