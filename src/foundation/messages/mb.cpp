#include "foundation/messages/mb.h"

#include <QDir>

int mb::MessageBox(QObject* owner, const QString& text, qint16 style, const QString& caption,
                   qint32 contextId) const {
    if (contextId != -1)
        style = static_cast<qint16>(style | MessageStyle::HelpButton);
    return m_presenter.ShowMessage({owner, text, style, caption.isEmpty() ? m_title : caption, contextId});
}

void mb::SetUpHelp(QObject* mainWindow, const QString& programFolder) {
    m_mainWindow = mainWindow;
    m_helpFile = programFolder.trimmed();
    if (!m_helpFile.endsWith(QDir::separator()))
        m_helpFile += QDir::separator();
    m_helpFile += QStringLiteral("qirandecode.HLP");
}

void mb::HelpContents() const {
    m_presenter.ShowHelp(m_mainWindow, m_helpFile, HelpCommand::Contents);
}

void mb::HelpQuit() const {
    m_presenter.ShowHelp(m_mainWindow, m_helpFile, HelpCommand::Quit);
}
