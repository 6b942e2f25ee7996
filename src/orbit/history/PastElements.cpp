#include "orbit/history/PastElements.h"

#include "foundation/text/UtcTime.h"

const ElementsHistory::Set* PastElements::Nearest(const QString& object, qint64 utc) {
    const quint32 number = ConsiderPresent(object);
    return m_history.Nearest(number, utc);
}

std::vector<ElementsHistory::Stretch> PastElements::Stretches(const QString& object, qint64 from, qint64 to) {
    const quint32 number = ConsiderPresent(object);
    return m_history.Stretches(number, from, to);
}

// Answers the number of the object.
quint32 PastElements::ConsiderPresent(const QString& object) {
    const std::optional<ElementSource> present = m_cSats.ElementsOf(object);
    if (!present)
        return object.toUInt();
    const qint64 epoch = UtcTime::FromDateTime(present->epochUtc);
    if (!m_history.Holds(present->number, epoch)) // the text is read from its file
        m_history.Consider(
            {.number = present->number, .epoch = epoch, .elements = m_cSats.ElementTextOf(object)});
    return present->number;
}
