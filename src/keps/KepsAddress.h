#pragma once

#include <QString>

/// Where an element file comes from, and what it is called in the Keps folder.
struct KepsAddress {
    QString url;
    QString fileName; ///< a plain file name; empty when the address names no file

    /// The address as typed, without "http://". The file name is what follows the last "/" or "\"; of an
    /// address with a query, the group or satellite it asks for ("gp.php?GROUP=amateur&FORMAT=tle" is stored
    /// as "amateur.tle") or else the name before the "?".
    static KepsAddress FromTyped(const QString& typed);
};
