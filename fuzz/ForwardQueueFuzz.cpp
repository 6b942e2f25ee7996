// The queue's file: whatever stands in it is read, and what is done then is found again.
//
// An input is the file as it is found, a byte 01, and what is done, a byte each: "q" queues a frame, "s"
// notes the first one as sent, "p" parks it, "r" and "d" retry and discard what is parked, "k" keeps at most
// two frames, "o" opens the file again.

#include "Input.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "foundation/settings/ProgramFolder.h"
#include "sharing/ForwardQueue.h"
#include "sharing/SidsRequest.h"

namespace {

constexpr qsizetype mostKept = 50;

void Do(ForwardQueue& queue, char what, int round) {
    const SidsStation station{QStringLiteral("DL1ABC"),     true, 49.7, 8.9, QStringLiteral("90417"),
                              QStringLiteral("QiranDecode")};
    const qint64 first = queue.List().FirstWaiting();
    if (what == 'q')
        queue.Add({*SidsRequest::Body(station, 1 + round, "frame")});
    else if (what == 's' && first != 0)
        queue.NoteSent(first);
    else if (what == 'p' && first != 0)
        queue.Park(first, QString(QChar(0xE4 + round)));
    else if (what == 'r')
        queue.Retry(queue.Parked());
    else if (what == 'd')
        queue.Discard(queue.Parked());
    else if (what == 'k')
        queue.SetKeepAtMost(2);
    else if (what == 'o')
        queue.Open(mostKept);
}

void CheckList(const ForwardList& list) {
    ForwardList again;
    for (const QByteArray& line : list.Lines().split('\n'))
        Require(line.isEmpty() || again.Apply(line), "what is written can be read");
    Require(again.Lines() == list.Lines(), "and says the same");
    Require(again.Counts() == list.Counts(), "and counts the same");
    Require(list.Lines().count('\n') == list.LineCount(), "lines are counted");
    for (const auto& [number, frame] : list.Frames())
        Require(SidsRequest::IsBody(frame.body), "a frame is a request");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    static const ProgramFolder folder(scratch.Path(), QStringLiteral("QiranDecode"));
    std::string_view done = Input(data, size);
    scratch.Write(ForwardQueue::FileName(), TakeUntil(done, '\1'));
    CheckList(ForwardQueue::Read(folder));
    ForwardQueue queue(folder, {});
    queue.Open(mostKept);
    int round = 0;
    for (const char what : done.substr(0, 50)) {
        Do(queue, what, ++round);
        CheckList(queue.List());
        Require(static_cast<qsizetype>(queue.List().Frames().size()) <= mostKept, "the queue is bounded");
        const ForwardList stored = ForwardQueue::Read(folder);
        Require(stored.Lines() == queue.List().Lines(), "the file says what the queue says");
    }
    return 0;
}
