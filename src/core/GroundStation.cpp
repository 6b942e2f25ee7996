#include "core/GroundStation.h"

#include "core/LastStart.h"
#include "core/Roof.h"
#include "core/SidsIdentity.h"
#include "core/Texts.h"
#include "core/Version.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/mb.h"
#include "foundation/settings/Settings.h"
#include "orbit/service/KVRSatLib.h"
#include "telemetry/calibration/FormulaFile.h"
#include "telemetry/limits/ChannelsFile.h"
#include "telemetry/monitor/DisplayKind.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <iostream>

namespace {

const QString eventsFile = QStringLiteral("events.txt");

} // namespace

GroundStation::GroundStation(const ProgramFolder& programFolder, const Clock& clock, mb& messages, Roof& roof)
    : folder(programFolder)
    , cIni(folder.IniFile())
    , cSats(std::make_unique<KVRSatLib>(), clock)
    , station(cIni)
    , agw(cIni)
    , kiss(cIni)
    , link(agw, kiss, clock, this)
    , callsigns(cIni)
    , forwarder({.folder = folder,
                 .ini = cIni,
                 .clock = clock,
                 .callsigns = callsigns,
                 .post = forwardPost,
                 .station = [this] { return SidsStationOf(station, satellites.At(0).strObjNum); },
                 .random = [] { return QRandomGenerator::global()->generateDouble(); }},
                this)
    , decoder(channelMap, formulae, callsigns)
    , terminal(cIni, clock, folder, station, link, messages,
               ProgramVersion{Version::major, Version::minor, Version::revision})
    , history(folder.File(QStringLiteral("tlm.txt")),
              [this](const QString& reason) {
                  ShowStatus(Texts::CannotWrite(QStringLiteral("tlm.txt"), reason));
              })
    , limits([this](const LimitEvent& event) {
        m_events.Append(event);
        Q_EMIT LimitCrossed(event);
    })
    , m_messages(messages)
    , m_roof(roof)
    , m_lock(FolderLock::OfProgram(folder))
    , m_frameTime([this](qint64 utc) { return cSats.datTimeAt(utc); })
    , m_intake(callsigns, monitor, [this](qint64 utc) { return m_frameTime.At(utc); })
    , m_gridValues(grids, [this](qint64 utc) { return m_frameTime.At(utc); })
    , m_events(folder.File(eventsFile),
               [this](const QString& reason) { ShowStatus(Texts::CannotWrite(eventsFile, reason)); })
    , m_recorder([this](const QString& reason) {
        ShowStatus(Texts::CannotWrite(QFileInfo(RecordingPath()).fileName(), reason));
    }) {
    for (const auto& grid : grids)
        grid->ShowLimits(limits, [&clock] { return clock.Milliseconds(); });
    using Takes = FanOut<HeardFrame>::Takes;
    heard.Add([this](const HeardFrame& frame) { m_intake.Take(frame); });
    heard.Add([this](const HeardFrame& frame) { decoder.Take(frame); }, Takes::LiveAndReplayed);
    heard.Add([this](const HeardFrame& frame) { m_recorder.Take(frame); });
    heard.Add([this](const HeardFrame& frame) { forwarder.Take(frame); });
    decoder.Decoded().Add([this](const TelemetryFrame& frame) { m_gridValues.Take(frame); });
    decoder.Decoded().Add([this](const TelemetryFrame& frame) { history.Take(frame); });
    decoder.Decoded().Add([this](const TelemetryFrame& frame) { limits.Take(frame); });
    m_intake.SetTerminal([this](QByteArrayView text, qint16 kind) { terminal.Take(text, kind); });

    connect(&link, &ChosenLink::Heard, this, [this](const HeardFrame& frame) { heard.Hand(frame); });
    connect(&link, &ChosenLink::StatusText, this, &GroundStation::ShowStatus);
    connect(&forwarder, &Forwarder::StatusText, this, &GroundStation::ShowStatus);
    connect(&forwarder, &Forwarder::WantsRawFramesChanged, this,
            [this](bool wants) { SetWantsRawFrames(RawTaker::Forwarding, wants); });
    connect(&m_elementsWatch, &ElementsWatch::Changed, this, [this] {
        LoadElements();
        Q_EMIT ElementsChanged();
    });
    connect(&station, &Station::Changed, this, &GroundStation::ApplyStationPosition);
    cIni.SetWriteFailed(
        [this](const QString& file, const QString& reason) { ShowStatus(Texts::CannotSave(file, reason)); });
}

GroundStation::~GroundStation() {
    Stop();
}

GroundStation::Outcome GroundStation::Start() {
    if (!m_lock.TryLock()) {
        std::cerr << Texts::HeldBy(folder.Path(), m_lock.Holder()).toLocal8Bit().constData();
        m_roof.FolderIsTaken();
        m_messages.MessageBox(m_roof.MessageOwner(), Texts::AlreadyRunning(), MessageStyle::Information,
                              Texts::InFolder(folder.Path()));
        return Outcome::AlreadyRunning;
    }
    m_roof.Announce();
    channelMap.BuildChannelMap();
    if (!LoadFormulaFile())
        return Outcome::NoFormulae;
    m_isRunning = true;
    m_messages.SetTitle(Texts::Title());
    satellites.LoadSettings(cIni);
    m_roof.PlaceWindow();
    LoadOptions();
    RemoveOldKeys();
    callsigns.LoadCallsigns();
    ApplyStationPosition();
    LoadElements();
    m_elementsWatch.Start(folder.KepsFolder(), folder.Path());
    m_roof.PrepareTracking();
    terminal.Open();
    m_roof.LoadTerminal();
    LoadLimits();
    forwarder.Start();
    link.Connect();
    m_roof.Show();
    return Outcome::Started;
}

// A misspelt name ends the program without a message of its own; why waits for the next start to tell.
bool GroundStation::LoadFormulaFile() {
    const QString formulaFile = folder.File(QStringLiteral("formula.txt"));
    QString halt;
    const FormulaLoad loaded = LoadFormulae(formulaFile, formulae, m_messages, m_roof.MessageOwner(), &halt);
    const QString before = LastStart::Reason(folder);
    if (loaded == FormulaLoad::Halt) {
        if (!before.isEmpty())
            m_messages.MessageBox(m_roof.MessageOwner(), Texts::LastStartEnded(before),
                                  MessageStyle::Critical, QStringLiteral("QiranDecode"),
                                  HelpTopics::formulas);
        LastStart::Keep(folder, halt);
    } else if (!before.isEmpty())
        LastStart::Forget(folder);
    if (loaded == FormulaLoad::Failed && !QFile::exists(formulaFile))
        std::cerr << Texts::WhereFormulaeBelong(formulaFile).toLocal8Bit().constData();
    return loaded == FormulaLoad::Loaded;
}

void GroundStation::ShowNotices() {
    if (!station.PositionKnown())
        m_messages.MessageBox(m_roof.MessageOwner(), Texts::PositionUnknown(), MessageStyle::Information);
    if (const QString missing = satellites.NoKepsMessage(); !missing.isEmpty())
        m_messages.MessageBox(m_roof.MessageOwner(), missing, MessageStyle::Information);
}

void GroundStation::Stop() {
    if (!m_isRunning)
        return;
    m_isRunning = false;
    link.Stop();
    StopRecording();
    forwarder.Stop();
    m_elementsWatch.Stop();
    m_roof.ReleaseWindows();
    terminal.Close();
    if (m_roof.SaveWindowPlace())
        satellites.SaveSettings(cIni);
    m_messages.HelpQuit();
}

void GroundStation::LoadElements() {
    cSats.setStrKeplerPath(folder.KepsFolder());
    satellites.FindInKeps(folder.KepsFolder());
    for (const QString& line : satellites.UntrackedMessages(cSats))
        ShowStatus(line);
}

void GroundStation::ShowStatus(const QString& text) {
    m_intake.AddToMonitor(text, DisplayKind::Status);
    for (const QString& line : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts))
        Q_EMIT StatusLine(line);
}

void GroundStation::UseKiss(bool isKiss) {
    if (isKiss == kiss.IsUsed())
        return;
    kiss.SetUsed(isKiss);
    link.Connect();
}

void GroundStation::SetWantsRawFrames(RawTaker taker, bool wants) {
    if (wants)
        m_rawTakers.insert(taker);
    else
        m_rawTakers.erase(taker);
    link.Agw().SetWantsRawFrames(!m_rawTakers.empty());
}

bool GroundStation::StartRecording(const QString& path) {
    const bool isRecording = m_recorder.Start(path);
    SetWantsRawFrames(RawTaker::Recording, isRecording);
    if (!isRecording)
        ShowStatus(Texts::CannotWrite(QFileInfo(path).fileName(), QStringLiteral("it is no recording")));
    return isRecording;
}

void GroundStation::StopRecording() {
    m_recorder.Stop();
    SetWantsRawFrames(RawTaker::Recording, false);
}

void GroundStation::OpenTerminal() {
    terminal.Open();
    m_roof.LoadTerminal();
}

void GroundStation::LoadOptions() {
    QString localTime = Settings::Read(cIni, Settings::useLocalTime);
    cSats.setBlnLocalTime(clsIni::IsItTrue(localTime));
    QString onlyShow = Settings::Read(cIni, Settings::onlyShowQiran);
    m_intake.SetOnlyShowQiran(clsIni::IsItTrue(onlyShow));
    station.Load();
    agw.Load();
    kiss.Load();
}

void GroundStation::RemoveOldKeys() {
    for (const Setting& old : {Settings::oldObjectName, Settings::oldCallA, Settings::oldCallB})
        cIni.DeleteKey(QString::fromUtf16(old.section), QString::fromUtf16(old.key));
    cIni.DeleteSection(QString::fromUtf16(Settings::oldSidesSection));
}

void GroundStation::LoadLimits() {
    QString keep = Settings::Peek(cIni, Settings::historyKeep);
    history.SetKept(clsIni::IsItTrue(keep));
    const QString name = QStringLiteral("channels.txt");
    const ChannelsFile file = ChannelsFile::Read(folder.File(name));
    for (const ChannelsFile::Fault& fault : file.Faults())
        ShowStatus(Texts::WrongLine(name, fault.line, fault.reason));
    if (file.Limits().empty())
        return;
    limits.SetLimits(file.Limits());
    limits.TakeUp(EventFile::StatesAfter(EventFile::Read(folder.File(eventsFile))));
}

void GroundStation::ApplyStationPosition() {
    cSats.setDblObsLat(station.dblLat());
    cSats.setDblObsLong(station.dblLong());
}

bool GroundStation::ToggleLocalTime() {
    cSats.setBlnLocalTime(!cSats.blnLocalTime());
    m_frameTime.Forget();
    SaveOption(Settings::useLocalTime, cSats.blnLocalTime());
    return cSats.blnLocalTime();
}

bool GroundStation::ToggleOnlyShowQiran() {
    m_intake.SetOnlyShowQiran(!m_intake.OnlyShowQiran());
    SaveOption(Settings::onlyShowQiran, m_intake.OnlyShowQiran());
    return m_intake.OnlyShowQiran();
}

void GroundStation::SaveOption(const Setting& setting, bool value) {
    Settings::Save(cIni, setting, clsIni::TrueOrFalse(value));
}
