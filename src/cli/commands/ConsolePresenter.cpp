#include "cli/commands/ConsolePresenter.h"

int ConsolePresenter::ShowMessage(const Message& message) {
    constexpr int ok = 1;
    m_console.Say(message.text.trimmed());
    return ok;
}
