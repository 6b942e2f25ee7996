#include "foundation/settings/ShippedFile.h"

#include "support/TemporaryProgramFolder.h"

#include <QCoreApplication>
#include <QTest>

using namespace Qt::StringLiterals;

/// Where the files are found that come with the program.
class ShippedFileTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void theUsersOwnCopyWins();
    void besideTheExecutableItIsFoundFirst();
    void theSharedDataOfTheExecutablesInstallationAreNext();
    void theSharedDataOfTheSystemAreLast();
    void aFolderOfThatNameIsNoFile();
    void whatIsNowhereStaysWhereItBelongs();

private:
    static void Put(const QString& path);

    TemporaryProgramFolder m_folder;
    QString m_own;
};

namespace {

// No other test looks for this name.
const QString name = u"ShippedFileTest.gif"_s;

QString Beside() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(name);
}

QString Installed() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../../share/qirandecode/"_s + name);
}

} // namespace

void ShippedFileTest::Put(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void ShippedFileTest::init() {
    m_own = m_folder.File(name);
    qputenv("XDG_DATA_HOME", m_folder.File(u"data"_s).toLocal8Bit());
}

void ShippedFileTest::cleanup() {
    qunsetenv("XDG_DATA_HOME");
    for (const QString& path : {m_own, Beside(), Installed(), m_folder.File(u"data/qirandecode/"_s + name)})
        QFile::remove(path);
    QDir().rmpath(QFileInfo(Installed()).path()); // as far as it is empty
}

void ShippedFileTest::theUsersOwnCopyWins() {
    Put(m_own);
    Put(Beside());
    QCOMPARE(ShippedFile(m_own), m_own);
}

void ShippedFileTest::besideTheExecutableItIsFoundFirst() {
    Put(Beside());
    Put(Installed());
    QCOMPARE(ShippedFile(m_own), Beside());
}

void ShippedFileTest::theSharedDataOfTheExecutablesInstallationAreNext() {
    Put(Installed());
    Put(m_folder.File(u"data/qirandecode/"_s + name));
    QCOMPARE(ShippedFile(m_own), Installed());
}

void ShippedFileTest::theSharedDataOfTheSystemAreLast() {
    Put(m_folder.File(u"data/qirandecode/"_s + name));
    QCOMPARE(ShippedFile(m_own), m_folder.File(u"data/qirandecode/"_s + name));
}

void ShippedFileTest::aFolderOfThatNameIsNoFile() {
    QVERIFY(QDir().mkdir(Beside()));
    const QString found = ShippedFile(m_own);
    QDir().rmdir(Beside());
    QCOMPARE(found, m_own);
}

void ShippedFileTest::whatIsNowhereStaysWhereItBelongs() {
    QCOMPARE(ShippedFile(m_own), m_own);
}

QTEST_GUILESS_MAIN(ShippedFileTest)
#include "ShippedFileTest.moc"
