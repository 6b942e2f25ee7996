#pragma once

#include "orbit/history/ElementsHistory.h"
#include "orbit/service/clsSats.h"

/// The elements that the past of a satellite is computed with: of those that were kept and the present ones
/// the set nearest in time, none farther than ElementsHistory::farthest. An object is named by its catalogue
/// number, or by whatever else the orbit service finds it by.
class PastElements {
public:
    /// The references outlive it. The history is loaded already, or will be.
    PastElements(ElementsHistory& history, const clsSats& cSats)
        : m_history(history)
        , m_cSats(cSats) {}

    /// As ElementsHistory has them.
    const ElementsHistory::Set* Nearest(const QString& object, qint64 utc);
    std::vector<ElementsHistory::Stretch> Stretches(const QString& object, qint64 from, qint64 to);

private:
    quint32 ConsiderPresent(const QString& object);

    ElementsHistory& m_history;
    const clsSats& m_cSats;
};
