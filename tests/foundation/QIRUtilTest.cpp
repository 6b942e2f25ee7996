#include "foundation/text/QIRUtil.h"

#include "foundation/messages/mb.h"
#include "support/RecordingPresenter.h"

#include <QDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

class QIRUtilTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void callsigns_data();
    void callsigns();
    void callsignKeys();
    void charactersOfCallsignsAndNumbers();
    void latitudes_data();
    void latitudes();
    void longitudes_data();
    void longitudes();
    void messageWithoutContextIdHasNoHelpButton();
    void messageWithContextIdAsksForAHelpButton();
    void captionIsTheTitleUnlessGiven();
    void answerIsThePresenters();
    void helpFileStandsInTheProgramsFolder();
    void helpContentsAndQuitAreTheirCommands();
};

void QIRUtilTest::callsigns_data() {
    QTest::addColumn<bool>("valid");
    for (const char* good : {"XQ9ZZ", "XQ9ZZ-15", "XQ9ZZ-0", "XQ9ZZ-07", "A", "9", "ABCDEF", "ABCDEF-1"})
        QTest::newRow(good) << true;
    for (const char* bad : {"XQ9ZZ-16", "XQ9ZZ-", "XQ9ZZ-123", "xq9zz", "ABCDEFG", "", "-1", "-", "XQ9ZZ-A",
                            "XQ9ZZ--1", "XQ9ZZ-1-2", "XQ 9ZZ", " XQ9ZZ", "XQ9ZZ-+1", "XQ9ZZ-1 ", "XQ9/Z"})
        QTest::newRow(*bad != '\0' ? bad : "empty") << false;
}

void QIRUtilTest::callsigns() {
    QFETCH(bool, valid);
    const QString callsign = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(QIRUtil::IsValidCallsign(callsign == u"empty" ? QString() : callsign), valid);
    QVERIFY(!QIRUtil::IsValidCallsign(u"XQ9Ä"));
    QVERIFY(!QIRUtil::IsValidCallsign(u"XQ9ZZ-٣")); // a digit of another script
}

void QIRUtilTest::callsignKeys() {
    for (qint16 code = 0; code < 256; ++code) {
        const bool accepted =
            code <= 13 || (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') || code == '-';
        QCOMPARE(QIRUtil::IsCallsignKey(code), accepted);
    }
}

void QIRUtilTest::charactersOfCallsignsAndNumbers() {
    QString callsign;
    QString number;
    for (int code = 0; code <= 0xFFFF; ++code) {
        if (const auto character = QIRUtil::CallsignCharacter(QChar(code)))
            callsign += *character;
        if (const auto character = QIRUtil::DigitCharacter(QChar(code)))
            number += *character;
    }
    const QString letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s;
    QCOMPARE(callsign, u"-0123456789"_s + letters + letters);
    QCOMPARE(number, u"0123456789"_s);
}

void QIRUtilTest::latitudes_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("degrees");
    QTest::newRow("north") << u"3859.11N"_s << 38 + 59.11 / 60;
    QTest::newRow("south") << u"3859.11S"_s << -(38 + 59.11 / 60);
    QTest::newRow("lower case") << u"3859.11n"_s << 0.0;
    QTest::newRow("no letter") << u"3859.11"_s << 0.0;
    QTest::newRow("east") << u"3859.11E"_s << 0.0;
    QTest::newRow("pole") << u"9000.00S"_s << -90.0;
    QTest::newRow("pole in minutes") << u"8960.00N"_s << 90.0;
    QTest::newRow("beyond the pole") << u"9500.00N"_s << 0.0;
    QTest::newRow("just beyond the other") << u"9000.01S"_s << 0.0;
    QTest::newRow("beyond by its minutes") << u"8960.01N"_s << 0.0;
    QTest::newRow("empty") << QString() << 0.0;
    QTest::newRow("letter alone") << u"N"_s << 0.0;
    QTest::newRow("degrees alone") << u"38N"_s << 38.0;
    QTest::newRow("words") << u"abcd.efN"_s << 0.0;
    QTest::newRow("blanks") << u" 859.11N"_s << 8 + 59.11 / 60;
}

void QIRUtilTest::latitudes() {
    QFETCH(QString, text);
    QFETCH(double, degrees);
    QCOMPARE(QIRUtil::LatToDegrees(text), degrees);
}

void QIRUtilTest::longitudes_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("degrees");
    QTest::newRow("west") << u"07629.17W"_s << -(76 + 29.17 / 60);
    QTest::newRow("east") << u"07629.17E"_s << 76 + 29.17 / 60;
    QTest::newRow("date line") << u"18000.00E"_s << 180.0;
    QTest::newRow("beyond it") << u"18000.01E"_s << 0.0;
    QTest::newRow("far beyond it") << u"99959.99W"_s << 0.0;
    QTest::newRow("north") << u"07629.17N"_s << 0.0;
    QTest::newRow("lower case") << u"07629.17w"_s << 0.0;
    QTest::newRow("empty") << QString() << 0.0;
    QTest::newRow("letter alone") << u"W"_s << 0.0;
}

void QIRUtilTest::longitudes() {
    QFETCH(QString, text);
    QFETCH(double, degrees);
    QCOMPARE(QIRUtil::LongToDegrees(text), degrees);
}

void QIRUtilTest::messageWithoutContextIdHasNoHelpButton() {
    RecordingPresenter presenter;
    mb(presenter).MessageBox(nullptr, u"x"_s, MessageStyle::Information);
    QCOMPARE(presenter.messages.first().style, MessageStyle::Information);
    QCOMPARE(presenter.messages.first().contextId, -1);
}

void QIRUtilTest::messageWithContextIdAsksForAHelpButton() {
    RecordingPresenter presenter;
    mb(presenter).MessageBox(this, u"x"_s, MessageStyle::Critical, {}, 7);
    QCOMPARE(presenter.messages.first().style, qint16(16 + 16384));
    QCOMPARE(presenter.messages.first().contextId, 7);
    QCOMPARE(presenter.messages.first().owner, this);
}

void QIRUtilTest::captionIsTheTitleUnlessGiven() {
    RecordingPresenter presenter;
    mb messages(presenter);
    messages.SetTitle(u"QIRAN Telemetry Decoder"_s);
    messages.MessageBox(nullptr, u"x"_s, 64);
    messages.MessageBox(nullptr, u"x"_s, 64, u"Other"_s);
    QCOMPARE(presenter.messages[0].caption, u"QIRAN Telemetry Decoder"_s);
    QCOMPARE(presenter.messages[1].caption, u"Other"_s);
}

void QIRUtilTest::answerIsThePresenters() {
    RecordingPresenter presenter;
    presenter.answer = 2;
    QCOMPARE(mb(presenter).MessageBox(nullptr, u"x"_s, 1), 2);
}

void QIRUtilTest::helpFileStandsInTheProgramsFolder() {
    RecordingPresenter presenter;
    mb messages(presenter);
    const QChar separator = QDir::separator();
    messages.SetUpHelp(nullptr, u"/opt/q"_s);
    QCOMPARE(messages.HelpFile(), u"/opt/q"_s + separator + u"qirandecode.HLP"_s);
    messages.SetUpHelp(nullptr, u"  /opt/q"_s + separator + u' ');
    QCOMPARE(messages.HelpFile(), u"/opt/q"_s + separator + u"qirandecode.HLP"_s);
}

void QIRUtilTest::helpContentsAndQuitAreTheirCommands() {
    RecordingPresenter presenter;
    const mb messages(presenter);
    messages.HelpContents();
    messages.HelpQuit();
    QCOMPARE(presenter.helpCommands, QList({HelpCommand::Contents, HelpCommand::Quit}));
    QCOMPARE(int(HelpCommand::Contents), 11);
    QCOMPARE(int(HelpCommand::Quit), 2);
}

QTEST_GUILESS_MAIN(QIRUtilTest)
#include "QIRUtilTest.moc"
