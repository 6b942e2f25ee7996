#pragma once

#include "foundation/settings/clsIni.h"

#include <optional>

/// How the user reaches the packet engine. Every setter writes its value into the settings file at once.
class AgwSettings {
public:
    /// `ini` must outlive this object.
    explicit AgwSettings(clsIni& ini);

    /// Reads the four settings; missing ones get their defaults, in the file too. A port that is no port is
    /// 8000.
    void Load();

    const QString& strAgwHost() const { return m_strAgwHost; }
    void setStrAgwHost(const QString& host);

    qint16 intAgwPort() const { return m_intAgwPort; } ///< 1 to 32767
    void setIntAgwPort(qint16 port);

    const QString& strAgwLoginId() const { return m_strAgwLoginId; } ///< empty: no log-in
    void setStrAgwLoginId(const QString& loginId);

    const QString& strAgwPassword() const { return m_strAgwPassword; }
    void setStrAgwPassword(const QString& password);

    /// The port that a user entered, 1 to 32767.
    static std::optional<qint16> PortFromText(QStringView text);

private:
    clsIni& m_ini;
    QString m_strAgwHost;
    qint16 m_intAgwPort;
    QString m_strAgwLoginId;
    QString m_strAgwPassword;
};
