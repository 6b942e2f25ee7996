#include "keps/KepsFetch.h"

#include "foundation/text/Clock.h"
#include "foundation/text/IsoTime.h"
#include "keps/InternetTransfer.h"
#include "keps/StoreResponse.h"

#include <QFile>

#include <algorithm>

using Outcome = KepsFetchResult::Outcome;

namespace {

constexpr qint64 pauseAfterSuccess =
    2LL * 60 * 60 * 1000; // milliseconds: servers make new elements no oftener
constexpr int forbidden = 403;
constexpr int firstRefusal = 400;

QString TimeText(qint64 utc) {
    return QString::fromLatin1(IsoTime::Seconds(utc));
}

} // namespace

KepsFetch::KepsFetch(InternetTransfer& inet, const ProgramFolder& folder, const Clock& clock, QObject* parent)
    : QObject(parent)
    , m_inet(inet)
    , m_folder(folder)
    , m_clock(clock)
    , m_lock(FolderLock::OfKeps(folder))
    , m_times(folder) {
    m_begin.setParent(this);
    m_begin.setObjectName(QStringLiteral("timBegin"));
    m_begin.setSingleShot(true);
    m_begin.setInterval(0);
    connect(&m_begin, &QTimer::timeout, this, &KepsFetch::Next);
    connect(&m_inet, &InternetTransfer::StateChanged, this, &KepsFetch::StateChanged);
}

KepsFetch::~KepsFetch() {
    Cancel();
}

bool KepsFetch::Start(const std::array<QString, 2>& addresses, bool force) {
    Cancel();
    if (!m_lock.TryLock())
        return false;
    KepsFiles::RemoveWork(m_folder); // left by a crash
    m_addresses = addresses;
    m_isForced = force;
    m_index = 0;
    m_results.clear();
    m_begin.start();
    return true;
}

void KepsFetch::Cancel() {
    m_isAsking = false;
    m_begin.stop();
    m_inet.Cancel();
    if (m_lock.IsOurs())
        KepsFiles::RemoveWork(m_folder);
    m_lock.Unlock();
}

// Goes on until an address is being asked, or none is left.
void KepsFetch::Next() {
    for (; m_index < m_addresses.size(); ++m_index)
        if (!m_addresses[m_index].trimmed().isEmpty() && AskOrSettle())
            return;
    Cancel();
    Q_EMIT Finished(m_results);
}

// Asks the address in progress, or settles what becomes of it without asking; whether it is being asked.
bool KepsFetch::AskOrSettle() {
    m_address = KepsAddress::FromTyped(m_addresses[m_index]);
    if (m_address.fileName.isEmpty()) {
        Settle(Outcome::Failed, QStringLiteral("the address names no file"));
        return false;
    }
    if (std::ranges::any_of(m_results, [](const auto& r) { return r.outcome == Outcome::Refused; })) {
        Settle(Outcome::NotAsked, QStringLiteral("not asked after the refusal"));
        return false;
    }
    const std::optional<qint64> last = m_times.Last(m_address.url);
    const qint64 age = m_clock.Milliseconds() - last.value_or(0); // below 0: one of the times is wrong
    if (!m_isForced && last && age >= 0 && age < pauseAfterSuccess) {
        Settle(Outcome::NotYet, QStringLiteral("fetched at %1, not asked again before %2")
                                    .arg(TimeText(*last), TimeText(*last + pauseAfterSuccess)));
        return false;
    }
    m_isAsking = true;
    m_inet.Execute(m_address.url, QStringLiteral("GET"));
    return true;
}

void KepsFetch::StateChanged(int state) {
    const bool isComplete = state == InternetTransfer::ResponseCompleted;
    if (!m_isAsking || !(isComplete || state == InternetTransfer::Error))
        return;
    m_isAsking = false;
    const QString code = QString::number(m_inet.ResponseCode()) + u' ' + m_inet.ResponseInfo();
    if (m_inet.ResponseCode() >= firstRefusal)
        SettleRefusal(code, isComplete);
    else if (isComplete)
        SettleResponse();
    else
        Settle(Outcome::Failed, code);
    ++m_index;
    Next();
}

void KepsFetch::SettleRefusal(const QString& code, bool hasPage) {
    QString said = m_inet.RefusalText();
    const bool hasNothingNew =
        m_inet.ResponseCode() == forbidden &&
        said.contains(u"has not updated since your last successful download", Qt::CaseInsensitive);
    if (hasNothingNew && QFile::exists(KepsFiles::Result(m_folder, m_address.fileName))) {
        Settle(Outcome::CurrentAlready, said + NoteTime());
        return;
    }
    if (hasNothingNew)
        said += QStringLiteral("; but there is no %1 in Keps").arg(m_address.fileName);
    else if (hasPage) // which is put aside, where the user can read it
        said = StoreResponse(m_inet, m_folder, m_address.fileName, static_cast<qint16>(m_index)).error;
    Settle(Outcome::Refused, said.isEmpty() ? code : code + QStringLiteral(": ") + said);
}

void KepsFetch::SettleResponse() {
    const KepsConversion conversion =
        StoreResponse(m_inet, m_folder, m_address.fileName, static_cast<qint16>(m_index));
    if (!conversion.error.isEmpty())
        Settle(Outcome::Failed, conversion.error);
    else if (!conversion.converted)
        Settle(Outcome::Failed, QStringLiteral("what came is too short to hold elements"));
    else
        Settle(Outcome::Stored, NoteTime());
}

// Notes that the address in progress is current now; why that failed, or an empty text.
QString KepsFetch::NoteTime() const {
    const QString reason = m_times.Note(m_address.url, m_clock.Milliseconds());
    return reason.isEmpty() ? QString() : QStringLiteral(" (the time could not be noted: %1)").arg(reason);
}

void KepsFetch::Settle(Outcome outcome, const QString& text) {
    m_results.append({m_addresses[m_index], m_address.fileName, outcome, text.trimmed()});
}
