#include "cli/texts/ManualPage.h"

#include "cli/output/Records.h"
#include "cli/table/Commands.h"
#include "cli/texts/HelpText.h"
#include "foundation/settings/Settings.h"

namespace {

// As it stands, not as a request of the macros.
QString Plain(const QString& text) {
    QString plain = text;
    plain.replace(u'\\', QStringLiteral("\\e")).replace(u'-', QStringLiteral("\\-"));
    return plain.startsWith(u'.') || plain.startsWith(u'\'') ? QStringLiteral("\\&") + plain : plain;
}

QString Plain(const char16_t* text) {
    return Plain(QString::fromUtf16(text));
}

QString Section(const char16_t* name) {
    return QStringLiteral(".SH %1\n").arg(QString::fromUtf16(name));
}

QString Entry(const QString& name, const QString& explanation) {
    return QStringLiteral(".TP\n.B %1\n%2\n").arg(name, explanation);
}

QString OptionsText(std::span<const Option* const> options) {
    QString text;
    for (const Option* option : options)
        text += Entry(Plain(HelpText::Called(*option)), Plain(option->help));
    return text;
}

QString CommandsText() {
    QString text = Section(u"COMMANDS");
    for (const Command& command : Commands::All()) {
        if (command.isHidden)
            continue;
        text += QStringLiteral(".SS %1\n.B qirandecode\\-cli %2\n.PP\n%3 %4\n")
                    .arg(Plain(command.name), Plain(HelpText::Usage(command)), Plain(command.summary),
                         Plain(command.description)) +
                OptionsText(command.options);
    }
    return text;
}

QString RecordsText() {
    QString text = Section(u"RECORDS");
    text += Plain(QStringLiteral(
                "In JSON each record is an object on a line of its own, \"type\" first; a field without "
                "a value is absent. In CSV the first line has the names, and a field without a value is "
                "empty. Times are ISO 8601, UTC. Fields are only ever added: whoever reads records "
                "passes over what he does not know.")) +
            u'\n';
    for (const RecordType* type : Records::All()) {
        text += QStringLiteral(".SS %1\n%2\n").arg(QString::fromLatin1(type->name), Plain(type->meaning));
        for (const Column& column : type->columns)
            text += Entry(QString::fromLatin1(column.name), Plain(column.meaning));
    }
    return text;
}

QString SettingsText() {
    QString text = Section(u"SETTINGS");
    for (const Setting* setting : Settings::All()) {
        const QString defaultValue = QString::fromUtf16(setting->defaultValue);
        text +=
            Entry(Plain(QString::fromUtf16(setting->section) + u'/' + QString::fromUtf16(setting->key)),
                  Plain(Settings::Allowed(*setting)) +
                      (defaultValue.isEmpty() ? QString()
                                              : QStringLiteral("; unless changed, ") + Plain(defaultValue)));
    }
    return text;
}

QString FilesText() {
    return Section(u"FILES") +
           Entry(QStringLiteral("$XDG_DATA_HOME/QiranDecode"),
                 Plain(QStringLiteral(
                     "The program folder, the same as that of qirandecode(1); where XDG_DATA_HOME is not "
                     "set, ~/.local/share/QiranDecode. In it: QiranDecode.INI, the settings; formula.txt, "
                     "the calibration formulae; Keps, the orbital elements; LOGS, the traffic logs."))) +
           Entry(
               QStringLiteral("/var/lib/qirandecode"),
               Plain(QStringLiteral("The program folder of the service qirandecode-listen, which runs as the "
                                    "user qirandecode; --folder names it.")));
}

} // namespace

QString ManualPage(const QString& version) {
    return QStringLiteral(".TH QIRANDECODE\\-CLI 1 \"\" \"QiranDecode %1\" \"User commands\"\n")
               .arg(version) +
           Section(u"NAME") +
           QStringLiteral(
               "qirandecode\\-cli \\- listen to the QIRAN satellite and track it, without windows\n") +
           Section(u"SYNOPSIS") +
           QStringLiteral(".B qirandecode\\-cli\n[\\fB\\-\\-folder\\fR \\fIDIR\\fR] \\fICOMMAND\\fR "
                          "[\\fIOPTIONS\\fR]\n") +
           Section(u"DESCRIPTION") +
           Plain(QStringLiteral(
               "The station of qirandecode(1) on the command line, in the same program folder and with "
               "the same settings. Commands that only read may be used while a station runs in the "
               "folder; they write nothing. Output is UTF-8 on standard output; messages go to standard "
               "error, a line each.")) +
           u'\n' + Section(u"OPTIONS") + OptionsText(Commands::GlobalOptions()) + CommandsText() +
           RecordsText() + SettingsText() + Section(u"EXIT STATUS") +
           QStringLiteral("0 when it is done, 1 when it did not work, 2 when it was called wrongly.\n") +
           FilesText() + Section(u"SEE ALSO") + QStringLiteral(".BR qirandecode (1),\n.BR direwolf (1)\n");
}
