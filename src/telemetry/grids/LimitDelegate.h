#pragma once

#include "telemetry/limits/ChannelLimits.h"

#include <QColor>
#include <QStyledItemDelegate>

class ValueAge;

/// Paints the values of a telemetry grid. One outside its limits is amber (a warning) or red (an alarm), with
/// one or two triangles that point to where it lies. Text and copies of the cell stay what they are.
class LimitDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    struct Colours {
        QColor ground;
        QColor text; ///< and triangles
    };

    /// For any level but Normal; the same on light and on dark desktops.
    static Colours ColoursOf(Level level);

    /// Values are painted by their age as well, which outlives the delegate.
    void SetAges(const ValueAge& ages) { m_ages = &ages; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    void ShowAge(QStyleOptionViewItem& option, const QModelIndex& index) const;

    const ValueAge* m_ages = nullptr; // none where nobody asks
};
