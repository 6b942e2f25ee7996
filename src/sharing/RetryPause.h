#pragma once

#include <QByteArray>

#include <functional>

/// How long to wait after a failure: each pause is longer than the one before, up to a bound, and none is the
/// same at two stations, so that a server which comes back is not asked by all at once.
class RetryPause {
public:
    static constexpr qint64 first = 2000;              ///< milliseconds
    static constexpr qint64 longest = 30 * 60 * 1000;  ///< before half as much at most is added at random
    static constexpr qint64 longestAsked = 86'400'000; ///< that a server may ask for

    /// `random`: at least 0 and below 1.
    explicit RetryPause(std::function<double()> random);

    /// The pause after one more failure, milliseconds; not less than `asked`.
    qint64 Next(qint64 asked = 0);

    /// A success.
    void Reset() { m_pause = 0; }

    /// What the header Retry-After asks for, milliseconds: seconds or an HTTP date. 0 where it says nothing
    /// sensible. `utc`: now.
    static qint64 Asked(const QByteArray& retryAfter, qint64 utc);

private:
    std::function<double()> m_random;
    qint64 m_pause = 0;
};
