#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

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
    explicit OwnedFrame(const HeardFrame& frame)
        : m_frame(frame)
        , m_source(frame.source.toByteArray())
        , m_destination(frame.destination.toByteArray())
        , m_path(frame.path.toByteArray())
        , m_information(frame.information.toByteArray())
        , m_engineText(frame.engineText.toByteArray())
        , m_raw(frame.raw.toByteArray()) {}

    /// Holds as long as this object, and no longer.
    HeardFrame View() const {
        HeardFrame frame = m_frame;
        frame.source = m_source;
        frame.destination = m_destination;
        frame.path = m_path;
        frame.information = m_information;
        frame.engineText = m_engineText;
        frame.raw = m_raw;
        return frame;
    }

private:
    HeardFrame m_frame; // its views are set anew by View
    QByteArray m_source;
    QByteArray m_destination;
    QByteArray m_path;
    QByteArray m_information;
    QByteArray m_engineText;
    QByteArray m_raw;
};
