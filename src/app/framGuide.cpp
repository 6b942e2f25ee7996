#include "app/framGuide.h"

#include "foundation/fields/Named.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

using StartGuide::State;
using StartGuide::Step;

framGuide::framGuide(QWidget* parent)
    : QGroupBox(tr("First steps"), parent) {
    setObjectName(QStringLiteral("framGuide"));
    auto* layout = new QGridLayout(this);
    layout->setVerticalSpacing(2);
    AddRow(*layout, Step::Formulae, QStringLiteral("Formulae"));
    AddRow(*layout, Step::Engine, QStringLiteral("Engine"));
    AddRow(*layout, Step::Position, QStringLiteral("Position"));
    AddRow(*layout, Step::Elements, QStringLiteral("Elements"));
    auto* cmdGuideClose = Named(u"cmdGuideClose", new QPushButton(tr("Do &not show again")));
    connect(cmdGuideClose, &QPushButton::clicked, this, &framGuide::CloseAsked);
    layout->addWidget(cmdGuideClose, static_cast<int>(StartGuide::steps), 2);
    layout->setColumnStretch(1, 1);
}

void framGuide::AddRow(QGridLayout& layout, Step step, const QString& name) {
    const auto index = static_cast<std::size_t>(step);
    const int row = static_cast<int>(index);
    Row& parts = m_rows[index];
    parts.mark = Named(QStringLiteral("labGuideMark") + name, new QLabel);
    parts.text = Named(QStringLiteral("labGuide") + name, new QLabel);
    parts.text->setTextFormat(Qt::PlainText);
    parts.text->setWordWrap(true);
    parts.button = Named(QStringLiteral("cmdGuide") + name, new QPushButton);
    layout.addWidget(parts.mark, row, 0);
    layout.addWidget(parts.text, row, 1);
    layout.addWidget(parts.button, row, 2);
    connect(parts.button, &QPushButton::clicked, this, [this, step] { Q_EMIT Mend(step); });
}

void framGuide::Show(const std::array<StartGuide::Line, StartGuide::steps>& lines) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const StartGuide::Line& line = lines[i];
        const bool isThere = line.state == State::There;
        const QString text = QStringLiteral("%1: %2").arg(line.name, line.text);
        m_rows[i].mark->setText(isThere ? QStringLiteral("\u2713") : QStringLiteral("\u2022"));
        m_rows[i].mark->setAccessibleName(isThere ? tr("Done") : tr("Missing"));
        m_rows[i].text->setText(text);
        m_rows[i].button->setText(line.mend);
        m_rows[i].button->setAccessibleDescription(text);
        m_rows[i].button->setVisible(!isThere);
    }
}
