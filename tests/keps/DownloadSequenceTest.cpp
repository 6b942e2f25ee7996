#include "keps/DownloadSequence.h"

#include "foundation/messages/mb.h"
#include "keps/ConvertKepsFile.h"
#include "keps/FakeTransfer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class DownloadSequenceTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<ProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<FakeTransfer> m_inet;
    std::unique_ptr<DownloadSequence> m_sequence;
    QStringList m_lines;
    QList<std::pair<QString, qint16>> m_messages;
    QList<std::pair<qint64, qint64>> m_progress;
    int m_finished = 0;

    static constexpr auto one = "one.org/first.txt";
    static constexpr auto two = "two.org/second.txt";

    static QByteArray Elements() { return QByteArray(100, 'x') + "\r\n"; }
    static QByteArray Stored() { return Elements() + "\r\n"; } // one line end is added to every response

    void Download(const char* first, const char* second) const {
        m_sequence->Download({QString::fromUtf8(first), QString::fromUtf8(second)});
    }
    QByteArray Keps(const char* name) const {
        QFile file(m_folder->KepsFolder() + u'/' + QString::fromUtf8(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    QTimer& Timer1() const { return *m_sequence->findChild<QTimer*>(QStringLiteral("Timer1")); }
    void NextFile() const {
        const auto lines = m_lines.size() + m_messages.size();
        QTRY_VERIFY(m_lines.size() + m_messages.size() > lines);
    }
    bool HasWorkFiles() const {
        return QFile::exists(KepsFiles::Target(*m_folder)) || QFile::exists(KepsFiles::Work(*m_folder));
    }

private Q_SLOTS:
    void init() {
        m_sequence.reset();
        m_directory = std::make_unique<QTemporaryDir>();
        m_folder = std::make_unique<ProgramFolder>(m_directory->path(), QStringLiteral("QiranDecode"));
        m_ini = std::make_unique<clsIni>(m_folder->IniFile());
        m_inet = std::make_unique<FakeTransfer>();
        m_sequence = std::make_unique<DownloadSequence>(*m_inet, *m_ini, *m_folder);
        m_lines.clear();
        m_messages.clear();
        m_progress.clear();
        m_finished = 0;
        Timer1().setInterval(0);
        connect(m_sequence.get(), &DownloadSequence::Status, this,
                [this](const QString& line) { m_lines.append(line); });
        connect(m_sequence.get(), &DownloadSequence::Message, this,
                [this](const QString& text, qint16 style) {
                    m_messages.append({text, style});
                });
        connect(m_sequence.get(), &DownloadSequence::Progress, this, [this](qint64 received, qint64 total) {
            m_progress.append({received, total});
        });
        connect(m_sequence.get(), &DownloadSequence::Finished, this, [this] { ++m_finished; });
    }

    void BothBlankIsSaidAndNothingStarts_data() {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::newRow("empty") << QByteArray("") << QByteArray("");
        QTest::newRow("blanks") << QByteArray("  ") << QByteArray(" ");
        QTest::newRow("ending in separators") << QByteArray("host/dir/") << QByteArray("host\\");
        QTest::newRow("folder above") << QByteArray("host/..") << QByteArray("host/%2e%2e");
    }
    void BothBlankIsSaidAndNothingStarts() {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        Download(first.constData(), second.constData());
        QCOMPARE(m_messages.size(), 1);
        QCOMPARE(m_messages[0].first, QStringLiteral("Both URLs are blank!"));
        QCOMPARE(m_messages[0].second, MessageStyle::Exclamation);
        QVERIFY(m_inet->executed.isEmpty());
        QVERIFY(m_lines.isEmpty());
        QVERIFY(!QFile::exists(m_folder->IniFile())); // nothing is saved either
    }

    void AddressesAreSavedAsTyped() {
        Download(" one.org/first.txt", "two.org/second.txt");
        QCOMPARE(m_ini->GetIniString(QStringLiteral("KEPS"), QStringLiteral("FILE_1"), {}),
                 QStringLiteral("one.org/first.txt")); // the file trims on reading
        QCOMPARE(m_ini->GetIniString(QStringLiteral("KEPS"), QStringLiteral("FILE_2"), {}),
                 QStringLiteral("two.org/second.txt"));
        QCOMPARE(m_inet->executed, QStringList{QStringLiteral("GET http://one.org/first.txt")});
    }

    void BothFilesAreFetchedOneAfterTheOther() {
        Download(one, two);
        m_inet->Complete(Elements());
        QVERIFY(Timer1().isActive());
        QVERIFY(Timer1().isSingleShot());
        QCOMPARE(Keps("first.txt"), Stored());
        const int before = m_inet->cancelled;
        NextFile();
        QCOMPARE(m_inet->cancelled, before + 1); // the transfer is over before the next begins
        m_inet->Complete(Elements());
        NextFile();
        QCOMPARE(m_inet->cancelled, before + 2);
        QCOMPARE(m_lines, (QStringList{QStringLiteral("Getting first.txt"),
                                       QStringLiteral("first.txt has been downloaded"),
                                       QStringLiteral("\r\nGetting second.txt"),
                                       QStringLiteral("second.txt has been downloaded")}));
        QCOMPARE(m_inet->executed, (QStringList{QStringLiteral("GET http://one.org/first.txt"),
                                                QStringLiteral("GET http://two.org/second.txt")}));
        QCOMPARE(m_messages.size(), 1);
        QCOMPARE(m_messages[0].first, QStringLiteral("The Keps have been downloaded."));
        QCOMPARE(m_messages[0].second, MessageStyle::Information);
        QCOMPARE(m_finished, 1);
        QCOMPARE(Keps("second.txt"), Stored());
        QVERIFY(m_sequence->Result());
        QVERIFY(!HasWorkFiles());
    }

    void OnlyTheSecondFilledSkipsTheFirst() {
        for (const char* first : {"", "host/dir/"}) {
            init();
            Download(first, two);
            QCOMPARE(m_inet->executed, QStringList{QStringLiteral("GET http://two.org/second.txt")});
            m_inet->Complete(Elements());
            NextFile();
            QCOMPARE(m_finished, 1);
            QCOMPARE(Keps("second.txt"), Stored());
        }
    }

    void OnlyTheFirstFilledFinishesAfterIt() {
        Download(one, "host/");
        m_inet->Complete(Elements());
        NextFile();
        QCOMPARE(m_inet->executed.size(), 1);
        QCOMPARE(m_finished, 1);
    }

    void StatesAreShownByTheirTextsWhileBusy() {
        for (int state = 0; state <= 10; ++state)
            m_inet->Raise(state);
        QVERIFY(m_lines.isEmpty());
        Download(one, "");
        m_lines.clear();
        for (int state = 0; state <= 10; ++state)
            m_inet->Raise(state);
        m_inet->Raise(99);
        m_inet->Raise(-1);
        QCOMPARE(m_lines, (QStringList{QStringLiteral("Idle"), QStringLiteral("Resolving host"),
                                       QStringLiteral("Resolved host"),
                                       QStringLiteral("Attempting to connect to - celestrak.org"),
                                       QStringLiteral("Connected"), QStringLiteral("Request sent"),
                                       QStringLiteral("Received some data"), QStringLiteral("Disconnecting"),
                                       QStringLiteral("Disconnected")}));
        m_inet->Complete(Elements());
        m_lines.clear();
        m_inet->Raise(InternetTransfer::Disconnected);
        QVERIFY(m_lines.isEmpty());
    }

    void ErrorStopsTheSequenceWithoutASummary() {
        Download(one, two);
        const int before = m_inet->cancelled;
        m_inet->Fail(404, QStringLiteral("Not Found"));
        QCOMPARE(m_lines.last(), QStringLiteral("Error - 404 Not Found"));
        QVERIFY(m_inet->cancelled > before);
        QVERIFY(!Timer1().isActive());
        QCoreApplication::processEvents();
        QCOMPARE(m_inet->executed.size(), 1);
        QVERIFY(m_messages.isEmpty());
        QCOMPARE(m_finished, 0);
        QVERIFY(!m_sequence->Result());
        const auto lines = m_lines.size();
        m_inet->Raise(InternetTransfer::Disconnected); // no longer busy
        m_inet->Complete(Elements());
        QCOMPARE(m_lines.size(), lines);
        QCOMPARE(Keps("first.txt"), QByteArray("(no file)"));
    }

    void ErrorOfTheSecondKeepsTheResultOfTheFirst() {
        Download(one, two);
        m_inet->Complete(Elements());
        NextFile();
        m_inet->Fail(3, QStringLiteral("Host not found"));
        QVERIFY(m_sequence->Result());
        QVERIFY(!HasWorkFiles());
    }

    void SecondFileThatCannotBeStoredKeepsTheResultOfTheFirst() {
        QVERIFY(QDir().mkpath(m_folder->KepsFolder() + QStringLiteral("/second.txt")));
        Download(one, two);
        m_inet->Complete(Elements());
        NextFile();
        m_inet->Complete(Elements());
        NextFile();
        QVERIFY(m_messages.last().first.contains(u"\r\nFile 2 - The file could not be stored: "));
        QVERIFY(m_sequence->Result());
    }

    void DownloadAfterAnErrorStartsAfresh() {
        Download(one, "");
        m_inet->Fail(500, QStringLiteral("Internal Server Error"));
        Download("", two);
        m_inet->Complete(Elements());
        NextFile();
        QCOMPARE(m_messages.last().first, QStringLiteral("The Keps have been downloaded."));
    }

    void DownloadBetweenTheTwoFilesStartsAfresh() {
        Download(one, two);
        m_inet->Complete(Elements());
        Download(one, "");
        QVERIFY(!Timer1().isActive());
        m_inet->Complete(Elements());
        NextFile();
        QCOMPARE(m_inet->executed.size(), 2);
        QCOMPARE(m_finished, 1);
    }

    void ResponseBelow80BytesIsNotInstalled_data() {
        QTest::addColumn<int>("length");
        for (int length : {0, 1, 77, 78, 79})
            QTest::newRow(qPrintable(QString::number(length))) << length;
    }
    void ResponseBelow80BytesIsNotInstalled() {
        QFETCH(int, length);
        Download(one, "");
        m_inet->Complete(QByteArray(length, 'x'));
        QCOMPARE(m_lines.last(), QStringLiteral("first.txt has been downloaded"));
        NextFile();
        QCOMPARE(m_messages.last().first, QStringLiteral("The Keps have been downloaded."));
        QCOMPARE(Keps("first.txt"), QByteArray("(no file)"));
        QVERIFY(!m_sequence->Result());
        QVERIFY(!HasWorkFiles());
    }

    void ResponseOf80BytesIsInstalled() {
        Download(one, "");
        m_inet->Complete(QByteArray(80, 'x'));
        QCOMPARE(Keps("first.txt"), QByteArray(QByteArray(80, 'x') + "\r\n"));
        QVERIFY(m_sequence->Result());
    }

    void ResponseIsStoredUnbrokenAcrossChunks() {
        QByteArray text;
        for (int i = 0; i < 3000; ++i)
            text += "line " + QByteArray::number(i) + "\n";
        Download(one, "");
        m_inet->Complete(text);
        QCOMPARE(Keps("first.txt"), text.replace("\n", "\r\n") + "\r\n");
    }

    void HtmlIsKeptAsideAndNamedInTheSummary() {
        const QByteArray page = "<html>" + QByteArray(100, 'x') + "</html>";
        Download(one, two);
        m_inet->Complete(page);
        QCOMPARE(m_lines.last(), QStringLiteral("first.txt has been downloaded"));
        NextFile();
        m_inet->Complete(page);
        NextFile();
        QCOMPARE(m_messages.last().first,
                 QStringLiteral("The Keps have been downloaded.\r\nThe following errors occurred - "
                                "\r\nFile 1 - The data appears to be an HTML file. Have a look at %1"
                                "\r\nFile 2 - The data appears to be an HTML file. Have a look at %2")
                     .arg(m_folder->File(QStringLiteral("File1.HTML")),
                          m_folder->File(QStringLiteral("File2.HTML"))));
        QCOMPARE(Keps("first.txt"), QByteArray("(no file)"));
        QVERIFY(QFile::exists(m_folder->File(QStringLiteral("File2.HTML"))));
        QVERIFY(m_sequence->Result());
    }

    void OnlyTheFileInErrorIsInTheSummary() {
        Download(one, two);
        m_inet->Complete(Elements());
        NextFile();
        m_inet->Complete("<html>" + QByteArray(100, 'x'));
        NextFile();
        QVERIFY(!m_messages.last().first.contains(u"File 1 - "));
        QVERIFY(m_messages.last().first.contains(
            u"The Keps have been downloaded.\r\nThe following errors occurred - \r\nFile 2 - The data"));
    }

    void FileThatCannotBeStoredIsInTheSummary() {
        QFile inTheWay(m_folder->KepsFolder());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        Download(one, "");
        m_inet->Complete(Elements());
        QCOMPARE(m_lines.last(), QStringLiteral("first.txt has been downloaded"));
        NextFile();
        QVERIFY(m_messages.last().first.contains(u"\r\nFile 1 - The file could not be stored: "));
        QVERIFY(!m_sequence->Result());
    }

    void TargetThatCannotBeWrittenIsInTheSummary() {
        QVERIFY(QDir().mkpath(KepsFiles::Target(*m_folder)));
        Download(one, "");
        m_inet->Complete(Elements());
        NextFile();
        QVERIFY(m_messages.last().first.contains(u"\r\nFile 1 - The file could not be stored: "));
        QCOMPARE(Keps("first.txt"), QByteArray("(no file)"));
    }

    void CancelAtAnyMomentLeavesNothingBehind() {
        for (int moment = 0; moment < 4; ++moment) {
            init();
            Download(one, two);
            if (moment > 0)
                m_inet->Raise(InternetTransfer::ResponseReceived);
            if (moment > 1)
                m_inet->Complete(Elements());
            if (moment > 2)
                NextFile();
            const int before = m_inet->cancelled;
            m_sequence->Cancel();
            QVERIFY(m_inet->cancelled > before);
            QVERIFY(!Timer1().isActive());
            QVERIFY(!HasWorkFiles());
            m_inet->Complete(Elements()); // too late
            QVERIFY(!HasWorkFiles());
            QCOMPARE(m_sequence->Result(), moment > 1);
            QCOMPARE(m_finished, 0);
        }
    }

    void FilesLeftByACrashAreRemoved() {
        QVERIFY(QDir().mkpath(m_folder->KepsFolder()));
        for (const QString& path : {KepsFiles::Target(*m_folder), KepsFiles::Work(*m_folder)}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        Download(one, "");
        QVERIFY(!HasWorkFiles());
    }

    void ProgressIsTheFilesInProgressAndNoLineOfText() {
        m_inet->RaiseProgress(1, 2); // of nothing that is under way
        Download(one, two);
        m_inet->RaiseProgress(1024, 5000);
        m_inet->RaiseProgress(2048, -1);
        m_inet->Complete(Elements());
        m_inet->RaiseProgress(3000, 5000); // too late
        NextFile();
        m_inet->RaiseProgress(7, 100);
        m_inet->Fail(404, QStringLiteral("Not Found"));
        using Steps = QList<std::pair<qint64, qint64>>;
        QCOMPARE(m_progress, (Steps{{0, 0}, {0, -1}, {1024, 5000}, {2048, -1}, {0, -1}, {7, 100}, {0, 0}}));
        for (const QString& line : m_lines)
            QVERIFY2(!line.contains(u"bytes"), qPrintable(line));
    }

    void WhileAnotherFetchesNothingStartsAndItsFilesStay() {
        auto another = FolderLock::OfKeps(*m_folder);
        QVERIFY(another.TryLock());
        QFile theirs(KepsFiles::Target(*m_folder));
        QVERIFY(theirs.open(QIODevice::WriteOnly));
        Download(one, two);
        QCOMPARE(m_messages.size(), 1);
        QVERIFY2(m_messages[0].first.startsWith(u"The elements are being fetched already, by process "),
                 qPrintable(m_messages[0].first));
        QCOMPARE(m_messages[0].second, MessageStyle::Exclamation);
        QVERIFY(m_inet->executed.isEmpty());
        QVERIFY(m_lines.isEmpty());
        m_sequence->Cancel();
        QVERIFY(QFile::exists(KepsFiles::Target(*m_folder)));
        another.Unlock();
        Download(one, two);
        QCOMPARE(m_inet->executed.size(), 1);
    }

    void OthersAreHeldOffUntilTheEnd() {
        auto another = FolderLock::OfKeps(*m_folder);
        Download(one, two);
        QVERIFY(!another.TryLock());
        m_inet->Complete(Elements());
        QVERIFY(!another.TryLock());
        NextFile();
        m_inet->Complete(Elements());
        NextFile();
        QCOMPARE(m_finished, 1);
        QVERIFY(another.TryLock());
        another.Unlock();
        Download(one, "");
        m_inet->Fail(404, QStringLiteral("Not Found"));
        QVERIFY(another.TryLock());
    }
};

QTEST_GUILESS_MAIN(DownloadSequenceTest)
#include "DownloadSequenceTest.moc"
