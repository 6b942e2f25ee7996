#include "pesim/ScriptPlayer.h"

namespace {

// A script without a pause must not keep the simulator from its other work.
constexpr int pauseBetweenRounds = 100;

template <typename... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>; // older compilers do not deduce it

} // namespace

ScriptPlayer::ScriptPlayer(EngineSimulator& engine, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_timer(this) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ScriptPlayer::Play);
    connect(&m_engine, &EngineSimulator::MonitoringChanged, this, [this] {
        if (m_waiting && m_engine.MonitoringCount() > 0) {
            m_waiting = false;
            m_timer.start(0);
        }
    });
}

void ScriptPlayer::Append(const QList<PesimCommand>& commands) {
    m_commands += commands;
    if (!m_waiting && !m_timer.isActive())
        m_timer.start(0);
}

void ScriptPlayer::Play() {
    while (m_next < m_commands.size()) {
        m_pause = 0;
        CarryOut(m_commands.at(m_next++));
        if (m_waiting)
            return;
        if (m_pause > 0) {
            m_timer.start(m_pause);
            return;
        }
    }
    if (m_loop && !m_commands.isEmpty()) {
        m_next = 0;
        m_timer.start(pauseBetweenRounds);
        return;
    }
    m_commands.clear();
    m_next = 0;
    Q_EMIT Ended();
}

void ScriptPlayer::CarryOut(const PesimCommand& command) {
    std::visit(Overloaded{
                   [this](const PesimStep::Heard& step) {
                       AirFrame frame = step.frame;
                       frame.port = m_radioPort;
                       m_engine.SendHeard(frame);
                   },
                   [this](const PesimStep::RadioPort& step) { m_radioPort = step.port; },
                   [this](const PesimStep::Pause& step) { m_pause = step.milliseconds; },
                   [this](const PesimStep::Await&) { m_waiting = m_engine.MonitoringCount() == 0; },
                   [this](const PesimStep::Drop&) { m_engine.DropConnections(); },
                   [this](const PesimStep::Down& step) {
                       m_engine.StopListening();
                       m_engine.DropConnections();
                       QTimer::singleShot(step.milliseconds, this,
                                          [this] { m_engine.Listen(m_engine.Port()); });
                   },
                   [this](const PesimStep::Mute& step) { m_engine.SetMute(step.on); },
                   [this](const PesimStep::Dribble& step) { m_engine.SetDribble(step.on); },
                   [this](const PesimStep::CloseAfter& step) { m_engine.SetCloseAfter(step.kind); },
                   [this](const PesimStep::Raw& step) { m_engine.SendRaw(step.bytes); },
                   [this](const PesimStep::Quit&) { Q_EMIT QuitRequested(); },
               },
               command);
}
