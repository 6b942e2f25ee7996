#include "app/MainMenuView.h"

#include "foundation/fields/Named.h"

#include <QMenu>
#include <QMenuBar>

namespace {

QAction* Inactive(QAction* entry) {
    entry->setEnabled(false);
    return entry;
}

} // namespace

MainMenuView::MainMenuView(QMenuBar& bar) {
    using namespace Qt::StringLiterals;
    mnuTerminal = Named(u"mnuTerminal", bar.addAction(u"&Terminal"_s));
    mnuMap = Named(u"mnuMap", bar.addAction(u"&Map"_s));

    QMenu* options = Named(u"mnuOptions", bar.addMenu(u"&Options"_s));
    mnuUseLocalTime = Named(u"mnuUseLocalTime", options->addAction(u"&Use Local Time"_s));
    mnuOnlyShowQIRAN = Named(u"mnuOnlyShowQIRAN", options->addAction(u"&Only Show QIRAN"_s));
    Named(u"mnuUseSapphireKeps", Inactive(options->addAction(u"Use &Sapphire Keps"_s)));
    Named(u"mnuBar1", options->addSeparator());
    mnuLocation = Named(u"mnuLocation", options->addAction(u"S&tation Information"_s));
    mnuAGWPESetup = Named(u"mnuAGWPESetup", options->addAction(u"&AGWPE Setup"_s));
    Named(u"mnuSides", Inactive(options->addAction(u"&Sides"_s)));
    mnuCallsigns = Named(u"mnuCallsigns", options->addAction(u"QIRAN &Callsigns"_s));
    Named(u"mnuBar3", options->addSeparator());
    mnuDownloadKeps = Named(u"mnuDownloadKeps", options->addAction(u"&Download Keps"_s));

    QMenu* help = Named(u"mnuHelp", bar.addMenu(u"&Help"_s));
    mnuHelpContents = Named(u"mnuHelpContents", help->addAction(u"&Help Contents"_s));
    Named(u"mnuBar2", help->addSeparator());
    mnuAbout = Named(u"mnuAbout", help->addAction(u"&About"_s));

    mnuExit = Named(u"mnuExit", bar.addAction(u"E&xit"_s));
    mnuUseLocalTime->setCheckable(true);
    mnuOnlyShowQIRAN->setCheckable(true);
}
