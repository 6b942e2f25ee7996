#include "orbit/predictions/frmPass.h"

#include "foundation/fields/FixedFont.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/WindowTitle.h"
#include "orbit/predictions/PrintLines.h"
#include "orbit/service/PassList.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
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
                 ChoosePrinter choosePrinter)
    : QDialog(parent)
    , m_choosePrinter(std::move(choosePrinter))
    , txtInfo(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("frmPass"));
    setModal(true);

    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    clsSats::PassInfo info = cSats.PassInfoOf(satellites.Selected().strObjNum);
    m_table = std::move(info.table);
    m_starts = std::move(info.starts);
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
    resize(sizeHint().width(), metrics.lineSpacing() * lines + layout->sizeHint().height() -
                                   txtInfo->sizeHint().height() + frame);
    cmdFinished->setFocus();
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
bool frmPass::ChoosePass(const QTextCursor& cursor) {
    const int line = cursor.blockNumber();
    if (line < headingLines || cursor.block().text().isEmpty())
        return false;
    std::size_t pass = 0;
    for (QTextBlock block = txtInfo->document()->findBlockByNumber(headingLines);
         block.isValid() && block.blockNumber() < line; block = block.next())
        pass += block.text().isEmpty() ? 0 : 1;
    if (pass >= m_starts.size())
        return false;
    Q_EMIT PassChosen(m_starts[pass]);
    return true;
}

void frmPass::Copy() const {
    QGuiApplication::clipboard()->setText(m_table);
}

bool frmPass::AskForPrinter(QPrinter& printer, QWidget* window) {
    QPrintDialog dialog(&printer, window);
    return dialog.exec() == QDialog::Accepted;
}

void frmPass::Print() {
    QPrinter printer(QPrinter::HighResolution); // the default printer
    if (!m_choosePrinter(printer, this))
        return;
    QFont font(QStringLiteral("courier new"), 12);
    font.setStyleHint(QFont::TypeWriter);
    PrintLines(printer, PassList::PrintText(m_caption, m_table), font);
}
