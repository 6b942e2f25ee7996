#include "foundation/settings/Settings.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

class SettingsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void everyDefaultIsAllowed();
    void namesAreFoundInAnyCase();
    void readingWritesOlderKeysAndNoNewOne();
    void peekingWritesNothing();
    void aNumberThatIsNotAllowedIsTheDefault();
    void takesWhatIsAllowedInItsStoredForm_data();
    void takesWhatIsAllowedInItsStoredForm();
    void refusesWhatIsNotAllowed_data();
    void refusesWhatIsNotAllowed();
    void placesOfWindowsAreInNoList();
};

namespace {

QString S(const char* text) {
    return QString::fromUtf8(text);
}

QString Name(const Setting& setting) {
    return QString::fromUtf16(setting.section) + u'/' + QString::fromUtf16(setting.key);
}

const Setting& Named(const QString& name) {
    const Setting* setting = Settings::Find(name.section(u'/', 0, 0), name.section(u'/', 1));
    if (setting == nullptr)
        qFatal("there is no setting %s", qPrintable(name));
    return *setting;
}

} // namespace

void SettingsTest::everyDefaultIsAllowed() {
    for (const Setting* setting : Settings::All()) {
        const QString value = QString::fromUtf16(setting->defaultValue);
        const std::optional<QString> accepted = Settings::Accept(*setting, value);
        QVERIFY2(accepted, qPrintable(Name(*setting)));
        QCOMPARE(accepted->toUpper(),
                 setting->type == SettingType::Boolean ? value.toUpper() : accepted->toUpper());
        QVERIFY2(!Settings::Allowed(*setting).isEmpty(), qPrintable(Name(*setting)));
    }
}

void SettingsTest::namesAreFoundInAnyCase() {
    QCOMPARE(Settings::Find(u"agwpe", u"host_Port"), Settings::Find(u"AGWPE", u"HOST_PORT"));
    QVERIFY(Settings::Find(u"AGWPE", u"HOST_PORT") != nullptr);
    QVERIFY(Settings::Find(u"AGWPE", u"HOST") == nullptr);
    QVERIFY(Settings::Find(u"", u"") == nullptr);
}

void SettingsTest::readingWritesOlderKeysAndNoNewOne() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    QCOMPARE(Settings::Read(ini, Settings::kissHostPort), S("8001"));
    QVERIFY(!QFile::exists(folder.IniFile()));
    QCOMPARE(Settings::Read(ini, Settings::hostPort), S("8000"));
    QCOMPARE(folder.Read(QStringLiteral("QiranDecode.INI")), QByteArray("[AGWPE]\r\nHOST_PORT=8000\r\n"));
}

void SettingsTest::peekingWritesNothing() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    QCOMPARE(Settings::Peek(ini, Settings::hostPort), S("8000"));
    QCOMPARE(Settings::NumberOf(ini, Settings::noticeMinutes), 5);
    QVERIFY(Settings::IsOn(ini, Settings::historyKeep));
    QVERIFY(!QFile::exists(folder.IniFile()));
    Settings::Save(ini, Settings::historyKeep, S("off"));
    Settings::Save(ini, Settings::noticeMinutes, S("7"));
    QVERIFY(!Settings::IsOn(ini, Settings::historyKeep));
    QCOMPARE(Settings::NumberOf(ini, Settings::noticeMinutes), 7);
}

void SettingsTest::aNumberThatIsNotAllowedIsTheDefault() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    for (const char* stored : {"1441", "-1", "soon", "", "1e3"}) {
        Settings::Save(ini, Settings::noticeMinutes, S(stored));
        QCOMPARE(Settings::NumberOf(ini, Settings::noticeMinutes), 5);
    }
}

void SettingsTest::takesWhatIsAllowedInItsStoredForm_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("stored");
    const auto add = [](const char* name, const char* given, const char* stored) {
        QTest::addRow("%s %s", name, given) << S(name) << S(given) << S(stored);
    };
    add("SETUP/USE_LOCAL_TIME", "yes", "TRUE");
    add("SETUP/USE_LOCAL_TIME", "0", "FALSE");
    add("AGWPE/HOST_PORT", " 08001 ", "8001");
    add("SETUP/QIRAN_OBJ_NUM", "799500123", "799500123");
    add("SETUP/CALLSIGN", "n0call-7", "N0CALL-7");
    add("SETUP/CALLSIGN", "", "");
    add("TERMINAL/VIA", "qiran-1, wide2-2", "QIRAN-1,WIDE2-2");
    add("SETUP/LATITUDE", "9000.00s", "9000.00S");
    add("SETUP/LATITUDE", "", "");
    add("SETUP/LONGITUDE", "18000.00W", "18000.00W");
    add("SETUP/LOCATOR", "kp20le", "KP20LE");
    add("SETUP/COMMENT", " Grüße – 5 € ", " Grüße – 5 € ");
    add("FORWARD/URL", "http://127.0.0.1:8080/telemetry", "http://127.0.0.1:8080/telemetry");
}

void SettingsTest::takesWhatIsAllowedInItsStoredForm() {
    QFETCH(const QString, name);
    QFETCH(const QString, given);
    const std::optional<QString> stored = Settings::Accept(Named(name), given);
    QVERIFY(stored);
    QTEST(*stored, "stored");
}

void SettingsTest::refusesWhatIsNotAllowed_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("given");
    const auto add = [](const char* name, const char* given) {
        QTest::addRow("%s %s", name, given) << S(name) << S(given);
    };
    add("SETUP/USE_LOCAL_TIME", "perhaps");
    add("SETUP/USE_LOCAL_TIME", "");
    for (const char* port : {"0", "32768", "65536", "x", "80.5", "", "0x50", "8000 8001"})
        add("AGWPE/HOST_PORT", port);
    for (const char* number : {"", "1234567890", "A0001", "-5", "٣"})
        add("SETUP/ISS_OBJ_NUM", number);
    for (const char* callsign : {"N0CALL-16", "TOOLONGX", "N0 CALL", "Ä1A", "ı"})
        add("SETUP/CALLSIGN", callsign);
    add("TERMINAL/VIA", "WIDE2-2,x y");
    for (const char* latitude : {"9000.01N", "6060.00N", "60.17", "06010.20N", "6010.20", "6010.20E"})
        add("SETUP/LATITUDE", latitude);
    add("SETUP/LONGITUDE", "18000.01E");
    add("SETUP/LONGITUDE", "6010.20E");
    add("SETUP/LOCATOR", "SP20LE");
    add("AGWPE/HOST_ADDRESS", "");
    add("AGWPE/HOST_ADDRESS", "two words");
    for (const char* url : {"", "ftp://host/", "https://", "db.satnogs.org/api"})
        add("FORWARD/URL", url);
    add("SETUP/COMMENT", "two\nlines");
    add("SETUP/COMMENT", "Привет");
    QTest::newRow("too long") << S("SETUP/COMMENT") << QString(500, u'x');
}

void SettingsTest::refusesWhatIsNotAllowed() {
    QFETCH(const QString, name);
    QFETCH(const QString, given);
    QVERIFY(!Settings::Accept(Named(name), given));
}

void SettingsTest::placesOfWindowsAreInNoList() {
    for (const char16_t* key : {u"LEFT", u"TOP", u"MAP_LEFT", u"MAP_TOP"})
        QVERIFY(Settings::Find(u"SETUP", key) == nullptr);
}

QTEST_GUILESS_MAIN(SettingsTest)
#include "SettingsTest.moc"
