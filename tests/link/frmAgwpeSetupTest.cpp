#include "link/agwpe/frmAgwpeSetup.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/Settings.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "pesim/EngineSimulator.h"
#include "support/CloseBox.h"
#include "support/Drop.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

const QString hostMessage = QStringLiteral("'Host address' cannot be blank.");
const QString portMessage = QStringLiteral("'Port' must be a numeric value between 1 and 32767");

} // namespace

/// The dialog by the keyboard, in front of a link that is connected to an engine.
class frmAgwpeSetupTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void itShowsTheSettingsInTabOrder();
    void everyFieldIsReachedByItsAccessKey();
    void enteringAFieldSelectsItsText();
    void thePasswordIsMasked();
    void lettersTypedIntoThePortDoNotAppear();
    void whateverWayACharacterComesThePortHoldsDigits();
    void fieldsTakeNoMoreThanTheirLength();
    void aLongerValueIsKeptWhileNobodyChangesIt_data();
    void aLongerValueIsKeptWhileNobodyChangesIt();
    void aLongerValueThatIsChangedIsWhatTheFieldShows();
    void portsAreCheckedOnLeaving_data();
    void portsAreCheckedOnLeaving();
    void aBlankHostKeepsTheFocus();
    void okWithABadFieldStoresNothing();
    void anEngineIsEnteredByKeysAlone();
    void thePasswordStandsInTheFileForItsOwnerAlone();
    void okStoresTrimmedValuesAndReconnects_data();
    void okStoresTrimmedValuesAndReconnects();
    void onlyTheCaseOfTheHostStoresWithoutReconnecting();
    void unchangedValuesAreWrittenAgainWithoutReconnecting();
    void cancelStoresNothing_data();
    void cancelStoresNothing();
    void cancelAndEscapeLeaveABadFieldUnasked_data();
    void cancelAndEscapeLeaveABadFieldUnasked();
    void theCloseBoxSaysWhatIsWrongAndStays();

private:
    QLineEdit* Field(const char* name) { return m_dialog->findChild<QLineEdit*>(QLatin1StringView(name)); }
    QPushButton* Button(const char* name) {
        return m_dialog->findChild<QPushButton*>(QLatin1StringView(name));
    }
    void Open();
    void Type(QLineEdit* field, const QString& text);
    bool Reconnected();

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    TestClock m_clock;
    std::unique_ptr<AgwSettings> m_settings;
    std::unique_ptr<EngineSimulator> m_engine;
    std::unique_ptr<AgwLink> m_link;
    QStringList m_lines;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    std::unique_ptr<frmAgwpeSetup> m_dialog;
};

void frmAgwpeSetupTest::init() {
    m_presenter.messages.clear();
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_settings = std::make_unique<AgwSettings>(*m_ini);
    m_engine = std::make_unique<EngineSimulator>();
    QVERIFY(m_engine->Listen());
    m_settings->setStrAgwHost(QStringLiteral("localhost"));
    m_settings->setIntAgwPort(static_cast<qint16>(m_engine->Port()));
    m_settings->setStrAgwLoginId(QStringLiteral("me"));
    m_settings->setStrAgwPassword(QStringLiteral("secret"));
    m_link = std::make_unique<AgwLink>(*m_settings, m_clock);
    m_link->Connect();
    QTRY_COMPARE(m_link->PortCount(), 1);
    m_lines.clear();
    connect(m_link.get(), &AgwLink::StatusText, this, [this](const QString& text) { m_lines.append(text); });
    Open();
}

void frmAgwpeSetupTest::cleanup() {
    m_dialog.reset();
    m_link.reset();
    m_engine.reset();
    m_settings.reset();
    m_ini.reset();
    m_folder.reset();
}

void frmAgwpeSetupTest::Open() {
    m_dialog = std::make_unique<frmAgwpeSetup>(*m_settings, *m_link, m_messages);
    m_dialog->setModal(true);
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
}

void frmAgwpeSetupTest::Type(QLineEdit* field, const QString& text) {
    while (!field->hasFocus())
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(field, Qt::Key_Delete); // all of it is selected
    QTest::keyClicks(field, text);
}

bool frmAgwpeSetupTest::Reconnected() {
    return m_lines.contains(QStringLiteral("*** AGW-Disconnected from - localhost\r\n"));
}

void frmAgwpeSetupTest::itShowsTheSettingsInTabOrder() {
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("AGWPE Setup"));
    QCOMPARE(Field("txtHostAddr")->text(), QStringLiteral("localhost"));
    QCOMPARE(Field("txtPort")->text(), QString::number(m_engine->Port()));
    QCOMPARE(Field("txtLoginId")->text(), QStringLiteral("me"));
    QCOMPARE(Field("txtPassword")->text(), QStringLiteral("secret"));
    QCOMPARE(m_dialog->findChild<QLabel*>(QStringLiteral("labHint"))->text(),
             QStringLiteral("Press F1 and read the help!"));
    for (const char* name :
         {"txtHostAddr", "txtPort", "txtLoginId", "txtPassword", "cmdOk", "cmdCancel", "txtHostAddr"}) {
        QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1StringView(name));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    const QPoint offCentre =
        m_dialog->frameGeometry().center() - m_dialog->screen()->availableGeometry().center();
    QVERIFY(offCentre.manhattanLength() <= 40);
    Screenshots::Take(*m_dialog, QStringLiteral("frmAgwpeSetup"));
}

void frmAgwpeSetupTest::everyFieldIsReachedByItsAccessKey() {
    const QList<std::pair<const char*, QString>> labels = {{"txtHostAddr", QStringLiteral("Host address")},
                                                           {"txtPort", QStringLiteral("Port")},
                                                           {"txtLoginId", QStringLiteral("Log-in Id")},
                                                           {"txtPassword", QStringLiteral("Password")}};
    QSet<QChar> keys;
    for (const auto& [name, text] : labels) {
        const auto all = m_dialog->findChildren<QLabel*>();
        const auto label = std::ranges::find(all, Field(name), &QLabel::buddy);
        QVERIFY(label != all.end());
        QCOMPARE((*label)->text().remove(u'&'), text);
        keys.insert((*label)->text()[(*label)->text().indexOf(u'&') + 1].toLower());
    }
    keys.insert(u'o');
    keys.insert(u'c');
    QCOMPARE(keys.size(), 6);
    QCOMPARE(Button("cmdOk")->text(), QStringLiteral("&Ok"));
    QCOMPARE(Button("cmdCancel")->text(), QStringLiteral("&Cancel"));
}

void frmAgwpeSetupTest::enteringAFieldSelectsItsText() {
    for (const char* name : {"txtHostAddr", "txtPort", "txtLoginId", "txtPassword"}) {
        QVERIFY(Field(name)->hasFocus());
        QCOMPARE(Field(name)->selectedText().size(), Field(name)->text().size());
        QTest::keyClick(Field(name), Qt::Key_Tab);
    }
    for (const char* name : {"txtHostAddr", "txtPort", "txtLoginId", "txtPassword"}) {
        QTest::mouseClick(Field(name), Qt::LeftButton);
        QCOMPARE(Field(name)->selectedText().size(), Field(name)->text().size());
    }
}

void frmAgwpeSetupTest::thePasswordIsMasked() {
    QCOMPARE(Field("txtPassword")->echoMode(), QLineEdit::Password);
    QVERIFY(!Field("txtPassword")->displayText().contains(QStringLiteral("secret")));
}

void frmAgwpeSetupTest::lettersTypedIntoThePortDoNotAppear() {
    Type(Field("txtPort"), QStringLiteral("a8-0.x 0+1E"));
    QCOMPARE(Field("txtPort")->text(), QStringLiteral("8001"));
    QTest::keyClick(Field("txtPort"), Qt::Key_Backspace);
    QCOMPARE(Field("txtPort")->text(), QStringLiteral("800"));
}

void frmAgwpeSetupTest::whateverWayACharacterComesThePortHoldsDigits() {
    QLineEdit* port = Field("txtPort");
    port->setFocus();
    const QString text = QStringLiteral("port 80:01\n");
    for (const auto modifier : {Qt::NoModifier, Qt::AltModifier, Qt::MetaModifier}) {
        port->clear();
        for (const QChar c : text.chopped(1))
            QTest::sendKeyEvent(QTest::Click, port, Qt::Key_unknown, c, modifier);
        QCOMPARE(port->text(), QStringLiteral("8001"));
    }
    QApplication::clipboard()->setText(text);
    port->clear();
    QTest::keyClick(port, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(port->text(), QStringLiteral("8001"));
    port->clear();
    QVERIFY(DropOn(port, text));
    QCOMPARE(port->text(), QStringLiteral("8001"));
}

void frmAgwpeSetupTest::aLongerValueIsKeptWhileNobodyChangesIt_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("Enter") << 0;
    QTest::newRow("click") << 1;
    QTest::newRow("through all fields") << 2;
}

void frmAgwpeSetupTest::aLongerValueIsKeptWhileNobodyChangesIt() {
    QFETCH(const int, way);
    const QString longHost = QString(100, u'h');
    const QString longId = QStringLiteral("id ").repeated(40) + u'.';
    const QString longPassword = QString(79, u'p') + QStringLiteral("  q");
    m_dialog.reset();
    m_settings->setStrAgwHost(longHost);
    m_settings->setStrAgwLoginId(longId);
    m_settings->setStrAgwPassword(longPassword);
    Open();
    QCOMPARE(Field("txtHostAddr")->text(), longHost.first(80));
    for (int i = 0; way == 2 && i < 4; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    if (way == 0)
        QTest::keyClick(Field("txtHostAddr"), Qt::Key_Return);
    else
        QTest::mouseClick(Button("cmdOk"), Qt::LeftButton);
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(m_lines.isEmpty()); // no new connection
    AgwSettings inFile(*m_ini);
    inFile.Load();
    QCOMPARE(inFile.strAgwHost(), longHost);
    QCOMPARE(inFile.strAgwLoginId(), longId);
    QCOMPARE(inFile.strAgwPassword(), longPassword);
    QCOMPARE(m_settings->strAgwPassword(), longPassword);
}

void frmAgwpeSetupTest::aLongerValueThatIsChangedIsWhatTheFieldShows() {
    m_dialog.reset();
    m_settings->setStrAgwLoginId(QString(100, u'i'));
    Open();
    Type(Field("txtPassword"), QStringLiteral("other"));
    QTest::keyClick(Field("txtPassword"), Qt::Key_Return);
    QCOMPARE(m_settings->strAgwLoginId(), QString(100, u'i'));
    QCOMPARE(m_settings->strAgwPassword(), QStringLiteral("other"));
    QVERIFY(Reconnected());
    Open();
    Field("txtLoginId")->setFocus();
    QTest::keyClick(Field("txtLoginId"), Qt::Key_End);
    QTest::keyClick(Field("txtLoginId"), Qt::Key_Backspace);
    QTest::keyClick(Field("txtLoginId"), Qt::Key_Return);
    QCOMPARE(m_settings->strAgwLoginId(), QString(79, u'i'));
}

void frmAgwpeSetupTest::fieldsTakeNoMoreThanTheirLength() {
    Type(Field("txtPort"), QStringLiteral("1234567"));
    QCOMPARE(Field("txtPort")->text(), QStringLiteral("12345"));
    for (const char* name : {"txtHostAddr", "txtLoginId", "txtPassword"}) {
        Type(Field(name), QString(100, u'x'));
        QCOMPARE(Field(name)->text(), QString(80, u'x'));
    }
}

void frmAgwpeSetupTest::portsAreCheckedOnLeaving_data() {
    QTest::addColumn<QString>("port");
    QTest::addColumn<bool>("good");
    QTest::newRow("0") << QStringLiteral("0") << false;
    QTest::newRow("32768") << QStringLiteral("32768") << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("99999") << QStringLiteral("99999") << false;
    QTest::newRow("32767") << QStringLiteral("32767") << true;
    QTest::newRow("1") << QStringLiteral("1") << true;
}

void frmAgwpeSetupTest::portsAreCheckedOnLeaving() {
    QFETCH(QString, port);
    QFETCH(bool, good);
    Type(Field("txtPort"), port);
    QTest::keyClick(Field("txtPort"), Qt::Key_Tab);
    QCOMPARE(m_presenter.Texts(), good ? QStringList() : QStringList{portMessage});
    QCOMPARE(Field("txtPort")->hasFocus(), !good);
    if (!good)
        QCOMPARE(m_presenter.messages[0].style, qint16(16));
}

void frmAgwpeSetupTest::aBlankHostKeepsTheFocus() {
    Type(Field("txtHostAddr"), QStringLiteral("   "));
    QTest::keyClick(Field("txtHostAddr"), Qt::Key_Tab);
    QCOMPARE(m_presenter.Texts(), QStringList{hostMessage});
    QCOMPARE(m_presenter.messages[0].style, qint16(16));
    QVERIFY(Field("txtHostAddr")->hasFocus());
}

void frmAgwpeSetupTest::okWithABadFieldStoresNothing() {
    const QByteArray before = m_folder->Read(QStringLiteral("QiranDecode.INI"));
    Type(Field("txtPort"), QStringLiteral("0"));
    QTest::keyClick(Field("txtPort"), Qt::Key_Return);
    QCOMPARE(m_presenter.Texts(), QStringList{portMessage});
    QVERIFY(m_dialog->isVisible());
    QTest::keyClick(m_dialog.get(), Qt::Key_O, Qt::AltModifier);
    QCOMPARE(m_presenter.Texts(), QStringList({portMessage, portMessage})); // once an attempt
    QVERIFY(m_dialog->isVisible());
    QVERIFY(Field("txtPort")->hasFocus());
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")), before);
}

void frmAgwpeSetupTest::anEngineIsEnteredByKeysAlone() {
    for (const char* keys : {"127.0.0.1", "8010", "myself", "hush"}) { // each in place of what is selected
        QTest::keyClicks(QApplication::focusWidget(), QLatin1StringView(keys));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(m_settings->strAgwHost(), QStringLiteral("localhost")); // nothing before OK
    QVERIFY(Button("cmdOk")->hasFocus());
    QTest::keyClick(Button("cmdOk"), Qt::Key_Space);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_settings->strAgwHost(), QStringLiteral("127.0.0.1"));
    QCOMPARE(m_settings->intAgwPort(), qint16(8010));
    QCOMPARE(m_settings->strAgwLoginId(), QStringLiteral("myself"));
    QCOMPARE(m_settings->strAgwPassword(), QStringLiteral("hush"));
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmAgwpeSetupTest::thePasswordStandsInTheFileForItsOwnerAlone() {
    Type(Field("txtPassword"), QStringLiteral("not masked"));
    QFile::remove(m_folder->IniFile());
    QTest::keyClick(Field("txtPassword"), Qt::Key_Return);
    QVERIFY(m_folder->Read(QStringLiteral("QiranDecode.INI")).contains("\r\nPASSWORD=not masked\r\n"));
    const QFile::Permissions others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(m_folder->IniFile()) & others));
}

void frmAgwpeSetupTest::okStoresTrimmedValuesAndReconnects_data() {
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("typed");
    QTest::newRow("host") << QByteArray("txtHostAddr") << QStringLiteral(" 127.0.0.1 ");
    QTest::newRow("port") << QByteArray("txtPort") << QStringLiteral("32767");
    QTest::newRow("login id") << QByteArray("txtLoginId") << QStringLiteral(" ME ");
    QTest::newRow("password") << QByteArray("txtPassword") << QStringLiteral("Secret ");
}

void frmAgwpeSetupTest::okStoresTrimmedValuesAndReconnects() {
    QFETCH(QByteArray, field);
    QFETCH(QString, typed);
    Type(Field(field.constData()), typed);
    QTest::keyClick(Field(field.constData()), Qt::Key_Return);
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(Reconnected());
    const QMap<QByteArray, QString> stored = {{"txtHostAddr", m_settings->strAgwHost()},
                                              {"txtPort", QString::number(m_settings->intAgwPort())},
                                              {"txtLoginId", m_settings->strAgwLoginId()},
                                              {"txtPassword", m_settings->strAgwPassword()}};
    QCOMPARE(stored.value(field), typed.trimmed());
    AgwSettings inFile(*m_ini);
    inFile.Load();
    QCOMPARE(inFile.strAgwHost(), m_settings->strAgwHost());
    QCOMPARE(inFile.intAgwPort(), m_settings->intAgwPort());
    QCOMPARE(inFile.strAgwLoginId(), m_settings->strAgwLoginId());
    QCOMPARE(inFile.strAgwPassword(), m_settings->strAgwPassword());
}

void frmAgwpeSetupTest::onlyTheCaseOfTheHostStoresWithoutReconnecting() {
    Type(Field("txtHostAddr"), QStringLiteral("LocalHost"));
    QTest::keyClick(m_dialog.get(), Qt::Key_O, Qt::AltModifier);
    QTRY_VERIFY(!m_dialog->isVisible());
    QCOMPARE(Settings::Read(*m_ini, Settings::hostAddress), QStringLiteral("LocalHost"));
    QVERIFY(!Reconnected());
}

void frmAgwpeSetupTest::unchangedValuesAreWrittenAgainWithoutReconnecting() {
    m_ini->DeleteSection(QStringLiteral("AGWPE"));
    QTest::keyClick(Field("txtHostAddr"), Qt::Key_Return);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")),
             "[AGWPE]\r\nHOST_ADDRESS=localhost\r\nPASSWORD=secret\r\nLOGIN_ID=me\r\nHOST_PORT=" +
                 QByteArray::number(m_engine->Port()) + "\r\n");
    QVERIFY(!Reconnected());
}

void frmAgwpeSetupTest::cancelStoresNothing_data() {
    QTest::addColumn<bool>("escape");
    QTest::newRow("Cancel") << false;
    QTest::newRow("Escape") << true;
}

void frmAgwpeSetupTest::cancelStoresNothing() {
    QFETCH(bool, escape);
    const QByteArray before = m_folder->Read(QStringLiteral("QiranDecode.INI"));
    Type(Field("txtHostAddr"), QStringLiteral("elsewhere"));
    if (escape)
        QTest::keyClick(Field("txtHostAddr"), Qt::Key_Escape);
    else
        QTest::keyClick(m_dialog.get(), Qt::Key_C, Qt::AltModifier);
    QTRY_VERIFY(!m_dialog->isVisible());
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")), before);
    QCOMPARE(m_settings->strAgwHost(), QStringLiteral("localhost"));
    QVERIFY(!Reconnected());
}

void frmAgwpeSetupTest::cancelAndEscapeLeaveABadFieldUnasked_data() {
    cancelStoresNothing_data();
}

void frmAgwpeSetupTest::cancelAndEscapeLeaveABadFieldUnasked() {
    QFETCH(bool, escape);
    Type(Field("txtPort"), QString());
    if (escape)
        QTest::keyClick(Field("txtPort"), Qt::Key_Escape);
    else
        QTest::keyClick(m_dialog.get(), Qt::Key_C, Qt::AltModifier);
    QTRY_VERIFY(!m_dialog->isVisible());
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmAgwpeSetupTest::theCloseBoxSaysWhatIsWrongAndStays() {
    Type(Field("txtPort"), QString());
    PressCloseBox(*m_dialog);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(m_presenter.messages.size(), 1);
    QVERIFY(Field("txtPort")->hasFocus());
    Type(Field("txtPort"), QStringLiteral("1"));
    PressCloseBox(*m_dialog);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(m_settings->strAgwHost(), QStringLiteral("localhost"));
    QVERIFY(!Reconnected());
}

QTEST_MAIN(frmAgwpeSetupTest)
#include "frmAgwpeSetupTest.moc"
