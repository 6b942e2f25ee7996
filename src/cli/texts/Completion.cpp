#include "cli/texts/Completion.h"

#include "cli/table/Commands.h"
#include "foundation/settings/Settings.h"

#include <QMap>
#include <QStringList>

namespace {

QString Dashed(const Option& option) {
    return QStringLiteral("--") + QString::fromUtf16(option.name);
}

QString OptionNames(const Command& command) {
    QStringList names;
    for (const Option* option : command.options)
        names.append(Dashed(*option));
    for (const Option* option : Commands::GlobalOptions())
        names.append(Dashed(*option));
    return names.join(u' ');
}

// First words of all commands, and the second words of each first one.
QMap<QString, QStringList> Words() {
    QMap<QString, QStringList> words;
    for (const Command& command : Commands::All()) {
        if (command.isHidden)
            continue;
        const QStringList name = QString::fromUtf16(command.name).split(u' ');
        words[name[0]].append(name.sliced(1));
    }
    return words;
}

// First words that need a second one, as a pattern.
QString GroupNames() {
    QStringList groups;
    const QMap<QString, QStringList> words = Words();
    for (auto group = words.begin(); group != words.end(); ++group)
        if (!group.value().isEmpty())
            groups.append(group.key());
    return groups.join(QStringLiteral(" | "));
}

QString ValueCases() {
    QStringList done;
    QString cases;
    for (const Command& command : Commands::All()) {
        for (const Option* option : command.options) {
            const QString value = QString::fromUtf16(option->value);
            if (!value.contains(u'|'))
                continue;
            const QString line =
                QStringLiteral("        '%1 '*' %2') words='%3' ;;\n")
                    .arg(QString::fromUtf16(command.name).section(u' ', 0, 0), Dashed(*option),
                         QString(value).replace(u'|', u' ').remove(QStringLiteral(" NUMBER")));
            if (!done.contains(line))
                done.append(line);
        }
    }
    for (const QString& line : done)
        cases += line;
    return cases;
}

QString SettingNames() {
    QStringList names;
    for (const Setting* setting : Settings::All())
        names.append(QString::fromUtf16(setting->section) + u'/' + QString::fromUtf16(setting->key));
    return names.join(u' ');
}

QString CommandCases() {
    QString cases;
    for (const Command& command : Commands::All())
        if (!command.isHidden)
            cases += QStringLiteral("        '%1') words='%2' ;;\n")
                         .arg(QString::fromUtf16(command.name), OptionNames(command));
    const QMap<QString, QStringList> words = Words();
    for (auto group = words.begin(); group != words.end(); ++group)
        if (!group.value().isEmpty())
            cases +=
                QStringLiteral("        '%1') words='%2' ;;\n").arg(group.key(), group.value().join(u' '));
    return cases;
}

} // namespace

QString Completion() {
    return QStringLiteral(
               R"(# Completion of qirandecode-cli for bash. Made from the program's table of commands.
_qirandecode_cli() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local word name='' words='' count=0 skip=''
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $skip ]]; then
            skip=''
        elif [[ $word == --folder ]]; then
            skip=yes
        elif [[ $word != -* && $count -lt 2 ]]; then
            name=${name:+$name }$word
            count=$((count + 1))
            case $name in
                %1) ;;
                *) count=2 ;;
            esac
        fi
    done
    case "$name $previous" in
%2        *' --folder')
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null
            return
            ;;
        'config get '* | 'config set '*)
            if [[ $previous == get || $previous == set ]]; then
                words='%3'
            fi
            ;;
    esac
    if [[ ! $words ]]; then
        case $name in
            '') words='%4 --folder --help --version' ;;
%5        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    if [[ ! $words ]]; then
        compopt -o default 2>/dev/null
    fi
}
complete -F _qirandecode_cli qirandecode-cli
)")
        .arg(GroupNames(), ValueCases(), SettingNames(), QStringList(Words().keys()).join(u' '),
             CommandCases());
}
