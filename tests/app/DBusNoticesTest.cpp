#include "app/DBusNotices.h"

#include <QDBusConnection>
#include <QProcess>
#include <QTest>

/// Takes the desktop's place on a bus of the test's own.
class DBusNoticesTest : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
private Q_SLOTS:
    void aNoticeWithoutADesktopIsNoError();
    void theDesktopGetsTitleAndPlainText();
    void aBusThatHasGoneIsNoError();

public Q_SLOTS:
    Q_SCRIPTABLE uint Notify(const QString& program, uint replaces, const QString& icon, const QString& title,
                             const QString& text, const QStringList& actions, const QVariantMap& hints,
                             int milliseconds);

private:
    QProcess m_bus;
    QString m_address;
    QStringList m_shown;
};

uint DBusNoticesTest::Notify(const QString& program, uint, const QString& icon, const QString& title,
                             const QString& text, const QStringList&, const QVariantMap&, int) {
    m_shown.append(QStringList{program, icon, title, text}.join(u'|'));
    return 1;
}

// A process finds its bus once, so that this test is the first: nobody on the bus shows notices yet.
void DBusNoticesTest::aNoticeWithoutADesktopIsNoError() {
    m_bus.start(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
    QVERIFY(m_bus.waitForReadyRead());
    m_address = QString::fromLocal8Bit(m_bus.readLine().trimmed());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toLocal8Bit());
    DBusNotices().Show(QStringLiteral("title"), QStringLiteral("nobody looks"));
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void DBusNoticesTest::theDesktopGetsTitleAndPlainText() {
    QDBusConnection desktop = QDBusConnection::connectToBus(m_address, QStringLiteral("desktop"));
    QVERIFY(desktop.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                   QDBusConnection::ExportScriptableSlots));
    QVERIFY(desktop.registerService(QStringLiteral("org.freedesktop.Notifications")));
    QCoreApplication::setApplicationName(QStringLiteral("QiranDecode"));
    DBusNotices().Show(QStringLiteral("A POWER Batt A"), QStringLiteral("low <b>warning</b>"));
    QTRY_COMPARE(m_shown, QStringList(QStringLiteral(
                              "QiranDecode|qirandecode|A POWER Batt A|low &lt;b&gt;warning&lt;/b&gt;")));
}

void DBusNoticesTest::aBusThatHasGoneIsNoError() {
    m_bus.kill();
    QVERIFY(m_bus.waitForFinished());
    DBusNotices().Show(QStringLiteral("title"), QStringLiteral("text"));
    QTRY_VERIFY(!QDBusConnection::sessionBus().isConnected());
    DBusNotices().Show(QStringLiteral("title"), QStringLiteral("text"));
}

QTEST_GUILESS_MAIN(DBusNoticesTest)
#include "DBusNoticesTest.moc"
