#pragma once

#include "telemetry/frames/HeardFrame.h"
#include "telemetry/replay/LineTime.h"
#include "telemetry/replay/LogHeader.h"

#include <QByteArrayList>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Reads heard frames from lines of text (those of FrameLine, and this program's traffic logs), fed in pieces
/// of any size, with bounded memory. Lines end in CR, LF or CR LF; a byte-order mark before the first is
/// passed over.
class FrameText {
public:
    /// A frame that the text told: replayed, with `utc` where the text tells that. The views hold as long as
    /// the call.
    struct Told {
        HeardFrame frame;
        std::optional<LineTime> time; ///< as the line has it
        qint64 line = 0;              ///< on which the frame begins, from 1
    };
    using Take = std::function<void(const Told& told)>;

    static constexpr std::size_t longestLine = 65536;
    static constexpr qsizetype mostExamples = 3;

    explicit FrameText(Take take);

    void Add(QByteArrayView bytes);

    /// The end of the text: reads a last line that nothing ended, and gives a frame that waits for its
    /// information. Another text may follow.
    void End();

    qint64 Frames() const { return m_frames; }

    /// Lines that were no frame, nor a frame's information, nor empty, nor the link's own words in a log; and
    /// the first of them, shortened.
    qint64 NotUnderstood() const { return m_notUnderstood; }
    const QByteArrayList& Examples() const { return m_examples; }

private:
    void AddToLine(std::string_view piece);
    void EndLine();
    void ReadLine(std::string_view line);
    bool ReadAsInformation(std::string_view line, bool isHeader);
    void GiveLogged(std::string_view information);
    void Give(HeardFrame& frame, const std::optional<LineTime>& time, qint64 line);

    Take m_take;
    std::string m_line; // what has come of the present line
    bool m_isTooLong = false;
    bool m_hasCarriageReturn = false; // the last byte was one
    qint64 m_lineNumber = 1;

    std::optional<LogHeader> m_header; // of a frame that waits for its information
    qint64 m_headerLine = 0;
    std::size_t m_rest = 0; // of the logged frame's information that more lines may hold

    qint64 m_frames = 0;
    qint64 m_notUnderstood = 0;
    QByteArrayList m_examples;
};
