#include "orbit/predictions/frmPass.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/WindowTitle.h"
#include "foundation/settings/ReplaceFile.h"
#include "foundation/text/UtcTime.h"
#include "orbit/predictions/PrintLines.h"
#include "orbit/service/PassList.h"

#include <QAction>
#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QVBoxLayout>

namespace {

constexpr int columns = 64;
constexpr int lines = 24;
constexpr int headingLines = 4; // of the table

} // namespace

frmPass::frmPass(const clsSats& cSats, const TrackedSatellites& satellites, QWidget* parent,
                 PassServices services)
    : QDialog(parent)
    , m_cSats(cSats)
    , m_satellite(satellites.Selected())
    , m_services(std::move(services))
    , mnuPass(new QMenu(this))
    , txtInfo(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("frmPass"));
    setModal(true);

    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    clsSats::PassInfo info = cSats.PassInfoOf(m_satellite.strObjNum);
    m_table = std::move(info.table);
    m_starts = std::move(info.starts);
    m_fromUtc = info.fromUtc;
    QGuiApplication::restoreOverrideCursor();
    m_caption = satellites.DisplayName() + QStringLiteral(" Pass Predictions");
    SetPlainTitle(*this, m_caption);

    txtInfo->setObjectName(QStringLiteral("txtInfo"));
    txtInfo->setAccessibleName(tr("Pass predictions"));
    // Not to be changed, but its lines can be walked and marked with the keyboard.
    txtInfo->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtInfo->setTabChangesFocus(true);
    txtInfo->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtInfo->setFont(FixedFont());
    txtInfo->setPlainText(m_table);
    txtInfo->setPlaceholderText(
        tr("There are no elements of %1 that can be used.\n\nFetch them: close this window and choose "
           "Options, Download Keps.")
            .arg(satellites.Selected().strBaseName));
    txtInfo->installEventFilter(this);
    txtInfo->viewport()->installEventFilter(this);
    const QFontMetrics metrics(txtInfo->font());
    const int frame = 2 * txtInfo->frameWidth() + static_cast<int>(2 * txtInfo->document()->documentMargin());
    txtInfo->setMinimumWidth(metrics.horizontalAdvance(QString(columns, u'0')) + frame +
                             txtInfo->verticalScrollBar()->sizeHint().width());
    txtInfo->setMinimumHeight(metrics.lineSpacing() * lines / 2 + frame);

    auto* cmdCopy = new QPushButton(tr("&Copy"), this);
    auto* cmdPrint = new QPushButton(tr("&Print"), this);
    auto* cmdFinished = new QPushButton(tr("&Finished"), this);
    cmdCopy->setObjectName(QStringLiteral("cmdCopy"));
    cmdPrint->setObjectName(QStringLiteral("cmdPrint"));
    cmdFinished->setObjectName(QStringLiteral("cmdFinished"));
    cmdFinished->setDefault(true);
    connect(cmdCopy, &QPushButton::clicked, this, &frmPass::Copy);
    connect(cmdPrint, &QPushButton::clicked, this, &frmPass::Print);
    connect(cmdFinished, &QPushButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdCopy);
    buttons->addWidget(cmdPrint);
    buttons->addStretch();
    buttons->addWidget(cmdFinished);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(txtInfo);
    layout->addLayout(buttons);
    const QSize usual(sizeHint().width(), metrics.lineSpacing() * lines + layout->sizeHint().height() -
                                              txtInfo->sizeHint().height() + frame);
    resize(usual.boundedTo(screen()->availableSize() * 9 / 10)); // its title is to be on the screen as well
    cmdFinished->setFocus();
    MakeMenu();
}

void frmPass::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    if (m_size) {
        m_size->Restore();
        m_size->Opened();
    }
    CentreOnScreen(this);
}

void frmPass::RememberSize(clsIni& ini) {
    m_size = std::make_unique<WindowSize>(*this, ini, QStringLiteral("PASS"));
}

void frmPass::done(int result) {
    if (m_size)
        m_size->Save();
    QDialog::done(result);
}

// The list scrolls by page wherever the focus is.
void frmPass::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_PageDown)
        txtInfo->verticalScrollBar()->triggerAction(QScrollBar::SliderPageStepAdd);
    else if (event->key() == Qt::Key_PageUp)
        txtInfo->verticalScrollBar()->triggerAction(QScrollBar::SliderPageStepSub);
    else
        QDialog::keyPressEvent(event);
}

// Enter on any other line is left to the window's default button.
bool frmPass::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched == txtInfo) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && ChoosePass(txtInfo->textCursor()))
            return true;
    }
    if (event->type() == QEvent::MouseButtonDblClick && watched == txtInfo->viewport()) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton)
            ChoosePass(txtInfo->cursorForPosition(mouse->position().toPoint()));
    }
    return QDialog::eventFilter(watched, event);
}

// The passes are the lines under the heading that are not empty.
std::optional<DateTime> frmPass::StartAt(const QTextCursor& cursor) const {
    const int line = cursor.blockNumber();
    if (line < headingLines || cursor.block().text().isEmpty())
        return std::nullopt;
    std::size_t pass = 0;
    for (QTextBlock block = txtInfo->document()->findBlockByNumber(headingLines);
         block.isValid() && block.blockNumber() < line; block = block.next())
        pass += block.text().isEmpty() ? 0 : 1;
    return pass < m_starts.size() ? std::optional(m_starts[pass]) : std::nullopt;
}

bool frmPass::ChoosePass(const QTextCursor& cursor) {
    const std::optional<DateTime> start = StartAt(cursor);
    if (start)
        Q_EMIT PassChosen(*start);
    return start.has_value();
}

void frmPass::MakeMenu() {
    mnuPass->setObjectName(QStringLiteral("mnuPass"));
    AddEntry(QStringLiteral("mnuCopy"), tr("&Copy"), &frmPass::CopyMarked);
    AddEntry(QStringLiteral("mnuPrint"), tr("&Print"), &frmPass::Print);
    mnuPass->addSeparator()->setObjectName(QStringLiteral("mnuPassBar0"));
    QAction* mnuSaveCsv = AddEntry(QStringLiteral("mnuSaveCsv"), tr("&Save as CSV"), &frmPass::SaveCsv);
    QAction* mnuSaveCalendar =
        AddEntry(QStringLiteral("mnuSaveCalendar"), tr("Save as c&alendar"), &frmPass::SaveCalendar);
    mnuSaveCsv->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    addAction(mnuSaveCsv); // so that its key works while the menu is shut
    for (QAction* entry : {mnuSaveCsv, mnuSaveCalendar})
        entry->setEnabled(m_services.calendar.has_value() && !m_table.isEmpty());
    mnuPass->addSeparator()->setObjectName(QStringLiteral("mnuPassBar1"));
    mnuShowInSky = AddEntry(QStringLiteral("mnuShowInSky"), tr("Show in the s&ky"), &frmPass::ShowInSky);
    txtInfo->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(txtInfo, &QWidget::customContextMenuRequested, this, &frmPass::ShowMenu);
}

QAction* frmPass::AddEntry(const QString& name, const QString& caption, void (frmPass::*operation)()) {
    QAction* entry = mnuPass->addAction(caption);
    entry->setObjectName(name);
    connect(entry, &QAction::triggered, this, operation);
    return entry;
}

// The cursor goes to the line under the mouse, unless something is marked that is to be copied.
void frmPass::ShowMenu(const QPoint& place) {
    if (!txtInfo->textCursor().hasSelection())
        txtInfo->setTextCursor(txtInfo->cursorForPosition(place));
    mnuShowInSky->setEnabled(StartAt(txtInfo->textCursor()).has_value());
    mnuPass->popup(txtInfo->viewport()->mapToGlobal(place));
}

void frmPass::ShowInSky() {
    ChoosePass(txtInfo->textCursor());
}

void frmPass::CopyMarked() {
    if (txtInfo->textCursor().hasSelection())
        txtInfo->copy();
    else
        Copy();
}

std::vector<NamedPass> frmPass::Passes() const {
    const SatPasses answer =
        m_cSats.PassesOf({.object = m_satellite.strObjNum.toStdString(),
                          .latitude = m_services.calendar->latitude,
                          .longitude = m_services.calendar->longitude,
                          .startUtc = m_fromUtc,
                          .days = clsSats::daysOfTable,
                          .most = static_cast<std::size_t>(clsSats::daysOfTable) * clsSats::passesPerDay});
    std::vector<NamedPass> passes;
    for (const SatPass& pass : answer.passes)
        passes.push_back({m_satellite.strBaseName, m_satellite.strObjNum.toUInt(), pass});
    return passes;
}

void frmPass::Save(const QString& name, QByteArray (*write)(std::span<const NamedPass>, const Making&)) {
    const QString path = m_services.chooseFile(this, tr("Save Pass Predictions"), name);
    if (path.isEmpty())
        return;
    Making making = *m_services.calendar;
    making.now = UtcTime::FromDateTime(m_cSats.datGmtTime());
    const QString reason = ReplaceFile(path, write(Passes(), making));
    if (!reason.isEmpty() && m_services.messages != nullptr)
        m_services.messages->MessageBox(this, tr("The passes cannot be saved in %1: %2").arg(path, reason),
                                        MessageStyle::Exclamation);
}

void frmPass::SaveCsv() {
    Save(QStringLiteral("passes.csv"),
         [](std::span<const NamedPass> passes, const Making&) { return PassRecords::Csv(passes); });
}

void frmPass::SaveCalendar() {
    Save(QStringLiteral("passes.ics"), PassRecords::Calendar);
}

void frmPass::Copy() {
    QGuiApplication::clipboard()->setText(m_table);
}

bool AskForPrinter(QPrinter& printer, QWidget* window) {
    QPrintDialog dialog(&printer, window);
    return dialog.exec() == QDialog::Accepted;
}

void frmPass::Print() {
    QPrinter printer(QPrinter::HighResolution); // the default printer
    if (!m_services.choosePrinter(printer, this))
        return;
    QFont font(QStringLiteral("courier new"), 12);
    font.setStyleHint(QFont::TypeWriter);
    PrintLines(printer, PassList::PrintText(m_caption, m_table), font);
}
