#include "link/agwpe/AgwFrame.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"
#include "link/kiss/KissLink.h"
#include "support/Tnc.h"
#include "telemetry/TelemetryRoom.h"
#include "telemetry/frames/Ax25Frame.h"

#include <QTest>

#include <cstdlib>

namespace {

long allocations = 0;

} // namespace

// Every allocation of this program is counted: Qt's containers allocate by malloc, the standard ones by it
// too.
#if defined(__GLIBC__) && !defined(QIRAN_SANITIZE)
#define CAN_COUNT
extern "C" {
void* __libc_malloc(std::size_t bytes);               // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* place, std::size_t bytes); // NOLINT(bugprone-reserved-identifier)
void* malloc(std::size_t bytes) noexcept {
    ++allocations;
    return __libc_malloc(bytes);
}
void* realloc(void* place, std::size_t bytes) noexcept {
    ++allocations;
    return __libc_realloc(place, bytes);
}
}
#endif

/// The road of a frame from the wire to monitor, terminal and grids: as long as it is walked, nothing is
/// allocated for a frame.
class FrameRoadTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void NothingIsAllocatedForAFrame_data();
    void NothingIsAllocatedForAFrame();
};

namespace {

enum class Wire { Text, TextAndRaw, Kiss };

QByteArray OneFrame(Wire wire) {
    const QByteArray information("T#024,142,108.5,67,67,0,0,00101111,0\n");
    const QByteArray raw = Raw({information.data(), static_cast<std::size_t>(information.size())});
    if (wire == Wire::Kiss)
        return Kiss(raw);
    const QByteArray text =
        " 1:Fm XQ9ZZ-1 To APRS Via QIRAN-1 <UI pid=F0 Len=37 PF=0 >[12:00:00]\r" + information + '\r' + '\0';
    const QByteArray monitored =
        AgwFrame{.kind = AgwKind::MonitoredUnproto, .callFrom = "XQ9ZZ-1", .callTo = "APRS", .data = text}
            .ToBytes();
    const QByteArray rawData = '\0' + raw;
    return wire == Wire::Text ? monitored
                              : AgwFrame{.kind = AgwKind::Raw, .data = rawData}.ToBytes() + monitored;
}

} // namespace

void FrameRoadTest::NothingIsAllocatedForAFrame_data() {
    QTest::addColumn<int>("wire");
    QTest::newRow("the engine's text") << static_cast<int>(Wire::Text);
    QTest::newRow("its raw frames too") << static_cast<int>(Wire::TextAndRaw);
    QTest::newRow("KISS") << static_cast<int>(Wire::Kiss);
}

void FrameRoadTest::NothingIsAllocatedForAFrame() {
#ifndef CAN_COUNT
    QSKIP("the allocator is another one's");
#endif
    QFETCH(int, wire);
    TelemetryRoom room;
    long shown = 0;
    room.intake.SetTerminal([&shown](QByteArrayView, qint16) { ++shown; });
    Tnc engine;
    quint16 port = 20000; // the settings' ports end at 32767
    while (!engine.listen(QHostAddress::LocalHost, port) && port < 32767)
        ++port;
    QVERIFY(engine.isListening());
    AgwSettings settings(room.ini);
    settings.setStrAgwHost(QStringLiteral("127.0.0.1"));
    settings.setIntAgwPort(static_cast<qint16>(engine.serverPort()));
    AgwLink agw(settings, room.clock);
    agw.SetWantsRawFrames(static_cast<Wire>(wire) == Wire::TextAndRaw);
    KissLink kiss([&] { return KissAddress{QStringLiteral("127.0.0.1"), engine.serverPort()}; }, room.clock);
    PacketLink& link = static_cast<Wire>(wire) == Wire::Kiss ? static_cast<PacketLink&>(kiss) : agw;
    constexpr long frames = 10'000;
    constexpr long before = 1'000; // until the buffers have their sizes
    long heard = 0;
    long raws = 0;
    long counted = 0;
    connect(&link, &PacketLink::Heard, this, [&](const HeardFrame& frame) {
        room.intake.Take(frame);
        room.decoder.Take(frame);
        raws += frame.raw.isEmpty() ? 0 : 1;
        if (++heard == before)
            counted = -allocations;
        if (heard == frames)
            counted += allocations;
    });
    link.Connect();
    QTRY_COMPARE(engine.connections.size(), 1);
    engine.Send(OneFrame(static_cast<Wire>(wire)).repeated(frames));
    QTRY_COMPARE(heard, frames);
    QCOMPARE(shown, frames);
    QCOMPARE(raws, static_cast<Wire>(wire) == Wire::Text ? 0 : frames);
    QCOMPARE(room.Cell(1, "Batt", TelemetryGrid::ValueA), QStringLiteral("3067"));
    // What is left is of reading the socket, and of the monitor's text when it is full.
    QVERIFY2(counted > 0, "the allocations are counted");
    QVERIFY2(counted < (frames - before) / 20, qPrintable(QString::number(counted)));
}

QTEST_GUILESS_MAIN(FrameRoadTest)
#include "FrameRoadTest.moc"
