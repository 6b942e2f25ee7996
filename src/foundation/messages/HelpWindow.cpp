#include "foundation/messages/HelpWindow.h"

#include "foundation/looks/Contrast.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/BesideWindow.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/WindowSize.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDateTime>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocumentFragment>
#include <QTreeWidget>
#include <QWindow>

#include <algorithm>

namespace {

constexpr qint64 largestFile = 64 * 1024 * 1024;
constexpr int lowestHeading = 3; // in the contents
constexpr int positionRole = Qt::UserRole;
constexpr QSize smallestSize(980, 480); // for the longest lines of the document
constexpr QSize frameRoom(16, 40);      // that a window system may put around the window

// Shows nothing but what the document itself holds.
class Page : public QTextBrowser {
public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int type, const QUrl& name) override {
        if (name.scheme() == u"data")
            return QTextBrowser::loadResource(type, name);
        return QByteArray(); // an answer, so that nobody looks further
    }
};

// Dark desktops do not always name a colour for links that can be read on their ground.
QColor LinkColour(const QPalette& palette) {
    const QColor link = palette.color(QPalette::Link);
    const QColor ground = palette.color(QPalette::Base);
    const bool isDark = ground.lightness() < 128;
    return Contrast::Legible(isDark && link.lightness() < 160 ? QColor(0x6c, 0xb4, 0xff) : link, ground);
}

QPushButton* Button(QWidget* parent, const QString& name, const QString& caption) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

HelpWindow::HelpWindow(QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_contents(new QTreeWidget)
    , m_page(new Page)
    , m_find(new QLineEdit(this))
    , m_found(new QLabel(this))
    , m_back(Button(this, QStringLiteral("cmdBack"), tr("&Back"))) {
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(tr("QIRAN Telemetry Decoder Help"));
    m_contents->setObjectName(QStringLiteral("lstContents"));
    m_contents->setHeaderHidden(true);
    m_contents->header()->setStretchLastSection(false);
    m_contents->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_contents->setAccessibleName(tr("Contents"));
    m_page->setObjectName(QStringLiteral("txtHelp"));
    m_page->setOpenLinks(false);
    m_page->setAccessibleName(tr("Help page"));
    m_find->setObjectName(QStringLiteral("txtFind"));
    m_find->setClearButtonEnabled(true);
    m_found->setObjectName(QStringLiteral("labFound"));
    auto* findLabel = new QLabel(tr("&Find:"), this);
    findLabel->setObjectName(QStringLiteral("labFind"));
    findLabel->setBuddy(m_find);
    auto* next = Button(this, QStringLiteral("cmdFindNext"), tr("&Next"));
    auto* previous = Button(this, QStringLiteral("cmdFindPrevious"), tr("Pre&vious"));
    auto* print = Button(this, QStringLiteral("cmdPrint"), tr("&Print…"));
    auto* close = Button(this, QStringLiteral("cmdClose"), tr("&Close"));

    auto* bar = new QHBoxLayout;
    for (QWidget* widget :
         std::initializer_list<QWidget*>{m_back, findLabel, m_find, next, previous, m_found, print, close})
        bar->addWidget(widget, widget == m_find || widget == m_found ? 1 : 0);
    auto* panes = m_panes = new QSplitter(this);
    panes->setObjectName(QStringLiteral("picPanes"));
    panes->addWidget(m_contents);
    panes->addWidget(m_page);
    panes->setStretchFactor(1, 1);
    panes->setChildrenCollapsible(false);
    auto* column = new QVBoxLayout(this);
    column->addLayout(bar);
    column->addWidget(panes, 1);

    connect(m_back, &QPushButton::clicked, this, &HelpWindow::GoBack);
    connect(next, &QPushButton::clicked, this, [this] { Find(false); });
    connect(previous, &QPushButton::clicked, this, [this] { Find(true); });
    connect(m_find, &QLineEdit::returnPressed, this, [this] { Find(false); });
    connect(m_find, &QLineEdit::textChanged, m_found, &QLabel::clear);
    connect(print, &QPushButton::clicked, this, &HelpWindow::Print);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(m_page, &QTextBrowser::anchorClicked, this, &HelpWindow::Follow);
    const auto goToItem = [this](const QTreeWidgetItem* item) { GoTo(item->data(0, positionRole).toInt()); };
    connect(m_contents, &QTreeWidget::itemClicked, this, goToItem);
    connect(m_contents, &QTreeWidget::itemActivated, this, goToItem);
    connect(m_page->verticalScrollBar(), &QScrollBar::valueChanged, this, &HelpWindow::MarkPlace);
    m_back->setEnabled(false);
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::Load(const QString& file) {
    const QFileInfo info(file);
    const auto stamp = std::pair(info.lastModified().toMSecsSinceEpoch(), info.size());
    if (file == m_file && stamp == m_stamp)
        return;
    m_file = file;
    m_stamp = stamp;
    m_trail.clear();
    m_back->setEnabled(false);
    m_page->clear();
    QFile document(file);
    if (!info.isFile() || info.size() > largestFile || !document.open(QIODevice::ReadOnly)) {
        m_stamp = {}; // it may be there the next time
        m_page->setPlainText(
            tr("The help file cannot be opened:\n%1\n\nPut the file that came with the program "
               "back into this folder, and open the help again.")
                .arg(file));
    } else {
        m_page->document()->setDefaultStyleSheet(
            QStringLiteral("a { color: %1; }").arg(LinkColour(palette()).name()));
        m_page->setHtml(QString::fromUtf8(document.readAll()));
    }
    ReadTopics();
    BuildContents();
}

void HelpWindow::Open(const QStringList& topics) {
    if (!isVisible())
        Place();
    // A dialog that stands over everything would keep the user from reading; as its child the help is free.
    winId();
    const QWidget* modal = QApplication::activeModalWidget();
    windowHandle()->setTransientParent(modal != nullptr ? modal->windowHandle() : nullptr);
    BringForward(this);
    if (m_size && !m_isOpened)
        m_size->Opened();
    m_isOpened = true;
    const auto known = std::ranges::find_if(topics, [this](const QString& name) { return HasTopic(name); });
    GoTo(known == topics.end() ? 0 : m_topics.value(*known));
    m_page->setFocus();
}

void HelpWindow::RememberSize(clsIni& ini) {
    m_size = std::make_unique<WindowSize>(*this, ini, QStringLiteral("HELP"));
}

// Beside the window that it explains, so that both can be read.
void HelpWindow::Place() {
    const QWidget* explained = QApplication::activeWindow();
    const QRect area = (explained != nullptr ? explained->screen() : screen())->availableGeometry();
    const HelpPlacement place;
    const int unit = HelpPlacement::unitsOfScreen;
    const QSize usual = QSize(area.width() * place.width / unit, area.height() * place.height / unit)
                            .expandedTo(smallestSize)
                            .boundedTo(area.size() - frameRoom);
    if (!m_isOpened && !(m_size && m_size->Restore()))
        resize(usual);
    resize(size().boundedTo(area.size() - frameRoom));
    const QPoint corner(area.left() + area.width() * place.left / unit,
                        area.top() + area.height() * place.top / unit);
    const QRect other = explained != nullptr ? explained->frameGeometry() : QRect(corner, QSize());
    move(BesideWindow(size() + frameRoom, other, area).topLeft());
}

void HelpWindow::closeEvent(QCloseEvent* event) {
    if (m_size)
        m_size->Save();
    QWidget::closeEvent(event);
}

// The entry of the heading under which the top of the page stands.
void HelpWindow::MarkPlace() {
    const int position = m_page->cursorForPosition(QPoint(1, 1)).position();
    QTreeWidgetItem* here = nullptr;
    for (QTreeWidgetItemIterator item(m_contents); *item != nullptr; ++item)
        if ((*item)->data(0, positionRole).toInt() <= position)
            here = *item;
    if (here == m_contents->currentItem())
        return;
    m_contents->setCurrentItem(here);
    if (here != nullptr)
        m_contents->scrollToItem(here);
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else if (event->matches(QKeySequence::Back))
        GoBack();
    else if (event->matches(QKeySequence::FindNext))
        Find(false);
    else if (event->matches(QKeySequence::FindPrevious))
        Find(true);
    else if (event->matches(QKeySequence::Find))
        m_find->setFocus(Qt::ShortcutFocusReason);
    else if (event->matches(QKeySequence::Print))
        Print();
    else
        QWidget::keyPressEvent(event);
}

void HelpWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || m_file.isEmpty())
        return;
    // The document took its colours when it was read.
    const int position = m_page->cursorForPosition(QPoint(1, 1)).position();
    const QList<int> trail = m_trail;
    m_stamp = {};
    Load(m_file);
    GoTo(position);
    m_trail = trail;
    m_back->setEnabled(!trail.isEmpty());
}

void HelpWindow::ReadTopics() {
    m_topics.clear();
    for (QTextBlock block = m_page->document()->begin(); block.isValid(); block = block.next())
        for (auto piece = block.begin(); !piece.atEnd(); ++piece)
            for (const QString& name : piece.fragment().charFormat().anchorNames())
                if (!m_topics.contains(name))
                    m_topics.insert(name, block.position());
}

void HelpWindow::BuildContents() {
    m_contents->clear();
    QList<QTreeWidgetItem*> above(lowestHeading + 1, nullptr); // the newest heading of each level
    above[0] = m_contents->invisibleRootItem();
    for (QTextBlock block = m_page->document()->begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level < 1 || level > lowestHeading || block.text().trimmed().isEmpty())
            continue;
        int parent = level - 1;
        while (above[parent] == nullptr)
            --parent;
        auto* item = new QTreeWidgetItem(above[parent], {block.text().trimmed()});
        item->setData(0, positionRole, block.position());
        item->setToolTip(0, block.text().trimmed());
        above[level] = item;
        std::fill(above.begin() + level + 1, above.end(), nullptr);
    }
    m_contents->expandToDepth(0);
    // Titles in full, as far as they leave the page its larger part.
    m_contents->resizeColumnToContents(0);
    const int wanted = m_contents->columnWidth(0) + m_contents->verticalScrollBar()->sizeHint().width() +
                       2 * m_contents->frameWidth();
    const int all = std::max(m_panes->width(), smallestSize.width());
    const int contents = std::min(wanted, all * 2 / 5);
    m_panes->setSizes({contents, all - contents});
    MarkPlace();
}

void HelpWindow::GoTo(int position) {
    const QTextBlock block = m_page->document()->findBlock(position);
    const int top = qRound(m_page->document()->documentLayout()->blockBoundingRect(block).top());
    QScrollBar* bar = m_page->verticalScrollBar();
    const int from = m_page->cursorForPosition(QPoint(1, 1)).position();
    m_page->setTextCursor(QTextCursor(block));
    bar->setValue(position == 0 ? 0 : top);
    if (m_page->document()->findBlock(from) != block) {
        m_trail.append(from);
        m_back->setEnabled(true);
    }
}

void HelpWindow::GoBack() {
    if (m_trail.isEmpty())
        return;
    const int position = m_trail.takeLast();
    const qsizetype kept = m_trail.size();
    GoTo(position);
    m_trail.resize(kept); // going back leaves no trail
    m_back->setEnabled(kept > 0);
}

void HelpWindow::Follow(const QUrl& link) {
    if (link.scheme() == u"http" || link.scheme() == u"https")
        QDesktopServices::openUrl(link);
    else if (link.isRelative() && link.path().isEmpty() && HasTopic(link.fragment(QUrl::FullyDecoded)))
        GoTo(m_topics.value(link.fragment(QUrl::FullyDecoded)));
}

void HelpWindow::Find(bool backward) {
    if (m_find->text().isEmpty()) {
        m_find->setFocus();
        return;
    }
    const QTextDocument::FindFlags direction =
        backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    bool found = m_page->find(m_find->text(), direction);
    m_found->clear();
    if (!found) {
        const QTextCursor before = m_page->textCursor();
        m_page->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
        found = m_page->find(m_find->text(), direction);
        m_found->setText(found ? tr("from the other end") : tr("not found"));
        if (!found)
            m_page->setTextCursor(before);
    }
}

void HelpWindow::Print() {
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("dlgPrint"));
    dialog.setOption(QAbstractPrintDialog::PrintSelection, m_page->textCursor().hasSelection());
    if (dialog.exec() == QDialog::Accepted)
        m_page->print(&printer);
}
