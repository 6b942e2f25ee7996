#pragma once

#include "keps/HttpTransfer.h"
#include "keps/KepsFetch.h"

#include <QTimer>

class GroundStation;
struct Session;

/// Keeps a running station's orbital elements fresh: looks every hour how old the newest are, and fetches new
/// ones when they are too old. A server that was asked is left alone for a day, one that could not be reached
/// for an hour.
class ElementKeeper : public QObject {
    Q_OBJECT
public:
    /// Both must outlive the keeper. `days`: how old the newest elements may become.
    ElementKeeper(const Session& session, GroundStation& station, int days);

private:
    void Look();
    void Finished(const QList<KepsFetchResult>& results);
    bool AreOld() const;

    const Session& m_session;
    GroundStation& m_station;
    const int m_days;
    HttpTransfer m_inet;
    KepsFetch m_fetch;
    QTimer m_timLook;
    qint64 m_notBefore = 0; ///< milliseconds since 1970
};
