#include "link/agwpe/frmAgwpeSetup.h"

#include "foundation/fields/FieldGuard.h"
#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/text/QIRUtil.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int longestText = 80;
constexpr int longestPort = 5;
constexpr int shownCharacters = 30;

// What a field stands for: what was stored, of which it shows no more than its length, until the user changes
// it.
QString Entered(const QLineEdit& field, const QString& stored) {
    return field.text() == stored.left(field.maxLength()) ? stored : field.text().trimmed();
}

} // namespace

frmAgwpeSetup::frmAgwpeSetup(AgwSettings& settings, AgwLink& link, const mb& messages, QWidget* parent)
    : QDialog(parent)
    , m_settings(settings)
    , m_link(link)
    , m_messages(messages)
    , m_guard(new FieldGuard(this))
    , m_oldHost(settings.strAgwHost())
    , m_oldPort(settings.intAgwPort())
    , m_oldLoginId(settings.strAgwLoginId())
    , m_oldPassword(settings.strAgwPassword()) {
    setObjectName(QStringLiteral("frmAgwpeSetup"));
    setWindowTitle(tr("AGWPE Setup"));
    auto* fields = new QFormLayout;
    auto* all = new QVBoxLayout(this);
    all->addLayout(fields);
    const auto addField = [&](const QString& name, const QString& label, int maxLength, const QString& text) {
        auto* edit = new QLineEdit(this);
        edit->setObjectName(QStringLiteral("txt") + name);
        edit->setFont(FixedFont());
        edit->setMaxLength(maxLength);
        edit->setText(text);
        SelectAllOnFocus(edit);
        auto* caption = new QLabel(label, this);
        caption->setObjectName(QStringLiteral("lab") + name);
        caption->setBuddy(edit);
        fields->addRow(caption, edit);
        return edit;
    };
    txtHostAddr =
        addField(QStringLiteral("HostAddr"), tr("&Host address"), longestText, settings.strAgwHost());
    txtPort =
        addField(QStringLiteral("Port"), tr("&Port"), longestPort, QString::number(settings.intAgwPort()));
    txtLoginId = addField(QStringLiteral("LoginId"), tr("&Log-in Id"), longestText, settings.strAgwLoginId());
    txtPassword =
        addField(QStringLiteral("Password"), tr("Pass&word"), longestText, settings.strAgwPassword());
    txtPassword->setEchoMode(QLineEdit::Password);
    txtHostAddr->setMinimumWidth(txtHostAddr->fontMetrics().horizontalAdvance(u'0') * shownCharacters);

    auto* labHint = new QLabel(tr("Press F1 and read the help!"), this);
    labHint->setObjectName(QStringLiteral("labHint"));
    all->addWidget(labHint);
    AddButtons(all);
    FilterCharacters(txtPort, QIRUtil::DigitCharacter);
    m_guard->AddField(txtHostAddr, [this] { return IsHostGood(); });
    m_guard->AddField(txtPort, [this] { return IsPortGood(); });
    txtHostAddr->setFocus();
    adjustSize();
    CentreOnScreen(this);
}

void frmAgwpeSetup::AddButtons(QVBoxLayout* all) {
    auto* cmdOk = new QPushButton(tr("&Ok"), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    auto* cmdCancel = new QPushButton(tr("&Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    all->addLayout(buttons);
    m_guard->AddExempt(cmdCancel);
    connect(cmdOk, &QPushButton::clicked, this, &frmAgwpeSetup::Ok);
    connect(cmdCancel, &QPushButton::clicked, this, &frmAgwpeSetup::reject);
}

bool frmAgwpeSetup::IsHostGood() {
    if (!txtHostAddr->text().trimmed().isEmpty())
        return true;
    m_messages.MessageBox(this, tr("'Host address' cannot be blank."), MessageStyle::Critical);
    return false;
}

bool frmAgwpeSetup::IsPortGood() {
    if (AgwSettings::PortFromText(txtPort->text()))
        return true;
    m_messages.MessageBox(this, tr("'Port' must be a numeric value between 1 and 32767"),
                          MessageStyle::Critical);
    return false;
}

void frmAgwpeSetup::closeEvent(QCloseEvent* event) {
    if (m_guard->MayClose())
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void frmAgwpeSetup::Ok() {
    if (!m_guard->MayAccept())
        return;
    m_settings.setStrAgwHost(Entered(*txtHostAddr, m_oldHost));
    m_settings.setStrAgwPassword(Entered(*txtPassword, m_oldPassword));
    m_settings.setStrAgwLoginId(Entered(*txtLoginId, m_oldLoginId));
    m_settings.setIntAgwPort(AgwSettings::PortFromText(txtPort->text()).value_or(m_oldPort));
    // Host names are the same in any case.
    if (m_settings.strAgwHost().toUpper() != m_oldHost.toUpper() ||
        m_settings.strAgwPassword() != m_oldPassword || m_settings.strAgwLoginId() != m_oldLoginId ||
        m_settings.intAgwPort() != m_oldPort)
        m_link.AgwReconnect();
    accept();
}
