#include "telemetry/callsigns/CallsignItems.h"

namespace CallsignItems {

QString ItemText(const clsCallsign& callsign) {
    return callsign.strCallsign.leftJustified(12, u' ', true) + QStringLiteral("Side ") + callsign.strSide;
}

clsCallsign FromItem(const QString& item) {
    return {item.left(9).trimmed(), item.right(1)};
}

qsizetype IndexOf(const QStringList& items, const QString& strCallsign) {
    for (qsizetype i = 0; i < items.size(); ++i)
        if (FromItem(items[i]).strCallsign == strCallsign)
            return i;
    return -1;
}

qsizetype PutInList(QStringList& items, const clsCallsign& callsign) {
    const QString item = ItemText(callsign);
    if (const qsizetype index = IndexOf(items, callsign.strCallsign); index >= 0) {
        items[index] = item;
        return index;
    }
    items.append(item);
    items.sort();
    return items.indexOf(item);
}

} // namespace CallsignItems
