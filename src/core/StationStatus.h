#pragma once

#include "foundation/text/DateTime.h"
#include "telemetry/frames/HeardFrame.h"
#include "telemetry/limits/LimitJudge.h"

#include <QString>

#include <optional>
#include <string>

class GroundStation;

/// What a status bar says, in the words that it says it with. An empty text: nothing to say.
struct StatusTexts {
    QString link;
    QString lastFrame;
    QString today;
    QString elements;
    QString nextRise;
    QString event;
    bool areElementsOld = false; ///< so that passes are off by more than seconds

    bool operator==(const StatusTexts&) const = default;
};

/// Follows the station for its status bar: how the link stands, what was heard last, how many frames of the
/// satellite today, how old the elements are and when the satellite rises. Asked once a second it costs next
/// to nothing: a pass is searched for only when the last one found has begun or something that it depends on
/// has changed.
class StationStatus {
public:
    /// `station` must outlive this object, which takes the frames that the station hears from now on.
    explicit StationStatus(GroundStation& station);

    StatusTexts Now();

    /// The rise that `Now` counted down to, date-time UTC, and how high that pass becomes, degrees.
    struct Rise {
        DateTime utc = 0.0;
        double maxElevation = 0.0;
    };
    std::optional<Rise> NextRise() const { return m_rise; }

    /// The last event of a limit, until it was looked at.
    const std::optional<LimitEvent>& Event() const { return m_event; }
    void EventSeen() { m_event.reset(); }

private:
    /// What the next rise depends on.
    struct Question {
        QString object;
        double latitude = 0.0;
        double longitude = 0.0;
        double epoch = 0.0;

        bool operator==(const Question&) const = default;
    };

    void Take(const HeardFrame& frame);
    QString Link() const;
    QString LastFrame() const;
    void TurnDay();
    void AddElements(StatusTexts& texts) const;
    void AddRise(StatusTexts& texts);
    void FindRise(const Question& question, DateTime now);

    GroundStation& m_station;
    std::string m_lastSource;
    qint64 m_lastUtc = 0;
    double m_day = 0.0; // that `m_today` counts, in display time
    int m_today = 0;
    Question m_question;
    DateTime m_askedAgain = 0.0; // when there was no pass, it is asked again from here on
    std::optional<Rise> m_rise;
    std::optional<LimitEvent> m_event;
};
