#include "app/StatusBarView.h"

#include "foundation/looks/Contrast.h"

#include <QLabel>
#include <QToolButton>

namespace {

constexpr int refreshInterval = 1000; // ms

// Amber, as light or dark as the ground asks for.
void Mark(QLabel* label, bool isMarked) {
    QPalette palette;
    if (isMarked) {
        const QColor ground = palette.color(QPalette::Window);
        const bool isDark = ground.lightness() < 128;
        palette.setColor(QPalette::WindowText,
                         Contrast::Legible(isDark ? QColor(255, 191, 0) : QColor(140, 80, 0), ground));
    }
    label->setPalette(palette);
}

} // namespace

StatusBarView::StatusBarView(StationStatus& status, QWidget* parent)
    : QStatusBar(parent)
    , m_status(status)
    , m_timer(this)
    , labLink(Add(QStringLiteral("labLink"), tr("Link"), 0))
    , labLastFrame(Add(QStringLiteral("labLastFrame"), tr("Last frame heard"), 0))
    , labToday(Add(QStringLiteral("labToday"), tr("Frames of the satellite today"), 0))
    , labElements(Add(QStringLiteral("labElements"), tr("Age of the elements"), 0))
    , labNextRise(Add(QStringLiteral("labNextRise"), tr("Next rise"), 0))
    , labEvent(Add(QStringLiteral("labEvent"), tr("Last event"), 1)) {
    setObjectName(QStringLiteral("staStatus"));
    setSizeGripEnabled(false);
    auto* cmdSky = new QToolButton(this);
    cmdSky->setObjectName(QStringLiteral("cmdSky"));
    cmdSky->setText(tr("&Sky"));
    cmdSky->setToolTip(tr("The pass at a glance"));
    cmdSky->setFocusPolicy(Qt::TabFocus);
    connect(cmdSky, &QToolButton::clicked, this, &StatusBarView::SkyRequested);
    addPermanentWidget(cmdSky);
    m_timer.setObjectName(QStringLiteral("timStatus"));
    m_timer.setInterval(refreshInterval);
    connect(&m_timer, &QTimer::timeout, this, &StatusBarView::Refresh);
}

QLabel* StatusBarView::Add(const QString& name, const QString& accessibleName, int stretch) {
    auto* label = new QLabel(this);
    label->setObjectName(name);
    label->setAccessibleName(accessibleName);
    label->setToolTip(accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setMinimumWidth(1); // a long text makes no window wider
    label->setIndent(label->fontMetrics().averageCharWidth());
    addWidget(label, stretch);
    return label;
}

void StatusBarView::Start() {
    m_timer.start();
    Refresh();
}

void StatusBarView::Refresh() {
    const StatusTexts texts = m_status.Now();
    const auto show = [](QLabel* label, const QString& text) {
        if (label->text() == text)
            return;
        label->setText(text);
        label->setAccessibleDescription(text);
    };
    show(labLink, texts.link);
    show(labLastFrame, texts.lastFrame);
    show(labToday, texts.today);
    show(labElements, texts.elements);
    show(labNextRise, texts.nextRise);
    show(labEvent, texts.event);
    if (texts.areElementsOld != m_shown.areElementsOld)
        Mark(labElements, texts.areElementsOld);
    m_shown = texts;
}

void StatusBarView::changeEvent(QEvent* event) {
    QStatusBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_shown.areElementsOld)
        Mark(labElements, true); // on another ground
}
