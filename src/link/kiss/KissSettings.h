#pragma once

#include "foundation/settings/clsIni.h"
#include "link/kiss/KissAddress.h"

#include <optional>

/// Whether a KISS TNC stands in the packet engine's place, and how it is reached. What changes a setting
/// writes it into the settings file at once.
class KissSettings {
public:
    /// `ini` must outlive this object.
    explicit KissSettings(clsIni& ini);

    /// Reads the three settings; writes nothing. A port that is no port is 8001.
    void Load();

    /// For this run alone, whatever the settings say: a TNC at this address is used.
    void UseForThisRun(const KissAddress& address) { m_given = address; }

    bool IsUsed() const { return m_given || m_isUsed; }
    void SetUsed(bool isUsed);

    KissAddress Address() const { return m_given.value_or(m_address); }
    void SetAddress(const KissAddress& address);

private:
    clsIni& m_ini;
    bool m_isUsed = false;
    KissAddress m_address;
    std::optional<KissAddress> m_given;
};
