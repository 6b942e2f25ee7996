#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QStringView>

/// Where a UI frame goes, taken apart from the text that UnprotoLink::SendUnproto is given: "DEST",
/// "DEST DIGI,DIGI" or anything between, blanks wherever the user left them. Windows-1252.
struct UnprotoPath {
    QByteArray destination;
    QByteArrayList digipeaters;

    static UnprotoPath FromText(QStringView text);
};
