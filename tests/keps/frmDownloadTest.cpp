#include "keps/frmDownload.h"

#include "keps/ConvertKepsFile.h"
#include "keps/FakeTransfer.h"
#include "keps/HttpTransfer.h"
#include "keps/ScriptedServer.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

class frmDownloadTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<ProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    FakeTransfer m_inet;
    HttpTransfer m_http;
    std::unique_ptr<frmDownload> m_window;

    template <class Widget>
    Widget& The(const char* name) const {
        auto* widget = m_window->findChild<Widget*>(QString::fromUtf8(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return *widget;
    }
    QString Status() const { return The<QPlainTextEdit>("txtTerm").toPlainText(); }
    void Save(const char* key, const QString& value) const {
        m_ini->SaveIniString(QStringLiteral("KEPS"), QString::fromUtf8(key), value);
    }
    void MakeWindow(InternetTransfer& inet) {
        m_window = std::make_unique<frmDownload>(*m_folder, *m_ini, m_messages, inet);
        The<QTimer>("Timer1").setInterval(0);
    }

    // Shows the dialog, does `whileShown` in it, and answers what DownloadKeps does.
    bool Run(const std::function<void()>& whileShown) const {
        QTimer::singleShot(0, m_window.get(), [&] {
            QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
            whileShown();
            if (m_window->isVisible())
                QTest::keyClick(m_window.get(), Qt::Key_Escape);
        });
        return m_window->DownloadKeps();
    }

private Q_SLOTS:
    void init() {
        m_window.reset();
        m_directory = std::make_unique<QTemporaryDir>();
        m_folder = std::make_unique<ProgramFolder>(m_directory->path(), QStringLiteral("QiranDecode"));
        m_ini = std::make_unique<clsIni>(m_folder->IniFile());
        m_presenter.messages.clear();
        m_inet.executed.clear();
        m_messages.SetTitle(QStringLiteral("QIRAN Telemetry Decoder"));
        MakeWindow(m_inet);
    }
    void cleanup() { m_window.reset(); }

    void BoxesAreFilledFromTheSettingsAndTheirDefaults() {
        Run([&] {
            QCOMPARE(The<QLineEdit>("txtFile0").text(),
                     QStringLiteral("celestrak.org/NORAD/elements/amateur.txt"));
            QCOMPARE(The<QLineEdit>("txtFile1").text(), QString());
        });
        Save("FILE_1", QStringLiteral("a.org/a.txt"));
        Save("FILE_2", QStringLiteral("b.org/b.txt"));
        Run([&] {
            QCOMPARE(The<QLineEdit>("txtFile0").text(), QStringLiteral("a.org/a.txt"));
            QCOMPARE(The<QLineEdit>("txtFile1").text(), QStringLiteral("b.org/b.txt"));
        });
    }

    void BoxesSelectAllOnFocus() {
        Run([&] {
            The<QLineEdit>("txtFile1").setText(QStringLiteral("b.org/b.txt"));
            QTest::keyClick(&The<QLineEdit>("txtFile0"), Qt::Key_Tab);
            QTRY_COMPARE(The<QLineEdit>("txtFile1").selectedText(), QStringLiteral("b.org/b.txt"));
            QTest::keyClick(&The<QLineEdit>("txtFile1"), Qt::Key_Backtab);
            QTRY_COMPARE(The<QLineEdit>("txtFile0").selectedText(), The<QLineEdit>("txtFile0").text());
            QTest::mouseClick(&The<QLineEdit>("txtFile1"), Qt::LeftButton);
            QTRY_COMPARE(The<QLineEdit>("txtFile1").selectedText(), QStringLiteral("b.org/b.txt"));
        });
    }

    void DialogIsModalAndCentredOnTheScreenWhereverItsOwnerStands() {
        QWidget owner;
        owner.setGeometry(0, 0, 200, 100);
        owner.show();
        m_window = std::make_unique<frmDownload>(*m_folder, *m_ini, m_messages, m_inet, &owner);
        Run([&] {
            QVERIFY(m_window->isModal());
            const QPoint off =
                m_window->frameGeometry().center() - m_window->screen()->availableGeometry().center();
            QVERIFY(off.manhattanLength() < 60);
        });
        m_window.reset();
    }

    void Pictures() {
        Save("FILE_2", QStringLiteral("celestrak.org/NORAD/elements/gp.php?CATNR=25544&FORMAT=tle"));
        Run([&] {
            QTest::keyClick(&The<QLineEdit>("txtFile0"), Qt::Key_Return);
            for (int state = 1; state <= 8; ++state)
                m_inet.Raise(state);
            m_inet.Fail(403, QStringLiteral("Forbidden"));
            QVERIFY(Status().endsWith(u"Error - 403 Forbidden\n"));
            Screenshots::Take(*m_window, QStringLiteral("frmDownload"));
        });
    }

    void BothBlankIsSaidWithAnExclamation() {
        const bool result = Run([&] {
            The<QLineEdit>("txtFile0").clear();
            QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
            QVERIFY(m_window->isVisible());
        });
        QVERIFY(!result);
        QCOMPARE(m_presenter.Texts(), QStringList{QStringLiteral("Both URLs are blank!")});
        QCOMPARE(m_presenter.messages[0].style, MessageStyle::Exclamation);
        QCOMPARE(m_presenter.messages[0].caption, QStringLiteral("QIRAN Telemetry Decoder"));
    }

    void SuccessShowsTheSummaryAndCloses() {
        m_presenter.whileShown = [&](const Message&) { QVERIFY(m_window->isVisible()); };
        const bool result = Run([&] {
            QTest::keyClick(&The<QLineEdit>("txtFile0"), Qt::Key_Return); // the default button
            QCOMPARE(Status(), QStringLiteral("Getting amateur.txt\n"));
            m_inet.Complete(QByteArray(100, 'x'));
            QTRY_VERIFY(!m_window->isVisible());
        });
        m_presenter.whileShown = nullptr;
        QVERIFY(result);
        QCOMPARE(m_presenter.Texts(), QStringList{QStringLiteral("The Keps have been downloaded.")});
        QCOMPARE(m_presenter.messages[0].style, MessageStyle::Information);
        QVERIFY(QFile::exists(m_folder->KepsFolder() + QStringLiteral("/amateur.txt")));
    }

    void AnErrorLeavesTheDialogOpenAndIdle() {
        const bool result = Run([&] {
            QTest::keyClick(&The<QLineEdit>("txtFile0"), Qt::Key_D, Qt::AltModifier);
            QTRY_COMPARE(Status(), QStringLiteral("Getting amateur.txt\n"));
            m_inet.Fail(404, QStringLiteral("Not Found"));
            QVERIFY(m_window->isVisible());
            QVERIFY(Status().endsWith(u"Error - 404 Not Found\n"));
        });
        QVERIFY(!result);
        QVERIFY(m_presenter.messages.isEmpty());
    }

    void TheBarShowsHowFarTheFileIs() {
        Run([&] {
            const auto& bar = The<QProgressBar>("barProgress");
            QVERIFY(!bar.isVisible());
            QVERIFY(!bar.accessibleName().isEmpty());
            const QSize before = m_window->size();
            const int top = The<QPushButton>("cmdDownload").y();
            QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
            QVERIFY(bar.isVisible());
            QCOMPARE(bar.maximum(), 0); // busy: nobody knows how long the file is
            m_inet.RaiseProgress(1500, 6000);
            QCOMPARE(bar.minimum(), 0);
            QCOMPARE(bar.maximum(), 6000);
            QCOMPARE(bar.value(), 1500);
            QVERIFY(bar.y() > The<QPlainTextEdit>("txtTerm").geometry().bottom());
            Screenshots::Take(*m_window, QStringLiteral("frmDownload-progress"));
            m_inet.RaiseProgress(2000, -1);
            QCOMPARE(bar.maximum(), 0);
            m_inet.RaiseProgress(6000, 6000);
            QCOMPARE(bar.value(), 6000);
            QCOMPARE(m_window->size(), before);
            QCOMPARE(The<QPushButton>("cmdDownload").y(), top);
            m_inet.Fail(404, QStringLiteral("Not Found"));
            QVERIFY(!bar.isVisible());
            QTest::mouseClick(&The<QPushButton>("cmdDownload"),
                              Qt::LeftButton); // nothing of the last one stays
            QCOMPARE(bar.maximum(), 0);
            QVERIFY(bar.value() <= 0);
        });
    }

    void TheStatusBoxIsBounded() {
        Run([&] {
            QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
            for (int i = 0; i < 3000; ++i)
                m_inet.Raise(InternetTransfer::Connected);
            QVERIFY(Status().size() <= 10002);
            QVERIFY(Status().size() > 8000);
            QVERIFY(Status().endsWith(u"Connected\n"));
            QVERIFY(!Status().contains(u"Getting"));
        });
    }

    void EveryWayOutCancelsAndLeavesNothing() {
        for (int way = 0; way < 3; ++way) {
            init();
            Save("FILE_2", QStringLiteral("b.org/b.txt"));
            Run([&] {
                QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
                m_inet.Complete(QByteArray(100, 'x'));
                QTRY_COMPARE(m_inet.executed.size(), 2);
                const int before = m_inet.cancelled;
                if (way == 0)
                    QTest::mouseClick(&The<QPushButton>("cmdCancel"), Qt::LeftButton);
                else if (way == 1)
                    QTest::keyClick(&The<QLineEdit>("txtFile1"), Qt::Key_Escape);
                else
                    m_window->close();
                QVERIFY(!m_window->isVisible());
                QVERIFY(m_inet.cancelled > before);
                QVERIFY(!QFile::exists(KepsFiles::Target(*m_folder)));
                QVERIFY(!QFile::exists(KepsFiles::Work(*m_folder)));
            });
        }
    }

    void TheDialogWorksWhileASlowServerSends() {
        const QByteArray answer = ScriptedServer::Http("200 OK", QByteArray(1000, 'x'));
        ScriptedServer server({answer, true, 10, answer.size() - 1000});
        MakeWindow(m_http);
        Save("FILE_1", server.Address() + QStringLiteral("/slow.txt"));
        Run([&] {
            QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
            QTRY_VERIFY(Status().contains(u"Received some data"));
            QTest::keyClicks(&The<QLineEdit>("txtFile1"), QStringLiteral("typed"));
            QCOMPARE(The<QLineEdit>("txtFile1").text(), QStringLiteral("typed"));
            QTRY_VERIFY(The<QProgressBar>("barProgress").value() > 0);
            QCOMPARE(The<QProgressBar>("barProgress").maximum(), 1000);
            QVERIFY(!Status().contains(u"bytes"));
            QTest::mouseClick(&The<QPushButton>("cmdCancel"), Qt::LeftButton);
            QVERIFY(!m_window->isVisible());
        });
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("QiranDecode.INI")});
    }

    void AFileComesFromAServerIntoTheKepsFolder() {
        ScriptedServer server(
            {ScriptedServer::Http("200 OK", QByteArray(50, 'x') + '\n' + QByteArray(50, 'y'))});
        MakeWindow(m_http);
        Save("FILE_1", server.Address() + QStringLiteral("/elements/amateur.txt"));
        const bool result = Run([&] {
            QTest::mouseClick(&The<QPushButton>("cmdDownload"), Qt::LeftButton);
            QTRY_VERIFY(!m_window->isVisible());
        });
        QVERIFY(result);
        QCOMPARE(Status(), QStringLiteral("Getting amateur.txt\nResolving host\nResolved host\n"
                                          "Attempting to connect to - 127.0.0.1\nConnected\nRequest sent\n"
                                          "Received some data\nDisconnecting\nDisconnected\n"
                                          "amateur.txt has been downloaded\n"));
        QFile file(m_folder->KepsFolder() + QStringLiteral("/amateur.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray(QByteArray(50, 'x') + "\r\n" + QByteArray(50, 'y') + "\r\n"));
    }
};

QTEST_MAIN(frmDownloadTest)
#include "frmDownloadTest.moc"
