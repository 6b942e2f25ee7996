#include "link/EngineSetupDialog.h"

#include "foundation/fields/FieldGuard.h"
#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/text/QIRUtil.h"
#include "link/PortText.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int longestPort = 5;
constexpr int shownCharacters = 30;

} // namespace

EngineSetupDialog::EngineSetupDialog(const QString& name, const QString& title, int greatestPort,
                                     const mb& messages, QWidget* parent)
    : QDialog(parent)
    , m_greatestPort(greatestPort)
    , m_messages(messages)
    , m_guard(new FieldGuard(this))
    , m_all(new QVBoxLayout(this))
    , m_fields(new QFormLayout) {
    setObjectName(name);
    setWindowTitle(title);
    m_all->addLayout(m_fields);
}

QLineEdit* EngineSetupDialog::AddField(const QString& name, const QString& label, int maxLength,
                                       const QString& text) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QStringLiteral("txt") + name);
    edit->setFont(FixedFont());
    edit->setMaxLength(maxLength);
    edit->setText(text);
    SelectAllOnFocus(edit);
    auto* caption = new QLabel(label, this);
    caption->setObjectName(QStringLiteral("lab") + name);
    caption->setBuddy(edit);
    m_fields->addRow(caption, edit);
    return edit;
}

void EngineSetupDialog::AddAddress(const QString& host, int port) {
    txtHostAddr = AddField(QStringLiteral("HostAddr"), tr("&Host address"), longestText, host);
    txtHostAddr->setMinimumWidth(txtHostAddr->fontMetrics().horizontalAdvance(u'0') * shownCharacters);
    txtPort = AddField(QStringLiteral("Port"), tr("&Port"), longestPort, QString::number(port));
    FilterCharacters(txtPort, QIRUtil::DigitCharacter);
    m_guard->AddField(txtHostAddr, [this] { return IsHostGood(); });
    m_guard->AddField(txtPort, [this] { return IsPortGood(); });
}

void EngineSetupDialog::Complete() {
    auto* labHint = new QLabel(tr("Press F1 and read the help!"), this);
    labHint->setObjectName(QStringLiteral("labHint"));
    m_all->addWidget(labHint);
    AddButtons();
    txtHostAddr->setFocus();
    adjustSize();
    CentreOnScreen(this);
}

void EngineSetupDialog::AddButtons() {
    auto* cmdOk = new QPushButton(tr("&Ok"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    auto* cmdCancel = new QPushButton(tr("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    m_all->addLayout(buttons);
    m_guard->AddExempt(cmdCancel);
    connect(cmdOk, &QPushButton::clicked, this, &EngineSetupDialog::Ok);
    connect(cmdCancel, &QPushButton::clicked, this, &EngineSetupDialog::reject);
}

QString EngineSetupDialog::Entered(const QLineEdit& field, const QString& stored) {
    return field.text() == stored.left(field.maxLength()) ? stored : field.text().trimmed();
}

int EngineSetupDialog::EnteredPort(int stored) const {
    return PortFromText(txtPort->text(), m_greatestPort).value_or(stored);
}

bool EngineSetupDialog::IsHostGood() {
    if (!txtHostAddr->text().trimmed().isEmpty())
        return true;
    m_messages.MessageBox(this, tr("'Host address' cannot be blank."), MessageStyle::Critical);
    return false;
}

bool EngineSetupDialog::IsPortGood() {
    if (PortFromText(txtPort->text(), m_greatestPort))
        return true;
    m_messages.MessageBox(this, tr("'Port' must be a numeric value between 1 and %1").arg(m_greatestPort),
                          MessageStyle::Critical);
    return false;
}

void EngineSetupDialog::closeEvent(QCloseEvent* event) {
    if (m_guard->MayClose())
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void EngineSetupDialog::Ok() {
    if (!m_guard->MayAccept())
        return;
    Store();
    accept();
}
