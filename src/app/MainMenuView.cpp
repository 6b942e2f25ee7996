#include "app/MainMenuView.h"

#include <QMenu>
#include <QMenuBar>

namespace {

QAction* Named(QAction* entry, QLatin1StringView name) {
    entry->setObjectName(name);
    return entry;
}

QMenu* SubMenu(QMenuBar& bar, const QString& caption, QLatin1StringView name) {
    QMenu* menu = bar.addMenu(caption);
    menu->setObjectName(name);
    return menu;
}

QAction* Inactive(QAction* entry) {
    entry->setEnabled(false);
    return entry;
}

} // namespace

MainMenuView::MainMenuView(QMenuBar& bar) {
    using namespace Qt::StringLiterals;
    mnuTerminal = Named(bar.addAction(u"&Terminal"_s), "mnuTerminal"_L1);
    mnuMap = Named(bar.addAction(u"&Map"_s), "mnuMap"_L1);

    QMenu* options = SubMenu(bar, u"&Options"_s, "mnuOptions"_L1);
    mnuUseLocalTime = Named(options->addAction(u"&Use Local Time"_s), "mnuUseLocalTime"_L1);
    mnuOnlyShowQIRAN = Named(options->addAction(u"&Only Show QIRAN"_s), "mnuOnlyShowQIRAN"_L1);
    Named(Inactive(options->addAction(u"Use &Sapphire Keps"_s)), "mnuUseSapphireKeps"_L1);
    Named(options->addSeparator(), "mnuBar1"_L1);
    mnuLocation = Named(options->addAction(u"S&tation Information"_s), "mnuLocation"_L1);
    mnuAGWPESetup = Named(options->addAction(u"&AGWPE Setup"_s), "mnuAGWPESetup"_L1);
    Named(Inactive(options->addAction(u"&Sides"_s)), "mnuSides"_L1);
    mnuCallsigns = Named(options->addAction(u"QIRAN &Callsigns"_s), "mnuCallsigns"_L1);
    Named(options->addSeparator(), "mnuBar3"_L1);
    mnuDownloadKeps = Named(options->addAction(u"&Download Keps"_s), "mnuDownloadKeps"_L1);

    QMenu* help = SubMenu(bar, u"&Help"_s, "mnuHelp"_L1);
    mnuHelpContents = Named(help->addAction(u"&Help Contents"_s), "mnuHelpContents"_L1);
    Named(help->addSeparator(), "mnuBar2"_L1);
    mnuAbout = Named(help->addAction(u"&About"_s), "mnuAbout"_L1);

    mnuExit = Named(bar.addAction(u"E&xit"_s), "mnuExit"_L1);
    mnuUseLocalTime->setCheckable(true);
    mnuOnlyShowQIRAN->setCheckable(true);
}
