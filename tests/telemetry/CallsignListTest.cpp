#include "telemetry/callsigns/CallsignList.h"

#include "foundation/settings/clsIni.h"
#include "support/TemporaryProgramFolder.h"
#include "telemetry/callsigns/CallsignItems.h"

#include <QTest>

class CallsignListTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void firstStartWritesAndLoadsTheDefaults();
    void storedCallsignsAreLoadedInTheirOrder();
    void aSectionWithoutKeysGetsTheDefaults();
    void withoutAWritableFileTheDefaultsHold();
    void initReplacesWhatIsStored();
    void assigningSavesAtOnce();
    void assigningLeavesOtherSectionsAlone();
    void readingGivesACopy();
    void findsExactlyAndTheFirst();
    void fiveThousandCallsignsAreSavedLoadedAndFound();
    void itemTexts_data();
    void itemTexts();
    void itemsReadBack();
    void putInListReplacesTheSameCallsign();
    void putInListAddsAndSorts();
};

namespace {

QStringList Texts(const QList<clsCallsign>& callsigns) {
    QStringList texts;
    for (const clsCallsign& callsign : callsigns)
        texts.append(callsign.strCallsign + u'=' + callsign.strSide);
    return texts;
}

QString Q(const char* text) {
    return QString::fromLatin1(text);
}

} // namespace

void CallsignListTest::firstStartWritesAndLoadsTheDefaults() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    QStringList expected{Q("NODIGI=A"), Q("XQ9ZZ=A")};
    for (int ssid = 1; ssid <= 15; ++ssid)
        expected.append(QStringLiteral("XQ9ZZ-%1=A").arg(ssid));
    expected << Q("QIRAN=B") << Q("QIRAN-1=A") << Q("QIRAN-2=A");
    for (int ssid = 3; ssid <= 15; ++ssid)
        expected.append(QStringLiteral("QIRAN-%1=B").arg(ssid));
    QCOMPARE(Texts(list.cCallsigns()), expected);
    QCOMPARE(folder.Read(Q("QiranDecode.INI")),
             "[CALLSIGNS]\r\n" + expected.join(Q("\r\n")).toLatin1() + "\r\n");
}

void CallsignListTest::storedCallsignsAreLoadedInTheirOrder() {
    const TemporaryProgramFolder folder;
    const QByteArray stored = "[CALLSIGNS]\r\nZZ1=B\r\nAA1-3=A\r\nMM1=x\r\nNN1=\r\n";
    folder.Write(Q("QiranDecode.INI"), stored);
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    QCOMPARE(Texts(list.cCallsigns()), QStringList({Q("ZZ1=B"), Q("AA1-3=A"), Q("MM1=x"), Q("NN1=")}));
    QCOMPARE(folder.Read(Q("QiranDecode.INI")), stored);
}

void CallsignListTest::aSectionWithoutKeysGetsTheDefaults() {
    const TemporaryProgramFolder folder;
    folder.Write(Q("QiranDecode.INI"), "[CALLSIGNS]\r\n; none\r\n[SETUP]\r\nLEFT=1\r\n");
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    QCOMPARE(list.cCallsigns().size(), 33);
    QCOMPARE(ini.LoadSection(Q("CALLSIGNS")).size(), 33);
    QCOMPARE(ini.GetIniString(Q("SETUP"), Q("LEFT"), QString()), Q("1"));
}

void CallsignListTest::withoutAWritableFileTheDefaultsHold() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.File(Q("no such folder/x.INI")));
    CallsignList list(ini);
    list.LoadCallsigns();
    QCOMPARE(list.cCallsigns().size(), 33);
    QVERIFY(list.Find("QIRAN-15") != nullptr);
}

void CallsignListTest::initReplacesWhatIsStored() {
    const TemporaryProgramFolder folder;
    folder.Write(Q("QiranDecode.INI"), "[CALLSIGNS]\r\nZZ1=B\r\n");
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    list.InitCallsigns();
    QCOMPARE(Texts(list.cCallsigns()), QStringList{Q("ZZ1=B")}); // until they are loaded
    list.LoadCallsigns();
    QCOMPARE(list.cCallsigns().size(), 33);
    QVERIFY(!folder.Read(Q("QiranDecode.INI")).contains("ZZ1"));
}

void CallsignListTest::assigningSavesAtOnce() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    list.setCCallsigns({{Q("ZZ1"), Q("B")}, {Q("AA1"), Q("A")}});
    QCOMPARE(Texts(list.cCallsigns()), QStringList({Q("ZZ1=B"), Q("AA1=A")}));
    QCOMPARE(folder.Read(Q("QiranDecode.INI")), QByteArray("[CALLSIGNS]\r\nZZ1=B\r\nAA1=A\r\n"));
}

void CallsignListTest::assigningLeavesOtherSectionsAlone() {
    const TemporaryProgramFolder folder;
    folder.Write(Q("QiranDecode.INI"),
                 "[SETUP]\r\nLEFT=1\r\n; mine\r\n[CALLSIGNS]\r\nQ1=A\r\n[KEPS]\r\nFILE_1=x\r\n");
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.setCCallsigns({{Q("ZZ1"), Q("B")}});
    const QByteArray after = folder.Read(Q("QiranDecode.INI"));
    QVERIFY(after.contains("[SETUP]\r\nLEFT=1\r\n; mine\r\n"));
    QVERIFY(after.contains("[KEPS]\r\nFILE_1=x\r\n"));
    QVERIFY(after.contains("[CALLSIGNS]\r\nZZ1=B\r\n"));
    QVERIFY(!after.contains("Q1"));
}

void CallsignListTest::readingGivesACopy() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    list.LoadCallsigns();
    QList<clsCallsign> copy = list.cCallsigns();
    copy[0].strSide = Q("B");
    copy.removeLast();
    QCOMPARE(list.cCallsigns().size(), 33);
    QCOMPARE(list.Find("NODIGI")->strSide, Q("A"));
}

void CallsignListTest::findsExactlyAndTheFirst() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    QVERIFY(list.Find("X1") == nullptr);
    list.setCCallsigns({{Q("X1"), Q("B")}, {Q("X1"), Q("A")}, {Q("X1-3"), Q("A")}});
    QCOMPARE(list.Find("X1")->strSide, Q("B"));
    QCOMPARE(list.Find("X1-3")->strSide, Q("A"));
    for (const char* other : {"", "x1", "X", "X1-", "X1-33", "X1 "})
        QVERIFY2(list.Find(other) == nullptr, other);
}

void CallsignListTest::fiveThousandCallsignsAreSavedLoadedAndFound() {
    const TemporaryProgramFolder folder;
    clsIni ini(folder.IniFile());
    CallsignList list(ini);
    QList<clsCallsign> callsigns;
    for (int i = 0; i < 5000; ++i)
        callsigns.append(
            {QStringLiteral("X%1-%2").arg(i / 16, 4, 10, QChar(u'0')).arg(i % 16), Q(i % 2 ? "A" : "B")});
    list.setCCallsigns(callsigns);
    QCOMPARE(folder.Read(Q("QiranDecode.INI")).count('\n'), 5001);
    CallsignList loaded(ini);
    loaded.LoadCallsigns();
    QCOMPARE(Texts(loaded.cCallsigns()), Texts(callsigns)); // all: what is not loaded, the next save removes
    for (int i = 0; i < 200000; ++i)
        QVERIFY(list.Find("X0312-7") != nullptr && list.Find("Y0312-7") == nullptr);
}

void CallsignListTest::itemTexts_data() {
    QTest::addColumn<QString>("callsign");
    QTest::addColumn<QString>("side");
    QTest::addColumn<QString>("item");
    QTest::newRow("short") << Q("QIRAN") << Q("B") << Q("QIRAN       Side B");
    QTest::newRow("with SSID") << Q("XQ9ZZ-15") << Q("A") << Q("XQ9ZZ-15    Side A");
    QTest::newRow("thirteen characters") << Q("ABCDEFGHIJKLM") << Q("A") << Q("ABCDEFGHIJKLSide A");
}

void CallsignListTest::itemTexts() {
    QFETCH(const QString, callsign);
    QFETCH(const QString, side);
    QTEST(CallsignItems::ItemText({callsign, side}), "item");
}

void CallsignListTest::itemsReadBack() {
    QCOMPARE(CallsignItems::FromItem(Q("QIRAN-10    Side B")), clsCallsign({Q("QIRAN-10"), Q("B")}));
    QCOMPARE(CallsignItems::FromItem(Q("ABCDEFGHIJKLSide A")),
             clsCallsign({Q("ABCDEFGHI"), Q("A")})); // loses its tail
}

void CallsignListTest::putInListReplacesTheSameCallsign() {
    QStringList items{Q("XQ9ZZ-3     Side A"), Q("XQ9ZZ       Side A")};
    QCOMPARE(CallsignItems::PutInList(items, {Q("XQ9ZZ-3"), Q("B")}), 0);
    QCOMPARE(items, QStringList({Q("XQ9ZZ-3     Side B"), Q("XQ9ZZ       Side A")}));
}

void CallsignListTest::putInListAddsAndSorts() {
    QStringList items{Q("XQ9ZZ-3     Side A"), Q("XQ9ZZ       Side A")};
    QCOMPARE(CallsignItems::PutInList(items, {Q("XQ9ZZ-1"), Q("B")}), 1);
    QCOMPARE(items, QStringList({Q("XQ9ZZ       Side A"), Q("XQ9ZZ-1     Side B"), Q("XQ9ZZ-3     Side A")}));
}

QTEST_GUILESS_MAIN(CallsignListTest)
#include "CallsignListTest.moc"
