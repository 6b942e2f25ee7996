#include "orbit/history/ElementsHistory.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/files/Csv.h"
#include "foundation/text/ByteOrderMark.h"
#include "foundation/text/IsoTime.h"
#include "orbit/elements/ElementFile.h"

#include <QFile>

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024; // two satellites' hundred years
constexpr QByteArrayView header = "utc,number,epoch,elements\n";

std::optional<ElementsHistory::Set> ReadSet(std::span<const std::string_view> fields) {
    if (fields.size() < 4) // more may come to stand behind them
        return std::nullopt;
    const std::optional<qint64> firstSeen = IsoTime::Read(fields[0]);
    const std::optional<qint64> epoch = IsoTime::Read(fields[2]);
    quint32 number = 0;
    const char* const end = fields[1].data() + fields[1].size();
    if (!firstSeen || !epoch || std::from_chars(fields[1].data(), end, number).ptr != end ||
        fields[1].empty() || fields[3].empty())
        return std::nullopt;
    return ElementsHistory::Set{*firstSeen, number, *epoch,
                                QByteArray(fields[3].data(), static_cast<qsizetype>(fields[3].size()))};
}

auto Key(const ElementsHistory::Set& set) {
    return std::pair(set.number, set.epoch);
}

} // namespace

ElementsHistory::ElementsHistory(const QString& path, AppendFile::Failed failed)
    : m_path(path)
    , m_file(path, {.header = header.toByteArray(), .isSynced = true, .mostKept = 65536}, std::move(failed)) {
}

void ElementsHistory::Load() {
    m_sets.clear();
    m_foreign = 0;
    QString reason;
    const std::optional<QByteArray> bytes = ReadBoundedFile(m_path, largestFile, reason);
    if (!bytes)
        return;
    Csv::Reader reader(WithoutByteOrderMark({bytes->constData(), static_cast<std::size_t>(bytes->size())}));
    while (reader.Next()) {
        const std::optional<Set> set = reader.IsSound() ? ReadSet(reader.Fields()) : std::nullopt;
        if (set)
            m_sets.push_back(*set);
        else if (reader.Text() !=
                 std::string_view(header.data(), static_cast<std::size_t>(header.size() - 1)))
            ++m_foreign;
    }
    std::ranges::stable_sort(m_sets, {}, Key);
    const auto isRepeated = [](const Set& one, const Set& other) {
        return one.number == other.number && other.epoch - one.epoch <= sameEpoch;
    };
    m_sets.erase(std::unique(m_sets.begin(), m_sets.end(), isRepeated), m_sets.end());
}

void ElementsHistory::Keep(const Set& set) {
    if (set.elements.isEmpty() || set.elements.size() > longestElements)
        return;
    if (Holds(set.number, set.epoch))
        return;
    Consider(set);
    (void)m_file.Append(Csv::Line({IsoTime::Milliseconds(set.firstSeen), QByteArray::number(set.number),
                                   IsoTime::Milliseconds(set.epoch), set.elements}));
}

void ElementsHistory::Consider(const Set& set) {
    if (!Holds(set.number, set.epoch))
        m_sets.insert(PlaceOf(set.number, set.epoch), set);
}

const ElementsHistory::Set* ElementsHistory::Nearest(quint32 number, qint64 utc) const {
    const Place after = PlaceOf(number, utc);
    const Set* nearest = nullptr;
    qint64 distance = farthest + 1;
    const auto consider = [&](Place place) {
        if (place->number == number && std::abs(place->epoch - utc) < distance) {
            nearest = &*place;
            distance = std::abs(place->epoch - utc);
        }
    };
    if (after != m_sets.end())
        consider(after);
    if (after != m_sets.begin())
        consider(std::prev(after));
    return nearest;
}

// Half way between two epochs the later one begins, as in Nearest.
std::vector<ElementsHistory::Stretch> ElementsHistory::Stretches(quint32 number, qint64 from,
                                                                 qint64 to) const {
    const Place end = PlaceOf(number + 1, std::numeric_limits<qint64>::min());
    std::vector<Stretch> stretches;
    qint64 begin = from;
    for (Place place = PlaceOf(number, from - farthest); place != end && begin < to; ++place) {
        const Place next = std::next(place);
        qint64 until = std::min(to, place->epoch + farthest + 1);
        if (next != end)
            until = std::min(until, place->epoch + (next->epoch - place->epoch + 1) / 2);
        begin = std::max(begin, place->epoch - farthest);
        if (begin < until)
            stretches.push_back({begin, until, &*place});
        begin = std::max(begin, until);
    }
    return stretches;
}

std::optional<orbitmath::Elements> ElementsHistory::ElementsAt(quint32 number, qint64 utc) const {
    const Set* const set = Nearest(number, utc);
    return set == nullptr ? std::nullopt : ElementsIn(*set);
}

std::optional<orbitmath::Elements> ElementsHistory::ElementsIn(const Set& set) {
    std::optional<orbitmath::Elements> found;
    const std::string_view text(set.elements.constData(), static_cast<std::size_t>(set.elements.size()));
    orbitmath::ReadElementText(text, [&](const orbitmath::ElementRecord& record) {
        const auto* elements = std::get_if<orbitmath::Elements>(&record.content);
        if (elements != nullptr && elements->number == set.number)
            found = *elements;
        return !found;
    });
    return found;
}

bool ElementsHistory::Holds(quint32 number, qint64 epoch) const {
    const Place place = PlaceOf(number, epoch - sameEpoch);
    return place != m_sets.end() && place->number == number && place->epoch <= epoch + sameEpoch;
}

// The first set that is not before this object and epoch.
ElementsHistory::Place ElementsHistory::PlaceOf(quint32 number, qint64 epoch) const {
    return std::ranges::lower_bound(m_sets, std::pair(number, epoch), {}, Key);
}
