#include "cli/texts/HelpText.h"

#include "cli/table/Commands.h"

#include <QStringList>

namespace HelpText {
namespace {

constexpr qsizetype lineWidth = 79;
constexpr qsizetype secondColumn = 26;

// The words of a text in lines, each behind so many blanks but for the first, which `taken` characters
// precede.
QString Wrapped(const QString& text, qsizetype indent, qsizetype taken) {
    QString wrapped;
    qsizetype at = taken;
    for (const QString& word : text.split(u' ')) {
        if (at > indent && at + 1 + word.size() > lineWidth) {
            wrapped += u'\n' + QString(indent, u' ');
            at = indent;
        } else if (at > indent) {
            wrapped += u' ';
            ++at;
        }
        wrapped += word;
        at += word.size();
    }
    return wrapped + u'\n';
}

// "  name    explanation"
QString Entry(const QString& name, const char16_t* explanation) {
    const QString head = QStringLiteral("  ") + name;
    const QString text = QString::fromUtf16(explanation);
    const bool isLong = head.size() + 2 > secondColumn;
    return (isLong ? head + u'\n' + QString(secondColumn, u' ') : head.leftJustified(secondColumn)) +
           Wrapped(text, secondColumn, secondColumn);
}

QString OptionsText(std::span<const Option* const> options) {
    QString text;
    for (const Option* option : options)
        text += Entry(Called(*option), option->help);
    return text;
}

QString General() {
    QString text =
        QStringLiteral("Usage: qirandecode-cli [--folder DIR] COMMAND [OPTIONS]\n\n") +
        Wrapped(QStringLiteral("The ground station for radio amateurs who listen to the QIRAN satellite, "
                               "without windows."),
                0, 0) +
        QStringLiteral("\nCommands:\n");
    for (const Command& command : Commands::All())
        if (!command.isHidden)
            text += Entry(QString::fromUtf16(command.name), command.summary);
    return text + QStringLiteral("\nOptions:\n") + OptionsText(Commands::GlobalOptions()) +
           QStringLiteral("\n'qirandecode-cli COMMAND --help' tells more about a command.\n");
}

} // namespace

QString Called(const Option& option) {
    const QString name = QStringLiteral("--") + QString::fromUtf16(option.name);
    return option.takes == Takes::Nothing ? name : name + u' ' + QString::fromUtf16(option.value);
}

QString Usage(const Command& command) {
    QString usage = QString::fromUtf16(command.name);
    for (const Argument& argument : command.arguments) {
        const QString name =
            QString::fromUtf16(argument.name) + (argument.isRepeated ? QStringLiteral("...") : QString());
        usage += argument.isOptional ? QStringLiteral(" [%1]").arg(name) : u' ' + name;
    }
    for (const Option* option : command.options)
        usage += QStringLiteral(" [%1]").arg(Called(*option));
    return usage;
}

QString Of(const Command* command) {
    if (command == nullptr)
        return General();
    const QString head = QStringLiteral("Usage: qirandecode-cli ");
    const QString description =
        QString::fromUtf16(command->summary) + u' ' + QString::fromUtf16(command->description);
    QString text =
        head + Wrapped(Usage(*command), head.size(), head.size()) + u'\n' + Wrapped(description, 0, 0);
    if (!command->options.empty())
        text += QStringLiteral("\nOptions:\n") + OptionsText(command->options);
    return text;
}

} // namespace HelpText
