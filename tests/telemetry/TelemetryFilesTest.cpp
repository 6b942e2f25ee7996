#include "telemetry/history/TelemetryFiles.h"

#include "support/TemporaryProgramFolder.h"

#include <QTest>

class TelemetryFilesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEmptyFolderStaysEmpty();
    void historyIsDeletedAndEveryInputHandedOver();
};

void TelemetryFilesTest::anEmptyFolderStaysEmpty() {
    const TemporaryProgramFolder folder;
    int imported = 0;
    TelemetryFiles::PurgeTelemetryFiles(folder.Program().Path(),
                                        [&](const QString&, const QString&) { ++imported; });
    QCOMPARE(imported, 0);
    QVERIFY(QDir(folder.Program().Path()).isEmpty());
}

void TelemetryFilesTest::historyIsDeletedAndEveryInputHandedOver() {
    const TemporaryProgramFolder folder;
    for (const char* name : {"tlm.txt", "2001.txt", "20010203.txt", "20020203.txt", "2001x.dat", "x2001.txt"})
        folder.Write(QString::fromLatin1(name), "content");
    QStringList imported;
    TelemetryFiles::PurgeTelemetryFiles(folder.Program().Path(),
                                        [&](const QString& path, const QString& history) {
                                            imported.append(path);
                                            QCOMPARE(history, folder.File(QStringLiteral("tlm.txt")));
                                        });
    imported.sort();
    QCOMPARE(imported, QStringList({folder.File(QStringLiteral("2001.txt")),
                                    folder.File(QStringLiteral("20010203.txt"))}));
    QCOMPARE(
        QDir(folder.Program().Path()).entryList(QDir::Files, QDir::Name),
        QStringList({QStringLiteral("2001.txt"), QStringLiteral("20010203.txt"), QStringLiteral("2001x.dat"),
                     QStringLiteral("20020203.txt"), QStringLiteral("x2001.txt")}));
}

QTEST_GUILESS_MAIN(TelemetryFilesTest)
#include "TelemetryFilesTest.moc"
