#include "foundation/settings/clsIni.h"

#include "support/OrdinaryUser.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

// For as long as it lives no file of the test can grow beyond a size: to who writes, a disk that is full.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t most)
        : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        const rlimit small{most, getrlimit(RLIMIT_FSIZE, &m_old) == 0 ? m_old.rlim_max : most};
        if (setrlimit(RLIMIT_FSIZE, &small) != 0)
            qFatal("cannot limit the size of files");
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;
    ~SmallFiles() {
        if (setrlimit(RLIMIT_FSIZE, &m_old) != 0)
            qFatal("cannot lift the limit again");
        std::signal(SIGXFSZ, m_oldHandler);
    }

private:
    void (*m_oldHandler)(int);
    rlimit m_old{};
};

QString S(const char* text) {
    return QString::fromLatin1(text);
}

} // namespace

class clsIniTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();

    void twoQuotesReadBackAsTheEmptyString();
    void emptyValueIsSavedAsTwoQuotes();
    void missingKeyIsWrittenWithItsDefaultOnce();
    void defaultWithOuterBlanksIsQuotedAndReadsBack_data();
    void defaultWithOuterBlanksIsQuotedAndReadsBack();
    void emptyDefaultIsStoredAsTwoQuotes();
    void sentinelValueIsTreatedAsAbsent();
    void isItTrueKnowsFourWordsInAnyCaseAndUpperCasesItsArgument_data();
    void isItTrueKnowsFourWordsInAnyCaseAndUpperCasesItsArgument();
    void trueOrFalse();
    void keysOfAMissingOrEmptySectionAreOneEmptyColumn();
    void keysStandFromColumnOneInFileOrder();
    void longValueIsCutTo499Characters();
    void valuesAreTrimmedAndOnePairOfQuotesStripped_data();
    void valuesAreTrimmedAndOnePairOfQuotesStripped();
    void namesMatchWithoutCase();
    void anotherFileIsUsedForThatCallOnly();
    void emptyPathDoesNothing();
    void deleteKeyAndDeleteSection();
    void changeLeavesEveryOtherByteAlone();
    void newKeyStandsAtTheEndOfItsSection();
    void firstOfTwoEqualSectionsCounts();
    void deletingTakesEveryEqualSectionAndKey();
    void wholeSectionIsLoadedHoweverLong();
    void savingASectionReplacesItInPlace();
    void savingASectionOutweighsAnEqualOneBelow();
    void keysThatDifferInMoreThanCaseStayTwo();
    void namesMayEndInANoBreakSpace();
    void fileWithoutFinalLineEndIsReadAndContinued();
    void byteOrderMarkIsPassedOver();
    void lineFeedsAloneAreRead();
    void tenThousandKeysAreReadAndSaved();
    void keyNamesBeyondTheBufferAreCut();
    void valueOf100000CharactersIsKeptAndReadCut();
    void textIsWindows1252();
    void lineEndsInAValueBecomeBlanks();
    void namesThatALineCannotCarryAreNotWritten_data();
    void namesThatALineCannotCarryAreNotWritten();
    void namesOutsideTheCodePageDoNotPileUp();

    void newFileIsReadableByItsOwnerAlone();
    void existingFileKeepsItsRights();
    void symbolicLinkStaysALink();
    void danglingLinkCreatesItsTarget();
    void relativeLinkIsFollowed();
    void unchangedFileIsNotWrittenAgain();
    void unwritableFolderIsReportedOnceAndDefaultsHold();
    void writableFileOfAnUnwritableFolderIsWrittenInPlace();
    void fileThatNoneMayReplaceIsWrittenInPlace();
    void fullDiskLeavesAFileOfAnUnwritableFolderWhole();
    void unreadableFileIsNeverOverwritten();
    void folderInPlaceOfTheFileIsReported();
    void oversizedFileIsNeverOverwritten();
    void fileSizeLimitLeavesTheOldFileWhole();
    void linkToWhatIsNoFileIsReported();
    void killedWriterLeavesAWholeFile();

private:
    void Write(const QByteArray& bytes) { m_folder->Write(S("QiranDecode.INI"), bytes); }
    QByteArray Bytes() const { return m_folder->Read(S("QiranDecode.INI")); }
    QString Get(const char* section, const char* key, const char* defaultValue = "?") {
        return m_ini->GetIniString(S(section), S(key), S(defaultValue));
    }
    void Save(const char* section, const char* key, const char* value) {
        m_ini->SaveIniString(S(section), S(key), S(value));
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
};

void clsIniTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
}

void clsIniTest::twoQuotesReadBackAsTheEmptyString() {
    Write("[A]\r\nB=\"\"\r\n");
    QCOMPARE(Get("A", "B"), QString());
}

void clsIniTest::emptyValueIsSavedAsTwoQuotes() {
    Save("A", "B", "");
    QCOMPARE(Bytes(), "[A]\r\nB=\"\"\r\n");
    QCOMPARE(Get("A", "B"), QString());
}

void clsIniTest::missingKeyIsWrittenWithItsDefaultOnce() {
    const auto read = [&](const char* defaultValue) {
        return m_ini->GetIniStringWriteDefault(S("AGWPE"), S("HOST_ADDRESS"), S(defaultValue));
    };
    QCOMPARE(read("localhost"), S("localhost"));
    QCOMPARE(Bytes(), "[AGWPE]\r\nHOST_ADDRESS=localhost\r\n");
    QCOMPARE(read("elsewhere"), S("localhost"));
    QCOMPARE(Bytes(), "[AGWPE]\r\nHOST_ADDRESS=localhost\r\n");
}

void clsIniTest::defaultWithOuterBlanksIsQuotedAndReadsBack_data() {
    QTest::addColumn<QString>("value");
    QTest::newRow("leading") << S(" X");
    QTest::newRow("trailing") << S("X ");
    QTest::newRow("both") << S(" X ");
    QTest::newRow("one blank") << S(" ");
}

void clsIniTest::defaultWithOuterBlanksIsQuotedAndReadsBack() {
    QFETCH(QString, value);
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("B"), value), value);
    QCOMPARE(Bytes(), "[A]\r\nB=\"" + value.toLatin1() + "\"\r\n");
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("B"), S("other")), value);
}

void clsIniTest::emptyDefaultIsStoredAsTwoQuotes() {
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("B"), QString()), QString());
    QCOMPARE(Bytes(), "[A]\r\nB=\"\"\r\n");
}

void clsIniTest::sentinelValueIsTreatedAsAbsent() {
    Write("[A]\r\nB=$!*%\r\n");
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("B"), S("x")), S("x"));
    QCOMPARE(Bytes(), "[A]\r\nB=x\r\n");
}

void clsIniTest::isItTrueKnowsFourWordsInAnyCaseAndUpperCasesItsArgument_data() {
    QTest::addColumn<bool>("expected");
    for (const char* word : {"yes", "On", "1", "TRUE", "true", "oN"})
        QTest::newRow(word) << true;
    for (const char* word : {"T", "0", "", "FALSE", "false", "no", " TRUE", "11"})
        QTest::newRow(word) << false;
}

void clsIniTest::isItTrueKnowsFourWordsInAnyCaseAndUpperCasesItsArgument() {
    QFETCH(bool, expected);
    const QString word = S(QTest::currentDataTag());
    QString text = word;
    QCOMPARE(clsIni::IsItTrue(text), expected);
    QCOMPARE(text, word.toUpper());
}

void clsIniTest::trueOrFalse() {
    QCOMPARE(clsIni::TrueOrFalse(true), S("TRUE"));
    QCOMPARE(clsIni::TrueOrFalse(false), S("FALSE"));
}

void clsIniTest::keysOfAMissingOrEmptySectionAreOneEmptyColumn() {
    const clsIni::KeyTable nothing{QStringList{QString()}, QStringList{QString()}};
    QCOMPARE(m_ini->LoadAllKeysInSection(S("A")), nothing);
    Write("[A]\r\n; x=1\r\nno key\r\n[B]\r\nx=1\r\n");
    QCOMPARE(m_ini->LoadAllKeysInSection(S("A")), nothing);
}

void clsIniTest::keysStandFromColumnOneInFileOrder() {
    Write("[A]\r\nz=1\r\n;c=2\r\na = \"x y\" \r\nZ=3\r\ne=\r\n[B]\r\nq=9\r\n");
    const clsIni::KeyTable table = m_ini->LoadAllKeysInSection(S("a"));
    QCOMPARE(table[0], QStringList({QString(), S("z"), S("a"), S("Z"), S("e")}));
    QCOMPARE(table[1], QStringList({QString(), S("1"), S("x y"), S("1"), QString()}));
}

void clsIniTest::longValueIsCutTo499Characters() {
    Write("[A]\r\nB=" + QByteArray(498, 'x') + "yz\r\nC=" + QByteArray(499, 'x') + "\r\n");
    QCOMPARE(Get("A", "B"), QString(498, u'x') + u'y');
    QCOMPARE(Get("A", "C"), QString(499, u'x'));
    QCOMPARE(m_ini->GetIniString(S("A"), S("D"), QString(600, u'd')).size(), 499);
    const QStringList listed = m_ini->LoadAllKeysInSection(S("A"))[1];
    QCOMPARE(listed[1], QString(498, u'x') + u'y');
    QCOMPARE(listed[2], QString(499, u'x'));
}

void clsIniTest::valuesAreTrimmedAndOnePairOfQuotesStripped_data() {
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("read");
    QTest::newRow("blanks") << QByteArray("B =  x y \t") << S("x y");
    QTest::newRow("quotes") << QByteArray("B= \" x \" ") << S(" x ");
    QTest::newRow("two pairs") << QByteArray("B=\"\"x\"\"") << S("\"x\"");
    QTest::newRow("open quote") << QByteArray("B=\"x") << S("\"x");
    QTest::newRow("one quote") << QByteArray("B=\"") << S("\"");
    QTest::newRow("equals signs") << QByteArray("B=a=b=c") << S("a=b=c");
    QTest::newRow("semicolon") << QByteArray("B=a;b") << S("a;b");
    QTest::newRow("bracket") << QByteArray("B=[x]") << S("[x]");
    QTest::newRow("empty") << QByteArray("B=") << QString();
}

void clsIniTest::valuesAreTrimmedAndOnePairOfQuotesStripped() {
    QFETCH(QByteArray, stored);
    QFETCH(QString, read);
    Write("[A]\r\n" + stored + "\r\n");
    QCOMPARE(Get("A", "B"), read);
}

void clsIniTest::namesMatchWithoutCase() {
    Write(" [ Setup ] trailing\r\n  Left =1\r\n");
    QCOMPARE(Get("SETUP", "LEFT"), S("1"));
    Save("setup", "left", "2");
    QCOMPARE(Bytes(), " [ Setup ] trailing\r\nleft=2\r\n");
}

void clsIniTest::anotherFileIsUsedForThatCallOnly() {
    const QString other = m_folder->File(S("USER.INI"));
    m_ini->SaveIniString(S("A"), S("B"), S("other"), other);
    QVERIFY(!QFile::exists(m_folder->IniFile()));
    QCOMPARE(m_ini->GetIniString(S("A"), S("B"), S("?"), other), S("other"));
    QCOMPARE(Get("A", "B"), S("?"));
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("C"), S("c"), other), S("c"));
    QCOMPARE(m_ini->LoadAllKeysInSection(S("A"), other)[0], QStringList({QString(), S("B"), S("C")}));
    m_ini->DeleteKey(S("A"), S("B"), other);
    QCOMPARE(m_folder->Read(S("USER.INI")), "[A]\r\nC=c\r\n");
    m_ini->DeleteSection(S("A"), other);
    QCOMPARE(m_folder->Read(S("USER.INI")), "");
}

void clsIniTest::emptyPathDoesNothing() {
    clsIni ini{QString()};
    bool failed = false;
    ini.SetWriteFailed([&](const QString&, const QString&) { failed = true; });
    ini.SaveIniString(S("A"), S("B"), S("c"));
    ini.DeleteSection(S("A"));
    QCOMPARE(ini.GetIniString(S("A"), S("B"), S("x")), QString());
    QCOMPARE(ini.GetIniStringWriteDefault(S("A"), S("B"), S("x")), QString());
    QCOMPARE(ini.LoadAllKeysInSection(S("A"))[0], QStringList{QString()});
    QVERIFY(!failed);
}

void clsIniTest::deleteKeyAndDeleteSection() {
    Write("[A]\r\nb=1\r\nc=2\r\n\r\n[B]\r\nb=3\r\n");
    m_ini->DeleteKey(S("a"), S("B"));
    QCOMPARE(Bytes(), "[A]\r\nc=2\r\n\r\n[B]\r\nb=3\r\n");
    m_ini->DeleteKey(S("A"), S("missing"));
    m_ini->DeleteSection(S("missing"));
    m_ini->DeleteSection(S("A"));
    QCOMPARE(Bytes(), "[B]\r\nb=3\r\n");
}

void clsIniTest::changeLeavesEveryOtherByteAlone() {
    Write("; head\n\xE9\xFF\n[A]\n  b = 1  \nrubbish\n;b=7\n#x\n[B]\nb=2");
    Save("A", "b", "3");
    QCOMPARE(Bytes(), "; head\n\xE9\xFF\n[A]\nb=3\r\nrubbish\n;b=7\n#x\n[B]\nb=2");
}

void clsIniTest::newKeyStandsAtTheEndOfItsSection() {
    Write("[A]\r\nb=1\r\n\r\n\r\n[B]\r\nc=2\r\n");
    Save("A", "d", "3");
    QCOMPARE(Bytes(), "[A]\r\nb=1\r\nd=3\r\n\r\n\r\n[B]\r\nc=2\r\n");
}

void clsIniTest::firstOfTwoEqualSectionsCounts() {
    Write("[A]\r\nb=1\r\nb=2\r\n[B]\r\n[a]\r\nb=3\r\nc=4\r\n");
    QCOMPARE(Get("A", "b"), S("1"));
    QCOMPARE(Get("A", "c"), S("?"));
    Save("A", "b", "5");
    QCOMPARE(Bytes(), "[A]\r\nb=5\r\nb=2\r\n[B]\r\n[a]\r\nb=3\r\nc=4\r\n");
}

void clsIniTest::deletingTakesEveryEqualSectionAndKey() {
    Write("[A]\r\nb=1\r\nB=2\r\n[B]\r\nx=1\r\n[a]\r\nb=3\r\n");
    m_ini->DeleteKey(S("A"), S("b"));
    QCOMPARE(Get("A", "b"), S("?"));
    m_ini->DeleteSection(S("A"));
    QCOMPARE(Bytes(), "[B]\r\nx=1\r\n");
}

void clsIniTest::wholeSectionIsLoadedHoweverLong() {
    QList<std::pair<QString, QString>> values;
    for (int i = 0; i < 5000; ++i)
        values.append({QStringLiteral("key%1").arg(i), QString::number(i)});
    m_ini->SaveSection(S("A"), values);
    QCOMPARE(m_ini->LoadSection(S("A")), values);
    QVERIFY(m_ini->LoadSection(S("B")).isEmpty());

    Write("[A]\r\nlong=" + QByteArray(600, 'v') + "\r\nquoted=\" x\"\r\n");
    values = m_ini->LoadSection(S("a"));
    QCOMPARE(values.size(), 2);
    QCOMPARE(values[0].second.size(), 499);
    QCOMPARE(values[1].second, S(" x"));
}

void clsIniTest::savingASectionReplacesItInPlace() {
    Write("[A]\r\nx=1\r\n[CALLSIGNS]\r\nOLD=A\r\n[B]\r\ny=2");
    m_ini->SaveSection(S("CALLSIGNS"), {{S("XQ9ZZ"), S("A")}, {S("QIRAN"), S("B")}, {S("E"), QString()}});
    QCOMPARE(Bytes(), "[A]\r\nx=1\r\n[CALLSIGNS]\r\nXQ9ZZ=A\r\nQIRAN=B\r\nE=\"\"\r\n[B]\r\ny=2");
    m_ini->SaveSection(S("C"), {{S("k"), S("1")}, {S("K"), S("2")}, {S("="), S("3")}});
    QVERIFY(Bytes().endsWith("[B]\r\ny=2\r\n[C]\r\nK=2\r\n"));
}

void clsIniTest::savingASectionOutweighsAnEqualOneBelow() {
    Write("[C]\r\nold=1\r\n[B]\r\n[C]\r\nolder=2\r\n");
    m_ini->SaveSection(S("C"), {{S("new"), S("3")}});
    QCOMPARE(Bytes(), "[C]\r\nnew=3\r\n[B]\r\n");
}

void clsIniTest::keysThatDifferInMoreThanCaseStayTwo() {
    const QString sharp = QStringLiteral("STRA\u00DFE");
    m_ini->SaveSection(S("A"), {{sharp, S("1")}, {S("strasse"), S("2")}});
    QCOMPARE(m_ini->GetIniString(S("A"), sharp, {}), S("1"));
    QCOMPARE(Get("A", "strasse"), S("2"));
    const auto [keys, values] = m_ini->LoadAllKeysInSection(S("A"));
    QCOMPARE(keys, QStringList({QString(), sharp, S("strasse")}));
    QCOMPARE(values, QStringList({QString(), S("1"), S("2")}));
}

void clsIniTest::namesMayEndInANoBreakSpace() {
    const QString name = QStringLiteral("x\u00A0");
    m_ini->SaveIniString(name, name, S("1"));
    m_ini->SaveIniString(name, name, S("2"));
    QCOMPARE(m_ini->GetIniString(name, name, {}), S("2"));
    QCOMPARE(Bytes(), "[x\xA0]\r\nx\xA0=2\r\n");
}

void clsIniTest::fileWithoutFinalLineEndIsReadAndContinued() {
    Write("[A]\r\nb=1");
    QCOMPARE(Get("A", "b"), S("1"));
    Save("A", "c", "2");
    QCOMPARE(Bytes(), "[A]\r\nb=1\r\nc=2\r\n");
    Write("[A]\r\nb=1");
    Save("C", "d", "3");
    QCOMPARE(Bytes(), "[A]\r\nb=1\r\n[C]\r\nd=3\r\n");
}

void clsIniTest::byteOrderMarkIsPassedOver() {
    Write("\xEF\xBB\xBF[A]\r\nb=1\r\n");
    QCOMPARE(Get("A", "b"), S("1"));
    Save("A", "b", "2");
    QCOMPARE(Bytes(), "\xEF\xBB\xBF[A]\r\nb=2\r\n");
}

void clsIniTest::lineFeedsAloneAreRead() {
    Write("[A]\nb=1\nc=2\n");
    QCOMPARE(Get("A", "c"), S("2"));
}

void clsIniTest::tenThousandKeysAreReadAndSaved() {
    QByteArray text = "[A]\r\n";
    QList<std::pair<QString, QString>> many;
    for (int i = 0; i < 10000; ++i) {
        text += "k" + QByteArray::number(i) + "=" + QByteArray::number(i * 7) + "\r\n";
        many.append({u"k"_s + QString::number(i), QString::number(i)});
    }
    Write(text);
    QCOMPARE(Get("A", "k9999"), S("69993"));
    Save("A", "k5000", "x");
    QVERIFY(Bytes().contains("k4999=34993\r\nk5000=x\r\nk5001=35007\r\n"));
    const clsIni::KeyTable table = m_ini->LoadAllKeysInSection(S("A"));
    QCOMPARE(table[1].at(1001), S("7000"));
    m_ini->SaveSection(S("A"), many);
    QCOMPARE(Bytes().count('\n'), 10001);
}

void clsIniTest::keyNamesBeyondTheBufferAreCut() {
    QByteArray text = "[A]\r\n";
    for (int i = 0; i < 101; ++i)
        text += QByteArray::number(100 + i) + QByteArray(96, 'k') + "=" + QByteArray::number(i) + "\r\n";
    Write(text); // 100 characters a key with its end mark: the hundredth does not fit whole into 9,998
    const clsIni::KeyTable table = m_ini->LoadAllKeysInSection(S("A"));
    QCOMPARE(table[0].size(), 101);
    QCOMPARE(table[1].at(99), S("98"));
    QCOMPARE(table[0].at(100).size(), 98);
    QCOMPARE(table[1].at(100), QString());
}

void clsIniTest::valueOf100000CharactersIsKeptAndReadCut() {
    const QString value(100000, u'v');
    m_ini->SaveIniString(S("A"), S("B"), value);
    QCOMPARE(Bytes(), "[A]\r\nB=" + value.toLatin1() + "\r\n");
    QCOMPARE(Get("A", "B").size(), 499);
    Save("A", "C", "1");
    QCOMPARE(Bytes(), "[A]\r\nB=" + value.toLatin1() + "\r\nC=1\r\n");
}

void clsIniTest::textIsWindows1252() {
    m_ini->SaveIniString(S("A"), S("B"), u"Grüße € 漢 😀"_s);
    QCOMPARE(Bytes(), "[A]\r\nB=Gr\xFC\xDF\x65 \x80 ? ?\r\n");
    QCOMPARE(Get("A", "B"), u"Grüße € ? ?"_s);
}

void clsIniTest::lineEndsInAValueBecomeBlanks() {
    m_ini->SaveIniString(S("A"), S("B"), u"x\r\n[C]\nd=\0e"_s);
    QCOMPARE(Bytes(), "[A]\r\nB=x  [C] d= e\r\n");
}

void clsIniTest::namesThatALineCannotCarryAreNotWritten_data() {
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::newRow("empty key") << S("A") << QString();
    QTest::newRow("blank key") << S("A") << S("  ");
    QTest::newRow("equals sign") << S("A") << S("a=b");
    QTest::newRow("comment") << S("A") << S(";a");
    QTest::newRow("header") << S("A") << S("[a");
    QTest::newRow("bracket in section") << S("A]b") << S("c");
}

void clsIniTest::namesThatALineCannotCarryAreNotWritten() {
    QFETCH(QString, section);
    QFETCH(QString, key);
    m_ini->SaveIniString(section, key, S("x"));
    QVERIFY(Bytes().isEmpty());
}

void clsIniTest::namesOutsideTheCodePageDoNotPileUp() {
    for (int i = 0; i < 3; ++i)
        m_ini->SaveIniString(u"漢"_s, u"k\nλ"_s, S("x"));
    QCOMPARE(Bytes(), "[?]\r\nk ?=x\r\n");
}

void clsIniTest::newFileIsReadableByItsOwnerAlone() {
    Save("AGWPE", "PASSWORD", "secret");
    struct stat status {};
    QCOMPARE(stat(qPrintable(m_folder->IniFile()), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0600U);
    QCOMPARE(QDir(m_folder->Program().Path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{S("QiranDecode.INI")});
}

void clsIniTest::existingFileKeepsItsRights() {
    Write("[A]\r\nb=1\r\n");
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0640), 0);
    Save("A", "b", "2");
    struct stat status {};
    QCOMPARE(stat(qPrintable(m_folder->IniFile()), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0640U);
}

void clsIniTest::symbolicLinkStaysALink() {
    m_folder->Write(S("real/settings.ini"), "[A]\r\nb=1\r\n");
    QVERIFY(QFile::link(m_folder->File(S("real/settings.ini")), m_folder->IniFile()));
    Save("A", "b", "2");
    QVERIFY(QFileInfo(m_folder->IniFile()).isSymLink());
    QCOMPARE(m_folder->Read(S("real/settings.ini")), "[A]\r\nb=2\r\n");
}

void clsIniTest::danglingLinkCreatesItsTarget() {
    QVERIFY(QDir().mkpath(m_folder->File(S("real"))));
    QVERIFY(QFile::link(m_folder->File(S("real/settings.ini")), m_folder->IniFile()));
    Save("A", "b", "2");
    QVERIFY(QFileInfo(m_folder->IniFile()).isSymLink());
    QCOMPARE(m_folder->Read(S("real/settings.ini")), "[A]\r\nb=2\r\n");
    struct stat status {};
    QCOMPARE(stat(qPrintable(m_folder->IniFile()), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0600U);
}

void clsIniTest::relativeLinkIsFollowed() {
    m_folder->Write(S("real/settings.ini"), "[A]\r\nb=1\r\n");
    QCOMPARE(symlink("settings.ini", qPrintable(m_folder->File(S("real/other.ini")))), 0);
    QCOMPARE(symlink("real/other.ini", qPrintable(m_folder->IniFile())), 0);
    Save("A", "b", "2");
    QVERIFY(QFileInfo(m_folder->IniFile()).isSymLink());
    QVERIFY(QFileInfo(m_folder->File(S("real/other.ini"))).isSymLink());
    QCOMPARE(m_folder->Read(S("real/settings.ini")), "[A]\r\nb=2\r\n");
}

void clsIniTest::unchangedFileIsNotWrittenAgain() {
    Save("A", "b", "1");
    // A second name for the file, which a file in its place would not have.
    QCOMPARE(::link(qPrintable(m_folder->IniFile()), qPrintable(m_folder->File(S("same")))), 0);
    Save("A", "b", "1");
    m_ini->DeleteKey(S("A"), S("c"));
    struct stat after {};
    QCOMPARE(stat(qPrintable(m_folder->IniFile()), &after), 0);
    QCOMPARE(after.st_nlink, 2U);
}

void clsIniTest::unwritableFolderIsReportedOnceAndDefaultsHold() {
    Write("[A]\r\nb=1\r\n");
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0644), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0555), 0);
    QStringList failures;
    m_ini->SetWriteFailed([&](const QString& file, const QString& reason) {
        QVERIFY(!reason.isEmpty());
        failures.append(file);
    });
    {
        const OrdinaryUser user;
        QCOMPARE(Get("A", "b"), S("1"));
        QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("c"), S("x")), S("x"));
        Save("A", "b", "2");
    }
    QCOMPARE(failures, QStringList{m_folder->IniFile()});
    QCOMPARE(Bytes(), "[A]\r\nb=1\r\n");
}

void clsIniTest::writableFileOfAnUnwritableFolderIsWrittenInPlace() {
    Write("[A]\r\nb=1\r\n");
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0666), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0555), 0);
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    {
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("this machine lets us be nobody else than root");
        Save("A", "b", "longer than before");
        QCOMPARE(Bytes(), "[A]\r\nb=longer than before\r\n");
        Save("A", "b", "2");
    }
    QCOMPARE(failures, 0);
    QCOMPARE(Bytes(), "[A]\r\nb=2\r\n"); // nothing of the longer text stays behind
    struct stat status {};
    QCOMPARE(stat(qPrintable(m_folder->IniFile()), &status), 0);
    QCOMPARE(status.st_mode & 0777U, 0666U);
}

void clsIniTest::fileThatNoneMayReplaceIsWrittenInPlace() {
    // A folder in which everybody may make files, and replace his own only.
    Write("[A]\r\nb=1\r\n");
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0666), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 01777), 0);
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    {
        const OrdinaryUser user;
        Save("A", "b", "2");
    }
    QCOMPARE(failures, 0);
    QCOMPARE(Bytes(), "[A]\r\nb=2\r\n");
    QCOMPARE(QDir(m_folder->Program().Path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{S("QiranDecode.INI")});
}

void clsIniTest::fullDiskLeavesAFileOfAnUnwritableFolderWhole() {
    const QByteArray before = "[A]\r\nb=" + QByteArray(300, 'o') + "\r\n";
    Write(before);
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0666), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0555), 0);
    QString reason;
    m_ini->SetWriteFailed([&](const QString&, const QString& why) { reason = why; });
    {
        const OrdinaryUser user;
        const SmallFiles limit(1000);
        Save("A", "c", std::string(5000, 'n').c_str());
    }
    QVERIFY(!reason.isEmpty());
    QCOMPARE(Bytes(), before);
}

void clsIniTest::unreadableFileIsNeverOverwritten() {
    Write("[A]\r\nb=1\r\n");
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0), 0);
    QCOMPARE(chmod(qPrintable(m_folder->Program().Path()), 0777), 0);
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    {
        const OrdinaryUser user;
        QCOMPARE(Get("A", "b", "default"), S("default"));
        Save("A", "b", "2");
        m_ini->DeleteSection(S("A"));
    }
    QCOMPARE(chmod(qPrintable(m_folder->IniFile()), 0600), 0);
    QCOMPARE(failures, 1);
    QCOMPARE(Bytes(), "[A]\r\nb=1\r\n");
}

void clsIniTest::folderInPlaceOfTheFileIsReported() {
    QVERIFY(QDir().mkpath(m_folder->IniFile()));
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    QCOMPARE(m_ini->GetIniStringWriteDefault(S("A"), S("b"), S("x")), S("x"));
    QCOMPARE(failures, 1);
    QVERIFY(QFileInfo(m_folder->IniFile()).isDir());
}

void clsIniTest::oversizedFileIsNeverOverwritten() {
    Write("[A]\r\nb=1\r\n");
    constexpr qint64 size = 65LL * 1024 * 1024;
    QVERIFY(QFile::resize(m_folder->IniFile(), size));
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    QCOMPARE(Get("A", "b"), S("?"));
    Save("A", "b", "2");
    QCOMPARE(failures, 1);
    QCOMPARE(QFileInfo(m_folder->IniFile()).size(), size);
}

void clsIniTest::fileSizeLimitLeavesTheOldFileWhole() {
    const QByteArray before = "[A]\r\nb=" + QByteArray(300, 'o') + "\r\n";
    Write(before);
    QString reason;
    m_ini->SetWriteFailed([&](const QString&, const QString& why) { reason = why; });
    {
        const SmallFiles limit(1000);
        m_ini->SaveIniString(S("A"), S("c"), QString(5000, u'n'));
    }
    QVERIFY(!reason.isEmpty());
    QCOMPARE(Bytes(), before);
    QCOMPARE(QDir(m_folder->Program().Path()).entryList(QDir::Files).size(), 1); // nothing half-written stays
    Save("A", "c", "1");
    QCOMPARE(Bytes(), before + "c=1\r\n");
}

void clsIniTest::linkToWhatIsNoFileIsReported() {
    // A link of the user's may lead to a device, and who runs as root could replace that by a file.
    const QString target = m_folder->File(S("socket"));
    QCOMPARE(mknod(QFile::encodeName(target).constData(), S_IFSOCK | 0600, 0), 0);
    QVERIFY(QFile::link(target, m_folder->IniFile()));
    int failures = 0;
    m_ini->SetWriteFailed([&](const QString&, const QString&) { ++failures; });
    Save("A", "b", "1");
    QCOMPARE(failures, 1);
    QVERIFY(QFileInfo(m_folder->IniFile()).isSymLink());
    struct stat state {};
    QCOMPARE(stat(QFile::encodeName(target).constData(), &state), 0);
    QVERIFY(S_ISSOCK(state.st_mode));
}

void clsIniTest::killedWriterLeavesAWholeFile() {
    const QByteArray filler = "[F]\r\nf=" + QByteArray(200000, 'f') + "\r\n";
    Write("[A]\r\nn=0\r\n" + filler);
    for (int round = 0; round < 20; ++round) {
        const pid_t writer = fork();
        if (writer == 0) {
            clsIni ini(m_folder->IniFile());
            for (int i = 0;; ++i)
                ini.SaveIniString(S("A"), S("n"), QString::number(i));
        }
        usleep(static_cast<useconds_t>(500 + round * 700));
        ::kill(writer, SIGKILL);
        int status = 0;
        waitpid(writer, &status, 0);
        const QByteArray now = Bytes();
        QVERIFY(now.startsWith("[A]\r\nn="));
        QVERIFY(now.endsWith(filler));
    }
}

QTEST_GUILESS_MAIN(clsIniTest)
#include "clsIniTest.moc"
