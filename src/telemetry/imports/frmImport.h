#pragma once

#include "telemetry/imports/ImportJob.h"

#include <QDialog>

class mb;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// The dialog that brings logs and recordings into the history: what they would bring is counted first.
class frmImport : public QDialog {
    Q_OBJECT
public:
    /// What asks the user for files; none when he wants none.
    using ChooseFiles = std::function<QStringList(QWidget* window)>;

    /// `path`: of the history file, which is ours to write. See ImportJob for `settle`. `messages` must
    /// outlive the dialog.
    frmImport(const QString& path, HistorySides sides, ImportJob::Settle settle, const mb& messages,
              QWidget* parent = nullptr, ChooseFiles chooseFiles = AskForFiles);

    void AddFiles(const QStringList& files);

    /// Ends what is running; where nothing is, closes the dialog.
    void reject() override;

Q_SIGNALS:
    /// The history was replaced.
    void HistoryChanged();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    static QStringList AskForFiles(QWidget* window);
    void LayOut();
    void NameFields();
    void Connect();
    void RemoveFiles();
    void Count();
    void Import();
    void Undo();
    void ShowCount(HistoryImport::Result result);
    void ShowImport(HistoryImport::Result result);
    void ShowUndo(HistoryImport::Result result);
    void Forget();
    void Enable();
    void Complain(const QString& text);

    const mb& m_messages;
    const ChooseFiles m_chooseFiles;
    ImportJob m_job;
    bool m_isCounted = false; // with the files, zone and time that are shown
    QListWidget* lstFiles;
    QPushButton* cmdAdd;
    QPushButton* cmdRemove;
    QComboBox* cboZone;
    QLineEdit* txtTime;
    QPlainTextEdit* txtCount;
    QProgressBar* barProgress;
    QPushButton* cmdCount;
    QPushButton* cmdImport;
    QPushButton* cmdUndo;
    QPushButton* cmdClose;
};
