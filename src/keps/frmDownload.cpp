#include "keps/frmDownload.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/settings/Settings.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QString issAddress = QStringLiteral("celestrak.org/NORAD/elements/gp.php?CATNR=25544&FORMAT=tle");

} // namespace

frmDownload::frmDownload(const ProgramFolder& folder, clsIni& ini, const mb& messages, InternetTransfer& inet,
                         QWidget* parent)
    : QDialog(parent)
    , m_ini(ini)
    , m_messages(messages)
    , m_sequence(inet, ini, folder)
    , txtFile{new QLineEdit(this), new QLineEdit(this)}
    , txtTerm(new QPlainTextEdit(this))
    , barProgress(new QProgressBar(this))
    , cmdUsual(new QPushButton(tr("&Usual addresses"), this))
    , cmdDownload(new QPushButton(tr("&Download"), this))
    , cmdCancel(new QPushButton(tr("Cancel"), this)) {
    setObjectName(QStringLiteral("frmDownload"));
    setWindowTitle(tr("Download Keps"));
    m_sequence.setParent(this);
    LayOut();
    for (QLineEdit* field : txtFile)
        connect(field, &QLineEdit::textChanged, this, [field] { DropScheme(field); });
    connect(cmdUsual, &QPushButton::clicked, this, &frmDownload::TakeUsual);
    connect(cmdDownload, &QPushButton::clicked, this, [this] {
        m_sequence.Download({txtFile[0]->text(), txtFile[1]->text()});
    });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(&m_sequence, &DownloadSequence::Status, this, &frmDownload::AddDownloadStatus);
    connect(&m_sequence, &DownloadSequence::Progress, this, &frmDownload::ShowProgress);
    connect(&m_sequence, &DownloadSequence::Message, this,
            [this](const QString& text, qint16 style) { m_messages.MessageBox(this, text, style); });
    connect(&m_sequence, &DownloadSequence::Finished, this, &QDialog::accept);
}

bool frmDownload::DownloadKeps() {
    txtFile[0]->setText(Settings::Read(m_ini, Settings::kepsFile1));
    txtFile[1]->setText(Settings::Read(m_ini, Settings::kepsFile2));
    txtFile[0]->setFocus();
    CentreOnScreen(this);
    exec();
    return m_sequence.Result();
}

// An address pasted from a browser begins with what stands before the field already.
void frmDownload::DropScheme(QLineEdit* field) {
    for (const QString& scheme : {QStringLiteral("http://"), QStringLiteral("https://")}) {
        const qsizetype blanks = field->text().size() - QStringView(field->text()).trimmed().size();
        const qsizetype start = field->text().indexOf(scheme, 0, Qt::CaseInsensitive);
        if (start < 0 || start > blanks)
            continue;
        field->setSelection(0, static_cast<int>(start + scheme.size()));
        field->del(); // which the field can undo
        return;
    }
}

// One file for QIRAN, and the one in which the ISS is.
void frmDownload::TakeUsual() {
    txtFile[0]->setText(QString::fromUtf16(Settings::kepsFile1.defaultValue));
    txtFile[1]->setText(issAddress);
}

void frmDownload::done(int result) {
    m_sequence.Cancel();
    QDialog::done(result);
}

void frmDownload::AddDownloadStatus(const QString& text) {
    if (m_status.AddDownloadStatus(text))
        txtTerm->setPlainText(m_status.Content());
    else {
        txtTerm->moveCursor(QTextCursor::End);
        txtTerm->insertPlainText(text + QStringLiteral("\r\n"));
    }
    txtTerm->moveCursor(QTextCursor::End);
    txtTerm->ensureCursorVisible();
}

void frmDownload::ShowProgress(qint64 received, qint64 total) {
    barProgress->setRange(0,
                          static_cast<int>(std::max<qint64>(total, 0))); // without an end it shows it is busy
    barProgress->setValue(static_cast<int>(received));
    barProgress->setVisible(total != 0);
}

void frmDownload::LayOut() {
    auto* grid = new QGridLayout;
    for (int i = 0; i < 2; ++i) {
        QLineEdit* field = txtFile[static_cast<std::size_t>(i)];
        field->setObjectName(QStringLiteral("txtFile%1").arg(i));
        field->setMinimumWidth(field->fontMetrics().horizontalAdvance(QString(74, u'0')));
        field->setToolTip(
            tr("The address of an element file; http:// or https:// in front is dropped.\nThe server "
               "sends the program on to https where it wants that."));
        SelectAllOnFocus(field);
        auto* label = new QLabel(i == 0 ? tr("File &1:   http://") : tr("File &2:   http://"), this);
        label->setObjectName(QStringLiteral("labFile%1").arg(i));
        label->setBuddy(field);
        grid->addWidget(label, i, 0);
        grid->addWidget(field, i, 1);
    }

    txtTerm->setObjectName(QStringLiteral("txtTerm"));
    txtTerm->setReadOnly(true);
    txtTerm->setTabChangesFocus(true);
    txtTerm->setUndoRedoEnabled(false);
    txtTerm->setFont(FixedFont());
    txtTerm->setMinimumHeight(txtTerm->fontMetrics().lineSpacing() * 12);
    auto* status = new QLabel(tr("&Status:"), this);
    status->setObjectName(QStringLiteral("labTerm"));
    status->setBuddy(txtTerm);

    barProgress->setObjectName(QStringLiteral("barProgress"));
    barProgress->setAccessibleName(tr("Progress of the file"));
    QSizePolicy policy = barProgress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    barProgress->setSizePolicy(policy);
    barProgress->hide();

    txtFile[1]->setPlaceholderText(tr("for the ISS: %1").arg(issAddress));
    txtFile[1]->setMinimumWidth(
        txtFile[1]->fontMetrics().horizontalAdvance(txtFile[1]->placeholderText() + QStringLiteral("00")));
    cmdUsual->setObjectName(QStringLiteral("cmdUsual"));
    cmdUsual->setAutoDefault(false);
    cmdUsual->setToolTip(tr("One file with QIRAN, and one with the ISS"));
    cmdDownload->setObjectName(QStringLiteral("cmdDownload"));
    cmdDownload->setDefault(true);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(cmdUsual, QDialogButtonBox::ResetRole);
    buttons->addButton(cmdDownload, QDialogButtonBox::ActionRole);
    buttons->addButton(cmdCancel, QDialogButtonBox::RejectRole);

    auto* column = new QVBoxLayout(this);
    column->addLayout(grid);
    column->addWidget(status);
    column->addWidget(txtTerm, 1);
    column->addWidget(barProgress);
    column->addWidget(buttons);
    setTabOrder(txtFile[0], txtFile[1]);
    setTabOrder(txtFile[1], txtTerm);
    setTabOrder(txtTerm, cmdUsual);
    setTabOrder(cmdUsual, cmdDownload);
    setTabOrder(cmdDownload, cmdCancel);
}
