#include "link/agwpe/AgwFrame.h"

#include "link/agwpe/AgwFrameReader.h"
#include "support/Seed.h"

#include <QTest>

#include <algorithm>
#include <random>

namespace {

/// A frame that outlives the reader's buffer.
struct KeptFrame {
    quint8 port;
    char kind;
    quint8 pid;
    QByteArray from, to, data;
    bool operator==(const KeptFrame&) const = default;
};

KeptFrame Keep(const AgwFrame& frame) {
    return {frame.port,
            frame.kind,
            frame.pid,
            frame.callFrom.toByteArray(),
            frame.callTo.toByteArray(),
            frame.data.toByteArray()};
}

void Feed(AgwFrameReader& reader, QByteArrayView bytes) {
    const std::span<char> room = reader.Room();
    QVERIFY(static_cast<qsizetype>(room.size()) >= bytes.size());
    std::copy(bytes.begin(), bytes.end(), room.begin());
    reader.Add(bytes.size());
}

/// What the reader gives now; false at the end of a stream that it gave up.
bool TakeAll(AgwFrameReader& reader, QList<KeptFrame>& frames) {
    AgwFrame frame;
    auto result = AgwFrameReader::Result::Frame;
    while ((result = reader.Next(frame)) == AgwFrameReader::Result::Frame)
        frames.append(Keep(frame));
    return result == AgwFrameReader::Result::NeedMore;
}

QList<KeptFrame> ReadInPieces(const QByteArray& stream, const QList<qsizetype>& pieces) {
    AgwFrameReader reader;
    QList<KeptFrame> frames;
    qsizetype at = 0;
    for (const qsizetype piece : pieces) {
        Feed(reader, QByteArrayView(stream).sliced(at, piece));
        at += piece;
        if (!TakeAll(reader, frames))
            break;
    }
    return frames;
}

QByteArray Header(char kind, quint32 length) {
    QByteArray header(36, '\0');
    header[4] = kind;
    for (int i = 0; i < 4; ++i)
        header[28 + i] = static_cast<char>(length >> (8 * i));
    return header;
}

QByteArray AllBytes() {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    return bytes;
}

} // namespace

class AgwFrameTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFrameIsWrittenFieldByField();
    void aCallsignThatFillsItsFieldKeepsItsNul();
    void logInDataIsTwoPaddedFields();
    void viaDataIsCountCallsignsText();
    void onlyTheLastNulIsTheWires();
    void oneByteAtATime();
    void everySplitPointOfTwoFrames();
    void tenThousandFramesInOneGo();
    void aFrameWithoutData();
    void zerosAreAFrameOfNoKind();
    void theLongestLengthIsTaken();
    void aLyingLengthIsRefusedAtTheHeader_data();
    void aLyingLengthIsRefusedAtTheHeader();
    void aCallFieldWithoutNulIsReadWhole();
    void anySplitGivesTheSameFrames();
};

void AgwFrameTest::aFrameIsWrittenFieldByField() {
    const AgwFrame frame{
        .port = 2, .kind = 'M', .pid = 0xF0, .callFrom = "N0CALL-7", .callTo = "CQ", .data = "hi\r"};
    QCOMPARE(frame.ToBytes(), QByteArray::fromHex("02000000"
                                                  "4d00f000"
                                                  "4e3043414c4c2d370000"
                                                  "43510000000000000000"
                                                  "0300000000000000"
                                                  "68690d"));
}

void AgwFrameTest::aCallsignThatFillsItsFieldKeepsItsNul() {
    const QByteArray bytes =
        AgwFrame{.kind = 'M', .callFrom = "ABCDEFGHIJKL", .callTo = "ABCDEF-15"}.ToBytes();
    QCOMPARE(bytes.mid(8, 10), QByteArray("ABCDEFGHI\0", 10));
    QCOMPARE(bytes.mid(18, 10), QByteArray("ABCDEF-15\0", 10));
    QCOMPARE(bytes.size(), 36);
}

void AgwFrameTest::logInDataIsTwoPaddedFields() {
    const QByteArray data = AgwData::LogIn("me", "secret");
    QCOMPARE(data, "me" + QByteArray(253, '\0') + "secret" + QByteArray(249, '\0'));
    QCOMPARE(AgwData::LogIn(QByteArray(300, 'x'), QByteArray(300, 'y')),
             QByteArray(255, 'x') + QByteArray(255, 'y'));
}

void AgwFrameTest::viaDataIsCountCallsignsText() {
    QCOMPARE(AgwData::Via({"QIRAN-1", "WIDE2-2"}, "t\r"), QByteArray::fromHex("02"
                                                                              "514952414e2d31000000"
                                                                              "57494445322d32000000"
                                                                              "740d"));
}

void AgwFrameTest::onlyTheLastNulIsTheWires() {
    QCOMPARE(AgwData::WithoutEndMark(QByteArrayView("a\0\0", 3)), QByteArrayView("a\0", 2));
    QCOMPARE(AgwData::WithoutEndMark("a\r"), QByteArrayView("a\r"));
    QCOMPARE(AgwData::WithoutEndMark({}).size(), 0);
}

void AgwFrameTest::oneByteAtATime() {
    const QByteArray stream =
        AgwFrame{.port = 1, .kind = 'U', .callFrom = "XQ9ZZ-1", .callTo = "APRS", .data = "one"}.ToBytes() +
        AgwFrame{.kind = 'T', .data = AllBytes()}.ToBytes();
    const auto frames = ReadInPieces(stream, QList<qsizetype>(stream.size(), 1));
    QCOMPARE(frames.size(), 2);
    QCOMPARE(frames[0], (KeptFrame{1, 'U', 0, "XQ9ZZ-1", "APRS", "one"}));
    QCOMPARE(frames[1], (KeptFrame{0, 'T', 0, "", "", AllBytes()}));
}

void AgwFrameTest::everySplitPointOfTwoFrames() {
    const QByteArray stream =
        AgwFrame{.kind = 'U', .callFrom = "A", .callTo = "B", .data = "first"}.ToBytes() +
        AgwFrame{.kind = 'S', .callFrom = "C", .callTo = "D", .data = "second"}.ToBytes();
    const QList<KeptFrame> expected = {{0, 'U', 0, "A", "B", "first"}, {0, 'S', 0, "C", "D", "second"}};
    for (qsizetype split = 0; split <= stream.size(); ++split)
        QCOMPARE(ReadInPieces(stream, {split, stream.size() - split}), expected);
}

void AgwFrameTest::tenThousandFramesInOneGo() {
    QByteArray stream;
    for (int i = 0; i < 10000; ++i)
        stream +=
            AgwFrame{.kind = 'U', .callFrom = "A", .callTo = "B", .data = QByteArray::number(i)}.ToBytes();
    QList<qsizetype> pieces;
    for (qsizetype at = 0; at < stream.size(); at += AgwFrameReader::chunk)
        pieces.append(std::min(AgwFrameReader::chunk, stream.size() - at));
    const auto frames = ReadInPieces(stream, pieces);
    QCOMPARE(frames.size(), 10000);
    for (int i = 0; i < 10000; ++i)
        QCOMPARE(frames[i].data, QByteArray::number(i));
}

void AgwFrameTest::aFrameWithoutData() {
    const auto frames = ReadInPieces(Header('U', 0) + Header('I', 0), {72});
    QCOMPARE(frames.size(), 2);
    QVERIFY(frames[0].data.isEmpty());
    QCOMPARE(frames[1].kind, 'I');
}

void AgwFrameTest::zerosAreAFrameOfNoKind() {
    const auto frames = ReadInPieces(QByteArray(36, '\0'), {36});
    QCOMPARE(frames, QList<KeptFrame>({{0, '\0', 0, "", "", ""}}));
}

void AgwFrameTest::theLongestLengthIsTaken() {
    const QByteArray stream = Header('U', 65536) + QByteArray(65536, 'x') + Header('T', 0);
    const auto frames = ReadInPieces(stream, {36, 40000, stream.size() - 40036});
    QCOMPARE(frames.size(), 2);
    QCOMPARE(frames[0].data.size(), 65536);
}

void AgwFrameTest::aLyingLengthIsRefusedAtTheHeader_data() {
    QTest::addColumn<quint32>("length");
    QTest::newRow("one too many") << 65537U;
    QTest::newRow("negative") << 0xFFFFFFFFU;
    QTest::newRow("sign bit") << 0x80000000U;
}

void AgwFrameTest::aLyingLengthIsRefusedAtTheHeader() {
    QFETCH(quint32, length);
    AgwFrameReader reader;
    QList<KeptFrame> frames;
    Feed(reader, Header('T', 0) + Header('U', length));
    QVERIFY(!TakeAll(reader, frames));
    QCOMPARE(frames.size(), 1);
    AgwFrame frame;
    QCOMPARE(reader.Next(frame), AgwFrameReader::Result::BadLength); // for good
}

void AgwFrameTest::aCallFieldWithoutNulIsReadWhole() {
    QByteArray stream = Header('U', 0);
    stream.replace(8, 20, "ABCDEFGHIJKLMNOPQRST");
    const auto frames = ReadInPieces(stream, {36});
    QCOMPARE(frames[0].from, QByteArray("ABCDEFGHIJ"));
    QCOMPARE(frames[0].to, QByteArray("KLMNOPQRST"));
}

void AgwFrameTest::anySplitGivesTheSameFrames() {
    const quint32 seed = ChanceSeed();
    std::mt19937 random(seed);
    const auto below = [&random](qsizetype limit) {
        return std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    for (int round = 0; round < 200; ++round) {
        QByteArray stream;
        QList<KeptFrame> expected;
        for (qsizetype count = 1 + below(20); count > 0; --count) {
            QByteArray data(below(8) == 0 ? below(65537) : below(200), '\0');
            std::ranges::generate(data, [&] { return static_cast<char>(below(256)); });
            const KeptFrame frame{static_cast<quint8>(below(256)), static_cast<char>(below(256)),
                                  static_cast<quint8>(below(256)), "CALL-" + QByteArray::number(below(16)),
                                  QByteArray(below(10), 'D'),      data};
            expected.append(frame);
            stream += AgwFrame{frame.port, frame.kind, frame.pid, frame.from, frame.to, frame.data}.ToBytes();
        }
        QList<qsizetype> pieces;
        const qsizetype longest = below(4) == 0 ? 3 : 1 + below(AgwFrameReader::chunk);
        for (qsizetype left = stream.size(); left > 0; left -= pieces.last())
            pieces.append(std::min(left, 1 + below(longest)));
        QVERIFY2(ReadInPieces(stream, pieces) == expected,
                 qPrintable(QStringLiteral("round %1, seed %2").arg(round).arg(seed)));
    }
}

QTEST_GUILESS_MAIN(AgwFrameTest)
#include "AgwFrameTest.moc"
