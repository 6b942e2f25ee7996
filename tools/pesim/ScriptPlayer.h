#pragma once

#include "pesim/PesimScript.h"

/// Carries out the commands of a script, one after the other, on a simulator.
class ScriptPlayer : public QObject {
    Q_OBJECT
public:
    /// `engine` must outlive this object.
    explicit ScriptPlayer(EngineSimulator& engine, QObject* parent = nullptr);

    /// At the end of what is there, begin again.
    void SetLoop(bool loop) { m_loop = loop; }

    /// Adds commands to the end; playing goes on from the event loop.
    void Append(const QList<PesimCommand>& commands);

Q_SIGNALS:
    void Ended();         ///< the last command was carried out, and no loop follows
    void QuitRequested(); ///< "quit" was met

private:
    void Play();
    void CarryOut(const PesimCommand& command);

    EngineSimulator& m_engine;
    QList<PesimCommand> m_commands;
    qsizetype m_next = 0;
    QTimer m_timer; // runs while a pause lasts
    int m_radioPort = 1;
    int m_pause = 0; // milliseconds until the next command
    bool m_loop = false;
    bool m_waiting = false; // for a program that monitors
};
