#include "app/StatusBarView.h"

#include <QLabel>
#include <QToolButton>

namespace {

constexpr int refreshInterval = 1000; // ms

// Amber that reads on light and on dark ground alike.
void Mark(QLabel* label, bool isMarked) {
    QPalette palette;
    if (isMarked) {
        const bool isDark = palette.color(QPalette::Window).lightness() < 128;
        palette.setColor(QPalette::WindowText, isDark ? QColor(255, 191, 0) : QColor(140, 80, 0));
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
    connect(AddButton(QStringLiteral("cmdHistory"), tr("H&istory"), tr("The telemetry that was kept")),
            &QToolButton::clicked, this, &StatusBarView::HistoryRequested);
    connect(AddButton(QStringLiteral("cmdSky"), tr("&Sky"), tr("The pass at a glance")),
            &QToolButton::clicked, this, &StatusBarView::SkyRequested);
    m_timer.setObjectName(QStringLiteral("timStatus"));
    m_timer.setInterval(refreshInterval);
    connect(&m_timer, &QTimer::timeout, this, &StatusBarView::Refresh);
}

QToolButton* StatusBarView::AddButton(const QString& name, const QString& text, const QString& tip) {
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setText(text);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    addPermanentWidget(button);
    return button;
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
