#pragma once

#include <QString>

/// Where an element file comes from, and what it is called in the Keps folder.
struct KepsAddress {
    QString url;
    QString fileName; ///< a plain file name; empty when the address names no file

    /// From the address as typed, without "http://". The file name is what follows the last "/" or "\"; of an
    /// address with a query, the group or satellite it asks for ("gp.php?GROUP=amateur&FORMAT=tle" is stored
    /// as "amateur.tle"), else the name before the "?", else the query itself ("host/?sat=43017" is stored as
    /// "sat=43017.txt"). Letters that cannot stand in a file name become "_"; a name of more than 100 bytes
    /// is cut, keeps its extension and gets a check sum. In the URL every "\" before the query is a "/".
    static KepsAddress FromTyped(const QString& typed);
};
