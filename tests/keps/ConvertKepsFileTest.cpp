#include "keps/ConvertKepsFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

class ConvertKepsFileTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<ProgramFolder> m_folder;

    static QByteArray Read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    static void Write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    QString Keps(const QString& name) const { return m_folder->KepsFolder() + u'/' + name; }

    KepsConversion Convert(const QByteArray& bytes, const QString& name = QStringLiteral("amateur.txt"),
                           qint16 index = 0) const {
        Write(KepsFiles::Target(*m_folder), bytes);
        return ConvertKepsFile(*m_folder, KepsFiles::Target(*m_folder), name, index);
    }

private Q_SLOTS:
    void init() {
        m_directory = std::make_unique<QTemporaryDir>();
        m_folder = std::make_unique<ProgramFolder>(m_directory->path(), QStringLiteral("QiranDecode"));
    }

    void FileWithLfEndsInCrLfThroughout() {
        const QByteArray line(60, 'x');
        QVERIFY(Convert(line + '\n' + line + '\n').converted);
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(line + "\r\n" + line + "\r\n"));
        QVERIFY(!QFile::exists(KepsFiles::Work(*m_folder)));
        QVERIFY(QFile::exists(KepsFiles::Target(*m_folder))); // the source stays
    }

    void FileWithCrLfIsUnchanged() {
        const QByteArray text = QByteArray(60, 'x') + "\r\n" + QByteArray(60, 'y') + "\r\n";
        QVERIFY(Convert(text).converted);
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), text);
    }

    void CrLfSplitAroundThePieceBoundaryIsOneLineEnd() {
        for (qsizetype at = 8180; at <= 8200; ++at) {
            const QByteArray text =
                QByteArray(at, 'x') + "\r\n" + QByteArray(9000, 'y') + "\r\n" + QByteArray(100, 'z');
            QVERIFY(Convert(text).converted);
            QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), text);
        }
    }

    void LfOrCrAroundThePieceBoundaryIsOneLineEnd() {
        for (const QByteArray& end : {QByteArray("\n"), QByteArray("\r")}) {
            for (qsizetype at = 8188; at <= 8196; ++at) {
                const QByteArray before(at, 'x');
                const QByteArray after(9000, 'y');
                QVERIFY(Convert(before + end + after).converted);
                QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(before + "\r\n" + after));
            }
        }
    }

    void ConvertingTwiceChangesNothing() {
        QByteArray text;
        quint32 random = 7;
        while (text.size() < 40000) {
            random = random * 1664525U + 1013904223U;
            text += QByteArrayView("\r\n\r\nab 1").at((random >> 24U) % 8U);
        }
        QVERIFY(Convert(text).converted);
        const QByteArray once = Read(Keps(QStringLiteral("amateur.txt")));
        QVERIFY(Convert(once).converted);
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), once);
    }

    void SourceBelow80BytesIsNotTouched() {
        const KepsConversion conversion = Convert(QByteArray(79, 'x'));
        QVERIFY(!conversion.converted);
        QVERIFY(conversion.error.isEmpty());
        QCOMPARE(Read(KepsFiles::Target(*m_folder)), QByteArray(79, 'x'));
        QVERIFY(!QFile::exists(Keps(QStringLiteral("amateur.txt"))));
        QVERIFY(Convert(QByteArray(80, 'x')).converted);
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(80, 'x'));
    }

    void HtmlGoesIntoTheProgramFolderAndIsNamed() {
        Convert(QByteArray(100, 'x'));
        const QByteArray page = "<HTML>" + QByteArray(100, 'y') + "\n";
        for (qint16 index = 0; index < 2; ++index) {
            const QString copy = m_folder->File(QStringLiteral("File%1.HTML").arg(index + 1));
            const KepsConversion conversion = Convert(page, QStringLiteral("amateur.txt"), index);
            QVERIFY(conversion.converted);
            QCOMPARE(conversion.error,
                     QStringLiteral("The data appears to be an HTML file. Have a look at ") + copy);
            QCOMPARE(Read(copy), QByteArray(page.chopped(1) + "\r\n"));
        }
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(100, 'x'));
        QVERIFY(!QFile::exists(KepsFiles::Work(*m_folder)));
    }

    void OlderHtmlIsReplaced() {
        QVERIFY(Convert("<html>" + QByteArray(200, 'x')).converted);
        QVERIFY(Convert("<html>" + QByteArray(100, 'y')).converted);
        QCOMPARE(Read(m_folder->File(QStringLiteral("File1.HTML"))),
                 QByteArray("<html>" + QByteArray(100, 'y')));
    }

    void HtmlTagAcrossThePieceBoundaryIsFound() {
        for (qsizetype at = 8180; at <= 8194; ++at) {
            const KepsConversion conversion = Convert(QByteArray(at, 'x') + "<html>" + QByteArray(50, 'y'));
            QVERIFY(!conversion.error.isEmpty());
            QVERIFY(!QFile::exists(Keps(QStringLiteral("amateur.txt"))));
        }
    }

    void OlderFileIsReplacedWhole() {
        Convert(QByteArray(20000, 'x'));
        QVERIFY(Convert(QByteArray(100, 'y')).converted);
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(100, 'y'));
    }

    void KepsThatIsNoFolderIsAnErrorWithItsReason() {
        Write(m_folder->KepsFolder(), "in the way");
        const KepsConversion conversion = Convert(QByteArray(100, 'x'));
        QVERIFY(!conversion.converted);
        QVERIFY(conversion.error.startsWith(u"The file could not be stored: "));
    }

    void MissingSourceIsAnError() {
        const KepsConversion conversion =
            ConvertKepsFile(*m_folder, m_folder->File(QStringLiteral("none")), QStringLiteral("a.txt"), 0);
        QVERIFY(!conversion.converted);
        QVERIFY(!conversion.error.isEmpty());
    }

    void FullDiskLeavesTheOldFile() {
        Convert(QByteArray(100, 'x'));
        Write(KepsFiles::Target(*m_folder), QByteArray(200000, 'y'));
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        rlimit small = before;
        small.rlim_cur = 65536;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const KepsConversion conversion =
            ConvertKepsFile(*m_folder, KepsFiles::Target(*m_folder), QStringLiteral("amateur.txt"), 0);
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, oldHandler);
        QVERIFY(!conversion.converted);
        QVERIFY(conversion.error.startsWith(u"The file could not be stored: "));
        QCOMPARE(Read(Keps(QStringLiteral("amateur.txt"))), QByteArray(100, 'x'));
        QCOMPARE(
            QDir(m_folder->KepsFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{QStringLiteral("amateur.txt")});
    }

    void TheLargestFileIsConverted() {
        Write(KepsFiles::Target(*m_folder), QByteArray("x\n").repeated(4 * 1024 * 1024));
        QVERIFY(ConvertKepsFile(*m_folder, KepsFiles::Target(*m_folder), QStringLiteral("amateur.txt"), 0)
                    .converted);
        QCOMPARE(QFileInfo(Keps(QStringLiteral("amateur.txt"))).size(), 12 * 1024 * 1024);
    }
};

QTEST_GUILESS_MAIN(ConvertKepsFileTest)
#include "ConvertKepsFileTest.moc"
