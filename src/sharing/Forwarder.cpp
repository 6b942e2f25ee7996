#include "sharing/Forwarder.h"

#include "foundation/settings/ProgramFolder.h"
#include "foundation/text/Clock.h"
#include "sharing/ForwardRequest.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/HeardFrame.h"

#include <utility>

namespace {

constexpr int firstRefusal = 400;
constexpr int requestTimeout = 408;
constexpr int tooManyRequests = 429;
constexpr int firstServerError = 500;

bool IsTaken(int status) {
    return status >= 200 && status < 300;
}

// The server does not want this frame, now or later.
bool IsRefused(int status) {
    return status >= firstRefusal && status < firstServerError && status != requestTimeout &&
           status != tooManyRequests;
}

} // namespace

Forwarder::Forwarder(Surroundings surroundings, QObject* parent)
    : QObject(parent)
    , m_around(std::move(surroundings))
    , m_queue(m_around.folder,
              [this](const QString& reason) {
                  Say(QStringLiteral("%1 cannot be written: %2").arg(ForwardQueue::FileName(), reason));
              })
    , m_pause(m_around.random) {
    setObjectName(QStringLiteral("forwarder"));
    m_timNext.setParent(this);
    m_timNext.setObjectName(QStringLiteral("timNext"));
    m_timNext.setSingleShot(true);
    connect(&m_timNext, &QTimer::timeout, this, &Forwarder::Next);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &Forwarder::LookForRequest);
    connect(&m_around.post, &FormPost::Finished, this, &Forwarder::Answered);
}

Forwarder::~Forwarder() {
    Stop();
}

void Forwarder::Start() {
    m_settings = ForwardSettings::Load(m_around.ini);
    const qint64 damaged = m_queue.Open(m_settings.keepAtMost);
    if (damaged > 0)
        Say(QStringLiteral("%1 lines of %2 cannot be read").arg(damaged).arg(ForwardQueue::FileName()));
    m_dropped = Counts().dropped;
    m_isRunning = true;
    m_watcher.addPath(m_around.folder.Path());
    LookForRequest();
    Q_EMIT WantsRawFramesChanged(WantsRawFrames());
    Next();
}

void Forwarder::Stop() {
    if (!std::exchange(m_isRunning, false))
        return;
    m_timNext.stop();
    m_watcher.removePath(m_around.folder.Path());
    m_around.post.Cancel();
    m_underWay = 0;
    (void)m_queue.Close();
}

void Forwarder::Take(const HeardFrame& frame) {
    if (!m_isRunning || frame.origin != HeardFrame::Origin::Live || frame.kind == HeardFrame::Kind::T ||
        frame.raw.isEmpty() || frame.raw.size() > SidsRequest::largestFrame ||
        m_around.callsigns.Find(frame.source) == nullptr)
        return;
    m_lastRaw = frame.raw.toByteArray();
    m_lastUtc = frame.utc;
    Q_EMIT Changed();
    if (!m_settings.use)
        return;
    const QString missing = Missing(m_settings.url).join(QStringLiteral(", "));
    if (!missing.isEmpty() && missing != m_saidMissing)
        Say(QStringLiteral("missing: ") + missing);
    m_saidMissing = missing;
    const std::optional<QByteArray> body = SidsRequest::Body(m_around.station(), frame.utc, frame.raw);
    if (!missing.isEmpty() || !body)
        return;
    if (m_settings.dryRun) {
        Say(QStringLiteral("dry run, nothing is sent to %1: %2").arg(Host(), QString::fromLatin1(*body)));
        return;
    }
    m_queue.Add({*body});
    NoteRoom();
    Next();
}

void Forwarder::SetSettings(const ForwardSettings& settings) {
    settings.Save(m_around.ini);
    const bool wanted = WantsRawFrames();
    const bool isElsewhere = settings.url != m_settings.url || settings.token != m_settings.token;
    m_settings = settings;
    m_saidMissing.clear();
    if (m_isRunning)
        m_queue.SetKeepAtMost(settings.keepAtMost);
    NoteRoom();
    if (wanted != WantsRawFrames())
        Q_EMIT WantsRawFramesChanged(WantsRawFrames());
    if (isElsewhere) {
        m_saidFailure = false;
        AskAtOnce();
    }
    Q_EMIT Changed();
    Next();
}

void Forwarder::Retry(const QList<qint64>& numbers) {
    m_queue.Retry(numbers);
    AskAtOnce();
    Q_EMIT Changed();
    Next();
}

void Forwarder::Discard(const QList<qint64>& numbers) {
    m_queue.Discard(numbers);
    Q_EMIT Changed();
}

QStringList Forwarder::Missing(const QString& url) const {
    QStringList missing = SidsRequest::Missing(m_around.station());
    if (!ForwardSettings::Address(url).isValid())
        missing += QStringLiteral("address of a server");
    return missing;
}

QList<std::pair<QByteArray, QByteArray>> Forwarder::Example() const {
    return SidsRequest::Fields(m_around.station(),
                               m_lastRaw.isEmpty() ? m_around.clock.Milliseconds() : m_lastUtc, m_lastRaw);
}

void Forwarder::LookForRequest() {
    if (!ForwardRequest::IsLeft(m_around.folder))
        return;
    const std::optional<ForwardRequest> request = ForwardRequest::Find(m_around.folder);
    if (request) {
        (void)request->CarryOut(m_queue);
        (void)m_queue.Store(); // or a power cut could take both
    } else {
        Say(QStringLiteral("%1 says nothing sensible").arg(ForwardRequest::FileName()));
    }
    ForwardRequest::Remove(m_around.folder);
    NoteRoom();
    if (request && request->kind == ForwardRequest::Kind::Retry)
        AskAtOnce();
    Q_EMIT Changed();
    Next();
}

// Sends the first frame that waits, when it is time.
void Forwarder::Next() {
    const qint64 number = m_queue.List().FirstWaiting();
    const QUrl url = ForwardSettings::Address(m_settings.url);
    if (!m_isRunning || !m_settings.use || m_settings.dryRun || m_underWay != 0 || m_timNext.isActive() ||
        number == 0 || !url.isValid())
        return;
    m_underWay = number;
    m_around.post.Send(url, m_settings.token.trimmed().toUtf8(), Frames().at(number).body);
}

// The pause after failures is over.
void Forwarder::AskAtOnce() {
    m_pause.Reset();
    m_timNext.stop();
}

void Forwarder::Answered(const PostAnswer& answer) {
    if (m_underWay == 0)
        return;
    if (IsTaken(answer.status))
        m_queue.NoteSent(m_underWay);
    else if (IsRefused(answer.status))
        Refused(answer);
    else
        Failed(answer);
    m_underWay = 0;
    if (IsTaken(answer.status) || IsRefused(answer.status)) {
        if (std::exchange(m_saidFailure, false))
            Say(Host() + QStringLiteral(" answers again"));
        m_pause.Reset();
        m_timNext.start(m_around.interval);
    }
    NoteRoom();
    Q_EMIT Changed();
}

void Forwarder::Refused(const PostAnswer& answer) {
    m_queue.Park(m_underWay, answer.words);
    if (answer.words != m_saidRefusal) // a whole pass may be refused for one reason
        Say(QStringLiteral("%1 refuses: %2").arg(Host(), answer.words));
    m_saidRefusal = answer.words;
}

void Forwarder::Failed(const PostAnswer& answer) {
    m_timNext.start(std::chrono::milliseconds(
        m_pause.Next(RetryPause::Asked(answer.retryAfter, m_around.clock.Milliseconds()))));
    if (!std::exchange(m_saidFailure, true))
        Say(QStringLiteral("%1 cannot take frames now: %2").arg(Host(), answer.words));
}

// Says when a full queue begins to drop frames.
void Forwarder::NoteRoom() {
    const ForwardCounts counts = Counts();
    if (std::exchange(m_dropped, counts.dropped) < counts.dropped && !std::exchange(m_saidFull, true))
        Say(QStringLiteral("more than %1 frames wait, the oldest are dropped").arg(m_settings.keepAtMost));
    m_saidFull = m_saidFull && counts.waiting + counts.parked > m_settings.keepAtMost / 2;
}

void Forwarder::Say(const QString& line) {
    Q_EMIT StatusText(QStringLiteral("*** Forwarding - ") + line + QStringLiteral("\r\n"));
}

QString Forwarder::Host() const {
    return ForwardSettings::Address(m_settings.url).host();
}
