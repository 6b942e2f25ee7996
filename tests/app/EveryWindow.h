#pragma once

#include "app/MainWindowRig.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/MessageBoxPresenter.h"

#include <QAbstractButton>
#include <QTest>

/// Every window of the program, one after the other, in the true main window's program folder: with elements,
/// a position, a history, and first steps of which one is missing.
class EveryWindow {
public:
    using Look = std::function<void(QWidget*)>;

    EveryWindow() {
        rig.Set("SETUP", "CALLSIGN", QStringLiteral("N0CALL-7"));
        rig.Set("SETUP", "LATITUDE", QStringLiteral("5130.00N"));
        rig.Set("SETUP", "LONGITUDE", QStringLiteral("00030.00W"));
        rig.Set("AGWPE", "HOST_PORT", QStringLiteral("1")); // nobody answers there
        rig.folder.Write(QStringLiteral("Keps/amateur.txt"),
                         "QIRAN\r\n"
                         "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                         "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n");
        rig.folder.Write(QStringLiteral("tlm.txt"),
                         "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n"
                         "2026-11-20T23:00:00.000Z,XQ9ZZ-1,A,T#1,10,20,30,40,0,0,00100000,0\n"
                         "2026-11-20T23:01:00.000Z,XQ9ZZ-1,A,T#2,11,20,30,40,0,0,00100000,0\n");
        rig.clock.Set(DateOf(2026, 11, 21) + 0.5);
        boxes = std::make_unique<MessageBoxPresenter>(QFINDTESTDATA("../../data/qirandecode.HLP"));
    }

    /// Starts the program and hands it each window, shown and laid out; answers their names.
    QStringList Show(const Look& look) {
        QStringList names;
        const Look note = [&](QWidget* window) {
            QApplication::processEvents();
            names += window->objectName();
            look(window);
        };
        if (!rig.Start() ||
            !QTest::qWaitFor([this] { return rig.Monitor().contains(QStringLiteral("retry")); }))
            return names;
        rig.Hear(1, 21);
        note(rig.window.get());
        for (const char* opener : {"mnuTerminal", "mnuMap", "mnuSky", "cmdPassInfo", "cmdHistory",
                                   "mnuLocation", "mnuAGWPESetup", "mnuCallsigns", "mnuDownloadKeps",
                                   "mnuAbout", "mnuLinkKissSetup", "mnuLinkForwarding", "mnuLinkRecord"})
            Open([&] { Press(opener); }, note);
        Open([this] { rig.window->ImportHistory(rig.window.get()); }, note);
        Open([this] { boxes->OpenHelp({}); }, note);
        Open(
            [this] {
                boxes->ShowMessage({rig.window.get(),
                                    QStringLiteral("The map picture cannot be shown. The map has a plain "
                                                   "background instead."),
                                    MessageStyle::Information | MessageStyle::HelpButton,
                                    {},
                                    HelpTopics::programFolder});
            },
            note);
        return names;
    }

    MainWindowRig rig;
    std::unique_ptr<MessageBoxPresenter> boxes;

private:
    void Press(const char* opener) const {
        if (auto* button = rig.Find<QAbstractButton>(opener))
            button->click();
        else
            rig.Find<QAction>(opener)->trigger();
    }

    // A modal window is looked at from its own loop.
    void Open(const std::function<void()>& open, const Look& look) const {
        const QWidgetList before = Shown();
        bool isModal = false;
        QTimer::singleShot(0, rig.window.get(), [&] {
            QWidget* modal = QApplication::activeModalWidget();
            if (modal == nullptr)
                return;
            isModal = true;
            look(modal);
            modal->close();
        });
        open();
        QApplication::processEvents();
        for (QWidget* window : Shown())
            if (!isModal && !before.contains(window)) {
                look(window);
                window->close();
            }
        QApplication::processEvents();
    }

    static QWidgetList Shown() {
        QWidgetList shown;
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible())
                shown += window;
        return shown;
    }
};
