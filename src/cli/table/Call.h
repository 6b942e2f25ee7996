#pragma once

#include "cli/table/OptionValue.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// What the user gave a command: checked values of its options, and its arguments.
class Call {
public:
    void Set(const Option& option, const OptionValue& value) { m_values.insert(&option, value); }
    void AddArgument(const QString& argument) { m_arguments.append(argument); }

    bool Has(const Option& option) const { return m_values.contains(&option); }

    /// The value of an option; nothing where it was not given. `Value` is what its Takes says.
    template <class Value>
    std::optional<Value> Get(const Option& option) const {
        const auto found = m_values.constFind(&option);
        return found == m_values.cend() ? std::nullopt : std::optional(std::get<Value>(*found));
    }

    const QStringList& Arguments() const { return m_arguments; }

private:
    QHash<const Option*, OptionValue> m_values;
    QStringList m_arguments;
};
