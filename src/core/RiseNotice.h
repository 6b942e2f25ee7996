#pragma once

#include "foundation/text/DateTime.h"

#include <QString>

#include <deque>

/// When the user is told of a rise: in time, of passes that become high enough, and once a pass, whatever
/// becomes of the clock.
class RiseNotice {
public:
    struct Wish {
        int minutes = 0;      ///< told this long before; 0: never
        int minElevation = 0; ///< degrees
    };

    void SetWish(const Wish& wish) { m_wish = wish; }

    /// Whether a rise is so close and its pass so high that it is told of. `riseUtc` and `now` in UTC,
    /// `maxElevation` in degrees.
    bool IsNear(DateTime riseUtc, double maxElevation, DateTime now) const;

    /// Whether the rise of an object has not been told of; from now on it has. Newer elements move a rise by
    /// seconds: it stays the same one.
    bool TellOnce(const QString& object, DateTime riseUtc);

private:
    struct Told {
        QString object;
        DateTime riseUtc = 0;
    };

    Wish m_wish;
    std::deque<Told> m_told;
};
