#pragma once

#include "foundation/messages/mb.h"
#include "foundation/settings/clsIni.h"
#include "station/RecordingLink.h"
#include "station/identity/Station.h"
#include "station/terminal/TerminalSession.h"
#include "station/terminal/frmTerm.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QAction>
#include <QFontDatabase>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextCursor>

#include <algorithm>
#include <memory>

/// A terminal with a program folder, a callsign and a connected engine, for test classes to inherit; noon on
/// 21 November 2026. Prepare() belongs into their init(), TakeDown() into their cleanup().
class TerminalRig {
protected:
    void Prepare() {
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_ini = std::make_unique<clsIni>(m_folder->IniFile());
        m_station = std::make_unique<Station>(*m_ini);
        m_station->setStrCallsign(QStringLiteral("XQ9ZZ-1"));
        m_session = std::make_unique<TerminalSession>(*m_ini, m_clock, m_folder->Program(), *m_station,
                                                      m_link, m_messages, ProgramVersion{2, 4, 2});
        m_presenter.messages.clear();
        m_presenter.whileShown = nullptr;
        m_link.sent.clear();
        m_link.isConnected = true;
        m_link.portCount = 0;
        m_clock.Set(DateOf(2026, 11, 21) + 0.5);
        m_clock.SetOffsetHours(0);
        m_unloadings = 0;
    }
    void TakeDown() {
        m_window.reset();
        QFontDatabase::removeAllApplicationFonts();
    }

    void Make() {
        m_session->Open();
        m_window = std::make_unique<frmTerm>(*m_ini, m_messages, m_link, *m_session, m_folder->Program());
        QObject::connect(m_window.get(), &frmTerm::ImUnloading, m_window.get(), [this] { ++m_unloadings; });
    }
    void Open() {
        Make();
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTRY_COMPARE(Keys::Focus(), QStringLiteral("txtTx"));
    }

    QLineEdit* Field(const QString& name) const { return m_window->findChild<QLineEdit*>(name); }
    QPlainTextEdit* Pane() const { return m_window->findChild<QPlainTextEdit*>(QStringLiteral("rtbMon")); }
    QString Shown() const { return Pane()->toPlainText(); }
    QAction* Entry(const QString& name) const { return m_window->findChild<QAction*>(name); }
    QString Ini(const QString& key, const QString& section = QStringLiteral("TERMINAL")) const {
        return m_ini->GetIniString(section, key, QStringLiteral("absent"));
    }
    QColor ColourAt(qsizetype position) const {
        QTextCursor cursor(Pane()->document());
        cursor.setPosition(static_cast<int>(position) + 1);
        return cursor.charFormat().foreground().color();
    }
    static bool IsLogHeldOpen() {
        const QFileInfoList open = QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files);
        return std::ranges::any_of(open, [](const QFileInfo& file) {
            return file.symLinkTarget().endsWith(QStringLiteral("20261121.TXT"));
        });
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<Station> m_station;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    RecordingLink m_link;
    TestClock m_clock;
    std::unique_ptr<TerminalSession> m_session;
    std::unique_ptr<frmTerm> m_window;
    int m_unloadings = 0;
};
