#pragma once

#include "cli/table/Session.h"
#include "orbit/service/KVRSatLib.h"
#include "orbit/service/clsSats.h"

#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

/// A satellite as commands print it.
struct Satellite {
    QString name;   ///< QIRAN, ISS, or the name in the element file, or its number where it has none
    QString object; ///< what the orbit service finds it by
    std::uint32_t number = 0;
};

/// The orbit service on the elements of the program folder, for a command's place and satellites.
class Sky {
public:
    explicit Sky(const Session& session);
    Sky(const Sky&) = delete; // the reader of its elements tells this one of damage
    Sky& operator=(const Sky&) = delete;

    const clsSats& Service() const { return m_sats; }

    /// Memory for the satellites asked about until now is given back.
    void ForgetTracks() { m_library->ForgetTracks(); }

    /// The place asked for or the station's; nothing where that is not known.
    const std::optional<PlaceOnEarth>& Place() const { return m_place; }

    /// The satellites asked for, in the order of their numbers. None, and why is said, where there are no
    /// elements of the one asked for, or none at all.
    std::vector<Satellite> Satellites() const;

    /// Whether all satellites are asked for.
    bool AllAreAsked() const { return m_asked == u"all"; }

    /// Says that the elements of these give no position at a time, and why of the first one.
    void SayLost(const std::vector<Satellite>& satellites, DateTime utc) const;

    /// What is wrong in the element files, a line for each of them.
    const QStringList& Damage() const { return m_damage; }

private:
    Satellite Named(const ElementSource& source) const;

    const Session& m_session;
    const QString m_asked;
    const QString m_qiran; ///< catalogue numbers of the settings
    const QString m_iss;
    QStringList m_damage;
    KVRSatLib* const m_library; ///< of the service
    clsSats m_sats;
    std::optional<PlaceOnEarth> m_place;
};
