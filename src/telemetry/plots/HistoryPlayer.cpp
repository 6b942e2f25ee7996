#include "telemetry/plots/HistoryPlayer.h"

#include "foundation/fields/Named.h"
#include "foundation/text/Clock.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int tellEvery = 100; // milliseconds
constexpr std::array speeds{1, 10, 100};

} // namespace

HistoryPlayer::HistoryPlayer(const Clock& clock, QWidget* parent)
    : QWidget(parent)
    , m_clock(clock)
    , cmdPlay(Named(u"cmdPlay", new QPushButton(tr("&Play"), this)))
    , cboSpeed(Named(u"cboSpeed", new QComboBox(this))) {
    setObjectName(u"fraPlay");
    cmdPlay->setCheckable(true);
    cmdPlay->setToolTip(tr("Moves the cursor through what is in view"));
    cboSpeed->setAccessibleName(tr("Speed"));
    cboSpeed->setAccessibleDescription(tr("Speed")); // for readers to whom a choice's name is what is chosen
    for (const int speed : speeds)
        cboSpeed->addItem(QStringLiteral("%1 ×").arg(speed));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(cmdPlay);
    layout->addWidget(cboSpeed);
    m_timer.setObjectName(u"timPlay");
    m_timer.setInterval(tellEvery);
    connect(&m_timer, &QTimer::timeout, this, &HistoryPlayer::Advance);
    connect(cmdPlay, &QPushButton::clicked, this, [this](bool isOn) {
        if (isOn)
            Q_EMIT PlayAsked();
        if (!isOn || !IsPlaying())
            Stop();
    });
}

void HistoryPlayer::Play(qint64 from, qint64 to) {
    m_last = m_clock.Milliseconds();
    m_now = from;
    m_to = to;
    m_timer.start();
    cmdPlay->setChecked(true);
    Q_EMIT Moved(m_now);
}

void HistoryPlayer::Stop() {
    m_timer.stop();
    cmdPlay->setChecked(false);
}

void HistoryPlayer::Advance() {
    const qint64 now = m_clock.Milliseconds();
    const qint64 passed = std::max<qint64>(now - std::exchange(m_last, now), 0); // a clock may be set back
    m_now += passed * speeds.at(static_cast<std::size_t>(cboSpeed->currentIndex()));
    if (m_now >= m_to)
        Stop();
    m_now = std::min(m_now, m_to);
    Q_EMIT Moved(m_now);
}
