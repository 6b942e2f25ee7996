#include "keps/Gzip.h"

#include "keps/GzipFile.h"

#include <QTest>

class GzipTest : public QObject {
    Q_OBJECT

private:
    static constexpr qsizetype most = 1024 * 1024;

    static QByteArray Sample() {
        QByteArray text = "ISS (ZARYA)\r\n1 25544U 98067A   26325.50000000  .00010000  00000+0\r\n";
        for (int i = 0; i < 80; ++i)
            text += QByteArray::number(i * i * i) + (i % 3 == 0 ? "\n" : " ");
        return text;
    }

private Q_SLOTS:
    void EveryLevelOfPackingIsUnpacked() {
        for (const QByteArray& text : {QByteArray(), QByteArray("x"), QByteArray("hello hello hello"),
                                       Sample(), QByteArray(200000, 'x'), Sample().repeated(100)})
            for (int level = 0; level <= 9; ++level)
                QVERIFY(Gzip::Unpack(GzipFile(text, level), most) == text);
    }

    void FileOfTheGzipToolIsUnpacked() {
        const QByteArray packed =
            QByteArray::fromBase64("H4sIAAAAAAACA8tIzcnJVyjPL8pJUUjNSc1NzSsp5gIARzWKDxUAAAA=");
        QVERIFY(Gzip::Unpack(packed, most) == QByteArray("hello world elements\n"));
    }

    void OptionalHeaderFieldsAreSkipped() {
        const QByteArray packed = GzipFile("text", 9);
        const auto with = [&](char flags, const QByteArray& fields) {
            return packed.left(3) + flags + packed.mid(4, 6) + fields + packed.mid(10);
        };
        const QByteArray name("name\0", 5);
        QVERIFY(Gzip::Unpack(with(8, name), most) == QByteArray("text"));
        QVERIFY(Gzip::Unpack(with(16, name), most) == QByteArray("text"));
        QVERIFY(Gzip::Unpack(with(4, QByteArray("\x03\0abc", 5)), most) == QByteArray("text"));
        QVERIFY(!Gzip::Unpack(with(2, "12"), most)); // a header checksum, and not the right one
        QVERIFY(Gzip::Unpack(with(28, QByteArray("\x01\0a", 3) + name + name), most) == QByteArray("text"));
    }

    void TheBoundIsOnWhatIsUnpackedNotOnTheFile() {
        const QByteArray packed = GzipFile("c", 0);
        QVERIFY(Gzip::Unpack(packed, 1) == QByteArray("c"));
        QVERIFY(!Gzip::Unpack(packed, 0));
    }

    void SeveralFilesInOneAreJoined() {
        QVERIFY(Gzip::Unpack(GzipFile("one ", 9) + GzipFile("two", 0), most) == QByteArray("one two"));
        QVERIFY(!Gzip::Unpack(GzipFile("one", 9) + "rest", most));
    }

    void CutAtAnyByteIsNothing() {
        for (int level : {0, 1, 9}) {
            const QByteArray packed = GzipFile(Sample(), level);
            for (qsizetype length = 0; length < packed.size(); ++length)
                QVERIFY2(!Gzip::Unpack(packed.left(length), most), qPrintable(QString::number(length)));
        }
    }

    void DamageIsNothing() {
        for (int level : {0, 1, 9}) {
            const QByteArray packed = GzipFile(Sample(), level);
            for (qsizetype at = 10; at < packed.size(); ++at)
                for (int bit = 0; bit < 8; ++bit) {
                    QByteArray damaged = packed;
                    damaged[at] = static_cast<char>(damaged[at] ^ (1 << bit));
                    const auto text = Gzip::Unpack(damaged, most);
                    QVERIFY(!text || text == Sample()); // padding bits may change
                }
        }
    }

    void NoiseIsNothing() {
        quint32 random = 1;
        for (int i = 0; i < 800; ++i) {
            QByteArray noise("\x1f\x8b\x08\0\0\0\0\0\0\0", 10);
            for (int j = 0; j < 200; ++j) {
                random = random * 1664525U + 1013904223U;
                noise += static_cast<char>(random >> 24U);
            }
            QVERIFY(!Gzip::Unpack(noise, most));
        }
        QVERIFY(!Gzip::Unpack("plain text, not packed at all", most));
        QVERIFY(!Gzip::Unpack({}, most));
    }

    void MoreThanTheMostIsNothing() {
        const QByteArray packed = GzipFile(QByteArray(100000, 'x'), 9);
        QVERIFY(Gzip::Unpack(packed, 100000));
        QVERIFY(!Gzip::Unpack(packed, 99999));
        QVERIFY(!Gzip::Unpack(GzipFile(QByteArray(100000, 'x'), 0), 99999));
        QVERIFY(!Gzip::Unpack(packed + packed, 199999));
    }
};

QTEST_GUILESS_MAIN(GzipTest)
#include "GzipTest.moc"
