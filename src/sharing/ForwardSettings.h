#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

class clsIni;

/// The settings of forwarding, the section FORWARD. None is written before the user changes it.
struct ForwardSettings {
    bool use = false;    ///< heard frames are sent on
    bool dryRun = false; ///< they are shown in the place of being sent
    QString url;         ///< of the server
    QString token;       ///< empty, or what the server gave to the user
    int keepAtMost = 0;  ///< frames in the queue, 1 to 1,000,000

    static ForwardSettings Load(const clsIni& ini);

    /// Writes what differs from the file.
    void Save(clsIni& ini) const;

    /// The address; invalid, and nothing is sent, where `text` is none of http or https.
    static QUrl Address(const QString& text);

    bool operator==(const ForwardSettings&) const = default;
};
