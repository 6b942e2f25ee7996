#include "keps/DownloadStatus.h"

bool DownloadStatus::AddDownloadStatus(const QString& text) {
    constexpr qsizetype mostKept = 10000;
    const bool cut = m_content.size() > mostKept;
    if (cut)
        m_content = m_content.right(mostKept);
    m_content += text + QStringLiteral("\r\n");
    return cut;
}
