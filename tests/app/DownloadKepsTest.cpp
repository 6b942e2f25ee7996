#include "app/MainWindowRig.h"
#include "keps/ScriptedServer.h"

#include <QGroupBox>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

/// What the main window does with what its download fetches.
class DownloadKepsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void newElementsAreTrackedAtOnce();
    void withoutNewElementsNothingIsReadAgain();
};

namespace {

constexpr auto elements = "TESTSAT\n"
                          "1 90417U 26001A   26320.00000000  .00000000  00000-0  10000-3 0  9997\n"
                          "2 90417  51.6400 208.9000 0006700  70.0000  25.0000 15.49560000    16\n";

// Downloads with the keyboard alone, as a user does, until the dialog has closed or says that it cannot.
void Download(MainWindowRig& rig) {
    bool asked = false;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog == nullptr || dialog->objectName() != u"frmDownload"_s || !dialog->isActiveWindow())
            return;
        if (!std::exchange(asked, true))
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        else if (dialog->findChild<QPlainTextEdit*>(u"txtTerm"_s)->toPlainText().contains(u"Error - "_s))
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Escape);
    });
    user.start(10);
    rig.Find<QAction>("mnuDownloadKeps")->trigger();
    QVERIFY(asked);
}

} // namespace

void DownloadKepsTest::newElementsAreTrackedAtOnce() {
    ScriptedServer server({ScriptedServer::Http("200 OK", elements)});
    MainWindowRig rig;
    rig.Set("KEPS", "FILE_1", server.Address() + u"/amateur.txt"_s);
    QVERIFY(rig.Start());
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN Current Location"_s);
    rig.window->findChild<QTimer*>(u"Timer1"_s)->stop(); // it would bring the panel up to date by itself
    const QString before = rig.Find<QLabel>("labLat")->text();

    Download(rig);
    QCOMPARE(rig.presenter.Texts().last(), u"The Keps have been downloaded."_s);
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN (TESTSAT) Current Location"_s);
    QVERIFY(rig.Find<QLabel>("labLat")->text() != before);
    QVERIFY(
        rig.Find<QLabel>("labLat")->text().contains(QRegularExpression(u"\\d\\d\\.\\d\\d\\.\\d\\d[NS]"_s)));
}

void DownloadKepsTest::withoutNewElementsNothingIsReadAgain() {
    ScriptedServer server({ScriptedServer::Http("403 Forbidden", "come back tomorrow")});
    MainWindowRig rig;
    rig.Set("KEPS", "FILE_1", server.Address() + u"/amateur.txt"_s);
    QVERIFY(rig.Start());
    rig.folder.Write(u"Keps/by-hand.txt"_s, elements);
    Download(rig);
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN Current Location"_s);
    QCOMPARE(server.Requests().size(), 1);
}

QTEST_MAIN(DownloadKepsTest)
#include "DownloadKepsTest.moc"
