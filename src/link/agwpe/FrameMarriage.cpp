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
    const auto unmarked = [](QByteArrayView path) { return path.toByteArray().replace('*', ""); };
    return unmarked(raw) == unmarked(monitored);
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
    PassTime(now);
    if (m_waiting.size() == mostWaiting)
        HandFirstAlone();
    m_waiting.push_back({OwnedFrame(raw), now + patience});
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
    // Off the list first: a sink may run an event loop in which the next frame comes.
    const OwnedFrame owned = std::move(found->raw);
    m_waiting.erase(found);
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

void FrameMarriage::HandFirstAlone() {
    const OwnedFrame owned = std::move(m_waiting.front().raw);
    m_waiting.pop_front();
    HeardFrame raw = owned.View();
    raw.engineText = {};
    raw.information = {};
    raw.isComplete = false;
    m_hand(raw);
}
