#pragma once

#include "core/GroundStation.h"
#include "core/Roof.h"
#include "foundation/messages/mb.h"
#include "pesim/EngineSimulator.h"
#include "support/RecordingPresenter.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

/// Notes its turns.
class NotingRoof : public Roof {
public:
    QStringList turns;
    std::function<void(const QString&)> atTurn = [](const QString&) {};

    void Announce() override { Turn(QStringLiteral("announce")); }
    void PlaceWindow() override { Turn(QStringLiteral("place")); }
    void PrepareTracking() override { Turn(QStringLiteral("tracking")); }
    void LoadTerminal() override { Turn(QStringLiteral("terminal")); }
    void Show() override { Turn(QStringLiteral("show")); }
    void ReleaseWindows() override { Turn(QStringLiteral("release")); }
    bool SaveWindowPlace() override {
        Turn(QStringLiteral("save"));
        return savesPlace;
    }

    bool savesPlace = true;

private:
    void Turn(const QString& name) {
        turns.append(name);
        atTurn(name);
    }
};

/// A station without windows in a temporary program folder, a simulated packet engine beside it.
struct StationRig {
    TemporaryProgramFolder folder;
    TestClock clock;
    RecordingPresenter presenter;
    mb messages{presenter};
    NotingRoof roof;
    EngineSimulator engine;
    std::unique_ptr<GroundStation> station;

    StationRig() {
        folder.Write(QStringLiteral("formula.txt"), "A,2,TEMP,X+,0,0,1,0\r\n");
        if (!engine.Listen())
            qFatal("no port");
        Set("AGWPE", "HOST_ADDRESS", QStringLiteral("127.0.0.1"));
        Set("AGWPE", "HOST_PORT", QString::number(engine.Port()));
        station = std::make_unique<GroundStation>(folder.Program(), clock, messages, roof);
    }

    void Set(const char* section, const char* key, const QString& value) const {
        clsIni(folder.IniFile()).SaveIniString(QLatin1StringView(section), QLatin1StringView(key), value);
    }
    QString Get(const char* section, const char* key) const {
        return clsIni(folder.IniFile())
            .GetIniString(QLatin1StringView(section), QLatin1StringView(key), QStringLiteral("absent"));
    }
};
