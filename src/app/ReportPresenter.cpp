#include "app/ReportPresenter.h"

#include "app/OpenDialogs.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

#include <cstdio>
#include <utility>

namespace {

constexpr int settleMilliseconds = 300; // in which a window that was opened has drawn itself

void PrintLine(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
}

void PrintGrid(const QTableView& grid) {
    const QAbstractItemModel& model = *grid.model();
    const auto cell = [&](int row, int column) {
        return row < 0 ? model.headerData(column, Qt::Horizontal).toString()
                       : model.index(row, column).data().toString();
    };
    for (int row = -1; row < model.rowCount(); ++row)
        PrintLine(
            QStringLiteral("%1 %2 %3").arg(cell(row, 0), -10).arg(cell(row, 1), 10).arg(cell(row, 2), 10));
    PrintLine({});
}

// The terminal is a window of its own, and fills its pane only once it has been shown.
QString TerminalText() {
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (const auto* pane = window->findChild<QWidget*>(QStringLiteral("rtbMon")))
            return pane->property("plainText").toString();
    return {};
}

void Settle() {
    QEventLoop loop;
    QTimer::singleShot(settleMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

ReportPresenter::ReportPresenter(const QString& helpFile, QString pictureFolder)
    : MessageBoxPresenter(helpFile)
    , m_pictureFolder(std::move(pictureFolder)) {}

int ReportPresenter::ShowMessage(const Message& message) {
    std::fprintf(stderr, "%s: %s\n", message.caption.toUtf8().constData(), message.text.toUtf8().constData());
    return 1; // OK
}

void ReportPresenter::ReportAfter(QMainWindow& window, int seconds) {
    QTimer::singleShot(seconds * 1000, &window, [this, &window] { Report(window); });
}

void ReportPresenter::Report(QMainWindow& window) {
    if (std::exchange(m_reporting, true))
        return;
    QDir().mkpath(m_pictureFolder);
    PrintLine(QStringLiteral("Monitor:"));
    PrintLine(window.findChild<QPlainTextEdit*>(QStringLiteral("txtMon"))->toPlainText());
    for (const QString& name : {QStringLiteral("gTlm0"), QStringLiteral("gTlm1"), QStringLiteral("gTlm2")})
        PrintGrid(*window.findChild<QTableView*>(name));
    Save(window);
    for (const QString& name :
         {QStringLiteral("mnuTerminal"), QStringLiteral("mnuMap"), QStringLiteral("mnuLocation"),
          QStringLiteral("mnuAGWPESetup"), QStringLiteral("mnuLinkKissSetup"), QStringLiteral("mnuCallsigns"),
          QStringLiteral("mnuDownloadKeps"), QStringLiteral("mnuHelpContents"), QStringLiteral("mnuAbout")})
        OpenAndSave([&] { window.findChild<QAction*>(name)->trigger(); });
    OpenAndSave([&] { window.findChild<QPushButton*>(QStringLiteral("cmdPassInfo"))->click(); });
    PrintLine(QStringLiteral("Terminal:"));
    PrintLine(TerminalText());
    std::fflush(stdout);
    window.close();
}

// Opens a window and saves the pictures of those that have none yet. A modal one blocks `open` until it is
// closed.
void ReportPresenter::OpenAndSave(const std::function<void()>& open) {
    QTimer::singleShot(settleMilliseconds, qApp, [this] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            Save(*modal);
            DismissOpenDialogs();
        }
    });
    open();
    Settle();
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && !window->objectName().isEmpty() &&
            !QFile::exists(QDir(m_pictureFolder).filePath(window->objectName() + QStringLiteral(".png"))))
            Save(*window);
}

void ReportPresenter::Save(QWidget& window) {
    window.grab().save(QDir(m_pictureFolder).filePath(window.objectName() + QStringLiteral(".png")));
}
