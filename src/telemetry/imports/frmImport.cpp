#include "telemetry/imports/frmImport.h"

#include "foundation/fields/Named.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/text/UtcTime.h"
#include "telemetry/imports/ImportTexts.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimeZone>

#include <utility>

using Result = HistoryImport::Result;

namespace {

constexpr int countLines = 10;

QStringList LocalFiles(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile())
            files += url.toLocalFile();
    return files;
}

} // namespace

frmImport::frmImport(const QString& path, HistorySides sides, ImportJob::Settle settle, const mb& messages,
                     QWidget* parent, ChooseFiles chooseFiles)
    : QDialog(parent)
    , m_messages(messages)
    , m_chooseFiles(std::move(chooseFiles))
    , m_job(path, std::move(sides), std::move(settle))
    , lstFiles(Named(u"lstFiles", new QListWidget(this)))
    , cmdAdd(Named(u"cmdAdd", new QPushButton(tr("&Add..."), this)))
    , cmdRemove(Named(u"cmdRemove", new QPushButton(tr("&Remove"), this)))
    , cboZone(Named(u"cboZone", new QComboBox(this)))
    , txtTime(Named(u"txtTime", new QLineEdit(this)))
    , txtCount(Named(u"txtCount", new QPlainTextEdit(this)))
    , barProgress(Named(u"barProgress", new QProgressBar(this)))
    , cmdCount(Named(u"cmdCount", new QPushButton(tr("&Count"), this)))
    , cmdImport(Named(u"cmdImport", new QPushButton(tr("&Import"), this)))
    , cmdUndo(Named(u"cmdUndo", new QPushButton(tr("&Undo last import"), this)))
    , cmdClose(Named(u"cmdClose", new QPushButton(this))) {
    setObjectName(QStringLiteral("frmImport"));
    setWindowTitle(tr("Import into the history"));
    setAcceptDrops(true);
    NameFields();
    LayOut();
    Connect();
    Enable();
    CentreOnScreen(this);
}

void frmImport::NameFields() {
    lstFiles->setAccessibleName(tr("Files to be imported"));
    lstFiles->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lstFiles->setTextElideMode(Qt::ElideMiddle);
    cboZone->setEditable(true);
    cboZone->lineEdit()->setAccessibleName(tr("Times without a zone are"));
    cboZone->lineEdit()->setFocusPolicy(Qt::ClickFocus); // else Shift and Tab come to it out of turn
    cboZone->addItems({QStringLiteral("UTC"), QStringLiteral("local")});
    for (const QByteArray& name : QTimeZone::availableTimeZoneIds())
        if (name.contains('/'))
            cboZone->addItem(QString::fromUtf8(name));
    cboZone->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboZone->setMinimumContentsLength(24);
    txtTime->setPlaceholderText(QStringLiteral("2026-11-21T15:00Z"));
    txtCount->setAccessibleName(tr("What the files would bring"));
    txtCount->setReadOnly(true);
    txtCount->setTabChangesFocus(true);
    txtCount->setUndoRedoEnabled(false);
    txtCount->setMinimumSize(txtCount->fontMetrics().averageCharWidth() * 70,
                             txtCount->fontMetrics().lineSpacing() * countLines);
    barProgress->setAccessibleName(tr("Progress"));
    QSizePolicy policy = barProgress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    barProgress->setSizePolicy(policy);
    for (QPushButton* button : {cmdAdd, cmdRemove, cmdCount, cmdImport, cmdUndo, cmdClose})
        button->setAutoDefault(false);
    cmdCount->setDefault(true);
}

void frmImport::LayOut() {
    auto* fileButtons = new QVBoxLayout;
    fileButtons->addWidget(cmdAdd);
    fileButtons->addWidget(cmdRemove);
    fileButtons->addStretch();
    auto* files = new QHBoxLayout;
    files->addWidget(lstFiles, 1);
    files->addLayout(fileButtons);
    auto* label = new QLabel(tr("&Logs, recordings and other stations' tlm.txt:"), this);
    label->setBuddy(lstFiles);
    auto* form = new QFormLayout;
    form->addRow(tr("Times without a &zone are:"), cboZone);
    form->addRow(tr("The &time of recordings that tell none:"), txtTime);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdUndo);
    buttons->addStretch();
    for (QPushButton* button : {cmdCount, cmdImport, cmdClose})
        buttons->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addLayout(files, 1);
    layout->addLayout(form);
    layout->addWidget(txtCount, 1);
    layout->addWidget(barProgress);
    layout->addLayout(buttons);
    const QList<QWidget*> order{lstFiles, cmdAdd,   cmdRemove, cboZone,  txtTime,
                                txtCount, cmdCount, cmdImport, cmdClose, cmdUndo};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmImport::Connect() {
    connect(cmdAdd, &QPushButton::clicked, this, [this] { AddFiles(m_chooseFiles(this)); });
    connect(cmdRemove, &QPushButton::clicked, this, &frmImport::RemoveFiles);
    connect(cboZone, &QComboBox::currentTextChanged, this, &frmImport::Forget);
    connect(txtTime, &QLineEdit::textChanged, this, &frmImport::Forget);
    connect(cmdCount, &QPushButton::clicked, this, &frmImport::Count);
    connect(cmdImport, &QPushButton::clicked, this, &frmImport::Import);
    connect(cmdUndo, &QPushButton::clicked, this, &frmImport::Undo);
    connect(cmdClose, &QPushButton::clicked, this, &frmImport::reject);
    connect(&m_job, &ImportJob::Progress, barProgress, &QProgressBar::setValue);
    connect(&m_job, &ImportJob::CountEnded, this, &frmImport::ShowCount);
    connect(&m_job, &ImportJob::ImportEnded, this, &frmImport::ShowImport);
    connect(&m_job, &ImportJob::UndoEnded, this, &frmImport::ShowUndo);
}

QStringList frmImport::AskForFiles(QWidget* window) {
    return QFileDialog::getOpenFileNames(window, tr("Import into the history"));
}

void frmImport::AddFiles(const QStringList& files) {
    for (const QString& file : files)
        if (lstFiles->findItems(file, Qt::MatchExactly).isEmpty())
            lstFiles->addItem(file);
    Forget();
}

void frmImport::RemoveFiles() {
    qDeleteAll(lstFiles->selectedItems());
    Forget();
}

void frmImport::dragEnterEvent(QDragEnterEvent* event) {
    if (!m_job.IsRunning() && !LocalFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void frmImport::dropEvent(QDropEvent* event) {
    AddFiles(LocalFiles(*event->mimeData()));
    event->acceptProposedAction();
}

void frmImport::Count() {
    const QString zoneName = cboZone->currentText().trimmed();
    const std::optional<ImportZone> zone = ImportZone::Named(zoneName);
    if (!zone) {
        Complain(
            tr("There is no time zone %1. It is UTC, local, or a name such as Europe/Berlin.").arg(zoneName));
        cboZone->setFocus();
        return;
    }
    const QString time = txtTime->text().trimmed();
    const std::optional<qint64> utc = UtcTime::Parse(time);
    if (!utc && !time.isEmpty()) {
        Complain(tr("The time is to be written like 2026-11-21T15:00Z."));
        txtTime->setFocus();
        return;
    }
    QStringList files;
    for (int row = 0; row < lstFiles->count(); ++row)
        files += lstFiles->item(row)->text();
    txtCount->clear();
    m_job.Count(files, {.zone = *zone, .utc = utc});
    Enable();
}

void frmImport::ShowCount(Result result) {
    m_isCounted = result == Result::Done;
    if (m_isCounted)
        txtCount->setPlainText(ImportLines(m_job.Counted()).join(u'\n'));
    Enable();
    if (result == Result::Failed)
        Complain(m_job.Reason());
}

void frmImport::Import() {
    m_job.Import();
    Enable();
}

void frmImport::ShowImport(Result result) {
    m_isCounted = m_isCounted && result == Result::Cancelled;
    Enable();
    if (result == Result::Failed)
        Complain(m_job.Reason());
    if (result != Result::Done)
        return;
    txtCount->setPlainText(tr("Frames that have come in: %1").arg(m_job.Counted().frames));
    Q_EMIT HistoryChanged();
}

void frmImport::Undo() {
    m_isCounted = false;
    m_job.Undo();
    Enable();
}

void frmImport::ShowUndo(Result result) {
    Enable();
    if (result == Result::Failed)
        Complain(m_job.Reason());
    if (result != Result::Done)
        return;
    txtCount->setPlainText(tr("The history is what it was before the import, with what was heard since."));
    Q_EMIT HistoryChanged();
}

// What was counted no longer stands for what is shown.
void frmImport::Forget() {
    m_isCounted = false;
    txtCount->clear();
    Enable();
}

void frmImport::Enable() {
    const bool isRunning = m_job.IsRunning();
    for (QWidget* field : std::initializer_list<QWidget*>{lstFiles, cmdAdd, cmdRemove, cboZone, txtTime})
        field->setEnabled(!isRunning);
    cmdCount->setEnabled(!isRunning && lstFiles->count() > 0);
    cmdImport->setEnabled(!isRunning && m_isCounted && m_job.Counted().frames > 0);
    cmdUndo->setEnabled(!isRunning && m_job.CanUndo());
    cmdClose->setText(isRunning ? tr("Cancel") : tr("Close"));
    if (!isRunning)
        barProgress->reset();
    barProgress->setVisible(isRunning);
}

void frmImport::Complain(const QString& text) {
    m_messages.MessageBox(this, text, MessageStyle::Exclamation);
}

void frmImport::reject() {
    if (m_job.IsRunning())
        m_job.Cancel();
    else
        QDialog::reject();
}
