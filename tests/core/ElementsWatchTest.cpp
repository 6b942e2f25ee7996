#include "core/ElementsWatch.h"

#include "support/TemporaryProgramFolder.h"

#include <QSignalSpy>
#include <QTest>

class ElementsWatchTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void noticesAFileThatComesAndOneThatGoes();
    void tellsOnceOfManyChangesTogether();
    void noticesTheFolderWhenItComesIntoBeing();
    void noticesNothingAfterTheStop();
};

namespace {

struct Fixture {
    TemporaryProgramFolder folder;
    ElementsWatch watch{100};
    QSignalSpy changed{&watch, &ElementsWatch::Changed};

    void Start() { watch.Start(folder.Program().KepsFolder(), folder.Program().Path()); }
    void Write(const char* name) const { folder.Write(QString::fromLatin1(name), "elements"); }
};

} // namespace

void ElementsWatchTest::noticesAFileThatComesAndOneThatGoes() {
    Fixture f;
    f.Write("Keps/one.txt");
    f.Start();
    f.Write("Keps/two.txt");
    QTRY_COMPARE(f.changed.count(), 1);
    QVERIFY(QFile::remove(f.folder.File(QStringLiteral("Keps/one.txt"))));
    QTRY_COMPARE(f.changed.count(), 2);
}

void ElementsWatchTest::tellsOnceOfManyChangesTogether() {
    Fixture f;
    f.Write("Keps/one.txt");
    f.Start();
    for (const char* name : {"Keps/a", "Keps/b", "Keps/c"}) {
        f.Write(name);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(f.changed.count(), 1);
    QVERIFY(!f.changed.wait(300));
}

void ElementsWatchTest::noticesTheFolderWhenItComesIntoBeing() {
    Fixture f;
    f.Start();
    f.Write("QiranDecode.INI");
    QVERIFY(!f.changed.wait(300));
    f.Write("Keps/one.txt");
    QTRY_COMPARE(f.changed.count(), 1);
    f.Write("formula.txt");
    QVERIFY(!f.changed.wait(300));
    f.Write("Keps/two.txt");
    QTRY_COMPARE(f.changed.count(), 2);
}

void ElementsWatchTest::noticesNothingAfterTheStop() {
    Fixture f;
    f.Write("Keps/one.txt");
    f.Start();
    f.Write("Keps/two.txt");
    QTRY_VERIFY(f.watch.findChild<QTimer*>(QStringLiteral("timSettle"))->isActive());
    f.watch.Stop();
    QVERIFY(!f.changed.wait(300));
}

QTEST_GUILESS_MAIN(ElementsWatchTest)
#include "ElementsWatchTest.moc"
