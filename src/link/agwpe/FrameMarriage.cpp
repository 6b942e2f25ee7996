#include "link/agwpe/FrameMarriage.h"

#include <algorithm>
#include <utility>

namespace {

// A CR at the end may be the engine's or the frame's.
bool AreSame(QByteArrayView shown, QByteArrayView information) {
    const auto withoutEnd = [](QByteArrayView text) { return text.endsWith('\r') ? text.chopped(1) : text; };
    return withoutEnd(shown) == withoutEnd(information);
}

// Some engines cut the text at a NUL.
bool ShowsInformation(QByteArrayView shown, QByteArrayView information) {
    const auto* const nul = std::ranges::find(information, '\0');
    return AreSame(shown, information.first(nul - information.begin())) || AreSame(shown, information);
}

// Monitored text has lost the marks of digipeaters.
bool HaveSamePath(QByteArrayView raw, QByteArrayView monitored) {
    const char* at = monitored.begin();
    const auto passMarks = [&] {
        while (at != monitored.end() && *at == '*')
            ++at;
    };
    for (const char c : raw) {
        if (c == '*')
            continue;
        passMarks();
        if (at == monitored.end() || *at++ != c)
            return false;
    }
    passMarks();
    return at == monitored.end();
}

bool AreOneFrame(const HeardFrame& raw, const HeardFrame& monitored) {
    return raw.port == monitored.port && raw.kind == monitored.kind && raw.source == monitored.source &&
           raw.destination == monitored.destination && HaveSamePath(raw.path, monitored.path) &&
           ShowsInformation(monitored.information, raw.information);
}

} // namespace

FrameMarriage::FrameMarriage(Hand hand)
    : m_hand(std::move(hand)) {}

void FrameMarriage::AddRaw(const HeardFrame& raw, qint64 now) {
    // Kept first: a sink may run an event loop, behind which the views hold no more.
    m_waiting.push_back({std::move(m_spare), now + patience});
    m_waiting.back().raw.Keep(raw);
    PassTime(now);
    if (m_waiting.size() > mostWaiting)
        HandFirstAlone();
}

void FrameMarriage::AddMonitored(const HeardFrame& monitored, qint64 now) {
    PassTime(now);
    const auto found = std::ranges::find_if(m_waiting, [&monitored](const Waiting& waiting) {
        return AreOneFrame(waiting.raw.View(), monitored);
    });
    if (found == m_waiting.end()) {
        m_hand(monitored);
        return;
    }
    OwnedFrame owned = TakeOff(found);
    const HeardFrame raw = owned.View();
    HeardFrame married = monitored;
    married.path = raw.path;
    married.pid = raw.pid;
    if (AreSame(monitored.information, raw.information)) {
        married.information = raw.information;
        married.isComplete = true;
    }
    married.raw = raw.raw;
    m_hand(married);
    m_spare = std::move(owned);
}

std::optional<qint64> FrameMarriage::Due() const {
    return m_waiting.empty() ? std::nullopt : std::optional(m_waiting.front().due);
}

void FrameMarriage::PassTime(qint64 now) {
    while (!m_waiting.empty() && m_waiting.front().due <= now)
        HandFirstAlone();
}

void FrameMarriage::End() {
    while (!m_waiting.empty())
        HandFirstAlone();
}

// Off the list before it is handed on: a sink may run an event loop in which the next frame comes.
OwnedFrame FrameMarriage::TakeOff(std::vector<Waiting>::iterator waiting) {
    OwnedFrame owned = std::move(waiting->raw);
    m_waiting.erase(waiting);
    return owned;
}

void FrameMarriage::HandFirstAlone() {
    OwnedFrame owned = TakeOff(m_waiting.begin());
    HeardFrame raw = owned.View();
    raw.engineText = {};
    raw.information = {};
    raw.isComplete = false;
    m_hand(raw);
    m_spare = std::move(owned);
}
