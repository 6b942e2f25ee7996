#pragma once

#include "foundation/messages/mb.h"

#include <QList>

#include <functional>

/// Takes the user's place at message boxes: notes every message and presses a button at once.
class RecordingPresenter : public MessagePresenter {
public:
    QList<Message> messages;
    QList<HelpCommand> helpCommands;
    int answer = 1;
    std::function<void(const Message&)> whileShown; ///< what happens while the box stands open

    int ShowMessage(const Message& message) override {
        messages.append(message);
        if (whileShown)
            whileShown(message);
        return answer;
    }

    void ShowHelp(QObject*, const QString&, HelpCommand command) override { helpCommands.append(command); }

    /// The texts shown so far.
    QStringList Texts() const {
        QStringList texts;
        for (const Message& message : messages)
            texts.append(message.text);
        return texts;
    }
};
