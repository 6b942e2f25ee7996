#pragma once

#include "telemetry/callsigns/clsCallsign.h"

#include <QStringList>

/// The lines of the callsign editor's list: the callsign in 12 characters, "Side ", the side letter.
namespace CallsignItems {

QString ItemText(const clsCallsign& callsign);

/// Read back: the callsign is the item's first 9 characters, trimmed, the side its last one.
clsCallsign FromItem(const QString& item);

/// The index of the item of this callsign; -1 when there is none.
qsizetype IndexOf(const QStringList& items, const QString& strCallsign);

/// Replaces the item of this callsign; where there is none, adds it and sorts all items. Answers its index.
qsizetype PutInList(QStringList& items, const clsCallsign& callsign);

} // namespace CallsignItems
