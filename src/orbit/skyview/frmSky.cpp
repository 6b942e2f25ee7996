#include "orbit/skyview/frmSky.h"

#include "foundation/fields/Named.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/WindowTitle.h"
#include "foundation/settings/ReplaceFile.h"
#include "foundation/settings/Settings.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

constexpr int refreshInterval = 1000; // ms

} // namespace

frmSky::frmSky(const clsSats& cSats, const TrackedSatellites& satellites, SkyView::PlaceOfStation place,
               SkyView::SimulatedTime simulatedTime, clsIni& cIni, const ProgramFolder& folder,
               SkyHearing hearing)
    : m_cIni(cIni)
    , m_hearing(std::move(hearing))
    , m_view(cSats, satellites, std::move(place), std::move(simulatedTime), folder, m_hearing.between)
    , picSky(Named(u"picSky", new SkyPicture(m_view, this)))
    , labPass(Named(u"labPass", new QLabel(this)))
    , labTime(Named(u"labTime", new QLabel(this)))
    , labNote(Named(u"labNote", new QLabel(this)))
    , tblValues(Named(u"tblValues", new QTableWidget(0, 2, this)))
    , cmdEarlier(Named(u"cmdEarlier", new QPushButton(tr("< &Earlier"), this)))
    , cmdPresent(Named(u"cmdPresent", new QPushButton(tr("&Present or next"), this)))
    , cmdLater(Named(u"cmdLater", new QPushButton(tr("&Later >"), this)))
    , chkEastLeft(Named(u"chkEastLeft", new QCheckBox(tr("East on the left (looking &up)"), this)))
    , chkHeard(Named(u"chkHeard", new QCheckBox(tr("&Where do I hear it?"), this)))
    , labHeard(Named(u"labHeard", new QLabel(this)))
    , cmdSaveHeard(Named(u"cmdSaveHeard", new QPushButton(tr("&Save as CSV"), this)))
    , Timer1(Named(u"Timer1", new QTimer(this)))
    , timSum(Named(u"timSum", new QTimer(this))) {
    setObjectName(u"frmSky");
    SetPlainTitle(*this, tr("The sky"));
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(MakeLeft(), 3);
    layout->addWidget(MakeRight(), 2);
    MakeKeys();
    ShowEast(Settings::IsOn(m_cIni, Settings::skyEastLeft));
    connect(Timer1, &QTimer::timeout, this, &frmSky::Refresh);
    Timer1->start(refreshInterval);
    Refresh();
    resize(sizeHint());
    m_place = std::make_unique<KeptPlace>(*this, QStringLiteral("SKY"), m_cIni);
}

frmSky::~frmSky() = default;

QWidget* frmSky::MakeLeft() {
    labPass->setWordWrap(true);
    picSky->setAccessibleName(tr("The sky over the station"));
    auto* steps = new QHBoxLayout;
    steps->addWidget(cmdEarlier);
    steps->addWidget(cmdPresent);
    steps->addWidget(cmdLater);
    steps->addStretch();
    steps->addWidget(chkEastLeft);
    auto* left = Named(u"fraSky", new QWidget(this));
    auto* layout = new QVBoxLayout(left);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(labPass);
    layout->addWidget(picSky, 1);
    layout->addLayout(steps);
    layout->addWidget(MakeHearing());
    connect(cmdEarlier, &QPushButton::clicked, this, [this] { Step(m_view.StepEarlier()); });
    connect(cmdLater, &QPushButton::clicked, this, [this] { Step(m_view.StepLater()); });
    connect(cmdPresent, &QPushButton::clicked, this, [this] {
        m_view.ShowPresent();
        Refresh();
    });
    connect(chkEastLeft, &QCheckBox::clicked, this, [this](bool isLeft) {
        Settings::Save(m_cIni, Settings::skyEastLeft, clsIni::TrueOrFalse(isLeft));
        ShowEast(isLeft);
    });
    return left;
}

QWidget* frmSky::MakeHearing() {
    labHeard->setTextFormat(Qt::PlainText);
    cmdSaveHeard->setEnabled(false);
    auto* hearing = Named(u"fraHeard", new QWidget(this));
    auto* layout = new QHBoxLayout(hearing);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(chkHeard);
    layout->addWidget(labHeard, 1);
    layout->addWidget(cmdSaveHeard);
    hearing->setVisible(static_cast<bool>(m_hearing.between));
    connect(chkHeard, &QCheckBox::clicked, this, &frmSky::SumUp);
    connect(cmdSaveHeard, &QPushButton::clicked, this, &frmSky::SaveHeard);
    connect(timSum, &QTimer::timeout, this, &frmSky::GoOnSumming);
    return hearing;
}

void frmSky::SumUp(bool isWanted) {
    timSum->stop();
    m_sum.reset();
    if (isWanted) {
        constexpr DateTime everything = 1e6; // days, both ways
        m_sum =
            std::make_unique<ReceptionSum>(m_hearing.between(-everything, everything), m_hearing.directionAt);
        timSum->start(0);
    }
    ShowSum();
}

void frmSky::GoOnSumming() {
    constexpr std::size_t atOnce = 2000; // some milliseconds
    if (!m_sum->Step(atOnce))
        timSum->stop();
    ShowSum();
}

void frmSky::ShowSum() {
    cmdSaveHeard->setEnabled(m_sum && m_sum->IsDone());
    picSky->SetReception(m_sum ? std::optional(m_sum->Sum()) : std::nullopt);
    QString text;
    if (m_sum) {
        text = tr("%1 frames").arg(m_sum->Sum().Frames());
        if (const int unknown = m_sum->Sum().Unknown(); unknown > 0)
            text += tr(", %1 more without elements of their time").arg(unknown);
    }
    labHeard->setText(text);
}

void frmSky::SaveHeard() {
    const QString path =
        m_hearing.chooseFile(this, tr("Save Where Frames Were Heard"), QStringLiteral("heard.csv"));
    if (path.isEmpty())
        return;
    const QString reason = ReplaceFile(path, m_sum->Sum().Csv());
    if (!reason.isEmpty() && m_hearing.messages != nullptr)
        m_hearing.messages->MessageBox(this, tr("The table cannot be saved in %1: %2").arg(path, reason),
                                       MessageStyle::Exclamation);
}

QWidget* frmSky::MakeRight() {
    tblValues->setAccessibleName(tr("Values of the satellite"));
    tblValues->horizontalHeader()->hide();
    tblValues->verticalHeader()->hide();
    tblValues->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tblValues->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    tblValues->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tblValues->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tblValues->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblValues->setTabKeyNavigation(false);
    tblValues->setShowGrid(false);
    tblValues->setMinimumWidth(fontMetrics().averageCharWidth() * 56);
    labTime->setWordWrap(true);
    labNote->setWordWrap(true);
    labNote->setTextFormat(Qt::PlainText);
    labNote->setText(m_view.FileFaults().join(u'\n'));
    labNote->setVisible(!labNote->text().isEmpty());
    auto* right = Named(u"fraValues", new QWidget(this));
    auto* layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(labTime);
    layout->addWidget(tblValues, 1);
    layout->addWidget(labNote);
    return right;
}

// The arrows step wherever the focus is: nothing in this window needs them sideways.
void frmSky::MakeKeys() {
    connect(new QShortcut(Qt::Key_Left, this), &QShortcut::activated, cmdEarlier, &QPushButton::click);
    connect(new QShortcut(Qt::Key_Right, this), &QShortcut::activated, cmdLater, &QPushButton::click);
    connect(new QShortcut(Qt::Key_Home, this), &QShortcut::activated, cmdPresent, &QPushButton::click);
}

void frmSky::ShowEast(bool isLeft) {
    chkEastLeft->setChecked(isLeft);
    picSky->SetEast(isLeft ? SkyGeometry::East::Left : SkyGeometry::East::Right);
}

void frmSky::Step(bool found) {
    if (found)
        Refresh();
}

void frmSky::SatHasChanged() {
    m_view.ShowPresent();
    Refresh();
}

void frmSky::DataHaveChanged() {
    m_view.Forget();
    HeardHasChanged();
}

void frmSky::HeardHasChanged() {
    if (m_sum)
        SumUp(true);
    Refresh();
}

void frmSky::ShowPassAt(DateTime riseUtc) {
    if (!m_view.ShowPassAt(riseUtc))
        m_view.ShowPresent();
    Refresh();
}

void frmSky::Refresh() {
    m_view.Refresh();
    labPass->setText(m_view.PassText());
    labTime->setText(m_view.TimeText());
    picSky->setAccessibleDescription(m_view.PassText());
    cmdPresent->setEnabled(!m_view.IsFollowing());
    ShowRows();
    picSky->update();
}

// Cells are kept, so that a marked one stays marked and is not read out anew.
void frmSky::ShowRows() {
    const std::vector<SkyRow>& rows = m_view.Rows();
    tblValues->setRowCount(static_cast<int>(rows.size()));
    for (int row = 0; row < tblValues->rowCount(); ++row) {
        const SkyRow& shown = rows[static_cast<std::size_t>(row)];
        SetCell(row, 0, shown.name, false);
        SetCell(row, 1, shown.value, shown.isLarge);
    }
}

void frmSky::SetCell(int row, int column, const QString& text, bool isLarge) {
    QTableWidgetItem* item = tblValues->item(row, column);
    if (item == nullptr) {
        item = new QTableWidgetItem;
        tblValues->setItem(row, column, item);
    }
    QFont wanted = tblValues->font();
    if (isLarge) {
        wanted.setPointSizeF(wanted.pointSizeF() * 1.5);
        wanted.setBold(true);
    }
    if (item->font() != wanted)
        item->setFont(wanted);
    if (item->text() != text)
        item->setText(text);
}

void frmSky::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void frmSky::closeEvent(QCloseEvent* event) {
    Timer1->stop();
    m_place.reset();
    event->accept();
    Q_EMIT ImUnloading();
}
