#pragma once

#include <QString>

class QObject;

/// One message for the user, as a presenter gets it.
struct Message {
    QObject* owner = nullptr; ///< the window that asks, or none
    QString text;
    qint16 style = 0; ///< MessageStyle flags
    QString caption;
    qint32 contextId = -1; ///< the help topic behind the help button; -1: no help button
};

/// The platform's message box flags.
namespace MessageStyle {
constexpr qint16 YesNo = 4; ///< two buttons in the place of OK; 6 is the answer Yes
constexpr qint16 Critical = 16;
constexpr qint16 Question = 32;
constexpr qint16 Exclamation = 48;
constexpr qint16 Information = 64;
constexpr qint16 HelpButton = 16384;
} // namespace MessageStyle

constexpr int answerYes = 6;

/// Commands of the platform's help.
enum class HelpCommand { Quit = 2, Contents = 11 };

/// Where the help window stands at first, in 1024ths of the screen.
struct HelpPlacement {
    static constexpr int unitsOfScreen = 1024;
    int left = 256;
    int top = 256;
    int width = 512;
    int height = 512;
};

/// What shows messages and help to the user. The windows bring one; tests and headless runs bring their own.
class MessagePresenter {
public:
    MessagePresenter() = default;
    MessagePresenter(const MessagePresenter&) = delete;
    MessagePresenter& operator=(const MessagePresenter&) = delete;
    virtual ~MessagePresenter() = default;

    /// Shows the message and answers the button that the user pressed (1: OK, 2: Cancel).
    virtual int ShowMessage(const Message& message) = 0;

    virtual void ShowHelp(QObject* owner, const QString& helpFile, HelpCommand command) = 0;
};

/// Message boxes with the application's title, and the way into the help file.
class mb {
public:
    explicit mb(MessagePresenter& presenter)
        : m_presenter(presenter) {}

    /// The caption of every message box that is given none.
    void SetTitle(const QString& title) { m_title = title; }

    /// Shows a message and answers the button pressed. A context id other than -1 brings a help button.
    int MessageBox(QObject* owner, const QString& text, qint16 style, const QString& caption = {},
                   qint32 contextId = -1) const;

    /// Remembers the main window and the help file "qirandecode.HLP" in the program's folder.
    void SetUpHelp(QObject* mainWindow, const QString& programFolder);

    const QString& HelpFile() const { return m_helpFile; }
    void HelpContents() const;
    void HelpQuit() const;

private:
    MessagePresenter& m_presenter;
    QString m_title;
    QObject* m_mainWindow = nullptr;
    QString m_helpFile;
};
