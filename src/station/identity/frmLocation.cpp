#include "station/identity/frmLocation.h"

#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/Named.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"
#include "station/identity/FieldRules.h"
#include "station/identity/Station.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>

using PositionText::Axis;

namespace {

constexpr int fieldWidth = 30; // characters

} // namespace

frmLocation::frmLocation(Station& station, const mb& messages, QWidget* parent)
    : QDialog(parent)
    , m_station(station)
    , m_messages(messages)
    , m_guard(this)
    , txtCallsign(Named(u"txtCallsign", new QLineEdit(this)))
    , txtLat(Named(u"txtLat", new QLineEdit(this)))
    , txtLong(Named(u"txtLong", new QLineEdit(this)))
    , txtComment(Named(u"txtComment", new QLineEdit(this)))
    , labLatMeans(Named(u"labLatMeans", new QLabel(this)))
    , labLongMeans(Named(u"labLongMeans", new QLabel(this)))
    , cmdUseDecimal(Named(u"cmdUseDecimal", new QPushButton(this)))
    , labCommentNote(Named(u"labCommentNote", new QLabel(this)))
    , labLocator(Named(u"labLocator", new QLabel(this))) {
    setObjectName(QStringLiteral("frmLocation"));
    setWindowTitle(QStringLiteral("Station Information"));
    Build();

    FilterCharacters(txtCallsign, QIRUtil::CallsignCharacter);
    FilterCharacters(txtLat, FieldRules::PositionCharacter);
    FilterCharacters(txtLong, FieldRules::PositionCharacter);
    KeepOnOneLine(txtComment);
    for (QLineEdit* field : {txtLat, txtLong}) {
        connect(field, &QLineEdit::textChanged, this, &frmLocation::ShowMeaning);
        connect(field, &QLineEdit::textEdited, this, &frmLocation::OfferDecimal);
        field->installEventFilter(this);
    }
    connect(txtComment, &QLineEdit::textChanged, this, &frmLocation::ShowCommentNote);
    connect(cmdUseDecimal, &QPushButton::clicked, this, &frmLocation::UseDecimal);
    m_guard.AddExempt(cmdUseDecimal); // it mends what stands in the fields
    m_guard.AddField(txtCallsign, [this] { return CheckCallsign(); });
    m_guard.AddField(txtLat, [this] { return CheckPosition(*txtLat, Axis::Latitude); });
    m_guard.AddField(txtLong, [this] { return CheckPosition(*txtLong, Axis::Longitude); });

    Fill();
    CentreOnScreen(this);
}

void frmLocation::Build() {
    auto* form = new QFormLayout;
    const std::pair<QString, QLineEdit*> rows[] = {
        {QStringLiteral("C&allsign"), txtCallsign},
        {QStringLiteral("&Latitude"), txtLat},
        {QStringLiteral("Lo&ngitude"), txtLong},
        {QStringLiteral("Co&mment"), txtComment},
    };
    for (const auto& [label, field] : rows) {
        field->setFont(FixedFont());
        field->setMinimumWidth(field->fontMetrics().averageCharWidth() * fieldWidth);
        SelectAllOnFocus(field);
        form->addRow(label, field);
        if (field == txtLat)
            form->addRow(QString(), labLatMeans);
        else if (field == txtLong) {
            form->addRow(QString(), labLongMeans);
            form->addRow(QString(), cmdUseDecimal);
        } else if (field == txtComment)
            form->addRow(QString(), labCommentNote);
    }
    for (QLabel* note : {labLatMeans, labLongMeans, labCommentNote})
        note->setTextFormat(Qt::PlainText);
    // The longest note has room from the start, so that the window keeps its size while somebody types.
    labLongMeans->setMinimumWidth(labLongMeans->fontMetrics().horizontalAdvance(
        PositionText::Understood(QStringLiteral("?"), Axis::Longitude)));
    cmdUseDecimal->setAutoDefault(false);
    cmdUseDecimal->hide();
    txtCallsign->setPlaceholderText(QStringLiteral("N0CALL-1"));
    txtLat->setPlaceholderText(QStringLiteral("DD.MM.hhN"));
    txtLong->setPlaceholderText(QStringLiteral("DDD.MM.hhE"));
    labLocator->setFont(FixedFont());
    labLocator->setTextInteractionFlags(Qt::TextSelectableByMouse);
    labLocator->setAccessibleName(QStringLiteral("Locator"));
    form->addRow(QStringLiteral("Locator"), labLocator);

    auto* cmdOk = Named(u"cmdOk", new QPushButton(QStringLiteral("&OK"), this));
    auto* cmdCancel = Named(u"cmdCancel", new QPushButton(QStringLiteral("&Cancel"), this));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    cmdOk->setDefault(true);
    connect(cmdOk, &QPushButton::clicked, this, &frmLocation::Ok);
    connect(cmdCancel, &QPushButton::clicked, this, &frmLocation::reject);
    m_guard.AddExempt(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    const QList<QWidget*> order{txtCallsign, txtLat, txtLong, cmdUseDecimal, txtComment, cmdOk, cmdCancel};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmLocation::Fill() {
    txtLat->setText(PositionText::ToDisplayed(m_station.strLat(), Axis::Latitude));
    txtLong->setText(PositionText::ToDisplayed(m_station.strLong(), Axis::Longitude));
    txtComment->setText(m_station.strComment());
    txtCallsign->setText(m_station.strCallsign());
    ShowLocator();
    m_shownLocator = labLocator->text();
}

bool frmLocation::CheckCallsign() {
    if (FieldRules::IsCallsignOrEmpty(txtCallsign->text()))
        return true;
    m_messages.MessageBox(this, QStringLiteral("That is not a valid callsign."), MessageStyle::Critical);
    return false;
}

bool frmLocation::CheckPosition(QLineEdit& field, Axis axis) {
    const std::optional<QString> position = PositionText::ValidateLatLong(field.text(), axis, true);
    if (!position) {
        m_messages.MessageBox(
            this, QStringLiteral("I can't make that into a valid ") + PositionText::Name(axis) + u'.',
            MessageStyle::Exclamation);
        return false;
    }
    if (*position != field.text())
        field.setText(*position);
    ShowLocator();
    return true;
}

void frmLocation::ShowLocator() {
    const auto locator = PositionText::Locator(PositionText::ToStored(txtLat->text(), Axis::Latitude),
                                               PositionText::ToStored(txtLong->text(), Axis::Longitude));
    if (locator)
        labLocator->setText(*locator);
}

// What was understood, as the user types.
void frmLocation::ShowMeaning() {
    labLatMeans->setText(PositionText::Understood(txtLat->text(), Axis::Latitude));
    labLongMeans->setText(PositionText::Understood(txtLong->text(), Axis::Longitude));
    txtLat->setAccessibleDescription(labLatMeans->text());
    txtLong->setAccessibleDescription(labLongMeans->text());
}

bool frmLocation::eventFilter(QObject* watched, QEvent* event) {
    constexpr qsizetype longestPosition = 200;
    if (event->type() == QEvent::Drop)
        m_dropped = static_cast<QDropEvent*>(event)->mimeData()->text().left(longestPosition);
    return QDialog::eventFilter(watched, event);
}

// The decimal degrees that came into the field in one piece: pasted, with the mouse's middle button too, or
// dropped. The field itself has not kept signs and commas.
std::optional<PositionText::DecimalDegrees> frmLocation::DecimalIn(const QString& field) const {
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    for (const QString& text : {clipboard.text(), clipboard.text(QClipboard::Selection), m_dropped}) {
        QString kept;
        for (const QChar character : text)
            if (const auto passed = FieldRules::PositionCharacter(character))
                kept += *passed;
        const auto decimal = PositionText::FromDecimal(text);
        if (decimal && field.contains(kept.trimmed()))
            return decimal;
    }
    return std::nullopt;
}

// Decimal degrees from a map's page would be read as something else, or not at all: their meaning is offered.
void frmLocation::OfferDecimal() {
    auto* field = qobject_cast<QLineEdit*>(sender());
    const auto decimal = DecimalIn(field->text());
    cmdUseDecimal->setVisible(decimal.has_value());
    if (!decimal)
        return;
    const bool isLongitude = !decimal->second && field == txtLong;
    m_offeredLat = isLongitude ? QString() : PositionText::FromDegrees(decimal->first, Axis::Latitude);
    m_offeredLong = decimal->second ? PositionText::FromDegrees(*decimal->second, Axis::Longitude)
                    : isLongitude   ? PositionText::FromDegrees(decimal->first, Axis::Longitude)
                                    : QString();
    const QStringList offered = QStringList{m_offeredLat, m_offeredLong}.filter(QStringLiteral("."));
    cmdUseDecimal->setText(QStringLiteral("&Use the decimal degrees: ") + offered.join(u' '));
}

void frmLocation::UseDecimal() {
    if (!m_offeredLat.isEmpty())
        txtLat->setText(m_offeredLat);
    if (!m_offeredLong.isEmpty())
        txtLong->setText(m_offeredLong);
    ShowLocator();
    cmdUseDecimal->hide();
    (m_offeredLong.isEmpty() ? txtLat : txtLong)->setFocus();
}

void frmLocation::ShowCommentNote() {
    QString lost;
    const QString comment = txtComment->text();
    for (qsizetype i = 0; i < comment.size(); ++i) {
        const QString character = comment.mid(i, comment[i].isHighSurrogate() ? 2 : 1);
        if (Text::FromBytes(Text::ToBytes(character)) != character && !lost.contains(character))
            lost += character;
        i += character.size() - 1;
    }
    labCommentNote->setText(
        lost.isEmpty() ? QString() : QStringLiteral("The air cannot carry: %1 (\"?\" is sent)").arg(lost));
    txtComment->setAccessibleDescription(labCommentNote->text());
}

// What a position field stands for: what is stored, in whatever form, as long as the field shows just that.
QString frmLocation::StoredForm(const QLineEdit& field, const QString& stored, Axis axis) {
    return field.text() == PositionText::ToDisplayed(stored, axis)
               ? stored
               : PositionText::ToStored(field.text(), axis);
}

void frmLocation::closeEvent(QCloseEvent* event) {
    if (m_guard.MayClose())
        QDialog::closeEvent(event);
    else
        event->ignore();
}

void frmLocation::Ok() {
    if (!m_guard.MayAccept())
        return;
    const QString comment = m_station.strComment();
    m_station.setStrLat(StoredForm(*txtLat, m_station.strLat(), Axis::Latitude));
    m_station.setStrLong(StoredForm(*txtLong, m_station.strLong(), Axis::Longitude));
    m_station.setStrCallsign(txtCallsign->text());
    m_station.setStrComment(txtComment->text() == comment ? comment : txtComment->text().trimmed());
    const bool keepsLocator = labLocator->text() == m_shownLocator && !m_station.strLoc().isEmpty();
    m_station.setStrLoc(keepsLocator ? m_station.strLoc() : labLocator->text());
    accept();
}
