#pragma once

#include "telemetry/callsigns/clsCallsign.h"

#include <QByteArrayView>
#include <QList>

#include <string>
#include <string_view>
#include <unordered_map>

class clsIni;

/// The satellite's callsigns, kept in the settings file in their order.
class CallsignList {
public:
    explicit CallsignList(clsIni& ini)
        : m_ini(ini) {}

    /// Writes the default callsigns in place of the stored ones.
    void InitCallsigns();

    /// Reads the stored callsigns; where there are none, the defaults are written first.
    void LoadCallsigns();

    /// Reads the stored callsigns, or takes the defaults where there are none; writes nothing.
    void PeekCallsigns();

    /// A copy.
    QList<clsCallsign> cCallsigns() const { return m_callsigns; }

    /// Replaces the list and saves it at once.
    void setCCallsigns(const QList<clsCallsign>& callsigns);

    /// The first entry with exactly this callsign (Windows-1252), or null.
    const clsCallsign* Find(QByteArrayView callsign) const;

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    void Replace(QList<clsCallsign> callsigns);

    clsIni& m_ini;
    QList<clsCallsign> m_callsigns;
    // Every frame heard asks, so the way to the first entry of each callsign is short.
    std::unordered_map<std::string, qsizetype, Hash, std::equal_to<>> m_first;
};
