// A window of the same widgets as the program's main window and nothing behind them: what Qt alone costs.
// bench/program measures the program beside it.

#include <QApplication>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QFont FixedFont() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

void AddMenus(QMenuBar& bar) {
    bar.addAction(u"&Terminal"_s);
    bar.addAction(u"&Map"_s);
    QMenu* options = bar.addMenu(u"&Options"_s);
    options->addAction(u"&Use Local Time"_s)->setCheckable(true);
    options->addAction(u"&Only Show QIRAN"_s)->setCheckable(true);
    options->addAction(u"Use &Sapphire Keps"_s)->setEnabled(false);
    options->addSeparator();
    options->addAction(u"S&tation Information"_s);
    options->addAction(u"&AGWPE Setup"_s);
    options->addAction(u"&Sides"_s)->setEnabled(false);
    options->addAction(u"QIRAN &Callsigns"_s);
    options->addSeparator();
    options->addAction(u"&Download Keps"_s);
    QMenu* help = bar.addMenu(u"&Help"_s);
    help->addAction(u"&Help Contents"_s);
    help->addSeparator();
    help->addAction(u"&About"_s);
    bar.addAction(u"E&xit"_s);
}

QTableView* MakeGrid(const QString& heading, const QStringList& names) {
    auto* view = new QTableView;
    auto* model = new QStandardItemModel(static_cast<int>(names.size()), 3, view);
    model->setHorizontalHeaderLabels({heading, u"A"_s, u"B"_s});
    for (int row = 0; row < names.size(); ++row)
        model->setItem(row, 0, new QStandardItem(names[row]));
    view->setModel(model);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    const int line = view->fontMetrics().height();
    view->verticalHeader()->setMinimumSectionSize(0);
    view->verticalHeader()->setDefaultSectionSize(line + line / 3);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setFixedHeight(view->horizontalHeader()->sizeHint().height() + view->verticalHeader()->length() +
                         2 * view->frameWidth());
    return view;
}

QGroupBox* MakePanel() {
    auto* panel = new QGroupBox(u"QIRAN Current Location"_s);
    auto* layout = new QGridLayout(panel);
    const QStringList captions{u"Latitude"_s, u"Longitude"_s, u"Azimuth"_s, u"Elevation"_s, u"Due (UTC)"_s};
    for (int row = 0; row < captions.size(); ++row) {
        auto* value = new QLabel(u"-"_s);
        value->setFont(FixedFont());
        value->setAlignment(Qt::AlignCenter);
        value->setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Sunken));
        value->setAutoFillBackground(true);
        value->setBackgroundRole(QPalette::Base);
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance(u"000.00.00W "_s) + 8);
        layout->addWidget(new QLabel(captions[row]), row, 0);
        layout->addWidget(value, row, 1);
    }
    layout->addWidget(new QPushButton(u"&Change Satellite"_s), 5, 0, 1, 2);
    layout->addWidget(new QPushButton(u"&Pass Predictions"_s), 6, 0, 1, 2);
    return panel;
}

void LayOut(QWidget* centre) {
    auto* layout = new QGridLayout(centre);
    const QStringList sides{u"X+"_s, u"X-"_s, u"Y+"_s, u"Y-"_s, u"Z+"_s, u"Z-"_s};
    const std::array grids{
        MakeGrid(u"POWER"_s, {u"Batt A"_s, u"Batt B"_s, u"P Out"_s, u"8V Reg"_s}),
        MakeGrid(u"CURRENT"_s, sides + QStringList{u"Batt"_s}),
        MakeGrid(u"TEMPS"_s, sides + QStringList{u"Stack"_s, u"Batt"_s, u"Xmtr"_s}),
    };
    for (int column = 0; QTableView * grid : grids)
        layout->addWidget(grid, 0, column++, Qt::AlignTop);
    layout->addWidget(
        new QLabel(u"The satellite is a cube.\nX+, X-, Y+, Y-, Z+ and Z- refer to the six sides "
                   "of the cube."_s),
        1, 0, 1, 3);
    layout->addWidget(MakePanel(), 0, 3, 2, 1, Qt::AlignTop);
    auto* monitor = new QPlainTextEdit;
    monitor->setReadOnly(true);
    monitor->setFont(FixedFont());
    layout->addWidget(monitor, 2, 0, 1, 4);
    layout->setRowStretch(2, 1);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle(u"Bare"_s);
    AddMenus(*window.menuBar());
    auto* centre = new QWidget;
    LayOut(centre);
    window.setCentralWidget(centre);
    window.show();
    return QApplication::exec();
}
