#pragma once

#include "foundation/files/AppendFile.h"
#include "orbit/elements/Elements.h"

#include <optional>
#include <vector>

/// The element sets that the satellites were flown on, in elements-history.txt: each is kept as it came when
/// it is first seen, since it cannot be had later, and the past is computed from those of its time.
class ElementsHistory {
public:
    struct Set {
        qint64 firstSeen = 0; ///< milliseconds since 1970-01-01 00:00 UTC, as is the epoch
        quint32 number = 0;   ///< of the catalogue
        qint64 epoch = 0;
        QByteArray elements; ///< the lines of the set as they came, UTF-8
    };

    /// A set that is farther than this from a time is no guide to it.
    static constexpr qint64 farthest = qint64{14} * 24 * 60 * 60 * 1000;

    static constexpr qsizetype longestElements = 65536; ///< bytes

    /// Epochs this near are those of one set: two-line elements write them to 1e-8 of a day, 0.864 ms, and
    /// OMM to a microsecond.
    static constexpr qint64 sameEpoch = 1;

    /// `failed` is told the reason when the file cannot be written, and again only after it could.
    ElementsHistory(const QString& path, AppendFile::Failed failed);

    /// Reads what is kept; to be called before anything else, and never by the program's start.
    void Load();

    /// Keeps a set, unless it is kept already, in whichever format it came.
    void Keep(const Set& set);

    /// Has a set that is not kept stand among the others for all that is asked below. Nothing is written, not
    /// by a later Keep either.
    void Consider(const Set& set);

    /// The set of an object whose epoch is nearest to a time; none where all are farther than `farthest`.
    /// Holds until the next Keep, Consider or Load.
    const Set* Nearest(quint32 number, qint64 utc) const;

    /// A time throughout which one set is the nearest.
    struct Stretch {
        qint64 from = 0;
        qint64 to = 0; ///< not included
        const Set* set = nullptr;
    };

    /// The stretches between two times, in order; gaps are times that have no set. They hold as long as what
    /// Nearest answers.
    std::vector<Stretch> Stretches(quint32 number, qint64 from, qint64 to) const;

    /// What passes and positions of the past are computed with: the elements of that set. None where there is
    /// no such set, or its lines cannot be read. Each call reads the lines: ask once a pass.
    std::optional<orbitmath::Elements> ElementsAt(quint32 number, qint64 utc) const;

    /// The elements in the lines of a set; none where they cannot be read.
    static std::optional<orbitmath::Elements> ElementsIn(const Set& set);

    /// Whether the set of this object and epoch is kept.
    bool Holds(quint32 number, qint64 epoch) const;

    /// Lines of the file that are none of ours, and were passed over.
    qint64 ForeignLines() const { return m_foreign; }

private:
    using Place = std::vector<Set>::const_iterator;
    Place PlaceOf(quint32 number, qint64 epoch) const;

    const QString m_path;
    AppendFile m_file;
    std::vector<Set> m_sets; // by number, then epoch
    qint64 m_foreign = 0;
};
