#include "sharing/ForwardCatchUp.h"

#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/HeardFrame.h"

#include <utility>

ForwardCatchUp::ForwardCatchUp(const CallsignList& callsigns, SidsStation station, qsizetype most)
    : m_callsigns(callsigns)
    , m_station(std::move(station))
    , m_most(most) {}

void ForwardCatchUp::Take(const HeardFrame& frame) {
    if (frame.kind == HeardFrame::Kind::T || m_callsigns.Find(frame.source) == nullptr) {
        ++m_notTheSatellites;
        return;
    }
    const std::optional<QByteArray> body = SidsRequest::Body(m_station, frame.utc, frame.raw);
    if (!body) {
        ++m_notWhole;
        return;
    }
    m_bodies.append(*body);
    if (m_bodies.size() > m_most) {
        m_bodies.removeFirst();
        ++m_tooMany;
    }
}
