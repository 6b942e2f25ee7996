#pragma once

#include <QString>

/// The help topics that messages lead to: context ids, and the anchors in the help document.
namespace HelpTopics {

constexpr qint32 messages = 1;
constexpr qint32 formulas = 2;
constexpr qint32 packetEngine = 3;
constexpr qint32 station = 4;
constexpr qint32 callsigns = 5;
constexpr qint32 terminal = 6;
constexpr qint32 elements = 7;
constexpr qint32 programFolder = 8;

/// The anchor of a context id; empty (the contents) for one that is not in the table.
QString Anchor(qint32 contextId);

} // namespace HelpTopics
