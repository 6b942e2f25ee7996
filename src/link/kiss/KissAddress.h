#pragma once

#include <QString>

/// Where a KISS TNC listens.
struct KissAddress {
    QString host;
    quint16 port = 8001;

    bool operator==(const KissAddress&) const = default;
};
