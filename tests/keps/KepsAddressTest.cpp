#include "keps/KepsAddress.h"

#include <QTest>

class KepsAddressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void UrlIsTheTrimmedAddressBehindHttp() {
        QCOMPARE(KepsAddress::FromTyped(QStringLiteral("  host/a b.txt ")).url,
                 QStringLiteral("http://host/a b.txt"));
        QCOMPARE(KepsAddress::FromTyped({}).url, QStringLiteral("http://"));
        QCOMPARE(KepsAddress::FromTyped(QStringLiteral("host/a.php?x=y#z")).url,
                 QStringLiteral("http://host/a.php?x=y#z"));
    }

    void BackslashesBeforeTheQueryAreSentAsSlashes() {
        QCOMPARE(KepsAddress::FromTyped(QStringLiteral("host\\dir\\a.txt")).url,
                 QStringLiteral("http://host/dir/a.txt"));
        QCOMPARE(KepsAddress::FromTyped(QStringLiteral("host\\a.php?x=\\y")).url,
                 QStringLiteral("http://host/a.php?x=\\y"));
    }

    void FileNameIsAPlainNameInsideKeps_data() {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("name");
        const auto row = [](const char16_t* address, const char16_t* name) {
            const QString text = QString::fromUtf16(address);
            QTest::newRow(qPrintable(text)) << text << QString::fromUtf16(name);
        };
        row(u"celestrak.org/NORAD/elements/amateur.txt", u"amateur.txt");
        row(u"host\\dir\\amateur.txt", u"amateur.txt");
        row(u"host/dir\\amateur.txt", u"amateur.txt");
        row(u"host.org", u"host.org");
        row(u"user:secret@host.org", u"host.org");
        row(u"user:secret@host.org:8080/a.txt", u"a.txt");
        row(u"[::1]:8080/a.txt", u"a.txt");
        row(u"", u"");
        row(u"   ", u"");
        row(u"host/", u"");
        row(u"host\\", u"");
        row(u"host/dir/", u"");
        row(u"host/..", u"");
        row(u"host/.", u"");
        row(u"host/...", u"");
        row(u"host/.hidden", u"hidden");
        row(u"host/a.txt. .", u"a.txt");
        row(u"host/c:evil.txt", u"c_evil.txt");
        row(u"host/..%2F..%2Fetc%2Fpasswd", u"passwd");
        row(u"host/..%5c..%5Cboot.ini", u"boot.ini");
        row(u"host/%2e%2e", u"");
        row(u"host/a%00b%0Ac.txt", u"a_b_c.txt");
        row(u"host/a%20b.txt", u"a b.txt");
        row(u"host/a b.txt", u"a b.txt");
        row(u"host/b\u00FCcher.txt", u"b\u00FCcher.txt");
        row(u"host/b%C3%BCcher.txt", u"b\u00FCcher.txt");
        row(u"host/\u202Egpj.txt", u"_gpj.txt");
        row(u"host/a<b>|c*.txt", u"a_b__c_.txt");
        row(u"host/con", u"_con");
        row(u"host/AUX.txt", u"_AUX.txt");
        row(u"host/console.txt", u"console.txt");
        row(u"host/TEMPKEPS.$$$", u"_TEMPKEPS.$$$");
        row(u"host/tempkeps.$$$", u"_tempkeps.$$$");
        row(u"host/a.txt#top", u"a.txt");
        row(u"host/a.txt?x=y", u"a.txt");
        row(u"host/a.txt?path=/etc/passwd", u"a.txt");
        row(u"host/gp.php?x=y", u"gp.php");
        row(u"host/?sat=43017", u"sat=43017.txt");
        row(u"host/dir/?x=y", u"x=y.txt");
        row(u"host/dir/?x=y#top", u"x=y.txt");
        row(u"host\\dir\\?x=y", u"x=y.txt");
        row(u"host/?x=y&FORMAT=tle", u"x=y&FORMAT=tle.tle");
        row(u"host/?file.txt", u"file.txt");
        row(u"host/?a?b", u"a_b.txt");
        row(u"host/..?x=y", u"x=y.txt");
        row(u"host/?path=/etc/passwd", u"passwd.txt");
        row(u"host/dir/?", u"");
        row(u"host/dir/#x", u"");
        row(u"host/?..", u"");
        row(u"host/?x=/", u"");
        row(u"host?sat=43017", u"host");
        row(u"celestrak.org/NORAD/elements/gp.php?GROUP=amateur&FORMAT=tle", u"amateur.tle");
        row(u"celestrak.org/NORAD/elements/gp.php?FORMAT=TLE&group=amateur", u"amateur.tle");
        row(u"celestrak.org/NORAD/elements/gp.php?CATNR=25544", u"25544.txt");
        row(u"celestrak.org/NORAD/elements/gp.php?GROUP=..%2F..%2Fx&FORMAT=tle", u"x.tle");
        row(u"celestrak.org/NORAD/elements/gp.php?GROUP=a&FORMAT=/../b", u"b");
        row(u"celestrak.org/NORAD/elements/gp.php?GROUP=..&FORMAT=tle", u"gp.php");
        row(u"celestrak.org/NORAD/elements/gp.php?GROUP=&FORMAT=tle", u"gp.php");
    }

    void FileNameIsAPlainNameInsideKeps() {
        QFETCH(QString, address);
        QFETCH(QString, name);
        QCOMPARE(KepsAddress::FromTyped(address).fileName, name);
    }

    void FileNameIsNeverTooLongForTheFileSystem() {
        const QString name =
            KepsAddress::FromTyped(QStringLiteral("host/") + QString(5000, u'\u4E2D')).fileName;
        QVERIFY(!name.isEmpty());
        QVERIFY(name.toUtf8().size() < 245);
    }

    void ALongNameKeepsItsExtension() {
        const QString letters(300, u'\u4E2D');
        for (const QString& extension : {QStringLiteral(".txt"), QStringLiteral(".tle"), QString()}) {
            const QString name =
                KepsAddress::FromTyped(QStringLiteral("host/") + letters + extension).fileName;
            QVERIFY2(name.endsWith(extension), qPrintable(name));
            QVERIFY(name.toUtf8().size() > 90);
            QVERIFY(name.toUtf8().size() <= 100);
            QCOMPARE(name.contains(u'.'), !extension.isEmpty());
        }
        const QString set =
            KepsAddress::FromTyped(QStringLiteral("host/gp.php?FORMAT=tle&GROUP=") + letters).fileName;
        QVERIFY2(set.endsWith(u".tle"), qPrintable(set));
        const QString all =
            KepsAddress::FromTyped(QStringLiteral("host/a.") + letters).fileName; // no extension as such
        QVERIFY(all.toUtf8().size() <= 100);
    }

    void TwoLongNamesStayTwo() {
        const QString same(300, u'x');
        const auto nameOf = [&](const QString& end) {
            return KepsAddress::FromTyped(QStringLiteral("host/") + same + end).fileName;
        };
        QVERIFY(nameOf(QStringLiteral("1.txt")) != nameOf(QStringLiteral("2.txt")));
        QCOMPARE(nameOf(QStringLiteral("1.txt")), nameOf(QStringLiteral("1.txt")));
        QCOMPARE(
            KepsAddress::FromTyped(QStringLiteral("host/") + same.left(96) + QStringLiteral(".txt")).fileName,
            same.left(96) + QStringLiteral(".txt")); // what fits is left alone
    }

    void NoAddressYieldsASeparatorOrAFolderAbove() {
        quint32 random = 1;
        const QString letters = QStringLiteral("/\\.%25cCfFeE0123?#&=:@ aG\u0001\u00FC");
        for (int i = 0; i < 20000; ++i) {
            QString address;
            for (int length = 0; length < 14; ++length) {
                random = random * 1664525U + 1013904223U;
                address +=
                    letters[static_cast<qsizetype>((random >> 16U) % static_cast<quint32>(letters.size()))];
            }
            const QString name = KepsAddress::FromTyped(address).fileName;
            QVERIFY2(!name.contains(u'/') && !name.contains(u'\\') && !name.contains(u':') &&
                         !name.startsWith(u'.') && !name.contains(QChar(1)),
                     qPrintable(address));
        }
    }
};

QTEST_GUILESS_MAIN(KepsAddressTest)
#include "KepsAddressTest.moc"
