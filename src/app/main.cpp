#include "app/CommandLine.h"
#include "app/DBusNotices.h"
#include "app/ReportPresenter.h"
#include "app/frmQIRAN.h"
#include "foundation/messages/HelpKey.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "foundation/messages/mb.h"
#include "foundation/settings/clsIni.h"
#include "foundation/system/EndRequests.h"
#include "foundation/text/Clock.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>

#include <csignal>
#include <cstdio>
#include <functional>
#include <sys/stat.h>

namespace {

int Print(std::FILE* stream, const QString& text, int code) {
    std::fputs(text.toLocal8Bit().constData(), stream);
    return code;
}

// Settled before the window system is asked for anything, so that --help works without a display.
CommandLine ReadArguments(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return CommandLine::Read(arguments);
}

// Starts from inside the event loop, so that whoever asks the program to end while a message of the start
// stands open finds the loop that is to be ended.
int RunInLoop(const std::function<bool()>& start) {
    QMetaObject::invokeMethod(
        qApp,
        [&start] {
            if (!start())
                QApplication::exit(1);
        },
        Qt::QueuedConnection);
    return QApplication::exec();
}

int Run(const CommandLine& line, const QString& executable) {
    const ProgramFolder folder(line.folder.isEmpty() ? QApplication::applicationDirPath() : line.folder,
                               QFileInfo(executable).completeBaseName());
    const Clock clock;
    const EndRequests requests;
    DBusNotices notices;
    const QString helpFile = folder.File(QStringLiteral("qirandecode.HLP"));
    if (line.reportFolder.isEmpty()) {
        clsIni places(folder.IniFile());
        MessageBoxPresenter presenter(helpFile, &places);
        const HelpKey helpKey(qApp, presenter);
        mb messages(presenter);
        frmQIRAN window(folder, clock, messages, notices);
        QObject::connect(&requests, &EndRequests::Requested, &window, &QWidget::close);
        return RunInLoop([&window] { return window.Load(); });
    }
    ReportPresenter presenter(helpFile, line.reportFolder);
    mb messages(presenter);
    frmQIRAN window(folder, clock, messages, notices);
    QObject::connect(&requests, &EndRequests::Requested, &window, [&] { presenter.Report(window); });
    return RunInLoop([&] {
        presenter.ReportAfter(window, line.reportSeconds);
        return window.Load();
    });
}

} // namespace

int main(int argc, char** argv) {
    const CommandLine line = ReadArguments(argc, argv);
    if (line.action == CommandLine::Action::Print)
        return Print(stdout, line.text, 0);
    if (line.action == CommandLine::Action::Fail)
        return Print(stderr, line.text, 2);

    // A write beyond the limit of a file's size is to fail like any other that finds no room.
    std::signal(SIGXFSZ, SIG_IGN);
    // Settings hold a password, logs what was heard: whatever the program makes is for its owner alone.
    umask(S_IRWXG | S_IRWXO);

    EndRequests::Hold();
    QApplication::setApplicationName(QStringLiteral("QiranDecode"));
    QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/qirandecode.png")));
    return Run(line, QApplication::applicationFilePath());
}
