#include "telemetry/monitor/MonitorText.h"

#include "telemetry/frames/ByteViews.h"

void MonitorText::Append(QByteArrayView text) {
    if (m_text.size() > longest) {
        const std::size_t cut = m_text.size() - kept;
        m_text.erase(0, cut);
        m_begin += static_cast<qint64>(cut);
    }
    m_text.append(ToView(text));
    if (m_announced)
        return;
    m_announced = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_announced = false;
            Q_EMIT Changed();
        },
        Qt::QueuedConnection);
}
