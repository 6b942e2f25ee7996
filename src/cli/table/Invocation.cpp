#include "cli/table/Invocation.h"

#include "cli/table/Commands.h"
#include "cli/table/Options.h"

#include <span>

namespace {

bool IsNamed(const Option& option, const QString& word) {
    if (word == QStringLiteral("--") + QString::fromUtf16(option.name))
        return true;
    return (&option == &Options::help && word == u"-h") || (&option == &Options::version && word == u"-v");
}

// A number below zero is none.
bool IsOption(const QString& word) {
    return word.size() > 1 && word[0] == u'-' && !word[1].isDigit() && word[1] != u'.';
}

/// Goes through the words once, from the first to the last.
class Reader {
public:
    explicit Reader(const QStringList& words)
        : m_words(words) {}

    Invocation Read() {
        while (!m_isDone && m_next < m_words.size()) {
            const QString word = m_words[m_next++];
            if (!m_onlyArguments && word == u"--")
                m_onlyArguments = true;
            else if (!m_onlyArguments && IsOption(word))
                TakeOption(word);
            else if (m_result.command == nullptr)
                TakeCommand(word);
            else
                m_result.call.AddArgument(word);
        }
        if (!m_isDone)
            Finish();
        return std::move(m_result);
    }

private:
    void Done(Invocation::Action action) {
        m_result.action = action;
        m_isDone = true;
    }

    void Wrong(const QString& what) {
        const QString about =
            m_result.command != nullptr ? QString::fromUtf16(m_result.command->name) + u' ' : QString();
        m_result.wrong = QStringLiteral("%1; see 'qirandecode-cli %2--help'").arg(what, about);
        Done(Invocation::Action::Wrong);
    }

    void TakeOption(const QString& word) {
        const qsizetype sign = word.indexOf(u'=');
        const QString name = sign < 0 ? word : word.first(sign);
        const Option* option = FindOption(name);
        if (option == nullptr)
            Wrong(QStringLiteral("there is no option %1").arg(name));
        else if (option == &Options::help)
            Done(Invocation::Action::Help);
        else if (option == &Options::version)
            Done(Invocation::Action::Version);
        else if (option->takes != Takes::Nothing)
            TakeValue(*option, name, sign < 0 ? NextWord() : std::optional(word.sliced(sign + 1)));
        else if (sign >= 0)
            Wrong(QStringLiteral("%1 takes no value").arg(name));
        else
            m_result.call.Set(*option, QString());
    }

    std::optional<QString> NextWord() {
        return m_next < m_words.size() ? std::optional(m_words[m_next++]) : std::nullopt;
    }

    void TakeValue(const Option& option, const QString& name, const std::optional<QString>& text) {
        if (!text) {
            Wrong(QStringLiteral("%1 needs a value").arg(name));
            return;
        }
        const auto read = ReadOptionValue(option, *text);
        if (const auto* value = std::get_if<0>(&read); value == nullptr)
            Wrong(name + u' ' + std::get<1>(read));
        else if (&option == &Options::folder)
            m_result.folder = std::get<QString>(*value);
        else
            m_result.call.Set(option, *value);
    }

    const Option* FindOption(const QString& name) const {
        if (m_result.command != nullptr)
            for (const Option* option : m_result.command->options)
                if (IsNamed(*option, name))
                    return option;
        for (const Option* option : Commands::GlobalOptions())
            if (IsNamed(*option, name))
                return option;
        return nullptr;
    }

    // A group's name is the first word of its commands' names.
    void TakeCommand(const QString& word) {
        QStringList group;
        const QString next = m_next < m_words.size() ? m_words[m_next] : QString();
        for (const Command& command : Commands::All()) {
            const QString name = QString::fromUtf16(command.name);
            if (name == word || name == word + u' ' + next) {
                m_result.command = &command;
                m_next += name == word ? 0 : 1;
                return;
            }
            if (name.startsWith(word + u' '))
                group.append(name);
        }
        if (group.isEmpty())
            Wrong(QStringLiteral("there is no command '%1'").arg(word));
        else if (next == u"--help" || next == u"-h")
            Done(Invocation::Action::Help);
        else
            Wrong(QStringLiteral("say which: %1").arg(group.join(QStringLiteral(", "))));
    }

    void Finish() {
        const qsizetype given = m_result.call.Arguments().size();
        qsizetype needed = 0;
        bool isOpen = false;
        if (m_result.command == nullptr) {
            Wrong(QStringLiteral("name a command"));
            return;
        }
        const std::vector<Argument>& arguments = m_result.command->arguments;
        for (const Argument& argument : arguments) {
            needed += argument.isOptional ? 0 : 1;
            isOpen = isOpen || argument.isRepeated;
        }
        if (given < needed)
            Wrong(QStringLiteral("%1 is missing")
                      .arg(QString::fromUtf16(arguments[static_cast<std::size_t>(given)].name)));
        else if (!isOpen && given > std::ssize(arguments))
            Wrong(QStringLiteral("'%1' is too much").arg(m_result.call.Arguments()[std::ssize(arguments)]));
        else
            Done(Invocation::Action::Run);
    }

    const QStringList& m_words;
    qsizetype m_next = 0;
    bool m_onlyArguments = false;
    bool m_isDone = false;
    Invocation m_result;
};

} // namespace

Invocation Invocation::Read(const QStringList& words) {
    return Reader(words).Read();
}
