#pragma once

class QAction;
class QMenuBar;

/// The menu tree of the main window. What an entry does is connected by the window.
struct MainMenuView {
    explicit MainMenuView(QMenuBar& bar);

    QAction* mnuTerminal;
    QAction* mnuMap;
    QAction* mnuUseLocalTime;
    QAction* mnuOnlyShowQIRAN;
    QAction* mnuLocation;
    QAction* mnuAGWPESetup;
    QAction* mnuCallsigns;
    QAction* mnuDownloadKeps;
    QAction* mnuHelpContents;
    QAction* mnuAbout;
    QAction* mnuExit;
};
