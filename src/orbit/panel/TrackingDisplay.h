#pragma once

#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

#include <QString>

#include <optional>

/// What the tracking panel's labels show.
struct TrackingLabels {
    enum class Background { Window, InView };

    QString strLat;
    QString strLong;
    QString strAz;
    QString strEl;
    QString strDue;
    QString strDueTip; ///< the day as well, where the pass begins later than today; else empty
    std::optional<Background> newBackground; ///< set when the background changes
};

/// The rules of the tracking panel.
class TrackingDisplay {
public:
    TrackingDisplay(clsSats& cSats, TrackedSatellites& satellites)
        : m_cSats(cSats)
        , m_satellites(satellites) {}

    /// Elements are old after this many days.
    static constexpr double maxElementDays = 14.0;

    /// The place of the station in degrees, north and east positive; see QIRUtil::IsPositionKnown.
    TrackingLabels ApplyStationPosition(double latitude, double longitude);

    bool IsLocationKnown() const { return m_locationKnown; }

    /// Where the selected satellite is now. What cannot be known shows as "-".
    TrackingLabels Refresh();

    /// The panel's caption.
    QString Caption() const;

    QString DueCaption() const;

    /// How old the selected satellite's elements are, with their epoch and file; empty when it has none.
    struct ElementsAge {
        QString text;
        bool isOld = false; ///< passes may be wrong
    };
    ElementsAge AgeOfElements() const;

private:
    void SetBackground(TrackingLabels::Background background);
    QString DueTip();

    clsSats& m_cSats;
    TrackedSatellites& m_satellites;
    bool m_locationKnown = false;
    TrackingLabels m_labels{QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"),
                            QStringLiteral("-"), QStringLiteral("-"), {},
                            std::nullopt};
    QString m_askedFor; // the satellite and due text for which `m_due` was asked
    std::optional<DateTime> m_due;
    TrackingLabels::Background m_background = TrackingLabels::Background::Window;
};
