#include "app/GroundStation.h"

#include "app/Texts.h"
#include "orbit/service/KVRSatLib.h"
#include "telemetry/monitor/DisplayKind.h"

GroundStation::GroundStation(const ProgramFolder& folder, const Clock& clock, const TelemetryTables& tables,
                             MonitorText& monitor, QObject* window)
    : cIni(folder.IniFile())
    , cSats(std::make_unique<KVRSatLib>(), clock)
    , station(cIni)
    , agw(cIni)
    , link(agw, window)
    , callsigns(cIni)
    , frameTime(clock, [this] { return cSats.datTime(); })
    , decoder(tables.channelMap, tables.formulae, tables.grids, callsigns, [this] { return frameTime.Now(); })
    , intake(callsigns, decoder, monitor, [this] { return frameTime.Now(); }) {
    cIni.SetWriteFailed([this](const QString& file, const QString& reason) {
        intake.AddToMonitor(Texts::CannotSave(file, reason), DisplayKind::Status);
    });
    QObject::connect(&link, &AgwLink::StatusText, &link,
                     [this](const QString& text) { intake.AddToMonitor(text, DisplayKind::Status); });
    QObject::connect(&link.Client(), &MERAGW::FrameArrival, &link,
                     [this](const MonitoredFrame& frame) { intake.FrameReceived(frame); });
    QObject::connect(&link.Client(), &MERAGW::Monitoring, &link,
                     [this](QByteArrayView data, qint16 kind) { intake.ShowMonitoredFrame(data, kind); });
}

void GroundStation::LoadSettings() {
    QString localTime = Settings::Read(cIni, Settings::useLocalTime);
    cSats.setBlnLocalTime(clsIni::IsItTrue(localTime));
    QString onlyShow = Settings::Read(cIni, Settings::onlyShowQiran);
    intake.SetOnlyShowQiran(clsIni::IsItTrue(onlyShow));
    station.Load();
    agw.Load();
    for (const Setting& old : {Settings::oldObjectName, Settings::oldCallA, Settings::oldCallB})
        cIni.DeleteKey(QString::fromUtf16(old.section), QString::fromUtf16(old.key));
    cIni.DeleteSection(QString::fromUtf16(Settings::oldSidesSection));
}

bool GroundStation::ToggleLocalTime() {
    cSats.setBlnLocalTime(!cSats.blnLocalTime());
    frameTime.Forget();
    SaveOption(Settings::useLocalTime, cSats.blnLocalTime());
    return cSats.blnLocalTime();
}

bool GroundStation::ToggleOnlyShowQiran() {
    intake.SetOnlyShowQiran(!intake.OnlyShowQiran());
    SaveOption(Settings::onlyShowQiran, intake.OnlyShowQiran());
    return intake.OnlyShowQiran();
}

void GroundStation::SaveOption(const Setting& setting, bool value) {
    Settings::Save(cIni, setting, clsIni::TrueOrFalse(value));
}
