#include "app/CommandLine.h"

#include "core/Texts.h"

#include <QCommandLineParser>
#include <QFileInfo>

CommandLine CommandLine::Read(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Ground station for radio amateurs who listen to the QIRAN satellite."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));
    const QCommandLineOption folder(
        QStringLiteral("folder"),
        QStringLiteral(
            "Run in this program folder instead of the executable's: it holds the settings, formula.txt, "
            "the elements, the logs and the help."),
        QStringLiteral("DIR"));
    const QCommandLineOption report(
        QStringLiteral("demo-report"),
        QStringLiteral(
            "Listen for a while, then print the monitor and the grids, save a picture of every window in "
            "DIR, and end."),
        QStringLiteral("DIR"));
    const QCommandLineOption seconds(
        QStringLiteral("demo-seconds"),
        QStringLiteral("How long to listen before that report, 1 to 3600 seconds."), QStringLiteral("N"),
        QStringLiteral("20"));
    parser.addOptions({help, version, folder, report, seconds});

    CommandLine line;
    const auto fail = [&line](const QString& reason) {
        line.action = Action::Fail;
        line.text = QStringLiteral("QiranDecode: %1\nTry 'QiranDecode --help'.\n").arg(reason);
        return line;
    };
    if (!parser.parse(arguments))
        return fail(parser.errorText());
    if (parser.isSet(help)) {
        line.action = Action::Print;
        // The parser would name the executable's path, or nothing before there is an application.
        const QString text = parser.helpText();
        line.text = QStringLiteral("Usage: QiranDecode [options]") + text.sliced(text.indexOf(u'\n'));
        return line;
    }
    if (parser.isSet(version)) {
        line.action = Action::Print;
        line.text = QStringLiteral("QiranDecode %1\n").arg(Texts::VersionNumber());
        return line;
    }
    if (!parser.positionalArguments().isEmpty())
        return fail(QStringLiteral("'%1' is not an option.").arg(parser.positionalArguments().first()));
    if (parser.isSet(folder)) {
        const QFileInfo wanted(parser.value(folder));
        if (!wanted.isDir())
            return fail(QStringLiteral("there is no folder '%1'.").arg(parser.value(folder)));
        line.folder = wanted.canonicalFilePath();
    }
    line.reportFolder = parser.value(report);
    line.reportSeconds = parser.value(seconds).toInt();
    if (line.reportSeconds < 1 || line.reportSeconds > 3600)
        return fail(QStringLiteral("--demo-seconds takes a number from 1 to 3600."));
    return line;
}
