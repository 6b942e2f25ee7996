#pragma once

#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "foundation/system/FolderLock.h"
#include "keps/InternetTransfer.h"

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

Q_SIGNALS:
    /// A line for the status box.
    void Status(const QString& text);

    /// How far the file in progress is: bytes received, and of how many (-1 when that is not known). 0 of 0
    /// when none is under way.
    void Progress(qint64 received, qint64 total);

    /// A message for the user; `style` is a MessageStyle.
    void Message(const QString& text, qint16 style);

    /// The sequence is through, its summary shown.
    void Finished();

private:
    void Start(qint16 index);
    void Stop();
    void ShowState(int state);
    void ShowProgress(qint64 received, qint64 total);
    void ShowError();
    void StoreResponse();
    void NextFile();
    void ShowSummary();

    InternetTransfer& m_inet;
    clsIni& m_ini;
    ProgramFolder m_folder;
    FolderLock m_lock; ///< ours from the first file to the end
    QTimer m_timer1;
    std::array<QString, 2> m_urls;
    std::array<QString, 2> m_names;
    std::array<QString, 2> m_errors;
    qint16 m_index = 0;
    bool m_busy = false;
    bool m_result = false;
};
