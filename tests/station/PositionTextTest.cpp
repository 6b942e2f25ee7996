#include "station/identity/PositionText.h"

#include <QTest>

using PositionText::Axis;
Q_DECLARE_METATYPE(Axis)

class PositionTextTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEntryIsRewrittenOrRefused_data();
    void anEntryIsRewrittenOrRefused();
    void blanksAreAnEntryOnlyWhereAllowed();
    void whatIsRewrittenStaysAsItIs();
    void displayedAndStoredFormsTurnIntoEachOther();
    void aPositionHasALocator_data();
    void aPositionHasALocator();
    void withoutAPositionThereIsNoLocator();
};

void PositionTextTest::anEntryIsRewrittenOrRefused_data() {
    QTest::addColumn<Axis>("axis");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("result"); // null: refused
    const auto latitude = [](const char* entry, const char* result) {
        QTest::addRow("latitude %s", entry)
            << Axis::Latitude << QString::fromLatin1(entry) << QString::fromLatin1(result);
    };
    const auto longitude = [](const char* entry, const char* result) {
        QTest::addRow("longitude %s", entry)
            << Axis::Longitude << QString::fromLatin1(entry) << QString::fromLatin1(result);
    };
    latitude("51.30N", "51.30.00N");
    latitude("51N", "51.00.00N");
    latitude("1.2.3N", "01.02.30N");
    latitude("51.30.5N", "51.30.50N");
    latitude("51.30.05N", "51.30.05N");
    latitude("51.30.00N", "51.30.00N");
    latitude("  51.30.00S  ", "51.30.00S");
    latitude("51.30 N", "51.30.00N");
    latitude("51.N", "51.00.00N");
    latitude("51..N", "51.00.00N");
    latitude(".N", "00.00.00N");
    latitude("51..5N", "51.00.50N");
    latitude("51.30.5 N", "51.30.05N"); // two characters after the point: no tenth
    latitude("51.30.1.7N", "51.30.02N");
    latitude("51.30.12.5N", "51.30.12N"); // half to even
    latitude("51.30.13.5N", "51.30.14N");
    latitude("0N", "00.00.00N");
    latitude("XN", "00.00.00N");
    latitude("90.00.00N", "90.00.00N");
    latitude("90S", "90.00.00S");
    latitude("90.00.01N", nullptr);
    latitude("90.01N", nullptr);
    latitude("91N", nullptr);
    latitude("-1N", nullptr);
    latitude("51.-1N", nullptr);
    latitude("51.30.-5N", nullptr);
    latitude("51.30.00", nullptr);
    latitude("51.30.00n", nullptr);
    latitude("51.30.00E", nullptr);
    latitude("51 30N", nullptr);
    latitude("51 .30N", nullptr);
    latitude("51.60N", nullptr);
    latitude("51.30.100N", nullptr);
    latitude("N", nullptr);
    latitude("99999999999999999999N", nullptr);
    latitude("51.99999999N", nullptr);
    longitude("0.30W", "000.30.00W");
    longitude("7.29.17W", "007.29.17W");
    longitude("180.00.00W", "180.00.00W");
    longitude("180E", "180.00.00E");
    longitude("180.00.01E", nullptr);
    longitude("181W", nullptr);
    longitude("51.30N", nullptr);
    longitude("000.30.00w", nullptr);
}

void PositionTextTest::anEntryIsRewrittenOrRefused() {
    QFETCH(const Axis, axis);
    QFETCH(const QString, entry);
    QFETCH(const QString, result);
    const std::optional<QString> answer = PositionText::ValidateLatLong(entry, axis, true);
    QCOMPARE(answer.has_value(), !result.isNull());
    QCOMPARE(answer.value_or(QString()), result);
}

void PositionTextTest::blanksAreAnEntryOnlyWhereAllowed() {
    QCOMPARE(PositionText::ValidateLatLong(QString(), Axis::Latitude, true), QString());
    QCOMPARE(PositionText::ValidateLatLong(QStringLiteral("  "), Axis::Latitude, true), QStringLiteral("  "));
    QCOMPARE(PositionText::ValidateLatLong(QString(), Axis::Latitude, false), std::nullopt);
    QCOMPARE(PositionText::ToStored(QStringLiteral("   "), Axis::Latitude), QString());
}

void PositionTextTest::whatIsRewrittenStaysAsItIs() {
    for (int degrees = 0; degrees <= 180; ++degrees)
        for (const int minutes : {0, 1, 30, 59})
            for (const int hundredths : {0, 9, 50, 99}) {
                const QString entry = QStringLiteral("%1.%2.%3W").arg(degrees).arg(minutes).arg(hundredths);
                const auto once = PositionText::ValidateLatLong(entry, Axis::Longitude, true);
                if (degrees == 180 && (minutes != 0 || hundredths != 0)) {
                    QVERIFY(!once);
                    continue;
                }
                QVERIFY(once);
                QCOMPARE(PositionText::ValidateLatLong(*once, Axis::Longitude, true), once);
                const QString stored = PositionText::ToStored(*once, Axis::Longitude);
                QCOMPARE(stored.size(), 9);
                QCOMPARE(PositionText::ToDisplayed(stored, Axis::Longitude), *once);
            }
}

void PositionTextTest::displayedAndStoredFormsTurnIntoEachOther() {
    QCOMPARE(PositionText::ToDisplayed(QStringLiteral("5130.00N"), Axis::Latitude),
             QStringLiteral("51.30.00N"));
    QCOMPARE(PositionText::ToDisplayed(QStringLiteral("00030.00W"), Axis::Longitude),
             QStringLiteral("000.30.00W"));
    QCOMPARE(PositionText::ToDisplayed(QString(), Axis::Latitude), QString());
    QCOMPARE(PositionText::ToDisplayed(QStringLiteral("5"), Axis::Latitude), QStringLiteral("5."));
    QCOMPARE(PositionText::ToStored(QStringLiteral("51.30.00N"), Axis::Latitude), QStringLiteral("5130.00N"));
    QCOMPARE(PositionText::ToStored(QStringLiteral("000.30.00W"), Axis::Longitude),
             QStringLiteral("00030.00W"));
}

void PositionTextTest::aPositionHasALocator_data() {
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::addColumn<QString>("locator");
    QTest::newRow("London") << "5130.00N"
                            << "00030.00W"
                            << "IO91SM";
    QTest::newRow("Annapolis") << "3859.11N"
                               << "07629.17W"
                               << "FM18SX";
    QTest::newRow("an edge that single precision falls short of") << "5130.00N"
                                                                  << "13305.00E"
                                                                  << "PO61MM";
    QTest::newRow("Null Island") << "0000.00N"
                                 << "00000.00E"
                                 << "JJ00AA";
    QTest::newRow("just below a subsquare of two and a half minutes") << "0002.49N"
                                                                      << "00004.99E"
                                                                      << "JJ00AA";
    QTest::newRow("on its edge") << "0002.50N"
                                 << "00005.00E"
                                 << "JJ00BB";
    QTest::newRow("just south-west of Null Island") << "0000.01S"
                                                    << "00000.01W"
                                                    << "II99XX";
    QTest::newRow("south pole, date line west") << "9000.00S"
                                                << "18000.00W"
                                                << "AA00AA";
    QTest::newRow("north pole, date line east") << "9000.00N"
                                                << "18000.00E"
                                                << "SS00AA";
    QTest::newRow("just before both") << "8959.99N"
                                      << "17959.99E"
                                      << "RR99XX";
    QTest::newRow("Munich") << "4808.80N"
                            << "01136.50E"
                            << "JN58TD";
    QTest::newRow("Wellington") << "4117.00S"
                                << "17444.70E"
                                << "RE78IR";
}

void PositionTextTest::aPositionHasALocator() {
    QFETCH(const QString, latitude);
    QFETCH(const QString, longitude);
    QFETCH(const QString, locator);
    QCOMPARE(PositionText::Locator(latitude, longitude), locator);
}

void PositionTextTest::withoutAPositionThereIsNoLocator() {
    QCOMPARE(PositionText::Locator(QString(), QStringLiteral("00030.00W")), std::nullopt);
    QCOMPARE(PositionText::Locator(QStringLiteral("5130.00N"), QString()), std::nullopt);
    QCOMPARE(PositionText::Locator(QStringLiteral("5130.00N"), QStringLiteral("99959.99E")), std::nullopt);
    QCOMPARE(PositionText::Locator(QStringLiteral("9959.99S"), QStringLiteral("00030.00W")), std::nullopt);
}

QTEST_GUILESS_MAIN(PositionTextTest)
#include "PositionTextTest.moc"
