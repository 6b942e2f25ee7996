#include "app/StatusBarView.h"

#include "app/LinkButton.h"
#include "app/SteadyBox.h"
#include "foundation/looks/Amber.h"

#include <QKeyEvent>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace {

void Mark(QLabel* label, bool isMarked) {
    QPalette palette;
    if (isMarked)
        palette.setColor(QPalette::WindowText, AmberOn(palette.color(QPalette::Window)));
    label->setPalette(palette);
}

// Bold as well, for those who do not see the colour.
void StandOut(QLabel* label, bool isMarked) {
    Mark(label, isMarked);
    QFont font = label->font();
    font.setBold(isMarked);
    label->setFont(font);
}

} // namespace

StatusBarView::StatusBarView(StationStatus& status, QWidget* parent)
    : QStatusBar(parent)
    , m_status(status)
    , labLink(new LinkButton(this))
    , labLastFrame(Add(QStringLiteral("labLastFrame"), tr("Last frame heard"), 0))
    , labToday(Add(QStringLiteral("labToday"), tr("Frames of the satellite today"), 0))
    , labElements(Add(QStringLiteral("labElements"), tr("Age of the elements"), 0))
    , labNextRise(Add(QStringLiteral("labNextRise"), tr("Next rise"), 0))
    , labEvent(new QToolButton(this)) {
    setObjectName(QStringLiteral("staStatus"));
    setSizeGripEnabled(false);
    setContentsMargins(0, 0, style()->pixelMetric(QStyle::PM_LayoutRightMargin),
                       0); // in line with what is above
    insertWidget(0, new SteadyBox(labLink));
    AddEvent();
    connect(AddButton(QStringLiteral("cmdHistory"), tr("H&istory"), tr("The telemetry that was kept")),
            &QToolButton::clicked, this, &StatusBarView::HistoryRequested);
    connect(AddButton(QStringLiteral("cmdSky"), tr("&Sky"), tr("The pass at a glance")),
            &QToolButton::clicked, this, &StatusBarView::SkyRequested);
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
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setAccessibleName(accessibleName);
    label->setToolTip(accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setIndent(label->fontMetrics().averageCharWidth());
    label->setAutoFillBackground(true); // what lies behind it need not be painted again for a few letters
    addWidget(new SteadyBox(label), stretch);
    return label;
}

// A button, so that a key opens the event as a click does. It stands there while there is one.
void StatusBarView::AddEvent() {
    labEvent->setObjectName(QStringLiteral("labEvent"));
    labEvent->setAutoRaise(true);
    labEvent->setFocusPolicy(Qt::TabFocus);
    labEvent->setMinimumWidth(1);
    labEvent->installEventFilter(this);
    addWidget(labEvent);
    labEvent->hide();
    connect(labEvent, &QToolButton::clicked, this, [this] {
        const std::optional<LimitEvent> event = m_status.Event();
        m_status.EventSeen();
        Refresh();
        if (event)
            Q_EMIT EventRequested(event->utc);
    });
}

void StatusBarView::ShowEvent(const QString& text) {
    labEvent->setText(text);
    labEvent->setToolTip(tr("Last event: %1").arg(text));
    labEvent->setAccessibleName(labEvent->toolTip());
    labEvent->setVisible(!text.isEmpty());
}

bool StatusBarView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == labEvent && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            labEvent->click();
            return true;
        }
    }
    return QStatusBar::eventFilter(watched, event);
}

void StatusBarView::SetLinkMenu(QMenu* menu) {
    labLink->setMenu(menu);
}

void StatusBarView::Refresh() {
    const StatusTexts texts = m_status.Now();
    const auto show = [](QLabel* label, const QString& text) {
        if (label->text() == text)
            return;
        label->setText(text);
        label->setAccessibleDescription(text);
    };
    if (texts.link != m_shown.link)
        labLink->ShowLink(texts.link);
    show(labLastFrame, texts.lastFrame);
    show(labToday, texts.today);
    show(labElements, texts.elements);
    show(labNextRise, texts.nextRise);
    if (labEvent->text() != texts.event)
        ShowEvent(texts.event);
    if (texts.areElementsOld != m_shown.areElementsOld)
        Mark(labElements, texts.areElementsOld);
    if (texts.isRiseNear != m_shown.isRiseNear)
        StandOut(labNextRise, texts.isRiseNear);
    m_shown = texts;
}

void StatusBarView::changeEvent(QEvent* event) {
    QStatusBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_shown.areElementsOld)
        Mark(labElements, true); // on another ground
}
