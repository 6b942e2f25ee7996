#pragma once

#include "pesim/EngineSimulator.h"

#include <QList>

#include <variant>

/// What a line of a script asks of the simulator.
namespace PesimStep {

struct Heard {
    AirFrame frame; ///< its port is the player's
};
struct RadioPort {
    int port;
};
struct Pause {
    int milliseconds;
};
struct Await {};
struct Drop {};
struct Down {
    int milliseconds;
};
struct Mute {
    bool on;
};
struct Dribble {
    bool on;
};
struct CloseAfter {
    char kind; ///< NUL: never
};
struct Raw {
    QByteArray bytes;
};
struct Quit {};

} // namespace PesimStep

using PesimCommand = std::variant<PesimStep::Heard, PesimStep::RadioPort, PesimStep::Pause, PesimStep::Await,
                                  PesimStep::Drop, PesimStep::Down, PesimStep::Mute, PesimStep::Dribble,
                                  PesimStep::CloseAfter, PesimStep::Raw, PesimStep::Quit>;

namespace PesimScript {

/// The commands, one a line, for people.
extern const char* const help;

struct Line {
    QList<PesimCommand> commands; ///< one, or none for a blank line or a comment
    QString error;                ///< why the line is no command; empty when it is
};
Line ParseLine(const QByteArray& line);

struct Script {
    QList<PesimCommand> commands;
    QStringList errors; ///< each beginning with its line number
};
Script Parse(const QByteArray& text);

} // namespace PesimScript
