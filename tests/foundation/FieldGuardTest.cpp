#include "foundation/fields/FieldGuard.h"

#include "foundation/messages/HelpWindow.h"
#include "foundation/placement/PlaceWindow.h"
#include "support/CloseBox.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include <memory>

namespace {

// A dialog as the program has them: two fields that refuse "bad", a further field, OK, Cancel and an action.
class Dialog : public QDialog {
public:
    Dialog() {
        auto* column = new QVBoxLayout(this);
        for (QWidget* widget :
             std::initializer_list<QWidget*>{first, second, free, label, action, ok, cancel, title})
            column->addWidget(widget);
        label->setBuddy(second);
        action->setAutoDefault(false);
        cancel->setAutoDefault(false);
        ok->setDefault(true);
        guard.AddField(first, [this] { return Check(first); });
        guard.AddField(second, [this] { return Check(second); });
        guard.AddExempt(cancel);
        connect(ok, &QPushButton::clicked, this, [this] {
            if (guard.MayAccept())
                accept();
        });
        connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
        connect(action, &QPushButton::clicked, this, [this] { ++actions; });
    }

    void closeEvent(QCloseEvent* event) override {
        if (guard.MayClose())
            QDialog::closeEvent(event);
        else
            event->ignore();
    }

    bool Check(QLineEdit* field) {
        if (field->text() != u"bad")
            return true;
        messages.append(field);
        if (realMessage) { // what a message box does to the focus
            QDialog box(this);
            QTimer::singleShot(0, &box, &QDialog::accept);
            box.exec();
            activateWindow(); // as a window manager does, which the offscreen platform lacks
        }
        return false;
    }

    void Present() {
        show();
        activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(this));
        first->setFocus();
        QTRY_VERIFY(first->hasFocus());
    }

    /// Whether the time in which a click on another window may still close it has passed.
    bool ClickIsOver() const { return !findChild<QTimer*>(QStringLiteral("timOtherWindow"))->isActive(); }

    QLineEdit* first = new QLineEdit;
    QLineEdit* second = new QLineEdit;
    QLineEdit* free = new QLineEdit;
    QLabel* label = new QLabel(QStringLiteral("&Second"));
    QLabel* title = new QLabel(QStringLiteral("Title"));
    QPushButton* action = new QPushButton(QStringLiteral("&Action"));
    QPushButton* ok = new QPushButton(QStringLiteral("&Ok"));
    QPushButton* cancel = new QPushButton(QStringLiteral("&Cancel"));
    FieldGuard guard{this};
    QList<QLineEdit*> messages;
    int actions = 0;
    bool realMessage = false;
};

void Settle() {
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

} // namespace

class FieldGuardTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void goodFieldsAreLeftInEveryWay();
    void tabOutOfABadFieldShowsOneMessageAndKeepsTheFocus();
    void backtabOutOfABadFieldShowsOneMessageAndKeepsTheFocus();
    void clickOnAnotherFieldShowsOneMessageAndKeepsTheFocus();
    void clickOnAButtonShowsOneMessageAndDoesNotPressIt();
    void accessKeyOfAButtonShowsOneMessageAndDoesNotPressIt();
    void accessKeyOfALabelShowsOneMessageAndKeepsTheFocus();
    void okByMouseShowsOneMessageAndDoesNotGoThrough();
    void okByAccessKeyShowsOneMessageAndDoesNotGoThrough();
    void okByEnterShowsOneMessageAndDoesNotGoThrough();
    void okChecksNoFieldThatWasNeverEntered();
    void okChecksABadFieldThatWasLeftByCancel_data();
    void okChecksABadFieldThatWasLeftByCancel();
    void okGoesThroughWhenAllIsGood();
    void cancelByMouseIsNeverHindered();
    void cancelByAccessKeyIsNeverHindered();
    void cancelByTabAndSpaceIsNeverHindered();
    void escapeIsNeverHindered();
    void closingFromInsideIsNeverHindered();
    void closeBoxShowsOneMessageAndKeepsTheWindow();
    void closeBoxClosesWhenTheFieldIsGood();
    void anotherWindowShowsOneMessageAndTheUserComesBack();
    void clickIntoAnotherWindowShowsOneMessage();
    void closingTheOtherWindowIsNotHindered();
    void anotherProgramIsNoLeaving();
    void dialogOfTheProgramIsNoLeaving();
    void helpIsNoLeaving();
    void menuOfTheWindowIsNoLeaving();
    void clickThatMovesNoFocusIsNoLeaving();
    void contextMenuIsNoLeaving();
    void eachAttemptShowsItsMessage();
    void aFocusMovedByTheProgramComesBackWithOneMessage();
    void aFocusMovedAfterARefusalComesBackSilently();
    void aWindowThatGoesAwayUnderTheMessageDoesNoHarm();
    void removedFieldsAreForgotten();

private:
    std::unique_ptr<Dialog> m_dialog;
};

void FieldGuardTest::init() {
    m_dialog = std::make_unique<Dialog>();
    m_dialog->Present();
}

void FieldGuardTest::cleanup() {
    m_dialog.reset();
}

#define BAD_FIRST()                                                                                          \
    Dialog& d = *m_dialog;                                                                                   \
    d.realMessage = true;                                                                                    \
    QTest::keyClicks(d.first, QStringLiteral("bad"))
#define REFUSED_ONCE()                                                                                       \
    Settle();                                                                                                \
    QCOMPARE(d.messages.size(), 1);                                                                          \
    QCOMPARE(d.messages.first(), d.first);                                                                   \
    QTRY_VERIFY(d.first->hasFocus());                                                                        \
    Settle();                                                                                                \
    QCOMPARE(d.messages.size(), 1);                                                                          \
    QVERIFY(d.isVisible())

void FieldGuardTest::goodFieldsAreLeftInEveryWay() {
    Dialog& d = *m_dialog;
    QTest::keyClicks(d.first, QStringLiteral("good"));
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.second->hasFocus());
    QTest::mouseClick(d.first, Qt::LeftButton);
    QTRY_VERIFY(d.first->hasFocus());
    QTest::keyClick(&d, Qt::Key_S, Qt::AltModifier);
    QTRY_VERIFY(d.second->hasFocus());
    QTest::mouseClick(d.action, Qt::LeftButton);
    QCOMPARE(d.actions, 1);
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::tabOutOfABadFieldShowsOneMessageAndKeepsTheFocus() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_Tab);
    REFUSED_ONCE();
}

void FieldGuardTest::backtabOutOfABadFieldShowsOneMessageAndKeepsTheFocus() {
    BAD_FIRST();
    d.guard.AddExempt(nullptr); // an exempt button that is gone
    QWidget::setTabOrder(d.second, d.first);
    QTest::keyClick(d.first, Qt::Key_Backtab, Qt::ShiftModifier);
    REFUSED_ONCE();
}

void FieldGuardTest::clickOnAnotherFieldShowsOneMessageAndKeepsTheFocus() {
    BAD_FIRST();
    QTest::mouseClick(d.second, Qt::LeftButton);
    REFUSED_ONCE();
}

void FieldGuardTest::clickOnAButtonShowsOneMessageAndDoesNotPressIt() {
    BAD_FIRST();
    QTest::mouseClick(d.action, Qt::LeftButton);
    REFUSED_ONCE();
    QCOMPARE(d.actions, 0);
}

void FieldGuardTest::accessKeyOfAButtonShowsOneMessageAndDoesNotPressIt() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_A, Qt::AltModifier);
    QTRY_VERIFY(!d.action->isDown()); // a button pressed by its access key acts when it comes up
    REFUSED_ONCE();
    QCOMPARE(d.actions, 0);
}

void FieldGuardTest::accessKeyOfALabelShowsOneMessageAndKeepsTheFocus() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_S, Qt::AltModifier);
    REFUSED_ONCE();
}

void FieldGuardTest::okByMouseShowsOneMessageAndDoesNotGoThrough() {
    BAD_FIRST();
    QTest::mouseClick(d.ok, Qt::LeftButton);
    REFUSED_ONCE();
}

void FieldGuardTest::okByAccessKeyShowsOneMessageAndDoesNotGoThrough() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_O, Qt::AltModifier);
    QTRY_VERIFY(!d.ok->isDown());
    REFUSED_ONCE();
}

void FieldGuardTest::okByEnterShowsOneMessageAndDoesNotGoThrough() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_Return);
    REFUSED_ONCE();
}

void FieldGuardTest::okChecksNoFieldThatWasNeverEntered() {
    Dialog& d = *m_dialog;
    d.second->setText(QStringLiteral("bad"));
    QTest::mouseClick(d.ok, Qt::LeftButton);
    QVERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
    d.Present();
    QTest::keyClick(d.first, Qt::Key_Return);
    QVERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::okChecksABadFieldThatWasLeftByCancel_data() {
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("by mouse") << true;
    QTest::newRow("by key, through another field") << false;
}

void FieldGuardTest::okChecksABadFieldThatWasLeftByCancel() {
    QFETCH(const bool, byMouse);
    BAD_FIRST();
    QWidget::setTabOrder(d.first, d.cancel);
    QWidget::setTabOrder(d.cancel, d.free);
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.cancel->hasFocus());
    Settle();
    if (byMouse) {
        QTest::mouseClick(d.ok, Qt::LeftButton);
    } else {
        QTest::keyClick(d.cancel, Qt::Key_Tab);
        QTRY_VERIFY(d.free->hasFocus());
        QTest::keyClick(d.free, Qt::Key_Return);
    }
    REFUSED_ONCE();
    QTest::keyClick(d.first, Qt::Key_Backspace);
    QTest::keyClick(d.first, Qt::Key_Return);
    QVERIFY(!d.isVisible());
    QCOMPARE(d.messages.size(), 1);
}

void FieldGuardTest::okGoesThroughWhenAllIsGood() {
    Dialog& d = *m_dialog;
    QTest::keyClicks(d.first, QStringLiteral("good"));
    QTest::mouseClick(d.ok, Qt::LeftButton);
    QCOMPARE(d.result(), int(QDialog::Accepted));
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::cancelByMouseIsNeverHindered() {
    BAD_FIRST();
    QTest::mouseClick(d.cancel, Qt::LeftButton);
    Settle();
    QVERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::cancelByAccessKeyIsNeverHindered() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_C, Qt::AltModifier);
    QTRY_VERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::cancelByTabAndSpaceIsNeverHindered() {
    BAD_FIRST();
    QWidget::setTabOrder(d.first, d.cancel);
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.cancel->hasFocus());
    Settle();
    QTest::keyClick(d.cancel, Qt::Key_Space);
    QTRY_VERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::escapeIsNeverHindered() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_Escape);
    QTRY_VERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::closingFromInsideIsNeverHindered() {
    BAD_FIRST();
    d.accept();
    Settle();
    QVERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::closeBoxShowsOneMessageAndKeepsTheWindow() {
    BAD_FIRST();
    PressCloseBox(d);
    REFUSED_ONCE();
    QVERIFY(d.isVisible());
    PressCloseBox(d);
    QCOMPARE(d.messages.size(), 2);
    QVERIFY(d.isVisible());
}

void FieldGuardTest::closeBoxClosesWhenTheFieldIsGood() {
    Dialog& d = *m_dialog;
    d.second->setText(QStringLiteral("bad")); // the user is not in it
    PressCloseBox(d);
    QVERIFY(!d.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::anotherWindowShowsOneMessageAndTheUserComesBack() {
    BAD_FIRST();
    QMainWindow other;
    other.show();
    other.activateWindow();
    QTRY_COMPARE(d.messages.size(), 1);
    QTRY_VERIFY(d.isActiveWindow());
    REFUSED_ONCE();
}

void FieldGuardTest::clickIntoAnotherWindowShowsOneMessage() {
    BAD_FIRST();
    QMainWindow other;
    auto* button = new QPushButton(QStringLiteral("x"));
    other.setCentralWidget(button);
    int clicks = 0;
    connect(button, &QPushButton::clicked, this, [&] { ++clicks; });
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(d.ClickIsOver());
    REFUSED_ONCE();
    QCOMPARE(clicks, 0);
}

void FieldGuardTest::closingTheOtherWindowIsNotHindered() {
    BAD_FIRST();
    QMainWindow other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    other.windowHandle()->close();
    d.reject();
    QTRY_VERIFY(d.ClickIsOver());
    QVERIFY(!other.isVisible());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::anotherProgramIsNoLeaving() {
    BAD_FIRST();
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(d.first, &away);
    QTRY_VERIFY(d.ClickIsOver());
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::dialogOfTheProgramIsNoLeaving() {
    BAD_FIRST();
    QDialog question(&d);
    question.open();
    QVERIFY(QTest::qWaitForWindowActive(&question));
    QTRY_VERIFY(d.ClickIsOver());
    question.accept();
    Settle();
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::helpIsNoLeaving() {
    BAD_FIRST();
    HelpWindow help;
    help.Load(QStringLiteral("/nowhere"));
    help.Open({});
    QVERIFY(QTest::qWaitForWindowActive(&help));
    QTRY_VERIFY(d.ClickIsOver());
    QVERIFY(d.messages.isEmpty());
    QVERIFY(help.isActiveWindow());
}

void FieldGuardTest::menuOfTheWindowIsNoLeaving() {
    BAD_FIRST();
    QMenuBar menus(&d);
    menus.addAction(QStringLiteral("Clear"));
    menus.show();
    Settle();
    QTest::mouseClick(&menus, Qt::LeftButton, {}, QPoint(5, 5));
    Settle();
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::clickThatMovesNoFocusIsNoLeaving() {
    BAD_FIRST();
    QTest::mouseClick(d.title, Qt::LeftButton);
    Settle();
    QVERIFY(d.messages.isEmpty());
    QVERIFY(d.first->hasFocus());
}

void FieldGuardTest::contextMenuIsNoLeaving() {
    BAD_FIRST();
    QFocusEvent away(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(d.first, &away);
    Settle();
    QVERIFY(d.messages.isEmpty());
}

void FieldGuardTest::eachAttemptShowsItsMessage() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.first->hasFocus());
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.first->hasFocus());
    QTest::mouseClick(d.action, Qt::LeftButton);
    Settle();
    QCOMPARE(d.messages.size(), 3);
    QVERIFY(d.first->hasFocus());
}

void FieldGuardTest::aFocusMovedByTheProgramComesBackWithOneMessage() {
    BAD_FIRST();
    d.free->setFocus();
    QTRY_COMPARE(d.messages.size(), 1);
    REFUSED_ONCE();
}

void FieldGuardTest::aFocusMovedAfterARefusalComesBackSilently() {
    BAD_FIRST();
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.first->hasFocus());
    d.free->setFocus();
    QVERIFY(d.free->hasFocus());
    REFUSED_ONCE();
}

void FieldGuardTest::aWindowThatGoesAwayUnderTheMessageDoesNoHarm() {
    auto* dialog = new QDialog;
    auto* guard = new FieldGuard(dialog);
    auto* field = new QLineEdit(dialog);
    auto* other = new QLineEdit(dialog);
    guard->AddField(field, [dialog] {
        delete dialog;
        return false;
    });
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    field->setFocus();
    QVERIFY(field->hasFocus());
    other->setFocus();
    Settle();
    QVERIFY(m_dialog->isVisible());
}

void FieldGuardTest::removedFieldsAreForgotten() {
    Dialog& d = *m_dialog;
    d.second->setText(QStringLiteral("bad"));
    QTest::keyClick(d.first, Qt::Key_Tab);
    QTRY_VERIFY(d.second->hasFocus());
    delete d.second;
    QVERIFY(d.guard.MayAccept());
    d.first->setFocus();
    QTest::keyClick(d.first, Qt::Key_Tab);
    Settle();
    QTRY_VERIFY(d.free->hasFocus());
    QVERIFY(d.messages.isEmpty());
}

QTEST_MAIN(FieldGuardTest)
#include "FieldGuardTest.moc"
