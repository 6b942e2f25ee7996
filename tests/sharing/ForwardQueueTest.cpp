#include "sharing/ForwardQueue.h"

#include "sharing/SidsRequest.h"
#include "support/OrdinaryUser.h"
#include "support/SmallDisk.h"
#include "support/TemporaryProgramFolder.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ForwardQueueTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<ForwardQueue> m_queue;
    QStringList m_failures;
    QString m_file = ForwardQueue::FileName();

    static QByteArray Body(int number) {
        const SidsStation station{u"DL1ABC"_s, true, 49.7, 8.9, u"90417"_s, u"QiranDecode-2.4.2"_s};
        return *SidsRequest::Body(station, 1795274923120 + number, QByteArray::number(number));
    }
    void Open(qsizetype keepAtMost = 10000) {
        m_queue.reset();
        m_queue = std::make_unique<ForwardQueue>(
            m_folder->Program(), [this](const QString& reason) { m_failures.append(reason); });
        m_queue->Open(keepAtMost);
    }
    void Add(int first, int last) {
        for (int number = first; number <= last; ++number)
            QCOMPARE(m_queue->Add({Body(number)}), 1);
    }
    qint64 First() const { return m_queue->List().FirstWaiting(); }

    static QByteArrayList Bodies(const ForwardList& list) {
        QByteArrayList bodies;
        for (const auto& [number, frame] : list.Frames())
            bodies.append(frame.body);
        return bodies;
    }
    static QByteArrayList Bodies(int first, int last) {
        QByteArrayList bodies;
        for (int number = first; number <= last; ++number)
            bodies.append(Body(number));
        return bodies;
    }

private Q_SLOTS:
    void init() {
        m_queue.reset();
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_failures.clear();
        Open();
    }

    void NothingQueuedIsNoFile() {
        m_queue.reset();
        QVERIFY(m_folder->Read(m_file).isNull());
    }

    void FramesAreInTheFileAtOnceInTheirOrderByteForByte() {
        Add(1, 20);
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(1, 20));
        QCOMPARE(m_folder->Read(m_file).split('\n').value(0), "1 queued " + Body(1));
        QCOMPARE(QFile::permissions(m_folder->File(m_file)) & (QFile::ReadGroup | QFile::ReadOther),
                 QFile::Permissions());
        Open();
        QCOMPARE(Bodies(m_queue->List()), Bodies(1, 20));
        QCOMPARE(First(), 1);
    }

    void WhatWasSentStaysSentAndTheNextComes() {
        Add(1, 3);
        m_queue->NoteSent(1);
        QCOMPARE(First(), 2);
        Open();
        QCOMPARE(First(), 2);
        QCOMPARE(Bodies(m_queue->List()), Bodies(2, 3));
        QCOMPARE(m_queue->List().Counts(), (ForwardCounts{2, 0, 1, 0, 0}));
    }

    void ParkedFramesKeepTheServersWordsUntilTheUserDecides() {
        Add(1, 4);
        m_queue->Park(1, u"400 Bad\nRequest: \u00e4"_s);
        m_queue->Park(2, u"400"_s);
        m_queue->Park(3, QString());
        Open();
        QCOMPARE(First(), 4);
        QCOMPARE(m_queue->Parked(), (QList<qint64>{1, 2, 3}));
        QCOMPARE(m_queue->List().Frames().at(1).words, u"400 Bad Request: \u00e4"_s);
        m_queue->Retry({1});
        m_queue->Discard({2, 4, 99}); // one that waits, and one that is not there: neither is parked
        QCOMPARE(First(), 1);         // before the others, as it was heard
        Open();
        QCOMPARE(First(), 1);
        QCOMPARE(m_queue->List().Frames().at(1).words, QString());
        QCOMPARE(m_queue->Parked(), QList<qint64>{3});
        QCOMPARE(m_queue->List().Counts(), (ForwardCounts{2, 1, 0, 1, 0}));
    }

    void FullQueueDropsTheOldestAndCountsThem() {
        Open(5);
        Add(1, 3);
        m_queue->Park(1, u"400"_s);
        Add(4, 8);
        QCOMPARE(Bodies(m_queue->List()), Bodies(4, 8));
        QCOMPARE(m_queue->List().Counts(), (ForwardCounts{5, 0, 0, 0, 3}));
        Open(5);
        QCOMPARE(Bodies(m_queue->List()), Bodies(4, 8));
        m_queue->SetKeepAtMost(2);
        Open(10);
        QCOMPARE(Bodies(m_queue->List()), Bodies(7, 8));
        QCOMPARE(m_queue->List().Counts().dropped, 6);
        QCOMPARE(m_queue->Add(Bodies(10, 29)), 20);
        QCOMPARE(Bodies(m_queue->List()), Bodies(20, 29));
    }

    void FrameThatIsThereOrWasSentIsNotQueuedAgain() {
        Add(1, 3);
        m_queue->NoteSent(1);
        m_queue->Park(2, u"400"_s);
        QCOMPARE(m_queue->Add(Bodies(1, 4)), 1);
        Open();
        QCOMPARE(m_queue->Add(Bodies(1, 4)), 0);
        QCOMPARE(Bodies(m_queue->List()), Bodies(2, 4));
    }

    void OpenedAgainItSaysWhatTheFileSays() {
        Add(1, 3);
        m_queue->NoteSent(1);
        m_queue->Close();
        m_folder->Write(m_file, "7 queued " + Body(7) + "\n");
        QCOMPARE(m_queue->Open(10), 0);
        QCOMPARE(Bodies(m_queue->List()), Bodies(7, 7));
        QCOMPARE(m_queue->List().Counts(), (ForwardCounts{1, 0, 0, 0, 0}));
        Add(1, 1);
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), (QByteArrayList{Body(7), Body(1)}));
    }

    // A power cut or a kill leaves the beginning of the file, whose last line may be torn.
    void WhateverIsLeftOfTheFileIsReadToItsLastWholeLine() {
        Add(1, 3);
        m_queue->NoteSent(1);
        m_queue->Park(2, u"400 no"_s);
        m_queue.reset();
        const QByteArray whole = m_folder->Read(m_file);
        for (qsizetype size = 0; size <= whole.size(); ++size) {
            m_folder->Write(m_file, whole.first(size));
            ForwardList expected;
            const QByteArrayList lines = whole.first(size).split('\n');
            for (const QByteArray& line : lines.first(lines.size() - 1))
                QVERIFY(expected.Apply(line));
            const ForwardList read = ForwardQueue::Read(m_folder->Program());
            QCOMPARE(read.Lines(), expected.Lines());
            QCOMPARE(m_folder->Read(m_file), whole.first(size)); // looking changes nothing
            Open();
            Add(7, 7); // nothing of a torn line gets into the next one
            Open();
            const QByteArrayList found = Bodies(m_queue->List());
            QCOMPARE(found, Bodies(read) + Bodies(7, 7));
            m_queue.reset();
        }
    }

    void DamagedLinesCostThemselvesOnlyAndAreCounted() {
        m_folder->Write(m_file, "1 queued " + Body(1) + "\n\n" + QByteArray(100, '\0') +
                                    "\n2 queued nonsense\nx\n" + QByteArray(50'000, '9') + "\n3 queued " +
                                    Body(3) + "\r\n2 queued " + Body(2) + "\n-4 queued " + Body(4) +
                                    "\n4 sent zz\n99 parked no\n5 queued " + Body(5) + "\n5 counted 1 2\n");
        qint64 damaged = 0;
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program(), &damaged)),
                 (QByteArrayList{Body(1), Body(3), Body(5)}));
        QVERIFY2(damaged >= 10, qPrintable(QString::number(damaged)));
        Open();
        QCOMPARE(First(), 1);
    }

    void FileIsWrittenAnewBeforeItGrowsWithoutBound() {
        for (int round = 0; round < 2000; ++round) {
            Add(round, round);
            m_queue->NoteSent(First());
        }
        Add(5000, 5004);
        m_queue->Park(First(), u"400"_s);
        const QByteArrayList lines = m_folder->Read(m_file).split('\n');
        QVERIFY2(lines.size() < 4000, qPrintable(QString::number(lines.size())));
        Open();
        QCOMPARE(Bodies(m_queue->List()), Bodies(5000, 5004));
        QCOMPARE(m_queue->List().Counts(), (ForwardCounts{4, 1, 2000, 0, 0}));
        QCOMPARE(m_queue->Add(Bodies(0, 1999)), 0); // they were sent
        QVERIFY(!QFile::exists(m_folder->File(m_file + u".bak"_s)));
    }

    void WhatWasSentIsForgottenAtLast() {
        for (int number = 0; number <= ForwardList::mostRemembered; ++number) {
            m_queue->Add({Body(number)});
            m_queue->NoteSent(First());
        }
        Open();
        QCOMPARE(m_queue->List().LineCount(), ForwardList::mostRemembered + 1);
        QCOMPARE(m_queue->Add(Bodies(0, 1)), 1);
    }

    void FullDiskLosesNothingAndIsSaidOnce() {
        Add(1, 3);
        {
            const SmallDisk disk(static_cast<rlim_t>(m_folder->Read(m_file).size() + 50));
            Add(4, 6);
            m_queue->NoteSent(1);
            QCOMPARE(m_failures.size(), 1);
            QVERIFY(!m_queue->Store().isEmpty());
            QVERIFY(!m_queue->Store().isEmpty());
            QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(1, 3));
        }
        QCOMPARE(m_queue->Store(), QString());
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(2, 6));
        QCOMPARE(m_failures.size(), 1);
        const SmallDisk disk(1);
        Add(7, 7);
        QCOMPARE(m_failures.size(), 2);
    }

    void FileThatIsRemovedOrChangedMeanwhileIsWrittenAnew() {
        Add(1, 3);
        QVERIFY(QFile::remove(m_folder->File(m_file)));
        Add(4, 4);
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(1, 4));
        m_folder->Write(m_file, "cut");
        Add(5, 5);
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(1, 5));
        QCOMPARE(m_failures, QStringList());
    }

    void FolderInThePlaceOfTheFileIsSaidAndTheQueueGoesOnInMemory() {
        QVERIFY(QDir(m_folder->Program().Path()).mkpath(m_file + u"/x"_s));
        Add(1, 2);
        QCOMPARE(m_failures.size(), 1);
        QCOMPARE(First(), 1);
    }

    void FileThatCannotBeReadIsSaidAndLeftAlone() {
        m_queue.reset();
        m_folder.reset(); // which another user could not remove
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("rights mean nothing here");
        init();
        m_folder->Write(m_file, "1 queued " + Body(1) + "\n");
        const QByteArray before = m_folder->Read(m_file);
        QFile::setPermissions(m_folder->File(m_file), {});
        Open();
        QCOMPARE(m_failures.size(), 1);
        Add(2, 3);
        QVERIFY(!m_queue->Store().isEmpty());
        QFile::setPermissions(m_folder->File(m_file), QFile::ReadOwner | QFile::WriteOwner);
        QCOMPARE(m_folder->Read(m_file), before);
        m_queue.reset();
        m_folder.reset();
    }

    void FolderThatTakesNoFileIsSaidAndTheQueueGoesOnInMemory() {
        m_queue.reset();
        m_folder.reset(); // which another user could not remove
        const OrdinaryUser user;
        if (!OrdinaryUser::Is())
            QSKIP("rights mean nothing here");
        init();
        QFile::setPermissions(m_folder->Program().Path(), QFile::ReadOwner | QFile::ExeOwner);
        Add(1, 2);
        QCOMPARE(m_failures.size(), 1);
        QCOMPARE(First(), 1);
        QFile::setPermissions(m_folder->Program().Path(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(m_queue->Store(), QString());
        QCOMPARE(Bodies(ForwardQueue::Read(m_folder->Program())), Bodies(1, 2));
        m_queue.reset();
        m_folder.reset();
    }
};

QTEST_GUILESS_MAIN(ForwardQueueTest)
#include "ForwardQueueTest.moc"
