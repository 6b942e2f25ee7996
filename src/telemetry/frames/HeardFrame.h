#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <optional>
#include <string>

/// One frame as it was heard, whoever brought it. On the road from the wire to the sinks it is a value of
/// views, which hold as long as the call that hands it over; OwnedFrame keeps one for longer. Texts are
/// Windows-1252.
struct HeardFrame {
    enum class Kind : char {
        U = 'U', ///< a UI frame
        I = 'I', ///< an information frame of a connection
        S = 'S', ///< a supervisory frame of a connection: no information
        T = 'T', ///< a frame that the own packet engine sent
    };

    /// Replayed frames go to the decoder and to whoever asked for the replay; what is kept, counted or sent
    /// on is what was heard live.
    enum class Origin { Live, Replayed };

    qint64 utc = 0; ///< of arrival, milliseconds since 1970-01-01 00:00
    Kind kind = Kind::U;
    Origin origin = Origin::Live;
    qint16 port = 1;              ///< radio port, from 1
    QByteArrayView source{};      ///< callsign with SSID
    QByteArrayView destination{}; ///< callsign with SSID
    QByteArrayView path{};        ///< digipeaters between commas, "*" behind one that has repeated the frame
    std::optional<quint8> pid{};  ///< none where the frame has none or nobody told it
    QByteArrayView information{}; ///< its bytes, or of an engine's text what the engine shows of them
    bool isComplete = false;      ///< whether `information` is known to be all of the frame's bytes
    QByteArrayView engineText{};  ///< the engine's header line, CR and the rest as it came; empty without one
    QByteArrayView raw{};         ///< the AX.25 frame without flags and checksum; empty where nobody gives it
};

/// A frame that holds its own bytes.
class OwnedFrame {
public:
    OwnedFrame() = default;
    explicit OwnedFrame(const HeardFrame& frame) { Keep(frame); }

    /// Holds this frame from now on. The storage is used again, so that frame after frame allocates nothing.
    void Keep(const HeardFrame& frame) {
        m_frame = frame;
        m_bytes.clear();
        for (const auto view : views)
            m_bytes.append((frame.*view).data(), static_cast<std::size_t>((frame.*view).size()));
    }

    /// Holds as long as this object keeps the frame, and is not moved.
    HeardFrame View() const {
        HeardFrame frame = m_frame;
        const char* at = m_bytes.data();
        for (const auto view : views) {
            frame.*view = {at, (frame.*view).size()};
            at += (frame.*view).size();
        }
        return frame;
    }

private:
    static constexpr std::array views{&HeardFrame::source,      &HeardFrame::destination, &HeardFrame::path,
                                      &HeardFrame::information, &HeardFrame::engineText,  &HeardFrame::raw};

    HeardFrame m_frame;  // of its views only the sizes count
    std::string m_bytes; // the views', one behind the other
};
