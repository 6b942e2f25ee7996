#include "telemetry/callsigns/frmCalls.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/clsIni.h"
#include "support/CloseBox.h"
#include "support/Drop.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "telemetry/callsigns/CallsignList.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

class frmCallsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void textsAreTheProgramsOwn();
    void openingShowsTheCallsigns();
    void doCallsIsModalOverItsParent();
    void addIsEnabledByTextAndSide();
    void typedKeysAreUpperCasedAndFiltered();
    void pastedAndDroppedTextIsUpperCasedAndFiltered();
    void invalidCallsignIsRefusedOnce_data();
    void invalidCallsignIsRefusedOnce();
    void enteringAListedCallsignChangesItsSide();
    void newCallsignIsAddedAndTheListSorted();
    void enterInTheFieldPutsInList();
    void enterWithoutSideDoesNothing();
    void doubleClickLoadsTheEditor();
    void enterInTheListLoadsTheEditor();
    void anySideButALoadsAsB();
    void deleteRemovesAndSelectsTheNext();
    void deleteInTheMiddleSelectsTheOneThatTookItsPlace();
    void deleteOfTheLastSelectsTheNewLast();
    void deleteRemovesNothingThatIsNotSelected_data();
    void deleteRemovesNothingThatIsNotSelected();
    void okSavesTheListAndCloses();
    void okRefusesAnEmptyList();
    void okRefusesAnInvalidFieldOnce();
    void leavingTheFieldChecksIt();
    void leavingTheEmptyFieldIsFree();
    void cancelAndEscapeChangeNothing_data();
    void cancelAndEscapeChangeNothing();
    void theCloseBoxSaysWhatIsWrongAndStays();
    void defaultsAreWrittenAtOnceAndStayAfterCancel();
    void fiveThousandCallsignsAreShownAddedToAndRemoved();

private:
    template <typename T>
    T* Find(const char16_t* name) {
        T* found = m_dialog->findChild<T*>(QString::fromUtf16(name));
        if (found == nullptr)
            qFatal("no such control");
        return found;
    }
    void Open();
    void Press(const char16_t* button) { QTest::mouseClick(Find<QPushButton>(button), Qt::LeftButton); }
    void Enter(const char16_t* callsign, const char16_t* side);
    void ClickItem(int row) {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, Qt::NoModifier,
                          m_list->visualItemRect(m_list->item(row)).center());
    }
    QStringList Items() const;

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<CallsignList> m_callsigns;
    std::unique_ptr<RecordingPresenter> m_presenter;
    std::unique_ptr<mb> m_messages;
    std::unique_ptr<frmCalls> m_dialog;
    QLineEdit* m_field = nullptr;
    QListWidget* m_list = nullptr;
};

void frmCallsTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_callsigns = std::make_unique<CallsignList>(*m_ini);
    m_callsigns->setCCallsigns({{QStringLiteral("XQ9ZZ-3"), QStringLiteral("A")},
                                {QStringLiteral("QIRAN"), QStringLiteral("B")},
                                {QStringLiteral("NODIGI"), QStringLiteral("A")}});
    m_presenter = std::make_unique<RecordingPresenter>();
    m_messages = std::make_unique<mb>(*m_presenter);
    Open();
}

void frmCallsTest::cleanup() {
    m_dialog.reset();
}

// As DoCalls does, without an event loop of its own.
void frmCallsTest::Open() {
    m_dialog = std::make_unique<frmCalls>(*m_callsigns, *m_messages);
    m_field = Find<QLineEdit>(u"txtCall");
    m_list = Find<QListWidget>(u"lstCalls");
    m_dialog->ShowCallsigns();
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
}

void frmCallsTest::Enter(const char16_t* callsign, const char16_t* side) {
    m_field->setFocus();
    m_field->selectAll();
    QTest::keyClicks(m_field, QString::fromUtf16(callsign));
    QTest::mouseClick(Find<QRadioButton>(side), Qt::LeftButton);
}

QStringList frmCallsTest::Items() const {
    QStringList items;
    for (int row = 0; row < m_list->count(); ++row)
        items.append(m_list->item(row)->text());
    return items;
}

void frmCallsTest::textsAreTheProgramsOwn() {
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("QIRAN Callsigns"));
    QCOMPARE(Find<QPushButton>(u"cmdAdd")->text(), QStringLiteral("&Put In List"));
    QCOMPARE(Find<QPushButton>(u"cmdOk")->text(), QStringLiteral("&Ok"));
    QCOMPARE(Find<QPushButton>(u"cmdCancel")->text(), QStringLiteral("&Cancel"));
    QCOMPARE(Find<QPushButton>(u"cmdDefaults")->text(), QStringLiteral("&Defaults"));
    QCOMPARE(Find<QLabel>(u"labHint")->text(), QStringLiteral("Press F1 and read the help!"));
    QVERIFY(m_field->fontInfo().fixedPitch());
    QVERIFY(m_list->fontInfo().fixedPitch());
    m_callsigns->InitCallsigns();
    m_callsigns->LoadCallsigns();
    m_dialog->ShowCallsigns();
    Enter(u"QIRAN-3", u"optB");
    Screenshots::Take(*m_dialog, QStringLiteral("frmCalls"));
}

void frmCallsTest::openingShowsTheCallsigns() {
    QCOMPARE(Items(), QStringList({QStringLiteral("XQ9ZZ-3     Side A"), QStringLiteral("QIRAN       Side B"),
                                   QStringLiteral("NODIGI      Side A")})); // in their own order
    QVERIFY(m_field->hasFocus());
    QVERIFY(m_field->text().isEmpty());
    QVERIFY(!Find<QRadioButton>(u"optA")->isChecked());
    QVERIFY(!Find<QRadioButton>(u"optB")->isChecked());
}

void frmCallsTest::doCallsIsModalOverItsParent() {
    m_dialog->close();
    QWidget main;
    frmCalls dialog(*m_callsigns, *m_messages, &main);
    bool wasModal = false;
    QTimer::singleShot(0, &dialog, [&] {
        wasModal = dialog.isModal() && dialog.isVisible();
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    dialog.DoCalls();
    QVERIFY(wasModal);
    QCOMPARE(dialog.findChild<QListWidget*>()->count(), 3);
}

void frmCallsTest::addIsEnabledByTextAndSide() {
    const QPushButton* add = Find<QPushButton>(u"cmdAdd");
    QVERIFY(!add->isEnabled());
    QTest::keyClicks(m_field, QStringLiteral("X"));
    QVERIFY(!add->isEnabled());
    Find<QRadioButton>(u"optB")->setChecked(true);
    QVERIFY(add->isEnabled());
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QVERIFY(!add->isEnabled());
}

void frmCallsTest::typedKeysAreUpperCasedAndFiltered() {
    QTest::keyClicks(m_field, QStringLiteral("xq9 zz/-1_5."));
    // The first has the capital "I" elsewhere, the last is negative in 16 signed bits.
    for (const char16_t letter : {u'\u0131', u'\u017F', u'\u00E4', u'\uAC00'}) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(QChar(letter)));
        QCoreApplication::sendEvent(m_field, &press);
    }
    QCOMPARE(m_field->text(), QStringLiteral("XQ9ZZ-15"));
    QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, u'a', Qt::AltModifier | Qt::ShiftModifier);
    QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, u'/', Qt::MetaModifier);
    QCOMPARE(m_field->text(), QStringLiteral("XQ9ZZ-15A"));
}

void frmCallsTest::pastedAndDroppedTextIsUpperCasedAndFiltered() {
    QApplication::clipboard()->setText(QStringLiteral("xq9zz\u0131-3\r\n"));
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QStringLiteral("XQ9ZZ-3"));
    m_field->clear();
    QVERIFY(DropOn(m_field, QStringLiteral("xq9zz\u0131-3\r\n")));
    QCOMPARE(m_field->text(), QStringLiteral("XQ9ZZ-3"));
}

void frmCallsTest::invalidCallsignIsRefusedOnce_data() {
    QTest::addColumn<QString>("callsign");
    for (const char16_t* callsign : {u"XQ9ZZ-16", u"XQ9ZZ-", u"XQ9ZZ-123", u"ABCDEFG", u"-1", u"ABCDEFGHIJ"})
        QTest::newRow(qPrintable(QString::fromUtf16(callsign))) << QString::fromUtf16(callsign);
}

void frmCallsTest::invalidCallsignIsRefusedOnce() {
    QFETCH(const QString, callsign);
    Find<QRadioButton>(u"optA")->setChecked(true);
    QTest::keyClicks(m_field, callsign);
    const QStringList before = Items();
    Press(u"cmdAdd");
    QCOMPARE(m_presenter->Texts(), QStringList{callsign + QStringLiteral(" is not a valid callsign.")});
    QCOMPARE(m_presenter->messages[0].style, MessageStyle::Critical);
    QCOMPARE(Items(), before);
    QVERIFY(m_field->hasFocus());
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(m_presenter->messages.size(), 2);
    QCOMPARE(Items(), before);
}

void frmCallsTest::enteringAListedCallsignChangesItsSide() {
    Enter(u"xq9zz-3", u"optB");
    Press(u"cmdAdd");
    QCOMPARE(Items(), QStringList({QStringLiteral("XQ9ZZ-3     Side B"), QStringLiteral("QIRAN       Side B"),
                                   QStringLiteral("NODIGI      Side A")}));
}

void frmCallsTest::newCallsignIsAddedAndTheListSorted() {
    Enter(u"OX1AB-15", u"optA");
    Press(u"cmdAdd");
    QCOMPARE(Items(),
             QStringList({QStringLiteral("NODIGI      Side A"), QStringLiteral("OX1AB-15    Side A"),
                          QStringLiteral("QIRAN       Side B"), QStringLiteral("XQ9ZZ-3     Side A")}));
    QVERIFY(m_presenter->messages.isEmpty());
}

void frmCallsTest::enterInTheFieldPutsInList() {
    Find<QRadioButton>(u"optB")->setChecked(true);
    QTest::keyClicks(m_field, QStringLiteral("xq9zz-3"));
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(Items()[0], QStringLiteral("XQ9ZZ-3     Side B"));
    QVERIFY(m_dialog->isVisible());
}

void frmCallsTest::enterWithoutSideDoesNothing() {
    QTest::keyClicks(m_field, QStringLiteral("AB1"));
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(m_list->count(), 3);
    QVERIFY(m_dialog->isVisible());
    QVERIFY(m_presenter->messages.isEmpty());
}

void frmCallsTest::doubleClickLoadsTheEditor() {
    const QPoint item = m_list->visualItemRect(m_list->item(1)).center();
    QTest::mouseClick(m_list->viewport(), Qt::LeftButton, Qt::NoModifier, item);
    QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, Qt::NoModifier, item);
    QCOMPARE(m_field->text(), QStringLiteral("QIRAN"));
    QVERIFY(Find<QRadioButton>(u"optB")->isChecked());
    QVERIFY(m_field->hasFocus());
    QVERIFY(Find<QPushButton>(u"cmdAdd")->isEnabled());
}

void frmCallsTest::enterInTheListLoadsTheEditor() {
    ClickItem(0);
    QTest::keyClick(m_list, Qt::Key_Return);
    QCOMPARE(m_field->text(), QStringLiteral("XQ9ZZ-3"));
    QVERIFY(Find<QRadioButton>(u"optA")->isChecked());
    QVERIFY(m_field->hasFocus());
    QVERIFY(m_dialog->isVisible());
}

void frmCallsTest::anySideButALoadsAsB() {
    m_callsigns->setCCallsigns({{QStringLiteral("AB1"), QStringLiteral("x")}});
    m_dialog->ShowCallsigns();
    ClickItem(0);
    QTest::keyClick(m_list, Qt::Key_Enter);
    QVERIFY(Find<QRadioButton>(u"optB")->isChecked());
}

void frmCallsTest::deleteRemovesAndSelectsTheNext() {
    ClickItem(0);
    QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(Items(),
             QStringList({QStringLiteral("QIRAN       Side B"), QStringLiteral("NODIGI      Side A")}));
    QCOMPARE(m_list->currentRow(), 0);
    QVERIFY(m_list->item(0)->isSelected());
}

void frmCallsTest::deleteInTheMiddleSelectsTheOneThatTookItsPlace() {
    ClickItem(1);
    const QString next = m_list->item(2)->text();
    QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->currentRow(), 1);
    QCOMPARE(m_list->currentItem()->text(), next);
}

void frmCallsTest::deleteOfTheLastSelectsTheNewLast() {
    ClickItem(2);
    QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->currentRow(), 1);
    QVERIFY(m_list->item(1)->isSelected());
    for (int i = 0; i < 4; ++i) // more often than there are items
        QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->count(), 0);
}

void frmCallsTest::deleteRemovesNothingThatIsNotSelected_data() {
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("reached by Tab") << false;
    QTest::newRow("selection taken back by Ctrl and a click") << true;
}

void frmCallsTest::deleteRemovesNothingThatIsNotSelected() {
    QFETCH(const bool, byMouse);
    if (byMouse) {
        ClickItem(1);
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          m_list->visualItemRect(m_list->item(1)).center());
    } else {
        while (!m_list->hasFocus())
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QVERIFY(m_list->selectedItems().isEmpty());
    QCOMPARE(m_list->currentRow(), byMouse ? 1 : 0); // where the keyboard is
    QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->count(), 3);
    QTest::keyClick(m_list, Qt::Key_Down);
    QCOMPARE(m_list->selectedItems().size(), 1);
    QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->count(), 2);
}

void frmCallsTest::okSavesTheListAndCloses() {
    Enter(u"AB1-2", u"optB");
    Press(u"cmdAdd");
    QCOMPARE(m_callsigns->cCallsigns().size(), 3); // nothing before Ok
    Press(u"cmdOk");
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_callsigns->cCallsigns()[0], clsCallsign({QStringLiteral("AB1-2"), QStringLiteral("B")}));
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")),
             QByteArray("[CALLSIGNS]\r\nAB1-2=B\r\nNODIGI=A\r\nQIRAN=B\r\nXQ9ZZ-3=A\r\n"));
}

void frmCallsTest::okRefusesAnEmptyList() {
    ClickItem(0);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(m_list, Qt::Key_Delete);
    Press(u"cmdOk");
    QCOMPARE(m_presenter->Texts(), QStringList{QStringLiteral("You cannot delete all the callsigns.")});
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(m_callsigns->cCallsigns().size(), 3);
}

void frmCallsTest::okRefusesAnInvalidFieldOnce() {
    QTest::keyClicks(m_field, QStringLiteral("XQ9ZZ-"));
    Press(u"cmdOk");
    QCOMPARE(m_presenter->Texts(), QStringList{QStringLiteral("XQ9ZZ- is not a valid callsign.")});
    QVERIFY(m_dialog->isVisible());
}

void frmCallsTest::leavingTheFieldChecksIt() {
    QTest::keyClicks(m_field, QStringLiteral("XQ9ZZ-"));
    QTest::keyClick(m_field, Qt::Key_Tab);
    QCOMPARE(m_presenter->Texts(), QStringList{QStringLiteral("XQ9ZZ- is not a valid callsign.")});
    QVERIFY(m_field->hasFocus());
    m_field->selectAll();
    QTest::keyClicks(m_field, QStringLiteral("XQ9ZZ-1"));
    QTest::keyClick(m_field, Qt::Key_Tab);
    QVERIFY(!m_field->hasFocus());
    QCOMPARE(m_presenter->messages.size(), 1);
}

void frmCallsTest::leavingTheEmptyFieldIsFree() {
    QTest::keyClick(m_field, Qt::Key_Tab);
    QVERIFY(!m_field->hasFocus());
    QVERIFY(m_presenter->messages.isEmpty());
}

void frmCallsTest::cancelAndEscapeChangeNothing_data() {
    QTest::addColumn<bool>("escape");
    QTest::newRow("Cancel") << false;
    QTest::newRow("Escape") << true;
}

void frmCallsTest::cancelAndEscapeChangeNothing() {
    QFETCH(const bool, escape);
    const QByteArray before = m_folder->Read(QStringLiteral("QiranDecode.INI"));
    ClickItem(0);
    QTest::keyClick(m_list, Qt::Key_Delete);
    m_field->setFocus();
    QTest::keyClicks(m_field, QStringLiteral("XQ9ZZ-")); // an invalid field holds nobody back
    if (escape)
        QTest::keyClick(m_field, Qt::Key_Escape);
    else
        Press(u"cmdCancel");
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(m_presenter->messages.isEmpty());
    QCOMPARE(m_callsigns->cCallsigns().size(), 3);
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")), before);
}

void frmCallsTest::theCloseBoxSaysWhatIsWrongAndStays() {
    QTest::keyClicks(m_field, QStringLiteral("XQ9ZZ-"));
    PressCloseBox(*m_dialog);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(m_presenter->messages.size(), 1);
    QVERIFY(m_field->hasFocus());
    m_field->clear();
    PressCloseBox(*m_dialog);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_presenter->messages.size(), 1);
    QCOMPARE(m_callsigns->cCallsigns().size(), 3);
}

void frmCallsTest::defaultsAreWrittenAtOnceAndStayAfterCancel() {
    Press(u"cmdDefaults");
    QCOMPARE(m_list->count(), 33);
    QCOMPARE(Items()[0], QStringLiteral("NODIGI      Side A"));
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")).count('='), 33);
    Press(u"cmdCancel");
    QCOMPARE(m_callsigns->cCallsigns().size(), 33);
    QCOMPARE(m_folder->Read(QStringLiteral("QiranDecode.INI")).count('='), 33);
}

void frmCallsTest::fiveThousandCallsignsAreShownAddedToAndRemoved() {
    QList<clsCallsign> callsigns;
    for (int i = 0; i < 5000; ++i)
        callsigns.append(
            {QStringLiteral("X%1-%2").arg(i / 16, 4, 10, QChar(u'0')).arg(i % 16), QStringLiteral("A")});
    m_callsigns->setCCallsigns(callsigns);
    m_dialog->ShowCallsigns();
    QCoreApplication::processEvents();
    Enter(u"AB1", u"optA");
    Press(u"cmdAdd");
    QCOMPARE(m_list->count(), 5001);
    for (int i = 0; i < 20; ++i)
        QTest::keyClick(m_list, Qt::Key_Delete);
    QCOMPARE(m_list->count(), 4981);
}

QTEST_MAIN(frmCallsTest)
#include "frmCallsTest.moc"
