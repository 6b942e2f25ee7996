#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

/// What the terminal's pane holds: coloured text, Windows-1252, bounded. It keeps pace with the wire without
/// a widget; the pane asks now and then for what has changed.
class TerminalText {
public:
    enum class Colour { Green, Cyan };

    /// A stretch of text in one colour.
    struct Run {
        Colour colour = Colour::Green;
        qsizetype length = 0; ///< bytes
    };

    /// Green, but cyan for what the own packet engine sent.
    static Colour ColourOf(qint16 kind);

    /// Appends a text of this display kind. Where the pane has passed 10,000 characters, it is cut first to
    /// about its last 5,000, to a line start where one is near.
    void Append(QByteArrayView text, qint16 kind);
    void Clear();

    const QByteArray& Bytes() const { return m_bytes; }
    const QList<Run>& Runs() const { return m_runs; }

    /// What a pane that showed the text as of the last Take must do to show it as it is now: cut its start,
    /// then append.
    struct Change {
        bool isReset = false; ///< the pane's whole content goes
        qsizetype cut = 0;    ///< characters to cut, otherwise; a line end (CR LF) is one character
        QByteArray text;      ///< to append
        QList<Run> runs;      ///< the colours of `text`
    };
    Change Take();
    bool HasChanged() const { return m_isReset || m_cut > 0 || m_fresh > 0; }

private:
    void Trim();
    void CutFront(qsizetype count);

    QByteArray m_bytes;
    QList<Run> m_runs;
    qsizetype m_fresh = 0; // bytes at the end that Take has not handed out
    qsizetype m_cut = 0;   // characters cut from what Take has handed out
    bool m_isReset = false;
};
