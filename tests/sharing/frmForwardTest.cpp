#include "sharing/frmForward.h"

#include "foundation/messages/HelpKey.h"
#include "foundation/messages/HelpWindow.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "sharing/ForwardRoom.h"
#include "support/CloseBox.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

class frmForwardTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<ForwardRoom> m_room;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    std::unique_ptr<frmForward> m_window;

    template <class Widget>
    Widget& The(const char* name) const {
        auto* widget = m_window->findChild<Widget*>(QString::fromUtf8(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return *widget;
    }
    QString Text(const char* label) const { return The<QLabel>(label).text(); }
    QStringList Parked() const {
        QStringList words;
        const auto& list = The<QTreeWidget>("lstParked");
        for (int row = 0; row < list.topLevelItemCount(); ++row)
            words.append(list.topLevelItem(row)->text(1));
        return words;
    }

    void Show() {
        m_window = std::make_unique<frmForward>(*m_room->forwarder, m_messages);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void ParkFrames(int count) const {
        for (int number = 1; number <= count; ++number)
            m_room->Hear(number);
        for (int number = 1; number <= count; ++number) {
            m_room->post.Answer(400, u"400 no %1"_s.arg(number));
            m_room->PassTime();
        }
    }

private Q_SLOTS:
    void init() {
        m_room = std::make_unique<ForwardRoom>();
        m_room->Set("USE", u"FALSE"_s);
        m_presenter.messages.clear();
    }
    void cleanup() {
        m_window.reset();
        m_room.reset();
    }

    void WhatIsSentToWhomAndUnderWhichCallsignIsShown() {
        m_room->forwarder->Start();
        m_room->Hear(1); // while it is off
        Show();
        QCOMPARE(The<QPlainTextEdit>("txtExample").toPlainText(),
                 u"to: https://db.satnogs.org/api/telemetry/\nnoradID: 90417\nsource: DL1ABC\n"
                 u"timestamp: 2026-11-21T15:28:44.120Z\nframe: "_s +
                     QString::fromLatin1(ForwardRoom::Raw(1).toHex().toUpper()) +
                     u"\nlocator: longLat\nlongitude: 8.96E\nlatitude: 49.73N\nversion: QiranDecode-2.4.2"_s);
        QVERIFY(!The<QLabel>("labMissing").isVisible());
        m_room->Hear(2);
        QTRY_VERIFY(The<QPlainTextEdit>("txtExample").toPlainText().contains(u"15:28:45.120Z"));
    }

    void WhatIsMissingIsShown() {
        m_room->station.callsign.clear();
        m_room->station.isPositionKnown = false;
        m_room->forwarder->Start();
        Show();
        QVERIFY(The<QLabel>("labMissing").isVisible());
        QCOMPARE(Text("labMissing"), u"Nothing can be sent; missing: callsign, position"_s);
        QVERIFY(
            The<QPlainTextEdit>("txtExample").toPlainText().contains(u"frame: the frame's bytes, in hex\n"));
        Keys::Press(Qt::Key_A, Qt::AltModifier);
        Keys::Replace(u"nowhere"_s);
        QCOMPARE(Text("labMissing"),
                 u"Nothing can be sent; missing: callsign, position, address of a server"_s);
        QVERIFY(The<QPlainTextEdit>("txtExample").toPlainText().startsWith(u"to: nowhere\n"));
    }

    void OkSavesWhatWasChangedAndGoesByIt() {
        m_room->forwarder->Start();
        Show();
        QCOMPARE(Keys::Focus(), u"chkUse"_s);
        Keys::Press(Qt::Key_Space);
        Keys::Press(Qt::Key_Y, Qt::AltModifier);
        QTRY_VERIFY(The<QCheckBox>("chkDryRun").isChecked());
        Keys::Press(Qt::Key_A, Qt::AltModifier);
        QCOMPARE(Keys::Focus(), u"txtUrl"_s);
        Keys::Replace(u" http://localhost:8080/api "_s);
        Keys::Press(Qt::Key_T, Qt::AltModifier);
        QCOMPARE(Keys::Focus(), u"txtToken"_s);
        Keys::Paste(u"abc123"_s);
        QVERIFY(!The<QLineEdit>("txtToken").displayText().contains(u"abc"));
        Keys::Press(Qt::Key_Return);
        QTRY_VERIFY(!m_window->isVisible());
        QCOMPARE(m_room->Get("USE"), u"TRUE"_s);
        QCOMPARE(m_room->Get("DRY_RUN"), u"TRUE"_s);
        QCOMPARE(m_room->Get("URL"), u"http://localhost:8080/api"_s);
        QCOMPARE(m_room->Get("TOKEN"), u"abc123"_s);
        QCOMPARE(m_room->Get("KEEP_AT_MOST"), u"absent"_s);
        QVERIFY(m_room->forwarder->Settings().use && m_room->forwarder->Settings().dryRun);
        m_room->Hear(1);
        QVERIFY(m_room->lines.value(0).startsWith(u"dry run, nothing is sent to localhost: "));
    }

    void CancelEscapeAndTheCloseBoxChangeNothing() {
        m_room->forwarder->Start();
        const QByteArray before = m_room->folder.Read(u"QiranDecode.INI"_s);
        for (int way = 0; way < 3; ++way) {
            Show();
            Keys::Press(Qt::Key_Space);
            if (way == 0)
                Keys::Press(Qt::Key_C, Qt::AltModifier);
            else if (way == 1)
                Keys::Press(Qt::Key_Escape);
            else
                PressCloseBox(*m_window);
            QTRY_VERIFY(!m_window->isVisible());
            QCOMPARE(m_room->folder.Read(u"QiranDecode.INI"_s), before);
            QVERIFY(!m_room->forwarder->Settings().use);
        }
    }

    void AddressThatIsNoneIsSaidAndKeepsTheFocus() {
        m_room->forwarder->Start();
        Show();
        for (const QString& bad :
             {u""_s, u"db.satnogs.org"_s, u"ftp://db.satnogs.org/"_s, u"https://"_s, u"https:// x"_s}) {
            m_presenter.messages.clear();
            Keys::Press(Qt::Key_A, Qt::AltModifier);
            Keys::Replace(bad);
            Keys::Press(Qt::Key_Tab);
            QCOMPARE(Keys::Focus(), u"txtUrl"_s);
            QCOMPARE(
                m_presenter.Texts(),
                QStringList{u"'Server's address' must begin with https:// or http:// and name a server."_s});
            Keys::Press(Qt::Key_Return);
            QVERIFY(m_window->isVisible());
        }
        Keys::Replace(u"http://127.0.0.1"_s);
        Keys::Press(Qt::Key_Tab);
        QCOMPARE(Keys::Focus(), u"txtToken"_s);
        Keys::Press(Qt::Key_A, Qt::AltModifier);
        Keys::Replace(QString());
        m_presenter.messages.clear();
        Keys::Press(Qt::Key_Escape); // is never refused
        QVERIFY(!m_window->isVisible() && m_presenter.messages.isEmpty());
    }

    void ParkedFramesAreRetriedAndDiscardedByKeys() {
        m_room->Set("USE", u"TRUE"_s);
        m_room->forwarder->Start();
        ParkFrames(4);
        Show();
        QCOMPARE(Parked(), (QStringList{u"400 no 1"_s, u"400 no 2"_s, u"400 no 3"_s, u"400 no 4"_s}));
        QCOMPARE(Text("labCounts"), u"0 waiting, 4 refused, 0 sent, 0 discarded, 0 dropped"_s);
        QCOMPARE(The<QTreeWidget>("lstParked").topLevelItem(0)->text(0), u"2026-11-21T15:28:44.120Z"_s);
        QVERIFY(!The<QPushButton>("cmdRetry").isEnabled() && !The<QPushButton>("cmdDiscard").isEnabled());
        Keys::Press(Qt::Key_R, Qt::AltModifier);
        QCOMPARE(Keys::Focus(), u"lstParked"_s);
        Keys::Press(Qt::Key_Home);
        Keys::Press(Qt::Key_Down);
        Keys::Press(Qt::Key_E, Qt::AltModifier);
        QTRY_COMPARE(m_room->post.requests.last().body, m_room->Body(2));
        QTRY_COMPARE(Parked(), (QStringList{u"400 no 1"_s, u"400 no 3"_s, u"400 no 4"_s}));
        QCOMPARE(Text("labCounts"), u"1 waiting, 3 refused, 0 sent, 0 discarded, 0 dropped"_s);
        m_room->post.Answer(400, u"400 again"_s);
        QTRY_COMPARE(Parked(), (QStringList{u"400 no 1"_s, u"400 again"_s, u"400 no 3"_s, u"400 no 4"_s}));
        The<QTreeWidget>("lstParked").setFocus();
        Keys::Press(Qt::Key_A, Qt::ControlModifier);
        Keys::Press(Qt::Key_D, Qt::AltModifier);
        QTRY_COMPARE(Parked(), QStringList());
        QCOMPARE(Text("labCounts"), u"0 waiting, 0 refused, 0 sent, 4 discarded, 0 dropped"_s);
        QVERIFY(!The<QPushButton>("cmdDiscard").isEnabled());
    }

    void SelectionStaysWhileTheListChanges() {
        m_room->Set("USE", u"TRUE"_s);
        m_room->forwarder->Start();
        ParkFrames(3);
        Show();
        The<QTreeWidget>("lstParked").topLevelItem(2)->setSelected(true);
        m_room->forwarder->Discard({1});
        m_room->Hear(9);
        m_room->post.Answer(400, u"400 late"_s);
        QTRY_COMPARE(Parked(), (QStringList{u"400 no 2"_s, u"400 no 3"_s, u"400 late"_s}));
        QVERIFY(The<QTreeWidget>("lstParked").topLevelItem(1)->isSelected());
        QVERIFY(The<QPushButton>("cmdDiscard").isEnabled());
    }

    void ReturnInTheListIsOkAndSpaceOnRetryIsRetry() {
        m_room->Set("USE", u"TRUE"_s);
        m_room->forwarder->Start();
        ParkFrames(1);
        Show();
        The<QTreeWidget>("lstParked").topLevelItem(0)->setSelected(true);
        The<QPushButton>("cmdRetry").setFocus();
        Keys::Press(Qt::Key_Space);
        QTRY_COMPARE(Parked(), QStringList());
        QVERIFY(m_window->isVisible());
    }

    void AccessKeysAreDifferent() {
        m_room->forwarder->Start();
        Show();
        QStringList keys;
        const auto add = [&](const QString& text) {
            if (const qsizetype at = text.indexOf(u'&'); at >= 0)
                keys.append(text.mid(at + 1, 1).toUpper());
        };
        for (const QLabel* label : m_window->findChildren<QLabel*>())
            add(label->text());
        for (const QAbstractButton* button : m_window->findChildren<QAbstractButton*>())
            add(button->text());
        QCOMPARE(keys.size(), 10);
        QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
    }

    void WindowCanBeMadeSmallAndShowsAllOfItself() {
        m_room->forwarder->Start();
        Show();
        m_window->resize(100, 100);
        QTest::qWait(0);
        QVERIFY(m_window->width() >= The<QLineEdit>("txtUrl").minimumWidth());
        QVERIFY(m_window->rect().contains(
            The<QPushButton>("cmdCancel")
                .mapTo(m_window.get(), The<QPushButton>("cmdCancel").rect().bottomRight())));
    }

    void HelpHasATopicForEveryField() {
        MessageBoxPresenter presenter(QFINDTESTDATA("../../data/qirandecode.HLP"));
        HelpKey key(qApp, presenter);
        m_room->forwarder->Start();
        Show();
        for (const QString& name : {u"frmForward"_s, u"chkUse"_s, u"chkDryRun"_s, u"txtUrl"_s, u"txtToken"_s,
                                    u"txtExample"_s, u"lstParked"_s, u"cmdRetry"_s, u"cmdDiscard"_s}) {
            QWidget* target =
                name == m_window->objectName() ? m_window.get() : m_window->findChild<QWidget*>(name);
            QVERIFY2(target != nullptr, qPrintable(name));
            QTest::keyClick(target, Qt::Key_F1);
            QWidget* help = nullptr;
            for (QWidget* window : QApplication::topLevelWidgets())
                if (window->objectName() == u"frmHelp" && window->isVisible())
                    help = window;
            QVERIFY2(help != nullptr, qPrintable(name));
            QStringList topics;
            const QTextBlock block = help->findChild<QTextBrowser*>(u"txtHelp"_s)->textCursor().block();
            for (auto piece = block.begin(); !piece.atEnd(); ++piece)
                topics += piece.fragment().charFormat().anchorNames();
            QVERIFY2(topics.contains(name) || topics.contains(u"frmForward."_s + name),
                     qPrintable(name + u": "_s + topics.join(u' ')));
            help->close();
        }
    }

    void Pictures() {
        m_room->Set("USE", u"TRUE"_s);
        m_room->Set("TOKEN", u"0123456789abcdef"_s);
        m_room->forwarder->Start();
        ParkFrames(3);
        Show();
        Screenshots::Take(*m_window, u"frmForward"_s);
        m_room->station = {};
        m_window.reset();
        Show();
        Screenshots::Take(*m_window, u"frmForward-missing"_s);
    }
};

QTEST_MAIN(frmForwardTest)
#include "frmForwardTest.moc"
