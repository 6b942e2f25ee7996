#include "station/identity/frmLocation.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/clsIni.h"
#include "station/identity/Station.h"
#include "support/CloseBox.h"
#include "support/Drop.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmLocationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void itOpensWithWhatTheStationHas();
    void aStationIsEnteredByKeysAlone();
    void tabGoesThroughTheFieldsInOrder();
    void everyFieldIsSelectedWhole();
    void keysAreRaisedOrDropped();
    void aFailingFieldKeepsTheFocusAndSpeaksOnce_data();
    void aFailingFieldKeepsTheFocusAndSpeaksOnce();
    void aClickOutOfAFailingFieldSpeaksOnce();
    void theWindowKeepsItsSizeWhileSomebodyTypes();
    void okDoesNotGoThroughWithAFailingField();
    void okChecksOnlyTheFieldThatIsLeft_data();
    void okChecksOnlyTheFieldThatIsLeft();
    void okLeavesWhatNobodyTouchedAsItIs_data();
    void okLeavesWhatNobodyTouchedAsItIs();
    void whatIsChangedIsStoredAndTheRestStays();
    void aKnownPositionsLocatorIsStored();
    void whateverWayACharacterComesItIsRaisedOrRefused();
    void lineEndsOfACommentAreBlanksAtOnce_data();
    void lineEndsOfACommentAreBlanksAtOnce();
    void cancelAndEscapeLeaveThroughAFailingField_data();
    void cancelAndEscapeLeaveThroughAFailingField();
    void theCloseBoxChangesNothing();
    void theCloseBoxSaysWhatIsWrongAndStays();
    void anEmptiedLatitudeKeepsTheLocator();
    void aCommentIsTrimmedAndMayHoldAccents();

private:
    QLineEdit* Field(const QString& name) const { return m_window->findChild<QLineEdit*>(name); }
    QString Locator() const { return m_window->findChild<QLabel*>(u"labLocator"_s)->text(); }
    void Open() {
        m_window = std::make_unique<frmLocation>(*m_station, m_messages);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTRY_COMPARE(Focus(), u"txtCallsign"_s);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<Station> m_station;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    std::unique_ptr<frmLocation> m_window;
};

void frmLocationTest::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    m_ini = std::make_unique<clsIni>(m_folder->filePath(u"x.INI"_s));
    m_station = std::make_unique<Station>(*m_ini);
    m_presenter.messages.clear();
}

void frmLocationTest::cleanup() {
    m_window.reset();
}

void frmLocationTest::itOpensWithWhatTheStationHas() {
    m_station->setStrCallsign(u"XQ9ZZ-1"_s);
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    m_station->setStrComment(u"hello"_s);
    Open();
    QCOMPARE(m_window->windowTitle(), u"Station Information"_s);
    QCOMPARE(Field(u"txtCallsign"_s)->text(), u"XQ9ZZ-1"_s);
    QCOMPARE(Field(u"txtLat"_s)->text(), u"51.30.00N"_s);
    QCOMPARE(Field(u"txtLong"_s)->text(), u"000.30.00W"_s);
    QCOMPARE(Field(u"txtComment"_s)->text(), u"hello"_s);
    QCOMPARE(Locator(), u"IO91SM"_s);
    QVERIFY(m_presenter.messages.isEmpty());
    const QPoint offCentre = m_window->frameGeometry().center() - m_window->screen()->geometry().center();
    QVERIFY(offCentre.manhattanLength() <= 40);
    Screenshots::Take(*m_window, u"frmLocation"_s);
}

void frmLocationTest::theWindowKeepsItsSizeWhileSomebodyTypes() {
    Open();
    const QSize size = m_window->size();
    Press(Qt::Key_Tab);
    for (const QChar key : u"51.30n"_s) {
        Type(QString(key));
        QCoreApplication::processEvents();
        QCOMPARE(m_window->size(), size);
    }
}

void frmLocationTest::aStationIsEnteredByKeysAlone() {
    Open();
    QSignalSpy finished(m_window.get(), &QDialog::accepted);
    Type(u"xq9zz-1"_s);
    Press(Qt::Key_Tab);
    Type(u"51.30n"_s);
    Press(Qt::Key_Tab);
    QCOMPARE(Field(u"txtLat"_s)->text(), u"51.30.00N"_s);
    QCOMPARE(Locator(), QString());
    Type(u"0.30w"_s);
    Press(Qt::Key_Tab);
    QCOMPARE(Field(u"txtLong"_s)->text(), u"000.30.00W"_s);
    QCOMPARE(Locator(), u"IO91SM"_s);
    Type(u" near the river "_s);
    QCOMPARE(m_station->strCallsign(), QString());
    Press(Qt::Key_Tab);
    QCOMPARE(Focus(), u"cmdOk"_s);
    Press(Qt::Key_Space);
    QCOMPARE(finished.count(), 1);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ-1"_s);
    QCOMPARE(m_station->strLat(), u"5130.00N"_s);
    QCOMPARE(m_station->strLong(), u"00030.00W"_s);
    QCOMPARE(m_station->strComment(), u"near the river"_s);
    QCOMPARE(m_station->strLoc(), u"IO91SM"_s);
    QCOMPARE(
        m_ini->LoadAllKeysInSection(u"SETUP"_s)[0],
        (QStringList{QString(), u"LATITUDE"_s, u"LONGITUDE"_s, u"CALLSIGN"_s, u"COMMENT"_s, u"LOCATOR"_s}));
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmLocationTest::tabGoesThroughTheFieldsInOrder() {
    Open();
    for (const QString& next :
         {u"txtLat"_s, u"txtLong"_s, u"txtComment"_s, u"cmdOk"_s, u"cmdCancel"_s, u"txtCallsign"_s}) {
        Press(Qt::Key_Tab);
        QCOMPARE(Focus(), next);
    }
    Press(Qt::Key_N, Qt::AltModifier);
    QCOMPARE(Focus(), u"txtLong"_s);
}

void frmLocationTest::everyFieldIsSelectedWhole() {
    m_station->setStrCallsign(u"XQ9ZZ-1"_s);
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    m_station->setStrComment(u"hello"_s);
    Open();
    for (const QString& name : {u"txtCallsign"_s, u"txtLat"_s, u"txtLong"_s, u"txtComment"_s}) {
        QCOMPARE(Field(name)->selectedText(), Field(name)->text());
        Press(Qt::Key_Tab);
    }
    for (const QString& name : {u"txtCallsign"_s, u"txtLat"_s, u"txtLong"_s, u"txtComment"_s}) {
        QTest::mouseClick(Field(name), Qt::LeftButton);
        QCOMPARE(Field(name)->selectedText(), Field(name)->text());
    }
}

void frmLocationTest::keysAreRaisedOrDropped() {
    Open();
    Type(u"a1-!/,. b"_s);
    QCOMPARE(Field(u"txtCallsign"_s)->text(), u"A1-B"_s);
    Press(Qt::Key_Backspace);
    QCOMPARE(Field(u"txtCallsign"_s)->text(), u"A1-"_s);
    Press(Qt::Key_A, Qt::ControlModifier);
    Type(u"B1"_s);
    Press(Qt::Key_Tab);
    Type(u"5a.* ,-:x"_s);
    QCOMPARE(Field(u"txtLat"_s)->text(), u"5A. X"_s);
}

void frmLocationTest::aFailingFieldKeepsTheFocusAndSpeaksOnce_data() {
    QTest::addColumn<int>("tabs"); // to the field
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("style");
    const QString callsign = u"That is not a valid callsign."_s;
    const QString latitude = u"I can't make that into a valid latitude."_s;
    const QString longitude = u"I can't make that into a valid longitude."_s;
    QTest::newRow("callsign too long") << 0 << "ABCDEFG" << callsign << 16;
    QTest::newRow("empty SSID") << 0 << "XQ9ZZ-" << callsign << 16;
    QTest::newRow("latitude beyond the pole") << 1 << "90.00.01N" << latitude << 48;
    QTest::newRow("latitude without letter") << 1 << "51.30.00" << latitude << 48;
    QTest::newRow("blank before the point") << 1 << "51 30N" << latitude << 48;
    QTest::newRow("longitude beyond the date line") << 2 << "181W" << longitude << 48;
}

void frmLocationTest::aFailingFieldKeepsTheFocusAndSpeaksOnce() {
    QFETCH(const int, tabs);
    QFETCH(const QString, keys);
    QFETCH(const QString, message);
    Open();
    for (int i = 0; i < tabs; ++i)
        Press(Qt::Key_Tab);
    const QString field = Focus();
    Type(keys);
    for (int attempt = 1; attempt <= 2; ++attempt) {
        if (attempt == 1)
            Press(Qt::Key_Tab);
        else
            Press(Qt::Key_M, Qt::AltModifier); // the access key of the comment
        QCoreApplication::processEvents();
        QCOMPARE(m_presenter.messages.size(), attempt);
        QCOMPARE(m_presenter.messages.last().text, message);
        QCOMPARE(m_presenter.messages.last().owner, m_window.get());
        QTEST(static_cast<int>(m_presenter.messages.last().style), "style");
        QCOMPARE(Focus(), field);
        QCOMPARE(Field(field)->text(), keys);
    }
}

void frmLocationTest::aClickOutOfAFailingFieldSpeaksOnce() {
    Open();
    Type(u"ABCDEFG"_s);
    QTest::mouseClick(Field(u"txtLat"_s), Qt::LeftButton);
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(Focus(), u"txtCallsign"_s);
    QTest::mouseClick(m_window->findChild<QPushButton*>(u"cmdOk"_s), Qt::LeftButton);
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.messages.size(), 2);
    QVERIFY(m_window->isVisible());
}

void frmLocationTest::okDoesNotGoThroughWithAFailingField() {
    Open();
    Press(Qt::Key_Tab);
    Type(u"91N"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_presenter.messages.size(), 1);
    QVERIFY(m_window->isVisible());
    QCOMPARE(Focus(), u"txtLat"_s);
    Press(Qt::Key_O, Qt::AltModifier);
    // A button pressed by its access key acts when it comes up again.
    QTRY_VERIFY(!m_window->findChild<QPushButton*>(u"cmdOk"_s)->isDown());
    QCOMPARE(m_presenter.messages.size(), 2);
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_ini->LoadAllKeysInSection(u"SETUP"_s)[0].size(), 1);
    Press(Qt::Key_A, Qt::ControlModifier);
    Type(u"45.5s"_s); // still in the field when Enter is pressed
    Press(Qt::Key_Return);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(m_station->strLat(), u"4505.00S"_s);
}

void frmLocationTest::okChecksOnlyTheFieldThatIsLeft_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("Enter") << 0;
    QTest::newRow("click") << 1;
    QTest::newRow("Alt+O") << 2;
    QTest::newRow("from Cancel, and Space") << 3;
}

void frmLocationTest::okChecksOnlyTheFieldThatIsLeft() {
    QFETCH(const int, way);
    m_station->setStrLat(u"nowhere"_s);
    m_station->setStrLong(u"99999.99E"_s);
    Open();
    const auto ok = [&] {
        if (way == 0)
            Press(Qt::Key_Return);
        else if (way == 1)
            QTest::mouseClick(m_window->findChild<QPushButton*>(u"cmdOk"_s), Qt::LeftButton);
        else if (way == 2)
            Press(Qt::Key_O, Qt::AltModifier);
        else {
            Press(Qt::Key_Backtab, Qt::ShiftModifier); // to Cancel, which may always be reached
            Press(Qt::Key_Backtab, Qt::ShiftModifier);
            QCOMPARE(Focus(), u"cmdOk"_s);
            Press(Qt::Key_Space);
        }
    };
    Type(u"XQ9ZZ-16"_s);
    ok();
    QTRY_COMPARE(m_presenter.Texts(), QStringList{u"That is not a valid callsign."_s});
    QVERIFY(m_window->isVisible());
    QCOMPARE(Focus(), u"txtCallsign"_s);
    Replace(u"XQ9ZZ-1"_s);
    ok();
    QTRY_VERIFY(!m_window->isVisible());
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ-1"_s);
}

void frmLocationTest::okLeavesWhatNobodyTouchedAsItIs_data() {
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::addColumn<QString>("comment");
    QTest::addColumn<QString>("locator");
    QTest::newRow("beyond the globe") << "9930.00N"
                                      << "99999.99E"
                                      << ""
                                      << "";
    QTest::newRow("not in the stored form") << "51N"
                                            << "5"
                                            << ""
                                            << "IO91SM";
    QTest::newRow("no position, but a locator") << ""
                                                << ""
                                                << ""
                                                << "IO91SM";
    QTest::newRow("lower case") << "5130.00n"
                                << "00030.00w"
                                << ""
                                << "IO91SM";
    QTest::newRow("comment in blanks") << "5130.00N"
                                       << "00030.00W"
                                       << "  hello  "
                                       << "IO91SM";
}

void frmLocationTest::okLeavesWhatNobodyTouchedAsItIs() {
    QFETCH(const QString, latitude);
    QFETCH(const QString, longitude);
    QFETCH(const QString, comment);
    QFETCH(const QString, locator);
    m_station->setStrCallsign(u"XQ9ZZ"_s);
    m_station->setStrLat(latitude);
    m_station->setStrLong(longitude);
    m_station->setStrComment(comment);
    m_station->setStrLoc(locator);
    Open();
    QTest::mouseClick(m_window->findChild<QPushButton*>(u"cmdOk"_s), Qt::LeftButton);
    QVERIFY(!m_window->isVisible());
    QVERIFY(m_presenter.messages.isEmpty());
    QCOMPARE(m_station->strLat(), latitude);
    QCOMPARE(m_station->strLong(), longitude);
    QCOMPARE(m_station->strComment(), comment);
    QCOMPARE(m_station->strLoc(), locator);
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ"_s);
}

void frmLocationTest::whatIsChangedIsStoredAndTheRestStays() {
    m_station->setStrLat(u"5130.5N"_s);
    m_station->setStrLong(u"99999.99E"_s);
    Open();
    Type(u"XQ9ZZ"_s);
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab); // out of the latitude, which is brought into form
    Type(u"0.30w"_s);
    Press(Qt::Key_Return);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ"_s);
    QCOMPARE(m_station->strLat(), u"5130.50N"_s);
    QCOMPARE(m_station->strLong(), u"00030.00W"_s);
    QCOMPARE(m_station->strLoc(), u"IO91SM"_s);
}

void frmLocationTest::aKnownPositionsLocatorIsStored() {
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    Open();
    QCOMPARE(Locator(), u"IO91SM"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_station->strLoc(), u"IO91SM"_s);
}

void frmLocationTest::whateverWayACharacterComesItIsRaisedOrRefused() {
    Open();
    for (const auto& [name, text, becomes] :
         {std::tuple{u"txtCallsign"_s, u"xq9/zz\u0131-1\n"_s, u"XQ9ZZ-1"_s},
          std::tuple{u"txtLat"_s, u"51,.30.00n\n"_s, u"51.30.00N "_s},
          std::tuple{u"txtLong"_s, u"000-.30.00w\t"_s, u"000.30.00W"_s}}) {
        QLineEdit* field = Field(name);
        field->setFocus();
        for (const auto modifier : {Qt::NoModifier, Qt::AltModifier, Qt::MetaModifier}) {
            field->clear();
            for (const QChar c : text)
                QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, c, modifier);
            QCOMPARE(field->text(), becomes.trimmed());
        }
        field->clear();
        Paste(text);
        QCOMPARE(field->text(), becomes);
        field->clear();
        QVERIFY(DropOn(field, text));
        QCOMPARE(field->text(), becomes);
    }
    Press(Qt::Key_Return);
    QVERIFY(m_presenter.messages.isEmpty());
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ-1"_s);
    QCOMPARE(m_station->strLat(), u"5130.00N"_s);
    QCOMPARE(m_station->strLong(), u"00030.00W"_s);
}

void frmLocationTest::lineEndsOfACommentAreBlanksAtOnce_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("pasted") << 0;
    QTest::newRow("dropped") << 1;
    QTest::newRow("pasted by mouse") << 2;
}

void frmLocationTest::lineEndsOfACommentAreBlanksAtOnce() {
    QFETCH(const int, way);
    Open();
    Press(Qt::Key_M, Qt::AltModifier);
    const QString text = u"near\r\nthe\nriver"_s;
    if (way == 1) {
        QVERIFY(DropOn(Field(u"txtComment"_s), text));
    } else {
        QApplication::clipboard()->setText(text);
        if (way == 0)
            Press(Qt::Key_V, Qt::ControlModifier);
        else
            Field(u"txtComment"_s)->paste();
    }
    QCOMPARE(Field(u"txtComment"_s)->text(), u"near the river"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_station->strComment(), u"near the river"_s);
}

void frmLocationTest::cancelAndEscapeLeaveThroughAFailingField_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("Escape") << 0;
    QTest::newRow("Alt+C") << 1;
    QTest::newRow("click on Cancel") << 2;
}

void frmLocationTest::cancelAndEscapeLeaveThroughAFailingField() {
    QFETCH(const int, way);
    m_station->setStrCallsign(u"XQ9ZZ"_s);
    Open();
    Type(u"ABCDEFG"_s);
    if (way == 0)
        Press(Qt::Key_Escape);
    else if (way == 1)
        Press(Qt::Key_C, Qt::AltModifier);
    else
        QTest::mouseClick(m_window->findChild<QPushButton*>(u"cmdCancel"_s), Qt::LeftButton);
    QTRY_VERIFY(!m_window->isVisible());
    QVERIFY(m_presenter.messages.isEmpty());
    QCOMPARE(m_window->result(), static_cast<int>(QDialog::Rejected));
    QCOMPARE(m_station->strCallsign(), u"XQ9ZZ"_s);
}

void frmLocationTest::theCloseBoxSaysWhatIsWrongAndStays() {
    Open();
    Type(u"ABCDEFG"_s);
    PressCloseBox(*m_window);
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_presenter.messages.size(), 1);
    QCOMPARE(m_presenter.messages.last().text, u"That is not a valid callsign."_s);
    QCOMPARE(Focus(), u"txtCallsign"_s);
    Press(Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(m_presenter.messages.size(), 1);
}

void frmLocationTest::theCloseBoxChangesNothing() {
    Open();
    Type(u"XQ9ZZ"_s);
    PressCloseBox(*m_window);
    QVERIFY(!m_window->isVisible());
    QVERIFY(m_presenter.messages.isEmpty());
    QCOMPARE(m_station->strCallsign(), QString());
}

void frmLocationTest::anEmptiedLatitudeKeepsTheLocator() {
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    Open();
    Press(Qt::Key_Tab);
    Press(Qt::Key_Delete);
    Press(Qt::Key_Tab);
    QCOMPARE(Focus(), u"txtLong"_s);
    QCOMPARE(Locator(), u"IO91SM"_s);
    QVERIFY(m_presenter.messages.isEmpty());
    Press(Qt::Key_Return);
    QCOMPARE(m_station->strLat(), QString());
    QCOMPARE(m_station->strLoc(), u"IO91SM"_s);
}

void frmLocationTest::aCommentIsTrimmedAndMayHoldAccents() {
    Open();
    Press(Qt::Key_M, Qt::AltModifier);
    const QString comment = QStringLiteral(u"Gr\u00fc\u00dfe f\u00fcr 5 \u20ac") + QString(200, u'!');
    Paste(u"  "_s + comment + u"  "_s);
    Press(Qt::Key_Return);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(m_station->strComment(), comment);
    Station again(*m_ini);
    again.Load();
    QCOMPARE(again.strComment(), m_station->strComment());
}

QTEST_MAIN(frmLocationTest)
#include "frmLocationTest.moc"
