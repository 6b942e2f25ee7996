#include "station/terminal/TerminalPane.h"

#include "foundation/text/Text.h"

#include <QTextCursor>

namespace {

QColor Shade(TerminalText::Colour colour) {
    return colour == TerminalText::Colour::Cyan ? QColor(0, 255, 255) : QColor(0, 255, 0);
}

} // namespace

TerminalPane::TerminalPane(QWidget* parent)
    : TrafficPane(parent) {
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Qt::black);
    colours.setColor(QPalette::Text, Shade(TerminalText::Colour::Green));
    colours.setColor(QPalette::Highlight, Qt::white);
    colours.setColor(QPalette::HighlightedText, Qt::black);
    setPalette(colours);

    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &TerminalPane::Refresh);
}

void TerminalPane::Append(QByteArrayView text, qint16 kind) {
    m_text.Append(text, kind);
    Changed();
}

void TerminalPane::Empty() {
    m_text.Clear();
    Changed();
}

void TerminalPane::showEvent(QShowEvent* event) {
    TrafficPane::showEvent(event);
    Refresh();
}

void TerminalPane::Changed() {
    if (isVisible() && !m_refresh.isActive())
        m_refresh.start();
}

void TerminalPane::Refresh() {
    if (m_text.HasChanged())
        ChangeText([this] { Apply(m_text.Take()); });
}

void TerminalPane::Apply(const TerminalText::Change& change) {
    QTextCursor editor(document());
    editor.beginEditBlock();
    if (change.isReset)
        editor.select(QTextCursor::Document);
    else
        editor.setPosition(static_cast<int>(change.cut), QTextCursor::KeepAnchor);
    editor.removeSelectedText();
    QTextCursor selection = textCursor();
    const int anchor = selection.anchor();
    const int position = selection.position();

    editor.movePosition(QTextCursor::End);
    qsizetype at = 0;
    for (const TerminalText::Run& run : change.runs) {
        QTextCharFormat format;
        format.setForeground(Shade(run.colour));
        editor.insertText(Text::FromBytes(change.text.sliced(at, run.length)).remove(u'\r'), format);
        at += run.length;
    }
    editor.endEditBlock();

    // New text does not widen what the user has selected up to the end.
    selection.setPosition(anchor);
    selection.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(selection);
}
