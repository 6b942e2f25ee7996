#include "telemetry/grids/TelemetryGridView.h"

#include "foundation/placement/Twips.h"
#include "telemetry/grids/LimitDelegate.h"
#include "telemetry/grids/TelemetryGrid.h"
#include "telemetry/grids/TipCell.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr double nameWidth = 960; // twips
constexpr double valueWidth = 720;

// Gives the name column the look of the header row.
class FixedColumnDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->backgroundBrush = option->palette.button();
        option->palette.setBrush(QPalette::Text, option->palette.buttonText());
        option->state.setFlag(QStyle::State_MouseOver, false);
    }
};

// What the air brought must not be taken for markup, nor fill the screen. The remark has a line of its own.
QString PlainTip(const QString& text, const QString& remark) {
    constexpr qsizetype longestShown = 200;
    QString shown = text.left(longestShown);
    if (!shown.isEmpty() && !remark.isEmpty())
        shown += u'\n' + remark.left(longestShown);
    return Qt::mightBeRichText(shown) ? Qt::convertFromPlainText(shown, Qt::WhiteSpacePre) : shown;
}

} // namespace

TelemetryGridView::TelemetryGridView(TelemetryGrid& grid, TipCell& tipCell, QWidget* parent)
    : QTableView(parent)
    , m_grid(grid)
    , m_tipCell(tipCell) {
    setObjectName(QStringLiteral("gTlm%1").arg(grid.Index()));
    setAccessibleName(tr("%1 telemetry").arg(grid.TextMatrix(0, TelemetryGrid::Name)));
    setModel(&grid);
    setItemDelegate(new LimitDelegate(this));
    setItemDelegateForColumn(TelemetryGrid::Name, new FixedColumnDelegate(this));
    setColumnHidden(TelemetryGrid::LabelA, true);
    setColumnHidden(TelemetryGrid::LabelB, true);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ContiguousSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(TelemetryGrid::Name, QHeaderView::Fixed);
    setMouseTracking(true); // the viewport follows
    horizontalHeader()->viewport()->setMouseTracking(true);
    horizontalHeader()->viewport()->installEventFilter(this);

    auto* copy = new QAction(tr("&Copy"), this);
    copy->setObjectName(QStringLiteral("mnuCopy%1").arg(grid.Index()));
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &TelemetryGridView::CopySelection);
    addAction(copy);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    selectionModel()->setCurrentIndex(grid.index(0, TelemetryGrid::ValueA), QItemSelectionModel::NoUpdate);
    FitCells();
}

void TelemetryGridView::FitCells() {
    const QFontMetrics metrics = fontMetrics();
    const int margin = metrics.horizontalAdvance(u'0');
    int names = Twips::ToPixels(nameWidth, *this);
    for (int row = 0; row <= m_grid.Rows(); ++row)
        names = std::max(names,
                         metrics.horizontalAdvance(m_grid.TextMatrix(row, TelemetryGrid::Name)) + 2 * margin);
    setColumnWidth(TelemetryGrid::Name, names);
    horizontalHeader()->setMinimumSectionSize(
        std::max(Twips::ToPixels(valueWidth, *this),
                 metrics.horizontalAdvance(QStringLiteral("-9999.99")) + 2 * margin));
    verticalHeader()->setMinimumSectionSize(0);
    verticalHeader()->setDefaultSectionSize(metrics.height() + metrics.height() / 3);
    updateGeometry();
}

QSize TelemetryGridView::sizeHint() const {
    const int width = columnWidth(TelemetryGrid::Name) + 2 * horizontalHeader()->minimumSectionSize();
    const int height = horizontalHeader()->sizeHint().height() + verticalHeader()->length();
    return QSize(width, height) + QSize(2 * frameWidth(), 2 * frameWidth());
}

QSize TelemetryGridView::minimumSizeHint() const {
    return sizeHint();
}

void TelemetryGridView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        FitCells();
}

void TelemetryGridView::MouseOver(int row, int column) {
    if (const std::optional<QString> tip = m_tipCell.MouseMove(m_grid, row, column))
        setToolTip(*tip);
}

void TelemetryGridView::mouseMoveEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    MouseOver(cell.isValid() ? cell.row() + 1 : -1, cell.isValid() ? cell.column() : -1);
    QTableView::mouseMoveEvent(event);
}

bool TelemetryGridView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == horizontalHeader()->viewport() && event->type() == QEvent::MouseMove)
        MouseOver(0,
                  horizontalHeader()->logicalIndexAt(static_cast<QMouseEvent*>(event)->position().toPoint()));
    return QTableView::eventFilter(watched, event);
}

bool TelemetryGridView::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QTableView::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString remark = indexAt(help->pos()).data(TelemetryGrid::LimitText).toString();
    QToolTip::showText(help->globalPos(), PlainTip(toolTip(), remark), viewport());
    return true;
}

void TelemetryGridView::CopySelection() const {
    QModelIndexList cells = selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end()); // by rows, then columns
    QString text;
    int row = -1;
    for (const QModelIndex& cell : cells) {
        if (!text.isEmpty() || row >= 0)
            text += cell.row() == row ? u'\t' : u'\n';
        text += cell.data(TelemetryGrid::FullText).toString();
        row = cell.row();
    }
    if (!cells.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}
