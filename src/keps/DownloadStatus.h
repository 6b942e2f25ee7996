#pragma once

#include <QString>

/// The text of the download's status box.
class DownloadStatus {
public:
    /// Appends `text` and a line end. A text of 10,001 characters or more is first cut to its last 10,000;
    /// answers whether that happened.
    bool AddDownloadStatus(const QString& text);

    const QString& Content() const { return m_content; }

private:
    QString m_content;
};
