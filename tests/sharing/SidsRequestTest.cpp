#include "sharing/SidsRequest.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;

class SidsRequestTest : public QObject {
    Q_OBJECT

private:
    static constexpr qint64 utc = 1795274923120; // 2026-11-21T15:28:43.120Z
    const SidsStation m_station{u"DL1ABC"_s, true, 49.7349, 8.9551, u"90417"_s, u"QiranDecode-2.4.2"_s};

    QByteArray Position(double latitude, double longitude) const {
        SidsStation station = m_station;
        station.latitude = latitude;
        station.longitude = longitude;
        const auto fields = SidsRequest::Fields(station, utc, "x");
        return fields[6].second + ' ' + fields[5].second;
    }

private Q_SLOTS:
    void FormIsTheConventionsToTheByte() {
        const QByteArray form =
            "noradID=90417&source=DL1ABC&timestamp=2026-11-21T15%3A28%3A43.120Z&frame=00A1FF&"
            "locator=longLat&longitude=8.96E&latitude=49.73N&version=QiranDecode-2.4.2";
        const QByteArray raw("\x00\xA1\xFF", 3);
        QCOMPARE(SidsRequest::Body(m_station, utc, raw), form);
        QLocale::setDefault(QLocale(QLocale::Finnish));
        QCOMPARE(SidsRequest::Body(m_station, utc, raw), form);
        QLocale::setDefault(QLocale::c());
    }

    void PositionIsRoundedToHundredthsOfADegree() {
        QCOMPARE(Position(49.7349, 8.9551), QByteArray("49.73N 8.96E"));
        QCOMPARE(Position(-33.856, -151.2149), QByteArray("33.86S 151.21W"));
        QCOMPARE(Position(-0.004, -0.004), QByteArray("0.00N 0.00E"));
        QCOMPARE(Position(-0.006, 179.999), QByteArray("0.01S 180.00E"));
        QCOMPARE(Position(5.0, 100.5), QByteArray("5.00N 100.50E"));
    }

    void WhatIsMissingIsNamed() {
        QCOMPARE(SidsRequest::Missing(m_station), QStringList());
        QCOMPARE(SidsRequest::Missing({}),
                 (QStringList{u"callsign"_s, u"position"_s, u"catalogue number"_s}));
        SidsStation station = m_station;
        station.callsign = u"my call"_s;
        QCOMPARE(SidsRequest::Missing(station), QStringList{u"callsign"_s});
        for (const QString& number : {u"0"_s, u"12a"_s, u"-5"_s, u"1234567890"_s, u"\u0663\u0664"_s}) {
            station = m_station;
            station.number = number;
            QCOMPARE(SidsRequest::Missing(station), QStringList{u"catalogue number"_s});
        }
        QVERIFY(!SidsRequest::Body(station, utc, "x"));
    }

    void FramesWithoutBytesOrTimeMakeNoRequest() {
        const QByteArray large(SidsRequest::largestFrame, 'x');
        QVERIFY(SidsRequest::Body(m_station, utc, large));
        QVERIFY(!SidsRequest::Body(m_station, utc, large + 'x'));
        QVERIFY(!SidsRequest::Body(m_station, utc, {}));
        QVERIFY(!SidsRequest::Body(m_station, 0, "x"));
        QVERIFY(!SidsRequest::Body(m_station, -1, "x"));
        QVERIFY(SidsRequest::Body(m_station, 253402300799999, "x"));
        QVERIFY(!SidsRequest::Body(m_station, 253402300800000, "x"));
    }

    void BodyIsKnownAndWhatLacksAFieldIsNot() {
        SidsStation station = m_station;
        station.version = u"a b&c=d~ä"_s;
        const QByteArray body = SidsRequest::Body(station, utc, "frame").value_or("");
        QVERIFY(SidsRequest::IsBody(body));
        for (qsizetype size = 0; size <= body.indexOf("&version=") + 9; ++size)
            QVERIFY2(!SidsRequest::IsBody(body.first(size)), body.first(size));
        for (const char bad : {' ', '\n', '\0', '&', '='})
            for (qsizetype at = 0; at < body.size(); ++at) {
                QByteArray changed = body;
                changed.insert(at, bad);
                QVERIFY2(!SidsRequest::IsBody(changed), changed);
            }
    }

    void KeyIsTheFramesAndItsTimesWhoeverHeardIt() {
        SidsStation other = m_station;
        other.callsign = u"DL2DEF-7"_s;
        other.latitude = -10.0;
        const auto key = [](const SidsStation& station, qint64 time, QByteArrayView raw) {
            return SidsRequest::FrameKey(SidsRequest::Body(station, time, raw).value_or(""));
        };
        QCOMPARE(key(other, utc, "frame"), key(m_station, utc, "frame"));
        QVERIFY(key(m_station, utc + 1, "frame") != key(m_station, utc, "frame"));
        QVERIFY(key(m_station, utc, "framf") != key(m_station, utc, "frame"));
    }
};

QTEST_GUILESS_MAIN(SidsRequestTest)
#include "SidsRequestTest.moc"
