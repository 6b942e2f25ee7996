#pragma once

#include "Require.h"
#include "orbit/elements/ElementFile.h"
#include "orbit/elements/OmmRecord.h"
#include "orbit/geometry/SinCos.h"

#include <cmath>
#include <string>
#include <vector>

/// What holds for every record of an OMM file, and for all of them together.
class OmmChecks {
public:
    explicit OmmChecks(std::size_t most = std::string::npos)
        : m_most(most) {}

    bool Take(const orbitmath::ElementRecord& record) {
        using namespace orbitmath;
        Require(m_taken < m_most, "no record comes when none is wanted");
        ++m_taken;
        Require(record.line >= m_line && record.line > 0 && record.index >= m_index,
                "records come in their order");
        m_line = record.line;
        m_index = record.index;
        Require(record.name.size() <= 64 && record.name.find('\n') == std::string_view::npos,
                "a name is short");
        Require(record.nameLine == record.name && record.number1 == record.number2,
                "it is a group of three lines");
        Require(record.Text().size() <= 2 * longestOmm, "a record is short");
        if (const auto* fault = std::get_if<ElementFault>(&record.content)) {
            const std::string text = FaultText(record, *fault);
            Require(!fault->what.empty() && text.size() < 200, "a fault is told on one short line");
        } else {
            Check(std::get<Elements>(record.content));
            CheckText(record);
        }
        return m_taken < m_most;
    }

    std::size_t Taken() const { return m_taken; }

private:
    static void Check(const orbitmath::Elements& elements) {
        const auto isAngle = [](double angle, double most) {
            return angle >= 0 && angle <= most * 1.0000001;
        };
        using orbitmath::twoPi;
        Require(elements.number <= 999'999'999, "a catalogue number is in its range");
        Require(isAngle(elements.inclination, twoPi / 2) && isAngle(elements.node, twoPi) &&
                    isAngle(elements.argumentOfPerigee, twoPi) && isAngle(elements.meanAnomaly, twoPi),
                "angles are in their ranges");
        Require(elements.eccentricity >= 0 && elements.eccentricity < 1, "an orbit is closed");
        Require(elements.meanMotion > 0 && std::isfinite(elements.bstar), "an object moves");
        Require(elements.epochUtc > 20000 && elements.epochUtc < 60000, "an epoch is in its range");
    }

    // A record that is good can be kept and read again.
    static void CheckText(const orbitmath::ElementRecord& record) {
        const auto& elements = std::get<orbitmath::Elements>(record.content);
        bool isSame = false;
        orbitmath::ReadElementText(record.Text(), [&](const orbitmath::ElementRecord& again) {
            const auto* found = std::get_if<orbitmath::Elements>(&again.content);
            isSame = found != nullptr && found->number == elements.number &&
                     found->epochUtc == elements.epochUtc && found->meanAnomaly == elements.meanAnomaly;
            return false;
        });
        Require(isSame || record.format == orbitmath::ElementFormat::OmmCsv,
                "what is kept can be read again");
    }

    std::size_t m_most;
    std::size_t m_taken = 0;
    std::size_t m_line = 0;
    std::size_t m_index = 0;
};

/// A reader of pieces gives the same however the file is cut into them, and stops when it is told to.
template <class Reader>
void CheckPieces(std::string_view text) {
    const auto read = [text](std::size_t piece, std::size_t most) {
        OmmChecks checks(most);
        Reader reader([&](const orbitmath::ElementRecord& record) { return checks.Take(record); });
        for (std::size_t at = 0; at < text.size(); at += piece)
            if (!reader.TakePiece(text.substr(at, piece)))
                break;
        reader.End();
        return std::pair(checks.Taken(), reader.IsCut());
    };
    const auto whole = read(text.size() + 1, std::string::npos);
    Require(read(7, std::string::npos) == whole, "pieces make no difference");
    if (whole.first > 1)
        Require(read(text.size(), 1).first == 1, "it ends when no more is wanted");
}
