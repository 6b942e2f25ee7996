#pragma once

#include "orbit/service/KVRSatLib.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"
#include "orbit/skyview/PassSteps.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <optional>

/// A station and two satellites with true orbits: QIRAN over the poles, the ISS as it is. Its day is
/// 2026-11-17.
struct SkyRig {
    static QByteArray WithChecksum(QByteArray line) {
        int sum = 0;
        for (const char c : line = line.left(68))
            sum += c >= '0' && c <= '9' ? c - '0' : c == '-' ? 1 : 0;
        return line + QByteArray::number(sum % 10) + '\n';
    }

    /// `orbit`: columns 9 to 63 of line 2.
    static QByteArray Elements(const QByteArray& name, const QByteArray& number, const QByteArray& orbit) {
        return name + '\n' +
               WithChecksum("1 " + number + "U 26001A   26320.00000000  .00000000  00000-0  00000-0 0  999") +
               WithChecksum("2 " + number + ' ' + orbit + "    1");
    }
    static inline const QByteArray polar = " 97.7000  30.0000 0012000 210.0000 100.0000 14.92000000";
    static inline const QByteArray station = " 51.6400 208.9000 0006700  70.0000  25.0000 15.49560000";
    static inline const QByteArray hovering = "  0.0500  90.0000 0001000   0.0000 330.0000  1.00273791";
    static inline const QByteArray equatorial = "  1.0000 208.9000 0006700  70.0000  25.0000 15.49560000";

    explicit SkyRig(const QByteArray& orbit = polar) {
        folder.Write(QStringLiteral("Keps/keps.txt"),
                     Elements("QIRAN", "90417", orbit) + Elements("ISS", "25544", station));
        satellites.LoadSettings(ini);
        sats.setStrKeplerPath(folder.Program().KepsFolder());
        MoveTo({52.0, 11.0});
    }

    void MoveTo(PassSteps::Place where) {
        place = where;
        sats.setDblObsLat(where.latitude);
        sats.setDblObsLong(where.longitude);
    }

    PassSteps Steps() const { return {sats, QStringLiteral("90417"), *place}; }

    /// The first pass after a time that this suits.
    template <class Suits>
    SatPass Find(DateTime from, const Suits& suits) const {
        std::optional<SatPass> pass = Steps().PresentOrNext(from);
        while (pass && !suits(*pass))
            pass = Steps().Later(*pass);
        return pass.value();
    }

    static inline const DateTime day = DateOf(2026, 11, 17);
    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    TestClock clock{day};
    clsSats sats{std::make_unique<KVRSatLib>(), clock};
    TrackedSatellites satellites;
    std::optional<PassSteps::Place> place;
    std::optional<DateTime> simulated;
};
