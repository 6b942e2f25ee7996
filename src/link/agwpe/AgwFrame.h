#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>

/// One frame of the packet engine's TCP interface: a header of 36 bytes, integers little-endian, and the
/// data.
///
///   offset 0 radio port from 0 | 4 kind | 6 PID | 8 CallFrom (10) | 18 CallTo (10) | 28 DataLen (4); the
///   rest 0
///
/// The views belong to whoever made the frame.
struct AgwFrame {
    quint8 port = 0; ///< radio port, from 0
    char kind = 0;   ///< AgwKind
    quint8 pid = 0;
    QByteArrayView callFrom{}; ///< without the NULs that pad the field
    QByteArrayView callTo{};
    QByteArrayView data{};

    static constexpr qsizetype headerLength = 36;
    static constexpr qsizetype callFieldLength = 10; ///< a callsign of at most 9 bytes and a NUL
    static constexpr quint32 maxDataLength = 65536;  ///< no frame that this program knows comes near it
    static constexpr quint8 noLayer3 = 0xF0;         ///< the PID of UI text

    /// The frame as it goes over the wire. Call fields are cut to their length.
    QByteArray ToBytes() const;
};

/// The kinds of frames, as far as this program speaks of them.
namespace AgwKind {
constexpr char LogIn = 'P';
constexpr char Version = 'R';
constexpr char Ports = 'G';
constexpr char ToggleMonitoring = 'm';
constexpr char ToggleRaw = 'k';
constexpr char SendUnproto = 'M';
constexpr char SendUnprotoVia = 'V';
constexpr char MonitoredUnproto = 'U';
constexpr char MonitoredInformation = 'I';
constexpr char MonitoredSupervisory = 'S';
constexpr char Transmitted = 'T';
constexpr char Raw = 'K'; ///< data: a byte with the radio port, then the AX.25 frame
} // namespace AgwKind

/// What stands in the data of the frames whose data has fields of its own.
namespace AgwData {

constexpr qsizetype logInFieldLength = 255;
constexpr qsizetype maxDigipeaters = 7;

/// The data of a log-in frame: both texts padded with NUL, longer ones cut.
QByteArray LogIn(QByteArrayView loginId, QByteArrayView password);

/// The data of a frame that goes through `digipeaters`: their number, their call fields, the information.
QByteArray Via(const QByteArrayList& digipeaters, QByteArrayView information);

/// `data` without the one NUL that the wire puts behind a text.
QByteArrayView WithoutEndMark(QByteArrayView data);

/// The text in a field, up to its first NUL.
QByteArrayView UpToNul(QByteArrayView field);

} // namespace AgwData
