#include "link/kiss/frmKissSetup.h"

#include "foundation/messages/mb.h"
#include "link/kiss/KissLink.h"
#include "link/kiss/KissSettings.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"
#include "support/Tnc.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

/// The dialog by the keyboard, in front of a link to a TNC. What it has in common with the other setup is
/// tested there.
class frmKissSetupTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void itShowsTheSettingsInTabOrder();
    void withoutSettingsItShowsTheDefaultsAndWritesNothing();
    void portsAreCheckedOnLeaving_data();
    void portsAreCheckedOnLeaving();
    void aBlankHostKeepsTheFocus();
    void okStoresAndReconnects();
    void aLinkThatIsNotInUseIsNotConnected();
    void onlyTheCaseOfTheHostStoresWithoutReconnecting();
    void cancelStoresNothing();

private:
    void Open();

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    TestClock m_clock;
    std::unique_ptr<KissSettings> m_settings;
    std::unique_ptr<Tnc> m_tnc;
    std::unique_ptr<KissLink> m_link;
    QStringList m_lines;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    std::unique_ptr<frmKissSetup> m_dialog;
};

void frmKissSetupTest::init() {
    m_presenter.messages.clear();
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_settings = std::make_unique<KissSettings>(*m_ini);
    m_settings->Load();
    m_tnc = std::make_unique<Tnc>();
    QVERIFY(m_tnc->listen(QHostAddress::LocalHost));
    m_link = std::make_unique<KissLink>([this] { return m_settings->Address(); }, m_clock);
    m_lines.clear();
    connect(m_link.get(), &PacketLink::StatusText, this,
            [this](const QString& text) { m_lines.append(text); });
}

void frmKissSetupTest::cleanup() {
    m_dialog.reset();
    m_link.reset();
    m_tnc.reset();
}

void frmKissSetupTest::Open() {
    m_dialog = std::make_unique<frmKissSetup>(*m_settings, *m_link, m_messages);
    m_dialog->setModal(true);
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
}

void frmKissSetupTest::itShowsTheSettingsInTabOrder() {
    m_settings->SetAddress({u"shack"_s, 8011});
    Open();
    QCOMPARE(m_dialog->windowTitle(), u"KISS Setup"_s);
    QCOMPARE(m_dialog->findChild<QLineEdit*>(u"txtHostAddr"_s)->text(), u"shack"_s);
    QCOMPARE(m_dialog->findChild<QLineEdit*>(u"txtPort"_s)->text(), u"8011"_s);
    for (const auto* const name : {"txtHostAddr", "txtPort", "cmdOk", "cmdCancel", "txtHostAddr"}) {
        QCOMPARE(Keys::Focus(), QLatin1StringView(name));
        Keys::Press(Qt::Key_Tab);
    }
    for (const auto* const name : {"HostAddr", "Port"}) // reached by their access keys
        QCOMPARE(m_dialog->findChild<QLabel*>(u"lab"_s + QLatin1StringView(name))->buddy()->objectName(),
                 u"txt"_s + QLatin1StringView(name));
    Screenshots::Take(*m_dialog, u"frmKissSetup"_s);
}

void frmKissSetupTest::withoutSettingsItShowsTheDefaultsAndWritesNothing() {
    Open();
    QCOMPARE(m_dialog->findChild<QLineEdit*>(u"txtHostAddr"_s)->text(), u"localhost"_s);
    QCOMPARE(m_dialog->findChild<QLineEdit*>(u"txtPort"_s)->text(), u"8001"_s);
    QVERIFY(!QFile::exists(m_folder->IniFile()));
}

void frmKissSetupTest::portsAreCheckedOnLeaving_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("least") << u"1"_s << true;
    QTest::newRow("greatest") << u"65535"_s << true;
    QTest::newRow("above") << u"65536"_s << false;
    QTest::newRow("none") << QString() << false;
    QTest::newRow("zero") << u"0"_s << false;
}

void frmKissSetupTest::portsAreCheckedOnLeaving() {
    QFETCH(QString, typed);
    QFETCH(bool, isGood);
    Open();
    Keys::Press(Qt::Key_Tab);
    Keys::Replace(typed);
    Keys::Press(Qt::Key_Tab);
    QCOMPARE(Keys::Focus(), isGood ? u"cmdOk"_s : u"txtPort"_s);
    QCOMPARE(m_presenter.Texts(),
             isGood ? QStringList() : QStringList{u"'Port' must be a numeric value between 1 and 65535"_s});
}

void frmKissSetupTest::aBlankHostKeepsTheFocus() {
    Open();
    Keys::Replace(u"  "_s);
    Keys::Press(Qt::Key_Return);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(Keys::Focus(), u"txtHostAddr"_s);
    QCOMPARE(m_presenter.Texts(), QStringList{u"'Host address' cannot be blank."_s});
}

void frmKissSetupTest::okStoresAndReconnects() {
    m_settings->SetAddress({u"127.0.0.1"_s, m_tnc->serverPort()});
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 1);
    Open();
    Keys::Replace(u" localhost "_s);
    Keys::Press(Qt::Key_Return);
    QVERIFY(!m_dialog->isVisible());
    QTRY_COMPARE(m_lines.mid(1), (QStringList{u"*** KISS-Disconnected from - 127.0.0.1\r\n"_s,
                                              u"*** KISS-Connected to - localhost\r\n"_s}));
    KissSettings stored(*m_ini);
    stored.Load();
    QCOMPARE(stored.Address(), (KissAddress{u"localhost"_s, m_tnc->serverPort()}));
    QVERIFY(!stored.IsUsed());
}

void frmKissSetupTest::aLinkThatIsNotInUseIsNotConnected() {
    Open();
    Keys::Press(Qt::Key_Tab);
    Keys::Replace(QString::number(m_tnc->serverPort()));
    Keys::Press(Qt::Key_Return);
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(!m_link->IsInUse());
    QCOMPARE(m_settings->Address().port, m_tnc->serverPort());
}

void frmKissSetupTest::onlyTheCaseOfTheHostStoresWithoutReconnecting() {
    m_settings->SetAddress({u"localhost"_s, m_tnc->serverPort()});
    m_link->Connect();
    QTRY_COMPARE(m_lines.size(), 1);
    Open();
    Keys::Replace(u"LocalHost"_s);
    Keys::Press(Qt::Key_Return);
    QCOMPARE(m_settings->Address().host, u"LocalHost"_s);
    QCOMPARE(m_lines.size(), 1);
}

void frmKissSetupTest::cancelStoresNothing() {
    Open();
    Keys::Replace(u"elsewhere"_s);
    Keys::Press(Qt::Key_Escape);
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(!QFile::exists(m_folder->IniFile()));
}

QTEST_MAIN(frmKissSetupTest)
#include "frmKissSetupTest.moc"
