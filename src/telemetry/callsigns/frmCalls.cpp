#include "telemetry/callsigns/frmCalls.h"

#include "foundation/fields/FieldGuard.h"
#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/Named.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/text/QIRUtil.h"
#include "telemetry/callsigns/CallsignItems.h"
#include "telemetry/callsigns/CallsignList.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

namespace {

constexpr int longestEntry = 32; // longer than any callsign, so that a wrong one is seen and refused whole

} // namespace

frmCalls::frmCalls(CallsignList& callsigns, const mb& messages, QWidget* parent)
    : QDialog(parent)
    , m_callsigns(callsigns)
    , m_messages(messages)
    , txtCall(Named(u"txtCall", new QLineEdit(this)))
    , optA(Named(u"optA", new QRadioButton(tr("&A"), this)))
    , optB(Named(u"optB", new QRadioButton(tr("&B"), this)))
    , cmdAdd(Named(u"cmdAdd", new QPushButton(tr("&Put In List"), this)))
    , lstCalls(Named(u"lstCalls", new QListWidget(this)))
    , cmdOk(Named(u"cmdOk", new QPushButton(tr("&Ok"), this)))
    , cmdCancel(Named(u"cmdCancel", new QPushButton(tr("&Cancel"), this)))
    , cmdDefaults(Named(u"cmdDefaults", new QPushButton(tr("&Defaults"), this)))
    , m_guard(new FieldGuard(this)) {
    setObjectName(QStringLiteral("frmCalls"));
    setWindowTitle(tr("QIRAN Callsigns"));
    LayOut();

    txtCall->setMaxLength(longestEntry);
    FilterCharacters(txtCall, QIRUtil::CallsignCharacter);
    SelectAllOnFocus(txtCall);
    m_guard->AddField(txtCall, [this] { return txtCall->text().isEmpty() || IsCallsignGood(); });
    m_guard->AddExempt(cmdCancel);
    lstCalls->installEventFilter(this);

    connect(txtCall, &QLineEdit::textChanged, this, &frmCalls::EnableAdd);
    connect(optA, &QRadioButton::toggled, this, &frmCalls::EnableAdd);
    connect(optB, &QRadioButton::toggled, this, &frmCalls::EnableAdd);
    connect(txtCall, &QLineEdit::returnPressed, this, &frmCalls::SayWhatIsMissing);
    connect(txtCall, &QLineEdit::returnPressed, cmdAdd, &QPushButton::click);
    connect(cmdAdd, &QPushButton::clicked, this, &frmCalls::PutInList);
    connect(lstCalls, &QListWidget::itemDoubleClicked, this, &frmCalls::EditItem);
    connect(cmdOk, &QPushButton::clicked, this, &frmCalls::Ok);
    connect(cmdCancel, &QPushButton::clicked, this, &frmCalls::reject);
    connect(cmdDefaults, &QPushButton::clicked, this, &frmCalls::Defaults);
    EnableAdd();
}

void frmCalls::LayOut() {
    auto* labCall = Named(u"labCall", new QLabel(tr("Call&sign"), this));
    auto* labSide = Named(u"labSide", new QLabel(tr("S&ide"), this));
    auto* labHint = Named(u"labHint", new QLabel(tr("Press F1 and read the help!"), this));
    labCall->setBuddy(txtCall);
    labSide->setBuddy(optA);
    txtCall->setFont(FixedFont());
    optA->setAccessibleName(tr("Side A"));
    optB->setAccessibleName(tr("Side B"));
    lstCalls->setFont(FixedFont());
    lstCalls->setAccessibleName(tr("Callsigns and their sides"));
    lstCalls->setUniformItemSizes(true);
    lstCalls->setEditTriggers(QListWidget::NoEditTriggers);
    lstCalls->setMinimumWidth(lstCalls->fontMetrics().horizontalAdvance(QString(28, u'0')));
    lstCalls->setMinimumHeight(lstCalls->fontMetrics().height() * 10);
    // Enter belongs to the field and to the list, never to a button elsewhere.
    for (QPushButton* button : {cmdAdd, cmdOk, cmdCancel, cmdDefaults})
        button->setAutoDefault(false);

    auto* sides = new QHBoxLayout;
    sides->addWidget(optA);
    sides->addWidget(optB);
    sides->addStretch();
    auto* editor = new QGridLayout;
    editor->addWidget(labCall, 0, 0);
    editor->addWidget(txtCall, 0, 1);
    editor->addWidget(labSide, 1, 0);
    editor->addLayout(sides, 1, 1);
    labMissing = Named(u"labMissing", new QLabel(this));
    editor->addWidget(cmdAdd, 2, 1);
    editor->addWidget(labMissing, 3, 0, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    buttons->addStretch();
    buttons->addWidget(cmdDefaults);
    auto* all = new QVBoxLayout(this);
    all->addLayout(editor);
    all->addWidget(lstCalls, 1);
    all->addWidget(labHint);
    all->addLayout(buttons);

    QWidget* const order[] = {txtCall, optA, optB, cmdAdd, lstCalls, cmdOk, cmdCancel, cmdDefaults};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmCalls::DoCalls(const QString& callsign) {
    ShowCallsigns();
    txtCall->setText(callsign);
    exec();
}

void frmCalls::ShowCallsigns() {
    FillList();
    txtCall->clear();
    for (QRadioButton* side : {optA, optB}) {
        side->setAutoExclusive(false); // exclusive buttons cannot be switched off
        side->setChecked(false);
        side->setAutoExclusive(true);
    }
    txtCall->setFocus();
}

void frmCalls::FillList() {
    QStringList items;
    for (const clsCallsign& callsign : m_callsigns.cCallsigns())
        items.append(CallsignItems::ItemText(callsign));
    lstCalls->clear();
    lstCalls->addItems(items);
}

QStringList frmCalls::Items() const {
    QStringList items;
    for (int row = 0; row < lstCalls->count(); ++row)
        items.append(lstCalls->item(row)->text());
    return items;
}

void frmCalls::EnableAdd() {
    cmdAdd->setEnabled(!txtCall->text().isEmpty() && (optA->isChecked() || optB->isChecked()));
    labMissing->clear();
    labMissing->setAccessibleName({});
}

// Enter acts as the button, which may not be pressed yet.
void frmCalls::SayWhatIsMissing() {
    if (cmdAdd->isEnabled())
        return;
    labMissing->setText(txtCall->text().isEmpty() ? tr("Enter a callsign.") : tr("Choose the side: A or B."));
    labMissing->setAccessibleName(labMissing->text());
}

bool frmCalls::IsCallsignGood() {
    if (QIRUtil::IsValidCallsign(txtCall->text()))
        return true;
    m_messages.MessageBox(this, txtCall->text() + tr(" is not a valid callsign."), MessageStyle::Critical);
    return false;
}

void frmCalls::PutInList() {
    if (!IsCallsignGood()) {
        txtCall->setFocus();
        return;
    }
    QStringList items = Items();
    const qsizetype before = items.size();
    const auto row = static_cast<int>(CallsignItems::PutInList(
        items, {txtCall->text(), optA->isChecked() ? QStringLiteral("A") : QStringLiteral("B")}));
    if (items.size() == before) {
        lstCalls->item(row)->setText(items[row]);
    } else {
        lstCalls->clear();
        lstCalls->addItems(items);
    }
    lstCalls->setCurrentRow(row);
}

void frmCalls::EditItem() {
    const QListWidgetItem* item = lstCalls->currentItem();
    if (item == nullptr)
        return;
    const clsCallsign callsign = CallsignItems::FromItem(item->text());
    txtCall->setText(callsign.strCallsign);
    (callsign.strSide == u"A" ? optA : optB)->setChecked(true);
    txtCall->setFocus();
}

void frmCalls::RemoveItem() {
    const int row = lstCalls->currentRow();
    if (row < 0 || !lstCalls->currentItem()->isSelected()) // the keyboard's place is not the selection
        return;
    delete lstCalls->takeItem(row);
    lstCalls->setCurrentRow(std::min(row, lstCalls->count() - 1));
}

bool frmCalls::eventFilter(QObject* watched, QEvent* event) {
    if (watched != lstCalls || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        EditItem();
        return true;
    case Qt::Key_Delete:
        RemoveItem();
        return true;
    default:
        return false;
    }
}

void frmCalls::closeEvent(QCloseEvent* event) {
    if (m_guard->MayClose())
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void frmCalls::Ok() {
    if (!m_guard->MayAccept())
        return;
    if (lstCalls->count() == 0) {
        m_messages.MessageBox(this, tr("You cannot delete all the callsigns."), MessageStyle::Information);
        return;
    }
    QList<clsCallsign> callsigns;
    for (const QString& item : Items())
        callsigns.append(CallsignItems::FromItem(item));
    m_callsigns.setCCallsigns(callsigns);
    accept();
}

void frmCalls::Defaults() {
    m_callsigns.InitCallsigns();
    m_callsigns.LoadCallsigns();
    FillList();
}
