#pragma once

#include "foundation/messages/mb.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/clsIni.h"
#include "keps/DownloadSequence.h"
#include "keps/DownloadStatus.h"
#include "keps/InternetTransfer.h"

#include <QDialog>

#include <array>

class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// The dialog that fetches element files into the Keps folder.
class frmDownload : public QDialog {
    Q_OBJECT

public:
    /// The references must outlive the dialog.
    frmDownload(const ProgramFolder& folder, clsIni& ini, const mb& messages, InternetTransfer& inet,
                QWidget* parent = nullptr);

    /// Shows the dialog until the user or the end of the downloads closes it. Whether a file was fetched, so
    /// that the elements are to be read anew.
    bool DownloadKeps();

    /// Closing by any way ends the transfer and removes what it left.
    void done(int result) override;

private:
    void AddDownloadStatus(const QString& text);
    void ShowProgress(qint64 received, qint64 total);
    void LayOut();
    static void DropScheme(QLineEdit* field);
    void TakeUsual();

    clsIni& m_ini;
    const mb& m_messages;
    DownloadSequence m_sequence;
    DownloadStatus m_status;
    std::array<QLineEdit*, 2> txtFile;
    QPlainTextEdit* txtTerm;
    QProgressBar* barProgress;
    QPushButton* cmdUsual;
    QPushButton* cmdDownload;
    QPushButton* cmdCancel;
};
