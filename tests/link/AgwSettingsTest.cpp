#include "link/agwpe/AgwSettings.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

class AgwSettingsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFreshFileGetsTheDefaults();
    void aStoredPortThatIsNoneBecomes8000_data();
    void aStoredPortThatIsNoneBecomes8000();
    void everySetterWritesAtOnce();
    void portsThatUsersEnter_data();
    void portsThatUsersEnter();
};

void AgwSettingsTest::aFreshFileGetsTheDefaults() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    AgwSettings settings(ini);
    settings.Load();
    QCOMPARE(settings.strAgwHost(), QStringLiteral("localhost"));
    QCOMPARE(settings.intAgwPort(), qint16(8000));
    QCOMPARE(settings.strAgwLoginId(), QString());
    QCOMPARE(settings.strAgwPassword(), QString());
    QCOMPARE(
        folder.Read(QStringLiteral("QiranDecode.INI")),
        QByteArray(
            "[AGWPE]\r\nHOST_ADDRESS=localhost\r\nHOST_PORT=8000\r\nLOGIN_ID=\"\"\r\nPASSWORD=\"\"\r\n"));
}

void AgwSettingsTest::aStoredPortThatIsNoneBecomes8000_data() {
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("port");
    QTest::newRow("0") << QByteArray("0") << 8000;
    QTest::newRow("-1") << QByteArray("-1") << 8000;
    QTest::newRow("40000") << QByteArray("40000") << 8000;
    QTest::newRow("32768") << QByteArray("32768") << 8000;
    QTest::newRow("1e99 as digits") << QByteArray(99, '9') << 8000;
    QTest::newRow("no number") << QByteArray("packet") << 8000;
    QTest::newRow("empty") << QByteArray("\"\"") << 8000;
    QTest::newRow("8001") << QByteArray("8001") << 8001;
    QTest::newRow("32767") << QByteArray("32767") << 32767;
    QTest::newRow("1") << QByteArray("1") << 1;
    QTest::newRow("leading number") << QByteArray("8002 my engine") << 8002;
}

void AgwSettingsTest::aStoredPortThatIsNoneBecomes8000() {
    QFETCH(QByteArray, stored);
    QFETCH(int, port);
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("QiranDecode.INI"), "[AGWPE]\r\nHOST_PORT=" + stored + "\r\n");
    clsIni ini(folder.IniFile());
    AgwSettings settings(ini);
    settings.Load();
    QCOMPARE(settings.intAgwPort(), qint16(port));
}

void AgwSettingsTest::everySetterWritesAtOnce() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    AgwSettings settings(ini);
    settings.setStrAgwHost(QStringLiteral("engine.example"));
    settings.setIntAgwPort(8010);
    settings.setStrAgwLoginId(QStringLiteral("me"));
    settings.setStrAgwPassword(QStringLiteral("s p"));
    AgwSettings again(ini);
    again.Load();
    QCOMPARE(again.strAgwHost(), QStringLiteral("engine.example"));
    QCOMPARE(again.intAgwPort(), qint16(8010));
    QCOMPARE(again.strAgwLoginId(), QStringLiteral("me"));
    QCOMPARE(again.strAgwPassword(), QStringLiteral("s p"));
}

void AgwSettingsTest::portsThatUsersEnter_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("port"); // 0: refused
    const auto row = [](const char16_t* text, int port) {
        QTest::newRow(qPrintable(u'\'' + QString::fromUtf16(text) + u'\''))
            << QString::fromUtf16(text) << port;
    };
    row(u"1", 1);
    row(u"32767", 32767);
    row(u" 8000 ", 8000);
    row(u"+5", 5);
    row(u"5.", 5);
    row(u"2.5", 2);
    row(u"", 0);
    row(u" ", 0);
    row(u"0", 0);
    row(u".5", 0);
    row(u"-1", 0);
    row(u"32768", 0);
    row(u"32767.4", 0); // held against the limits before it is rounded
    row(u"0.9", 0);
    row(u"99999", 0);
    row(u"80a", 0);
    row(u"0x10", 0);
    row(u"8 0", 0);
    row(u"1.2.3", 0);
    row(u".", 0);
    row(u"nan", 0);
    row(u"1e3", 0);
}

void AgwSettingsTest::portsThatUsersEnter() {
    QFETCH(QString, text);
    QFETCH(int, port);
    QCOMPARE(int(AgwSettings::PortFromText(text).value_or(0)), port);
}

QTEST_GUILESS_MAIN(AgwSettingsTest)
#include "AgwSettingsTest.moc"
