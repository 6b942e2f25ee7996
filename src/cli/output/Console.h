#pragma once

#include <QByteArray>
#include <QString>

/// Standard output and standard error. Output is gathered until Flush; messages are written at once.
class Console {
public:
    /// The descriptors of both; they stay the caller's.
    Console(int output, int messages)
        : m_output(output)
        , m_messages(messages) {}
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console() = default;

    void Print(const QByteArray& bytes);
    void Print(const QString& text) { Print(text.toUtf8()); }

    /// Writes what was printed. Answers whether there is still somebody to write for: false from the first
    /// failure on, after which nothing is written any more.
    bool Flush();

    /// A message for the user: one line, with the program's name before it.
    void Say(const QString& text);

    /// How far a long work has come, on a terminal: in the place of what was told before. Empty: it is over,
    /// and nothing of it stays. Where messages go elsewhere nothing is written.
    void Progress(const QString& text);

    /// Writes the rest and answers what the program ends with: `code`, or 1 when not all of the output could
    /// be written, which is said. That nobody reads any further is no failure.
    int Finish(int code);

private:
    const int m_output;
    const int m_messages;
    QByteArray m_waiting;
    bool m_tellsProgress = false;
    int m_error = 0; ///< of the system, from the first failure on
};
