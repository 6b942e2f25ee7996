#include "telemetry/plots/RangeBar.h"

#include "foundation/fields/Named.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "telemetry/plots/HistoryServices.h"

#include <QComboBox>
#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int longestTime = 19; // characters

QLabel* LabelOf(QAnyStringView name, const QString& text, QWidget* field) {
    auto* label = Named(name, new QLabel(text, field->parentWidget()));
    label->setBuddy(field);
    return label;
}

} // namespace

RangeBar::RangeBar(const HistoryServices& services, QWidget* parent)
    : QWidget(parent)
    , m_services(services)
    , cboRange(Named(u"cboRange", new QComboBox(this)))
    , txtFrom(Named(u"txtFrom", new QLineEdit(this)))
    , txtTo(Named(u"txtTo", new QLineEdit(this)))
    , cmdShow(Named(u"cmdShow", new QPushButton(tr("Sho&w"), this))) {
    setObjectName(u"fraRange");
    for (const char* caption : HistoryRange::captions)
        cboRange->addItem(tr(caption));
    cboRange->addItem(tr("Typed"));
    for (QLineEdit* field : {txtFrom, txtTo}) {
        field->setMaxLength(longestTime);
        field->setPlaceholderText(QStringLiteral("yyyy-mm-dd hh:mm:ss"));
        const int hint = fontMetrics().horizontalAdvance(field->placeholderText());
        const int time = fontMetrics().horizontalAdvance(QStringLiteral("0000-00-00 00:00:00"));
        field->setMinimumWidth(std::max(hint, time) + 3 * fontMetrics().averageCharWidth());
        connect(field, &QLineEdit::returnPressed, this, &RangeBar::TakeTyped);
    }
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(LabelOf(u"labRange", tr("&Range"), cboRange));
    layout->addWidget(cboRange);
    layout->addWidget(LabelOf(u"labFrom", tr("&From"), txtFrom));
    layout->addWidget(txtFrom);
    layout->addWidget(LabelOf(u"labTo", tr("&to"), txtTo));
    layout->addWidget(txtTo);
    layout->addWidget(cmdShow);
    connect(cmdShow, &QPushButton::clicked, this, &RangeBar::TakeTyped);
    connect(cboRange, &QComboBox::activated, this, [this](int index) {
        if (index >= static_cast<int>(HistoryRange::captions.size()))
            return TakeTyped();
        m_range = {static_cast<HistoryRange::Kind>(index)};
        Q_EMIT Chosen();
    });
}

void RangeBar::SetRange(const HistoryRange& range) {
    m_range = range;
    cboRange->setCurrentIndex(static_cast<int>(range.kind));
}

void RangeBar::ShowTimes(qint64 from, qint64 to) {
    if ((txtFrom->hasFocus() || txtTo->hasFocus()) && (txtFrom->isModified() || txtTo->isModified()))
        return; // somebody types there
    const auto text = [this](qint64 utc) {
        return FormatDateTime(m_services.displayTime(utc), u"yyyy-mm-dd hh:nn:ss");
    };
    txtFrom->setText(text(from));
    txtTo->setText(text(to));
}

void RangeBar::TakeTyped() {
    const std::optional<qint64> from = TimeOf(txtFrom->text());
    const std::optional<qint64> to = TimeOf(txtTo->text());
    if (!from || !to || *from >= *to) {
        m_services.messages.MessageBox(
            window(), tr("Please enter two times such as 2026-11-21 15:30, the earlier one first."),
            MessageStyle::Exclamation);
        SetRange(m_range);
        QLineEdit* wrong = from ? txtTo : txtFrom;
        wrong->setFocus();
        wrong->selectAll();
        return;
    }
    txtFrom->setModified(false);
    txtTo->setModified(false);
    SetRange({HistoryRange::Kind::Typed, *from, *to});
    Q_EMIT Chosen();
}

std::optional<qint64> RangeBar::TimeOf(const QString& text) const {
    for (const char* form : {"yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd HH:mm", "yyyy-MM-dd"}) {
        QDateTime time = QDateTime::fromString(text.trimmed(), QString::fromLatin1(form));
        if (!time.isValid() || time.date().year() < 1)
            continue;
        time.setTimeSpec(m_services.isLocalTime() ? Qt::LocalTime : Qt::UTC);
        return time.toMSecsSinceEpoch();
    }
    return std::nullopt;
}
