#pragma once

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "keps/InternetTransfer.h"

#include <QElapsedTimer>
#include <QTimer>

#include <array>

/// Fetches the two element files one after the other and stores them in the Keps folder.
class DownloadSequence : public QObject {
    Q_OBJECT

public:
    /// The references must outlive the sequence.
    DownloadSequence(InternetTransfer& inet, clsIni& ini, const ProgramFolder& folder,
                     QObject* parent = nullptr);
    ~DownloadSequence() override;

    /// Starts with the first of the two addresses (without "http://") that names a file, and saves both.
    void Download(const std::array<QString, 2>& typed);

    /// Ends what is under way and leaves none of its files behind.
    void Cancel();

    /// Whether a file has been fetched and converted.
    bool Result() const { return m_result; }

    /// The least time between two lines about a file's progress; 1 s unless set.
    void SetProgressInterval(int milliseconds) { m_progressInterval = milliseconds; }

Q_SIGNALS:
    /// A line for the status box.
    void Status(const QString& text);

    /// A message for the user; `style` is a MessageStyle.
    void Message(const QString& text, qint16 style);

    /// The sequence is through, its summary shown.
    void Finished();

private:
    void Start(qint16 index);
    void ShowState(int state);
    void ShowProgress(qint64 received, qint64 total);
    void ShowError();
    void StoreResponse();
    bool WriteTarget(qsizetype& length, QString& reason);
    void NextFile();
    void ShowSummary();
    void RemoveWorkFiles();

    InternetTransfer& m_inet;
    clsIni& m_ini;
    ProgramFolder m_folder;
    QTimer m_timer1;
    std::array<QString, 2> m_urls;
    std::array<QString, 2> m_names;
    std::array<QString, 2> m_errors;
    qint16 m_index = 0;
    bool m_busy = false;
    bool m_result = false;
    int m_progressInterval = 1000;
    QElapsedTimer m_sinceProgress;
};
