#include "app/HistoryWindow.h"

#include "core/GroundStation.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/text/Clock.h"
#include "foundation/text/UtcTime.h"
#include "telemetry/calibration/FormulaFile.h"
#include "telemetry/plots/HistoryExport.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

constexpr double daysAhead = 3.0;
constexpr std::size_t mostPasses = 500;

// Reading the formulae again while the program runs is nothing to ask the user about.
class Silence : public MessagePresenter {
public:
    int ShowMessage(const Message&) override { return 1; }
    void ShowHelp(QObject*, const QString&, HelpCommand) override {}
};

std::pair<qint64, qint64> StateOf(const QString& path) {
    const QFileInfo file(path);
    return {file.lastModified().toMSecsSinceEpoch(), file.size()};
}

} // namespace

HistoryWindow::HistoryWindow(GroundStation& ground, const Clock& clock, const mb& messages)
    : m_ground(ground)
    , m_clock(clock)
    , m_messages(messages)
    , m_flownOn(ground.folder.File(QStringLiteral("elements-history.txt")), {})
    , m_elements(m_flownOn, ground.cSats)
    , m_passes(m_elements) {
    connect(&ground, &GroundStation::LimitCrossed, this, [this] {
        if (m_window)
            m_window->EventsHaveChanged();
    });
}

HistoryWindow::~HistoryWindow() {
    Close();
}

void HistoryWindow::Show() {
    if (!m_window) {
        m_formulae = m_ground.formulae;
        m_sides = SidesOf(m_ground.callsigns);
        m_formulaFile = {};
        m_flownOn.Load();
        m_window = new frmHistory(
            Services(), std::make_unique<TelemetryHistory>(m_ground.folder.File(QStringLiteral("tlm.txt")),
                                                           m_ground.channelMap, m_formulae, m_sides));
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_window, &frmHistory::EventsSeen, this, &HistoryWindow::EventsSeen);
        connect(m_window, &frmHistory::ImUnloading, this, [this] { m_window.clear(); });
    }
    BringForward(m_window);
}

void HistoryWindow::ShowValue(const HistoryChannel& channel) {
    Show();
    m_window->Plot(channel);
}

void HistoryWindow::ShowEvents() {
    Show();
    m_window->ListEvents();
}

void HistoryWindow::Close() {
    if (frmHistory* window = m_window) {
        window->close();
        delete window;
    }
}

void HistoryWindow::TellTimes() {
    if (m_window)
        m_window->TimesHaveChanged();
}

void HistoryWindow::TellPasses() {
    if (m_window)
        m_window->PassesHaveChanged();
}

HistoryServices HistoryWindow::Services() {
    return {.ini = m_ground.cIni,
            .clock = m_clock,
            .messages = m_messages,
            .map = m_ground.channelMap,
            .limits = m_ground.limits.Limits(),
            .displayTime = [this](qint64 utc) { return m_ground.cSats.datTimeAt(utc); },
            .isLocalTime = [this] { return m_ground.cSats.blnLocalTime(); },
            .nextPass = [this] { return NextPass(); },
            .passes = [this](qint64 from, qint64 to) { return Passes(from, to); },
            .events = [this] { return EventFile::Read(m_ground.folder.File(QStringLiteral("events.txt"))); },
            .newDecoding = [this] { return NewDecoding(); },
            .choosePrinter = &HistoryExport::AskForPrinter,
            .chooseFile = &HistoryExport::AskForFile,
            .import = m_import};
}

QString HistoryWindow::NextPass() const {
    if (!m_ground.station.PositionKnown())
        return {};
    const TrackedSatellite& satellite = m_ground.satellites.At(0);
    const SatPasses answer = m_ground.cSats.PassesOf({.object = satellite.strObjNum.toStdString(),
                                                      .latitude = m_ground.station.dblLat(),
                                                      .longitude = m_ground.station.dblLong(),
                                                      .startUtc = m_ground.cSats.datGmtTime(),
                                                      .days = daysAhead,
                                                      .most = 1});
    if (answer.passes.empty())
        return {};
    return tr("The next pass of %1 begins at %2 %3.")
        .arg(
            satellite.strBaseName,
            FormatDateTime(m_ground.cSats.ToDisplayTime(answer.passes.front().riseUtc), u"yyyy-mmm-dd hh:nn"),
            m_ground.cSats.blnLocalTime() ? tr("local time") : tr("UTC"));
}

std::vector<PastPasses::Span> HistoryWindow::Passes(qint64 from, qint64 to) {
    if (!m_ground.station.PositionKnown())
        return {};
    return m_passes.Between(m_ground.satellites.At(0).strObjNum, m_ground.station.dblLat(),
                            m_ground.station.dblLong(), from, to, mostPasses);
}

std::optional<HistoryServices::Decoding> HistoryWindow::NewDecoding() {
    HistorySides sides = SidesOf(m_ground.callsigns);
    const auto file = StateOf(m_ground.folder.File(QStringLiteral("formula.txt")));
    if (sides == m_sides && file == m_formulaFile)
        return std::nullopt;
    m_sides = std::move(sides);
    m_formulaFile = file;
    if (std::optional<FormulaTable> formulae = ReadFormulae())
        m_formulae = std::move(*formulae);
    return HistoryServices::Decoding{m_formulae, m_sides};
}

// None while the file is wrong: then the last good ones hold.
std::optional<FormulaTable> HistoryWindow::ReadFormulae() const {
    Silence silence;
    FormulaTable formulae;
    const FormulaLoad loaded =
        LoadFormulae(m_ground.folder.File(QStringLiteral("formula.txt")), formulae, mb(silence), nullptr);
    return loaded == FormulaLoad::Loaded ? std::optional(std::move(formulae)) : std::nullopt;
}
