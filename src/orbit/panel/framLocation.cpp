#include "orbit/panel/framLocation.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/looks/Amber.h"

#include <QAction>
#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolTip>

namespace {

constexpr QColor inViewColour(192, 255, 255);

// The longest value with room to breathe.
const QString widestValue = QStringLiteral("000.00.00W ");

// The window background of the system, or light cyan under dark text whatever the theme.
void SetBackground(QLabel* label, TrackingLabels::Background background) {
    QPalette palette;
    if (background == TrackingLabels::Background::InView) {
        palette.setColor(QPalette::Base, inViewColour);
        palette.setColor(QPalette::Text, Qt::black);
    }
    label->setPalette(palette);
}

} // namespace

framLocation::framLocation(clsSats& cSats, TrackedSatellites& satellites, QWidget* parent)
    : QGroupBox(parent)
    , m_satellites(satellites)
    , m_display(cSats, satellites)
    , labDueCap(new QLabel(this))
    , cmdChangeSat(new QPushButton(tr("&Change Satellite"), this))
    , cmdPassInfo(new QPushButton(tr("&Pass Predictions"), this)) {
    setObjectName(QStringLiteral("framLocation"));
    labDueCap->setObjectName(QStringLiteral("labDueCap"));
    cmdChangeSat->setObjectName(QStringLiteral("cmdChangeSat"));
    cmdPassInfo->setObjectName(QStringLiteral("cmdPassInfo"));
    cmdPassInfo->setEnabled(false);

    auto* layout = new QGridLayout(this);
    labLat = AddValue(*layout, 0, new QLabel(tr("Latitude"), this), QStringLiteral("labLat"));
    labLong = AddValue(*layout, 1, new QLabel(tr("Longitude"), this), QStringLiteral("labLong"));
    labAz = AddValue(*layout, 2, new QLabel(tr("Azimuth"), this), QStringLiteral("labAz"));
    labEl = AddValue(*layout, 3, new QLabel(tr("Elevation"), this), QStringLiteral("labEl"));
    labDue = AddValue(*layout, 4, labDueCap, QStringLiteral("labDue"));
    layout->addWidget(cmdChangeSat, 5, 0, 1, 2);
    layout->addWidget(cmdPassInfo, 6, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(7, 1);

    connect(cmdChangeSat, &QPushButton::clicked, this, &framLocation::ChangeSat);
    connect(cmdPassInfo, &QPushButton::clicked, this, &framLocation::PassInfoRequested);
    auto* mnuSky = new QAction(tr("&Sky"), this);
    mnuSky->setObjectName(QStringLiteral("mnuSky"));
    connect(mnuSky, &QAction::triggered, this, &framLocation::SkyRequested);
    addAction(mnuSky);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    ShowCaption();
    SetDueCaption();
}

QLabel* framLocation::AddValue(QGridLayout& layout, int row, QLabel* caption, const QString& name) {
    if (caption->objectName().isEmpty())
        caption->setObjectName(name + QStringLiteral("Cap"));
    auto* label = new QLabel(QStringLiteral("-"), this);
    label->setObjectName(name);
    label->setAccessibleName(caption->text());
    label->setFont(FixedFont());
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Sunken));
    label->setMargin(2);
    label->setAutoFillBackground(true);
    label->setBackgroundRole(QPalette::Base);
    label->setForegroundRole(QPalette::Text);
    label->setMinimumWidth(QFontMetrics(label->font()).horizontalAdvance(widestValue) + 8);
    layout.addWidget(caption, row, 0);
    layout.addWidget(label, row, 1);
    return label;
}

void framLocation::ApplyStationPosition(double latitude, double longitude) {
    Show(m_display.ApplyStationPosition(latitude, longitude));
    cmdPassInfo->setEnabled(m_display.IsLocationKnown());
}

void framLocation::Tick(bool forced) {
    if (m_satellites.Tick(forced))
        Refresh();
}

void framLocation::Refresh() {
    Show(m_display.Refresh());
    // Rich text, so that a line is no narrower than it is long, and the file's name is taken as it stands.
    const TrackingDisplay::ElementsAge age = m_display.AgeOfElements();
    const QColor amber = AmberOn(QToolTip::palette().color(QPalette::ToolTipBase));
    const QString colour = age.isOld ? QStringLiteral(";color:") + amber.name() : QString();
    setToolTip(age.text.isEmpty() ? QString()
                                  : QStringLiteral("<p style='white-space:pre%1'>").arg(colour) +
                                        age.text.toHtmlEscaped() + QStringLiteral("</p>"));
}

void framLocation::SetDueCaption() {
    labDueCap->setText(m_display.DueCaption());
    labDue->setAccessibleName(m_display.DueCaption());
}

void framLocation::ChangeSat() {
    m_satellites.Toggle();
    ShowCaption();
    Refresh();
    Q_EMIT SatChanged();
}

void framLocation::Show(const TrackingLabels& labels) {
    labLat->setText(labels.strLat);
    labLong->setText(labels.strLong);
    labAz->setText(labels.strAz);
    labEl->setText(labels.strEl);
    labDue->setText(labels.strDue);
    labDue->setToolTip(labels.strDueTip);
    labDue->setAccessibleDescription(labels.strDueTip);
    if (!labels.newBackground)
        return;
    for (QLabel* label : {labLat, labLong, labAz, labEl, labDue})
        SetBackground(label, *labels.newBackground);
}

void framLocation::ShowCaption() {
    setTitle(m_display.Caption().replace(u'&', QStringLiteral("&&")));
}
