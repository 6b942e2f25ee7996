#include "telemetry/plots/frmHistory.h"

#include "foundation/fields/Named.h"
#include "foundation/placement/WindowTitle.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "telemetry/plots/HistoryExport.h"
#include "telemetry/plots/HistoryKept.h"
#include "telemetry/plots/HistoryPlayer.h"
#include "telemetry/plots/HistoryPlot.h"
#include "telemetry/plots/RangeBar.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

constexpr int followEvery = 1000;                         // milliseconds
constexpr int settleTime = 150;                           // milliseconds
constexpr qint64 longestShaded = qint64{14} * 86'400'000; // in longer ranges a pass is no pixel wide
constexpr qsizetype longestSequence = 32;

} // namespace

frmHistory::frmHistory(HistoryServices services, std::unique_ptr<TelemetryHistory> history)
    : m_services(std::move(services))
    , m_worker(std::make_unique<HistoryWorker>(std::move(history)))
    , m_channels(m_services.map, m_services.limits, m_services.displayTime)
    , m_readings(m_services.limits, m_services.displayTime)
    , m_events(m_services.limits, m_services.displayTime)
    , pltHistory(Named(u"pltHistory", new HistoryPlot(m_services.limits, this)))
    , fraRange(new RangeBar(m_services, this))
    , fraPlay(new HistoryPlayer(m_services.clock, this))
    , cmdExport(new HistoryExport(m_services, *pltHistory, *m_worker, this))
    , cmdImport(Named(u"cmdImport", new QPushButton(tr("&Import"), this)))
    , labReading(Named(u"labReading", new QLabel(this)))
    , labState(Named(u"labState", new QLabel(this)))
    , prgState(Named(u"prgState", new QProgressBar(this)))
    , tabHistory(Named(u"tabHistory", new QTabWidget(this))) {
    setObjectName(u"frmHistory");
    SetPlainTitle(*this, tr("Telemetry history"));
    LayOut();
    ConnectPlot();
    ConnectWorker();
    ReadSettings();
    m_place = std::make_unique<KeptPlace>(*this, QStringLiteral("HISTORY"), m_services.ini);
    TimesHaveChanged();
    EventsHaveChanged();
    ShowChosen();
    labState->setText(tr("Opening the history"));
    m_worker->Open();
}

frmHistory::~frmHistory() {
    disconnect(tabHistory, nullptr, this, nullptr); // it tells of pages that go with it
}

void frmHistory::LayOut() {
    pltHistory->setAccessibleName(tr("Curves of the ticked channels"));
    pltHistory->setMinimumHeight(fontMetrics().height() * 9);
    labReading->setTextInteractionFlags(Qt::TextSelectableByMouse);
    labReading->setTextFormat(Qt::PlainText);
    labReading->setMinimumWidth(1);
    labReading->setAccessibleName(tr("Reading at the cursor"));
    labState->setTextFormat(Qt::PlainText);
    labState->setWordWrap(true);
    prgState->hide();
    MakeTabs();
    auto* splHistory = Named(u"splHistory", new QSplitter(Qt::Vertical, this));
    splHistory->addWidget(pltHistory);
    splHistory->addWidget(tabHistory);
    splHistory->setStretchFactor(0, 3);
    splHistory->setStretchFactor(1, 2);
    splHistory->setSizes({3000, 2000}); // shares of what there is
    splHistory->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(MakeTools());
    layout->addWidget(labState);
    layout->addWidget(prgState);
    layout->addWidget(splHistory, 1);
    layout->addWidget(labReading);
    const int line = fontMetrics().height();
    resize((QSize(54, 42) * line).boundedTo(screen()->availableSize() * 9 / 10));
}

QWidget* frmHistory::MakeTools() {
    cmdImport->setVisible(static_cast<bool>(m_services.import));
    connect(cmdImport, &QPushButton::clicked, this, [this] { m_services.import(this); });
    auto* tools = Named(u"fraTools", new QWidget(this));
    auto* layout = new QHBoxLayout(tools);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(fraRange);
    layout->addStretch();
    layout->addWidget(fraPlay);
    layout->addWidget(cmdImport);
    layout->addWidget(cmdExport);
    connect(fraRange, &RangeBar::Chosen, this, &frmHistory::ShowChosen);
    connect(fraPlay, &HistoryPlayer::PlayAsked, this, &frmHistory::Play);
    connect(fraPlay, &HistoryPlayer::Moved, pltHistory, &HistoryPlot::SetCursor);
    return tools;
}

QTableView* frmHistory::MakeTable(QAnyStringView name, QAbstractItemModel* model,
                                  const QString& accessibleName) {
    auto* table = Named(name, new QTableView(this));
    table->setAccessibleName(accessibleName);
    table->setModel(model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 4 / 3);
    table->horizontalHeader()->setStretchLastSection(true);
    const int digit = fontMetrics().horizontalAdvance(u'0');
    for (int column = 0; column < model->columnCount(); ++column) {
        const QString heading = model->headerData(column, Qt::Horizontal).toString();
        const bool isWide = heading == u"Heard" || heading == u"Channel";
        const bool isLevel = heading == u"From" || heading == u"To";
        table->setColumnWidth(column, digit * (isWide ? 22 : isLevel ? 15 : 9));
    }
    return table;
}

void frmHistory::MakeTabs() {
    tblChannels = MakeTable(u"tblChannels", &m_channels,
                            tr("Every channel at the cursor's time; ticked ones are plotted"));
    tblReadings = MakeTable(u"tblReadings", &m_readings, tr("The plotted readings in view"));
    tblEvents = MakeTable(u"tblEvents", &m_events, tr("Crossings of limits, the newest first"));
    tabHistory->setAccessibleName(tr("Tables"));
    tabHistory->addTab(tblChannels, tr("&Channels"));
    tabHistory->addTab(tblReadings, tr("Rea&dings"));
    tabHistory->addTab(tblEvents, tr("&Events"));
    connect(&m_channels, &ChannelTable::PlottedChanged, this, &frmHistory::LoadPlotted);
    connect(tabHistory, &QTabWidget::currentChanged, this, [this] {
        ListReadings();
        if (tabHistory->currentWidget() == tblEvents)
            Q_EMIT EventsSeen();
    });
    connect(tblReadings, &QTableView::activated, this,
            [this](const QModelIndex& cell) { JumpTo(m_readings.TimeOf(cell.row())); });
    connect(tblEvents, &QTableView::activated, this,
            [this](const QModelIndex& cell) { JumpToEvent(cell.row()); });
}

void frmHistory::ConnectPlot() {
    connect(pltHistory, &HistoryPlot::RangeChanged, this, &frmHistory::TellView);
    connect(pltHistory, &HistoryPlot::CursorChanged, this, &frmHistory::TellCursor);
    connect(pltHistory, &HistoryPlot::BackAsked, this,
            [this] { pltHistory->SetRange(m_chosen.first, m_chosen.second); });
    connect(pltHistory, &HistoryPlot::EndAsked, this, &frmHistory::ShowEnd);
    m_settle.setObjectName(u"timSettle");
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        ShadePasses();
        ListReadings();
    });
}

void frmHistory::ConnectWorker() {
    connect(m_worker.get(), &HistoryWorker::Opening, this,
            [this](int percent) { ShowProgress(tr("Opening the history"), percent); });
    connect(m_worker.get(), &HistoryWorker::Exporting, this,
            [this](int percent) { ShowProgress(tr("Exporting"), percent); });
    connect(m_worker.get(), &HistoryWorker::Exported, this, &frmHistory::TellEmpty);
    connect(m_worker.get(), &HistoryWorker::Changed, this, &frmHistory::TakeState);
    connect(m_worker.get(), &HistoryWorker::Loaded, this,
            [this](const HistoryWorker::Columns& columns, int request) {
                if (request != m_loadRequest)
                    return;
                pltHistory->SetReadings(m_asked, columns);
                TellView();
            });
    connect(m_worker.get(), &HistoryWorker::Shown, this,
            [this](const HistoryWorker::Values& values, int request) {
                m_isShowing = false;
                if (request == m_shownRequest)
                    m_channels.SetValues(values, m_shownTime);
                if (std::exchange(m_showAgain, false))
                    TellCursor();
            });
    connect(m_worker.get(), &HistoryWorker::Sequence, this, [this](const QString& sequence, int request) {
        if (request == m_sequenceRequest)
            TellReading(sequence);
    });
    m_follow.setObjectName(u"timFollow");
    m_follow.setInterval(followEvery);
    connect(&m_follow, &QTimer::timeout, this, &frmHistory::Follow);
    m_follow.start();
}

void frmHistory::Follow() {
    if (auto decoding = m_services.newDecoding())
        m_worker->Decode(std::move(decoding->formulae), std::move(decoding->sides));
    m_worker->Follow();
}

void frmHistory::TakeState(const HistoryState& state) {
    const HistoryState before = std::exchange(m_state, state);
    const bool isFirst = !std::exchange(m_isOpen, true) || before.frames == 0;
    TellEmpty();
    const bool isEndInView = pltHistory->To() >= before.last;
    const bool isWhole = m_chosen == std::pair(pltHistory->From(), pltHistory->To());
    if (isFirst || (isEndInView && isWhole))
        ShowChosen();
    else if (isEndInView && state.last > pltHistory->To()) // the end stays in view
        pltHistory->SetRange(pltHistory->From() + state.last - pltHistory->To(), state.last);
    LoadPlotted();
    TellCursor();
}

void frmHistory::ShowProgress(const QString& what, int percent) {
    labState->setText(what);
    labState->show();
    prgState->setValue(percent);
    prgState->show();
}

void frmHistory::TellEmpty() {
    QString text;
    if (!m_state.reason.isEmpty()) {
        text = tr("The history cannot be read: %1").arg(m_state.reason);
    } else if (m_state.frames == 0) {
        text = tr("No telemetry has been kept yet. Every telemetry frame of the satellite that is heard from "
                  "now on appears here: as curves, and in the tables below.");
        if (const QString pass = m_services.nextPass(); !pass.isEmpty())
            text += u' ' + pass;
    }
    labState->setText(text);
    labState->setVisible(!text.isEmpty());
    prgState->hide();
}

void frmHistory::Plot(const HistoryChannel& channel) {
    m_channels.SetPlotted({channel});
    tblChannels->setCurrentIndex(
        m_channels.index(std::max(m_channels.RowOf(channel), 0), ChannelTable::Channel));
    LoadPlotted();
}

void frmHistory::ListEvents() {
    tabHistory->setCurrentWidget(tblEvents);
    tblEvents->setFocus();
}

void frmHistory::LoadPlotted() {
    m_asked = m_channels.Plotted();
    m_worker->Load(m_asked, ++m_loadRequest);
}

void frmHistory::ShowChosen() {
    m_chosen = fraRange->Range().Times(m_state, m_services.clock.Milliseconds());
    pltHistory->SetRange(m_chosen.first, m_chosen.second);
    m_chosen = {pltHistory->From(), pltHistory->To()};
}

void frmHistory::ShowEnd(bool isLast) {
    const qint64 length = pltHistory->To() - pltHistory->From();
    if (m_state.frames == 0)
        return;
    const qint64 from = isLast ? m_state.last - length : m_state.first;
    pltHistory->SetRange(from, from + length);
}

// From the cursor, or from the beginning where that is not in view.
void frmHistory::Play() {
    const qint64 from = pltHistory->Cursor().value_or(pltHistory->From());
    const bool isInView = from >= pltHistory->From() && from < pltHistory->To();
    fraPlay->Play(isInView ? from : pltHistory->From(), pltHistory->To());
}

void frmHistory::JumpTo(qint64 utc) {
    const qint64 half = (pltHistory->To() - pltHistory->From()) / 2;
    if (utc < pltHistory->From() || utc > pltHistory->To())
        pltHistory->SetRange(utc - half, utc + half);
    pltHistory->SetCursor(utc);
}

void frmHistory::JumpToEvent(int row) {
    const LimitEvent& event = m_events.EventAt(row);
    const HistoryChannel channel{event.cell.side, event.cell.grid, event.cell.row};
    std::vector<HistoryChannel> plotted = m_channels.Plotted();
    if (std::ranges::find(plotted, channel) == plotted.end()) {
        plotted.push_back(channel);
        m_channels.SetPlotted(plotted);
        LoadPlotted();
    }
    JumpTo(event.utc);
}

void frmHistory::TimesHaveChanged() {
    pltHistory->SetLocalTime(m_services.isLocalTime());
    m_channels.Retell();
    EventsHaveChanged();
    TellView();
}

void frmHistory::EventsHaveChanged() {
    m_events.SetEvents(m_services.events());
}

void frmHistory::PassesHaveChanged() {
    ShadePasses();
    if (m_isOpen)
        TellEmpty();
}

void frmHistory::ShadePasses() {
    const qint64 from = pltHistory->From();
    const qint64 to = pltHistory->To();
    pltHistory->SetPasses(to - from <= longestShaded ? m_services.passes(from, to)
                                                     : std::vector<PlotFields::Span>());
}

void frmHistory::ListReadings() {
    if (tabHistory->currentWidget() == tblReadings)
        m_readings.SetReadings(pltHistory->Channels(), pltHistory->SharedReadings(), pltHistory->From(),
                               pltHistory->To());
}

qint64 frmHistory::CursorTime() const {
    return pltHistory->Cursor().value_or(
        std::min(pltHistory->To(), std::max(m_services.clock.Milliseconds(), m_state.last)));
}

QString frmHistory::TimeText(qint64 utc) const {
    return FormatDateTime(m_services.displayTime(utc), u"yyyy-mm-dd hh:nn:ss");
}

void frmHistory::TellView() {
    fraRange->ShowTimes(pltHistory->From(), pltHistory->To());
    m_settle.start();
    TellCursor();
}

// One question at a time: a mouse asks faster than a long history answers.
void frmHistory::TellCursor() {
    TellReading({});
    if (m_isShowing) {
        m_showAgain = true;
        return;
    }
    m_isShowing = true;
    m_shownTime = CursorTime();
    m_worker->Show(m_channels.Channels(), m_shownTime, ++m_shownRequest);
    if (const auto nearest = pltHistory->Nearest())
        m_worker->TellSequence(pltHistory->Readings()[nearest->channel].frame[nearest->at],
                               ++m_sequenceRequest);
}

void frmHistory::TellReading(const QString& sequence) {
    const QString text = ReadingText(sequence);
    labReading->setText(text);
    pltHistory->setAccessibleDescription(text);
}

QString frmHistory::ReadingText(const QString& sequence) const {
    const auto nearest = pltHistory->Nearest();
    if (!nearest)
        return tr("Point at a curve, or press Ctrl and an arrow key in it, to read its values.");
    const HistoryChannel& channel = pltHistory->Channels()[nearest->channel];
    const HistoryColumns& readings = pltHistory->Readings()[nearest->channel];
    QStringList parts{QStringLiteral("%1: %2").arg(
                          ChannelTable::NameOf(channel),
                          ChannelTable::ValueText(channel, readings.value[nearest->at], m_services.limits)),
                      tr("raw %1").arg(Text::GeneralNumber(readings.raw[nearest->at]))};
    if (!sequence.isEmpty())
        parts += Text::OneLine(sequence, longestSequence);
    parts += TimeText(readings.utc[nearest->at]) + u' ' +
             (m_services.isLocalTime() ? tr("local time") : tr("UTC"));
    return parts.join(u", ");
}

void frmHistory::ReadSettings() {
    m_channels.SetPlotted(HistoryKept::Channels(Settings::Peek(m_services.ini, Settings::historyChannels),
                                                m_channels.Channels()));
    fraRange->SetRange(HistoryRange::Of(Settings::Peek(m_services.ini, Settings::historyRange)));
}

void frmHistory::SaveSettings() {
    const auto save = [this](const Setting& setting, const QString& value) {
        if (Settings::Peek(m_services.ini, setting) != value)
            Settings::Save(m_services.ini, setting, value);
    };
    save(Settings::historyChannels, HistoryKept::Text(m_channels.Plotted()));
    save(Settings::historyRange, fraRange->Range().Text());
}

void frmHistory::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void frmHistory::closeEvent(QCloseEvent* event) {
    if (m_place)
        SaveSettings();
    m_follow.stop();
    fraPlay->Stop();
    m_place.reset();
    event->accept();
    Q_EMIT ImUnloading();
}
