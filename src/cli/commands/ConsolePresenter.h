#pragma once

#include "cli/output/Console.h"
#include "foundation/messages/mb.h"

/// Says the station's messages on standard error; nobody is waited for.
class ConsolePresenter : public MessagePresenter {
public:
    explicit ConsolePresenter(Console& console)
        : m_console(console) {}

    int ShowMessage(const Message& message) override;
    void ShowHelp(QObject* /*owner*/, const QString& /*helpFile*/, HelpCommand /*command*/) override {}

private:
    Console& m_console;
};
