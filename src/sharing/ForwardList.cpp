#include "sharing/ForwardList.h"

#include "foundation/text/Text.h"
#include "sharing/SidsRequest.h"

#include <algorithm>

namespace {

constexpr qint64 greatestNumber = 1'000'000'000'000'000;

// Takes the first word off, and the blank behind it.
QByteArrayView TakeWord(QByteArrayView& text) {
    const qsizetype blank = text.indexOf(' ');
    const QByteArrayView word = text.first(blank < 0 ? text.size() : blank);
    text = text.sliced(std::min(word.size() + 1, text.size()));
    return word;
}

// A whole number, or a negative one where there is none.
qint64 NumberIn(QByteArrayView word) {
    const bool isDigits =
        !word.isEmpty() && std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; });
    bool isNumber = false;
    const qint64 number = word.toByteArray().toLongLong(&isNumber);
    return isDigits && isNumber && number <= greatestNumber ? number : -1;
}

QByteArray Line(qint64 number, const QByteArray& rest) {
    return QByteArray::number(number) + ' ' + rest + '\n';
}

QByteArray KeyText(quint64 key) {
    return QByteArray::number(key, 16).rightJustified(16, '0');
}

} // namespace

bool ForwardList::Apply(QByteArrayView line) {
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    const qint64 number = NumberIn(TakeWord(line));
    const QByteArrayView happened = TakeWord(line);
    if (number < 0)
        return false;
    if (happened == "queued")
        return Queue(number, line);
    if (happened == "parked")
        return Park(number, line);
    if (happened == "waiting")
        return LetWait(number);
    if (happened == "sent")
        return NoteSent(number, line);
    if (happened == "discarded")
        return Remove(number, m_counts.discarded);
    if (happened == "dropped")
        return Remove(number, m_counts.dropped);
    return happened == "counted" && TakeCounts(number, line);
}

bool ForwardList::Queue(qint64 number, QByteArrayView body) {
    const bool isNext = number > (m_frames.empty() ? 0 : m_frames.rbegin()->first);
    const quint64 key = SidsRequest::FrameKey(body);
    if (!isNext || !SidsRequest::IsBody(body) || IsKnown(key) ||
        static_cast<qsizetype>(m_frames.size()) >= mostFrames)
        return false;
    m_lastNumber = std::max(number, m_lastNumber);
    m_frames.emplace_hint(m_frames.end(), number, ForwardFrame{body.toByteArray()});
    m_waiting.insert(m_waiting.end(), number);
    m_keys.insert(key);
    return true;
}

bool ForwardList::Park(qint64 number, QByteArrayView words) {
    const auto found = m_frames.find(number);
    if (found == m_frames.end())
        return false;
    found->second.isParked = true;
    found->second.words = Text::OneLine(QString::fromUtf8(words), longestWords);
    m_waiting.erase(number);
    return true;
}

bool ForwardList::LetWait(qint64 number) {
    const auto found = m_frames.find(number);
    if (found == m_frames.end())
        return false;
    found->second.isParked = false;
    found->second.words.clear();
    m_waiting.insert(number);
    return true;
}

// Of a frame that is not there any more it notes the key alone.
bool ForwardList::NoteSent(qint64 number, QByteArrayView text) {
    bool isKey = false;
    quint64 key = text.toByteArray().toULongLong(&isKey, 16);
    if (const auto found = m_frames.find(number); found != m_frames.end()) {
        key = SidsRequest::FrameKey(found->second.body);
        Remove(number, m_counts.sent);
    } else if (!isKey || IsKnown(key)) {
        return false;
    }
    m_lastNumber = std::max(number, m_lastNumber);
    m_sentKeys.append({number, key});
    m_sent.insert(key);
    if (m_sentKeys.size() > mostRemembered)
        m_sent.remove(m_sentKeys.takeFirst().second);
    return true;
}

bool ForwardList::TakeCounts(qint64 number, QByteArrayView counts) {
    const qint64 sent = NumberIn(TakeWord(counts));
    const qint64 discarded = NumberIn(TakeWord(counts));
    const qint64 dropped = NumberIn(TakeWord(counts));
    if (sent < 0 || discarded < 0 || dropped < 0)
        return false;
    m_lastNumber = std::max(number, m_lastNumber);
    m_counts.sent = sent;
    m_counts.discarded = discarded;
    m_counts.dropped = dropped;
    return true;
}

bool ForwardList::Remove(qint64 number, qint64& counter) {
    const auto found = m_frames.find(number);
    if (found == m_frames.end())
        return false;
    m_keys.remove(SidsRequest::FrameKey(found->second.body));
    m_waiting.erase(number);
    m_frames.erase(found);
    ++counter;
    return true;
}

QByteArray ForwardList::QueuedLine(QByteArrayView body) const {
    return Line(m_lastNumber + 1, "queued " + body.toByteArray());
}

QByteArray ForwardList::ParkedLine(qint64 number, const QString& words) {
    return Line(number, "parked " + Text::OneLine(words, longestWords).toUtf8());
}

QByteArray ForwardList::WaitingLine(qint64 number) {
    return Line(number, "waiting");
}

QByteArray ForwardList::SentLine(qint64 number) const {
    const auto found = m_frames.find(number);
    return found == m_frames.end()
               ? QByteArray()
               : Line(number, "sent " + KeyText(SidsRequest::FrameKey(found->second.body)));
}

QByteArray ForwardList::DiscardedLine(qint64 number) {
    return Line(number, "discarded");
}

QByteArray ForwardList::DroppedLine(qint64 number) {
    return Line(number, "dropped");
}

QByteArray ForwardList::Lines() const {
    QByteArray lines;
    for (const auto& [number, key] : m_sentKeys)
        lines += Line(number, "sent " + KeyText(key));
    for (const auto& [number, frame] : m_frames) {
        lines += Line(number, "queued " + frame.body);
        if (frame.isParked)
            lines += ParkedLine(number, frame.words);
    }
    return lines + Line(m_lastNumber, "counted " + QByteArray::number(m_counts.sent) + ' ' +
                                          QByteArray::number(m_counts.discarded) + ' ' +
                                          QByteArray::number(m_counts.dropped));
}

qsizetype ForwardList::LineCount() const {
    const auto frames = static_cast<qsizetype>(m_frames.size());
    return m_sentKeys.size() + 2 * frames - static_cast<qsizetype>(m_waiting.size()) + 1;
}

ForwardCounts ForwardList::Counts() const {
    ForwardCounts counts = m_counts;
    counts.waiting = static_cast<qint64>(m_waiting.size());
    counts.parked = static_cast<qint64>(m_frames.size()) - counts.waiting;
    return counts;
}

bool ForwardList::IsKnown(quint64 key) const {
    return m_keys.contains(key) || m_sent.contains(key);
}
