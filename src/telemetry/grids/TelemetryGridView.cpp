#include "telemetry/grids/TelemetryGridView.h"

#include "foundation/placement/Twips.h"
#include "telemetry/grids/LimitDelegate.h"
#include "telemetry/grids/TelemetryGrid.h"
#include "telemetry/grids/TipCell.h"
#include "telemetry/grids/ValueAge.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QTimer>
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
    , m_tipCell(tipCell)
    , m_delegate(new LimitDelegate(this)) {
    setObjectName(QStringLiteral("gTlm%1").arg(grid.Index()));
    setAccessibleName(tr("%1 telemetry").arg(grid.TextMatrix(0, TelemetryGrid::Name)));
    setModel(&grid);
    setItemDelegate(m_delegate);
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

    QAction* copy = AddEntry(QStringLiteral("mnuCopy"), tr("&Copy"));
    copy->setShortcut(QKeySequence::Copy);
    connect(copy, &QAction::triggered, this, [this] { CopySelection(Qt::DisplayRole); });
    QAction* copyFull = AddEntry(QStringLiteral("mnuCopyFull"), tr("Copy with &full precision"));
    connect(copyFull, &QAction::triggered, this, [this] { CopySelection(TelemetryGrid::FullText); });
    AddHistoryEntries();
    setContextMenuPolicy(Qt::ActionsContextMenu);
    selectionModel()->setCurrentIndex(grid.index(0, TelemetryGrid::ValueA), QItemSelectionModel::NoUpdate);
    FitCells();
}

void TelemetryGridView::AddHistoryEntries() {
    auto* bar = new QAction(this);
    bar->setSeparator(true);
    addAction(bar);
    QAction* ofValue = AddEntry(QStringLiteral("mnuHistoryOfValue"), tr("History of this &value"));
    QAction* history = AddEntry(QStringLiteral("mnuHistory"), tr("&History"));
    connect(ofValue, &QAction::triggered, this, [this] { AskForHistory(currentIndex()); });
    connect(history, &QAction::triggered, this, &TelemetryGridView::History);
    connect(this, &QTableView::doubleClicked, this, &TelemetryGridView::AskForHistory);
}

void TelemetryGridView::AskForHistory(const QModelIndex& cell) {
    if (cell.column() == TelemetryGrid::ValueA || cell.column() == TelemetryGrid::ValueB)
        Q_EMIT HistoryOfValue(cell.column() - TelemetryGrid::ValueA, m_grid.Index(), cell.row() + 1);
}

void TelemetryGridView::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && (event->modifiers() & ~Qt::KeypadModifier) == 0)
        AskForHistory(currentIndex());
    else
        QTableView::keyPressEvent(event);
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

void TelemetryGridView::ShowAges(ValueAge& ages) {
    m_delegate->SetAges(ages);
    QAction* dim = AddEntry(QStringLiteral("mnuDimOld"), tr("&Dim old values"));
    dim->setCheckable(true);
    dim->setChecked(ages.IsOn());
    connect(dim, &QAction::triggered, this, &TelemetryGridView::DimOldToggled);
    auto* fresh = new QTimer(this); // until a new value is like the others
    fresh->setObjectName(QStringLiteral("timFresh%1").arg(m_grid.Index()));
    fresh->setSingleShot(true);
    fresh->setInterval(ValueAge::freshFor);
    connect(fresh, &QTimer::timeout, viewport(), QOverload<>::of(&QWidget::update));
    connect(&m_grid, &TelemetryGrid::dataChanged, fresh, [fresh, &ages] {
        if (ages.IsOn())
            fresh->start();
    });
    connect(&ages, &ValueAge::Changed, this, [this, dim, &ages] {
        dim->setChecked(ages.IsOn());
        viewport()->update();
    });
}

QAction* TelemetryGridView::AddEntry(const QString& name, const QString& caption) {
    auto* entry = new QAction(caption, this);
    entry->setObjectName(name + QString::number(m_grid.Index()));
    entry->setShortcutContext(Qt::WidgetShortcut);
    addAction(entry);
    return entry;
}

// What is marked, with the headings over it and the names before it, as a spreadsheet takes it.
void TelemetryGridView::CopySelection(int role) const {
    const QItemSelection marked = selectionModel()->selection();
    if (marked.isEmpty())
        return;
    const QItemSelectionRange& cells = marked.first(); // a selection is one rectangle
    const int left = std::max<int>(cells.left(), TelemetryGrid::ValueA);
    const int right = std::min<int>(cells.right(), TelemetryGrid::ValueB);
    QStringList lines;
    for (int row = cells.top() - 1; row <= cells.bottom(); ++row) {
        const bool isHeading = row < cells.top();
        QStringList line{isHeading ? m_grid.TextMatrix(0, TelemetryGrid::Name)
                                   : m_grid.TextMatrix(row + 1, TelemetryGrid::Name)};
        for (int column = left; column <= right; ++column)
            line.append(isHeading ? m_grid.TextMatrix(0, column)
                                  : m_grid.index(row, column).data(role).toString());
        lines.append(line.join(u'\t'));
    }
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}
