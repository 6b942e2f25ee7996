#pragma once

#include "foundation/messages/mb.h"

#include <QStringList>

#include <memory>

class HelpWindow;
class clsIni;

/// Shows messages in message boxes, as plain text, and help in a help window.
class MessageBoxPresenter : public MessagePresenter {
public:
    /// `helpFile` is opened by help buttons and by F1. `places`: where the help window keeps its size, if it
    /// does; it outlives the presenter.
    explicit MessageBoxPresenter(QString helpFile, clsIni* places = nullptr);
    ~MessageBoxPresenter() override;

    int ShowMessage(const Message& message) override;
    void ShowHelp(QObject* owner, const QString& helpFile, HelpCommand command) override;

    /// Opens the help at the first of these topics that it has, or at its contents.
    void OpenHelp(const QStringList& topics);

private:
    QString m_helpFile;
    clsIni* m_places;
    std::unique_ptr<HelpWindow> m_help; // made when first asked for
};
