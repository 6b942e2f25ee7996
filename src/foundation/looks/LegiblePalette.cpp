#include "foundation/looks/LegiblePalette.h"

#include "foundation/looks/Contrast.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QScopedValueRollback>
#include <QWidget>

#include <array>
#include <utility>

namespace {

// Texts, and what they stand on.
constexpr std::array<std::pair<QPalette::ColorRole, QPalette::ColorRole>, 3> pairs{{
    {QPalette::WindowText, QPalette::Window},
    {QPalette::Text, QPalette::Base},
    {QPalette::ButtonText, QPalette::Button},
}};

// A shade that can be read on every ground on which styles put the text.
QColor DimmedOn(const QPalette& palette, QPalette::ColorRole text, QPalette::ColorRole ground) {
    QColor dimmed =
        Contrast::Dimmed(palette.color(QPalette::Active, text), palette.color(QPalette::Active, ground));
    for (const auto role : {ground, QPalette::Window, QPalette::Base, QPalette::Button})
        for (const auto group : {QPalette::Active, QPalette::Disabled})
            dimmed = Contrast::Legible(dimmed, palette.color(group, role));
    return dimmed;
}

} // namespace

LegiblePalette::LegiblePalette(QWidget* window)
    : QObject(window) {
    Apply();
    window->installEventFilter(this);
}

bool LegiblePalette::eventFilter(QObject* watched, QEvent* event) {
    const bool isChange =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange;
    if (isChange && !m_isApplying)
        Apply();
    return QObject::eventFilter(watched, event);
}

void LegiblePalette::Apply() {
    const QScopedValueRollback applying(m_isApplying, true);
    const QPalette before = QApplication::palette();
    QPalette palette = before;
    for (const auto& [text, ground] : pairs)
        palette.setColor(QPalette::Disabled, text, DimmedOn(before, text, ground));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        palette.setColor(group, QPalette::PlaceholderText, DimmedOn(before, QPalette::Text, QPalette::Base));
    if (palette != before)
        QApplication::setPalette(palette);
}
