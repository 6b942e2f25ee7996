#include "sharing/frmForward.h"

#include "foundation/fields/FieldGuard.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/Named.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "sharing/Forwarder.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int longestUrl = 400; // the settings file gives back 499 characters
constexpr int longestToken = 200;
constexpr int shownCharacters = 64;
constexpr int shownLines = 10;
constexpr int showAfter = 200; // milliseconds: a burst of frames is shown once
constexpr int numberRole = Qt::UserRole;

} // namespace

frmForward::frmForward(Forwarder& forwarder, const mb& messages, QWidget* parent)
    : QDialog(parent)
    , m_forwarder(forwarder)
    , m_messages(messages)
    , m_guard(new FieldGuard(this)) {
    setObjectName(QStringLiteral("frmForward"));
    setWindowTitle(tr("Forwarding"));
    auto* all = new QVBoxLayout(this);
    all->addWidget(SettingFields());
    all->addWidget(ParkedFrames(), 1);
    all->addLayout(Buttons());
    m_timShow.setParent(this);
    m_timShow.setObjectName(QStringLiteral("timShow"));
    m_timShow.setSingleShot(true);
    m_timShow.setInterval(showAfter);
    connect(&m_timShow, &QTimer::timeout, this, &frmForward::ShowQueue);
    connect(&m_forwarder, &Forwarder::Changed, this, [this] {
        if (!m_timShow.isActive())
            m_timShow.start();
    });
    m_guard->AddField(txtUrl, [this] { return IsUrlGood(); });
    ShowQueue();
    chkUse->setFocus();
    adjustSize();
    CentreOnScreen(this);
}

QWidget* frmForward::SettingFields() {
    auto* box = new QWidget(this);
    auto* fields = new QFormLayout(box);
    fields->setContentsMargins({});
    const ForwardSettings& settings = m_forwarder.Settings();
    chkUse = Named(u"chkUse", new QCheckBox(tr("&Send heard frames of the satellite on"), box));
    chkUse->setChecked(settings.use);
    chkDryRun = Named(u"chkDryRun", new QCheckBox(tr("Dr&y run: only show them in the status line"), box));
    chkDryRun->setChecked(settings.dryRun);
    fields->addRow(chkUse);
    fields->addRow(chkDryRun);
    const auto add = [&](const QString& name, const QString& label, QWidget* field) {
        field->setObjectName(QStringLiteral("txt") + name);
        auto* caption = Named(QString(QStringLiteral("lab") + name), new QLabel(label, box));
        caption->setBuddy(field);
        fields->addRow(caption, field);
    };
    txtUrl = new QLineEdit(settings.url, box);
    txtToken = new QLineEdit(settings.token, box);
    txtExample = new QPlainTextEdit(box);
    add(QStringLiteral("Url"), tr("Server's &address"), txtUrl);
    add(QStringLiteral("Token"), tr("&Token"), txtToken);
    add(QStringLiteral("Example"), tr("&What is sent"), txtExample);
    txtUrl->setMaxLength(longestUrl);
    txtUrl->setFont(FixedFont());
    txtUrl->setMinimumWidth(txtUrl->fontMetrics().horizontalAdvance(u'0') * shownCharacters);
    txtToken->setMaxLength(longestToken);
    txtToken->setFont(FixedFont());
    txtToken->setEchoMode(QLineEdit::Password);
    SelectAllOnFocus(txtUrl);
    SelectAllOnFocus(txtToken);
    txtExample->setReadOnly(true);
    txtExample->setTabChangesFocus(true);
    txtExample->setFont(FixedFont());
    txtExample->setFixedHeight(txtExample->fontMetrics().lineSpacing() * shownLines +
                               2 * static_cast<int>(txtExample->document()->documentMargin()) +
                               2 * txtExample->frameWidth());
    labMissing = Named(u"labMissing", new QLabel(box));
    labMissing->setTextFormat(Qt::PlainText);
    labMissing->setWordWrap(true);
    fields->addRow(labMissing);
    connect(txtUrl, &QLineEdit::textChanged, this, &frmForward::ShowExample);
    return box;
}

QWidget* frmForward::ParkedFrames() {
    auto* box = new QWidget(this);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins({});
    labCounts = Named(u"labCounts", new QLabel(box));
    lstParked = Named(u"lstParked", new QTreeWidget(box));
    lstParked->setAccessibleName(tr("Frames that the server refused"));
    lstParked->setHeaderLabels({tr("Heard"), tr("The server's words")});
    lstParked->setRootIsDecorated(false);
    lstParked->setUniformRowHeights(true);
    lstParked->setAllColumnsShowFocus(true);
    lstParked->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lstParked->setTabKeyNavigation(false);
    lstParked->setMinimumHeight(lstParked->fontMetrics().lineSpacing() * shownLines);
    lstParked->header()->resizeSection(0, lstParked->fontMetrics().averageCharWidth() * 30);
    auto* label = Named(u"labParked", new QLabel(tr("Frames that the server &refused"), box));
    label->setBuddy(lstParked);
    cmdRetry = Named(u"cmdRetry", new QPushButton(tr("R&etry"), box));
    cmdDiscard = Named(u"cmdDiscard", new QPushButton(tr("&Discard"), box));
    cmdRetry->setAutoDefault(false);
    cmdDiscard->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addStretch();
    row->addWidget(cmdRetry);
    row->addWidget(cmdDiscard);
    column->addWidget(labCounts);
    column->addLayout(row);
    column->addWidget(lstParked, 1);
    connect(lstParked, &QTreeWidget::itemSelectionChanged, this, &frmForward::ShowButtons);
    connect(cmdRetry, &QPushButton::clicked, this, [this] { m_forwarder.Retry(Selected()); });
    connect(cmdDiscard, &QPushButton::clicked, this, [this] { m_forwarder.Discard(Selected()); });
    return box;
}

QLayout* frmForward::Buttons() {
    auto* cmdOk = Named(u"cmdOk", new QPushButton(tr("&Ok"), this));
    cmdOk->setDefault(true);
    auto* cmdCancel = Named(u"cmdCancel", new QPushButton(tr("&Cancel"), this));
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cmdOk);
    row->addWidget(cmdCancel);
    m_guard->AddExempt(cmdCancel);
    connect(cmdOk, &QPushButton::clicked, this, &frmForward::Ok);
    connect(cmdCancel, &QPushButton::clicked, this, &frmForward::reject);
    return row;
}

void frmForward::ShowExample() {
    QString text = tr("to: %1").arg(txtUrl->text().trimmed());
    for (const auto& [name, value] : m_forwarder.Example())
        text +=
            u'\n' + QString::fromLatin1(name) + QStringLiteral(": ") +
            (name == "frame" && value.isEmpty() ? tr("the frame's bytes, in hex") : QString::fromUtf8(value));
    if (text != txtExample->toPlainText())
        txtExample->setPlainText(text);
    const QString missing = m_forwarder.Missing(txtUrl->text()).join(QStringLiteral(", "));
    labMissing->setText(missing.isEmpty() ? QString() : tr("Nothing can be sent; missing: %1").arg(missing));
    labMissing->setVisible(!missing.isEmpty());
}

void frmForward::ShowQueue() {
    const ForwardCounts counts = m_forwarder.Counts();
    labCounts->setText(tr("%1 waiting, %2 refused, %3 sent, %4 discarded, %5 dropped")
                           .arg(counts.waiting)
                           .arg(counts.parked)
                           .arg(counts.sent)
                           .arg(counts.discarded)
                           .arg(counts.dropped));
    ShowExample();
    ShowParked();
    ShowButtons();
}

// Keeps what is selected, and where the user has scrolled to.
void frmForward::ShowParked() {
    int row = 0;
    for (const auto& [number, frame] : m_forwarder.Frames()) {
        if (!frame.isParked || row >= mostShown)
            continue;
        while (row < lstParked->topLevelItemCount() &&
               lstParked->topLevelItem(row)->data(0, numberRole).toLongLong() < number)
            delete lstParked->takeTopLevelItem(row);
        QTreeWidgetItem* item = lstParked->topLevelItem(row);
        if (item == nullptr || item->data(0, numberRole).toLongLong() != number) {
            item = new QTreeWidgetItem({SidsRequest::TimeIn(frame.body), QString()});
            item->setData(0, numberRole, number);
            lstParked->insertTopLevelItem(row, item);
        }
        item->setText(1, frame.words);
        item->setToolTip(1, frame.words);
        ++row;
    }
    while (lstParked->topLevelItemCount() > row)
        delete lstParked->takeTopLevelItem(row);
}

void frmForward::ShowButtons() {
    const bool isAny = !lstParked->selectedItems().isEmpty();
    cmdRetry->setEnabled(isAny);
    cmdDiscard->setEnabled(isAny);
}

QList<qint64> frmForward::Selected() const {
    QList<qint64> numbers;
    for (const QTreeWidgetItem* item : lstParked->selectedItems())
        numbers.append(item->data(0, numberRole).toLongLong());
    return numbers;
}

bool frmForward::IsUrlGood() {
    if (ForwardSettings::Address(txtUrl->text()).isValid())
        return true;
    m_messages.MessageBox(this,
                          tr("'Server's address' must begin with https:// or http:// and name a server."),
                          MessageStyle::Critical);
    return false;
}

void frmForward::closeEvent(QCloseEvent* event) {
    if (m_guard->MayClose())
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void frmForward::Ok() {
    if (!m_guard->MayAccept())
        return;
    ForwardSettings settings = m_forwarder.Settings();
    settings.use = chkUse->isChecked();
    settings.dryRun = chkDryRun->isChecked();
    settings.url = txtUrl->text().trimmed();
    settings.token = txtToken->text().trimmed();
    m_forwarder.SetSettings(settings);
    accept();
}
