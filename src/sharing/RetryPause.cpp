#include "sharing/RetryPause.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

RetryPause::RetryPause(std::function<double()> random)
    : m_random(std::move(random)) {}

qint64 RetryPause::Next(qint64 asked) {
    m_pause = m_pause == 0 ? first : std::min(2 * m_pause, longest);
    const double part = std::clamp(m_random(), 0.0, 1.0) / 2.0;
    const auto pause = static_cast<qint64>(static_cast<double>(std::max(m_pause, asked)) * (1.0 + part));
    return std::min(pause, longestAsked);
}

qint64 RetryPause::Asked(const QByteArray& retryAfter, qint64 utc) {
    bool isNumber = false;
    const qint64 seconds = retryAfter.trimmed().toLongLong(&isNumber);
    if (isNumber)
        return std::clamp<qint64>(seconds, 0, longestAsked / 1000) * 1000;
    const QByteArray zoned = retryAfter.trimmed().replace("GMT", "+0000"); // as Qt knows it
    const QDateTime date = QDateTime::fromString(QString::fromLatin1(zoned), Qt::RFC2822Date);
    return date.isValid() ? std::clamp<qint64>(date.toMSecsSinceEpoch() - utc, 0, longestAsked) : 0;
}
