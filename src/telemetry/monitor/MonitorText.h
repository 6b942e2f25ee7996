#pragma once

#include <QByteArrayView>
#include <QObject>

#include <string>

/// The text of the monitor pane: once it is longer than 10,000 characters, the next text first cuts it to its
/// last 5,000. Windows-1252; lines end in CR LF, which counts two.
class MonitorText : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t longest = 10000;
    static constexpr std::size_t kept = 5000;

    using QObject::QObject;

    void Append(QByteArrayView text);

    QByteArrayView Text() const { return m_text; }

    /// Where the text begins and ends in all that was ever appended: what has been shown up to some place is
    /// still right from Begin() on and lacks what stands after that place.
    qint64 Begin() const { return m_begin; }
    qint64 End() const { return m_begin + static_cast<qint64>(m_text.size()); }

Q_SIGNALS:
    /// Once a turn of the event loop, however much was appended in it.
    void Changed();

private:
    std::string m_text;
    qint64 m_begin = 0;
    bool m_announced = false;
};
