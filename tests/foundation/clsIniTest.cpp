#include "foundation/clsIni.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class clsIniTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void twoQuotesReadBackAsTheEmptyString();
};

void clsIniTest::twoQuotesReadBackAsTheEmptyString() {
    const QTemporaryDir folder;
    clsIni ini(folder.filePath(QStringLiteral("x.INI")));
    ini.SaveIniString(QStringLiteral("A"), QStringLiteral("B"), QString());
    QCOMPARE(ini.GetIniString(QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("z")), QString());
}

QTEST_GUILESS_MAIN(clsIniTest)
#include "clsIniTest.moc"
