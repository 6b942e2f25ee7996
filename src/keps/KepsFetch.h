#pragma once

#include "foundation/settings/ProgramFolder.h"
#include "foundation/system/FolderLock.h"
#include "keps/FetchTimes.h"
#include "keps/KepsAddress.h"

#include <QList>
#include <QTimer>

#include <array>

class Clock;
class InternetTransfer;

/// What became of one address.
struct KepsFetchResult {
    enum class Outcome {
        Stored,         ///< the file is in the Keps folder
        CurrentAlready, ///< the server says that the file in the Keps folder is its newest
        NotYet,         ///< not asked: it gave its elements less than two hours ago
        Refused,        ///< the server's status was 400 or more
        Failed,         ///< no answer, a cut or unusable one, or the file could not be stored
        NotAsked        ///< another address was refused before
    };

    QString address; ///< as typed
    QString fileName;
    Outcome outcome = Outcome::Failed;
    QString text; ///< why, in words; empty when the file was stored and that is all

    /// Whether the elements of this address are as new as they can be had.
    bool IsCurrent() const { return outcome <= Outcome::NotYet; }
};

/// Fetches element files into the Keps folder without a window, and politely: whoever goes on asking a server
/// that has nothing new, or has refused, is shut out.
class KepsFetch : public QObject {
    Q_OBJECT

public:
    /// The references must outlive the fetch. `inet` is its own.
    KepsFetch(InternetTransfer& inet, const ProgramFolder& folder, const Clock& clock,
              QObject* parent = nullptr);
    ~KepsFetch() override;

    /// Begins to fetch the addresses (without "http://") one after the other; blank ones are passed over.
    /// With `force` also those that gave their elements less than two hours ago. A fetch under way is ended
    /// first. False, and nothing begins, while another process fetches: see Holder.
    bool Start(const std::array<QString, 2>& addresses, bool force);

    /// Ends what is under way without a word, and leaves none of its files behind.
    void Cancel();

    /// Who fetches, as FolderLock::Holder has it.
    QString Holder() const { return m_lock.Holder(); }

Q_SIGNALS:
    /// All addresses are through; a result for each that is not blank, in their order. Comes from the event
    /// loop, never from within Start.
    void Finished(const QList<KepsFetchResult>& results);

private:
    void Next();
    bool AskOrSettle();
    void StateChanged(int state);
    void SettleRefusal(const QString& code, bool hasPage);
    void SettleResponse();
    void Settle(KepsFetchResult::Outcome outcome, const QString& text);
    QString NoteTime() const;

    InternetTransfer& m_inet;
    ProgramFolder m_folder;
    const Clock& m_clock;
    FolderLock m_lock; ///< ours from Start to the end
    FetchTimes m_times;
    QTimer m_begin;
    std::array<QString, 2> m_addresses;
    std::size_t m_index = 0; ///< of the address in progress
    KepsAddress m_address;   ///< what it says
    bool m_isForced = false;
    bool m_isAsking = false;
    QList<KepsFetchResult> m_results;
};
