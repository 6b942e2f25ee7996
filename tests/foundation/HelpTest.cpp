#include "foundation/messages/HelpKey.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/HelpWindow.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"

#include <QApplication>
#include <QBuffer>
#include <QDesktopServices>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray Document() {
    QImage picture(40, 20, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    QByteArray filler;
    for (int i = 0; i < 60; ++i)
        filler += "<p>The satellite comes and goes, and we listen.</p>";
    return "<html><body><h1 id='contents'>QIRAN Telemetry Decoder</h1><p>See <a "
           "href='#txtHostAddr'>host</a>, "
           "<a href='https://example.org/'>web</a>, <a href='file:///etc/passwd'>file</a>.</p>" +
           filler + "<h2><a name='frmAgwpeSetup'></a>Packet engine</h2><p>Set it up.</p>" + filler +
           "<h3 id='txtHostAddr'>Host address</h3><p>needle \xC3\xBC</p><img src='data:image/png;base64," +
           png.toBase64() + "'>" + filler + "<h2 id='messages'>Messages</h2><p>needle again</p>" + filler +
           "<img src='file:///etc/hostname'><img src='http://example.org/x.png'></body></html>";
}

HelpWindow* Shown() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* help = qobject_cast<HelpWindow*>(widget); help != nullptr && help->isVisible())
            return help;
    return nullptr;
}

QString TopLine(const HelpWindow& help) {
    const auto* page = help.findChild<QTextBrowser*>(u"txtHelp"_s);
    return page->textCursor().block().text().remove(QChar::ObjectReplacementCharacter).trimmed();
}

// Takes note of the addresses that would open in a browser.
class Browser : public QObject {
    Q_OBJECT
public:
    QList<QUrl> opened;
public Q_SLOTS:
    void Open(const QUrl& url) { opened.append(url); }
};

} // namespace

class HelpTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<TemporaryProgramFolder>();
        m_folder->Write(u"qirandecode.HLP"_s, Document());
        m_file = m_folder->File(u"qirandecode.HLP"_s);
        m_presenter = std::make_unique<MessageBoxPresenter>(m_file);
    }
    void cleanup() { m_presenter.reset(); }

    void contentsFollowTheHeadings();
    void opensAtTheFirstKnownTopicElseAtTheBeginning();
    void backReturnsToWhereTheUserWas();
    void contentsEntryGoesToItsHeading();
    void searchGoesOnAroundTheEndAndSaysWhenNothingIsFound();
    void linksGoInsideTheDocumentOrToTheBrowser();
    void picturesInsideAreShownAndNothingElseIsLoaded();
    void missingFileIsSaidInTheWindow();
    void changedFileIsReadAgain();
    void linksCanBeReadOnAnyGround();
    void printAsksForThePrinter();
    void escapeClosesTheHelp();
    void f1OpensTheTopicOfTheFieldElseOfItsParentsElseTheContents();
    void f1WorksWithoutAnyFocus();
    void f1WithAnotherKeyIsLeftToOthers();
    void helpCanBeUsedOverAModalDialog();
    void helpContentsAndHelpQuit();
    void messageBoxShowsPlainTextWithItsCaptionAndIcon_data();
    void messageBoxShowsPlainTextWithItsCaptionAndIcon();
    void messageBoxAnswersTheButtonPressed_data();
    void messageBoxAnswersTheButtonPressed();
    void messageBoxHasAHelpButtonOnlyWithAContextId();
    void helpButtonOpensItsTopicAndLeavesTheBoxOpen();
    void escapeClosesABoxWithAHelpButton();
    void everyContextIdHasAnAnchor();
    void pictures();

private:
    // Acts on the message box once it stands open; then it is closed.
    int WithBox(const Message& message, const std::function<void(QMessageBox&)>& act) {
        bool seen = false;
        QTimer::singleShot(0, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr)
                return;
            seen = true;
            act(*box);
            if (box->isVisible())
                box->defaultButton() != nullptr ? box->defaultButton()->click() : box->reject();
        });
        const int answer = m_presenter->ShowMessage(message);
        return seen ? answer : -1;
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    QString m_file;
    std::unique_ptr<MessageBoxPresenter> m_presenter;
};

void HelpTest::contentsFollowTheHeadings() {
    HelpWindow help;
    help.Load(m_file);
    const auto* contents = help.findChild<QTreeWidget*>(u"lstContents"_s);
    QCOMPARE(contents->topLevelItemCount(), 1);
    const QTreeWidgetItem* root = contents->topLevelItem(0);
    QCOMPARE(root->text(0), u"QIRAN Telemetry Decoder"_s);
    QCOMPARE(root->childCount(), 2);
    QCOMPARE(root->child(0)->text(0), u"Packet engine"_s);
    QCOMPARE(root->child(0)->child(0)->text(0), u"Host address"_s);
    QCOMPARE(root->child(1)->text(0), u"Messages"_s);
}

void HelpTest::opensAtTheFirstKnownTopicElseAtTheBeginning() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({u"unknown"_s, u"txtHostAddr"_s, u"frmAgwpeSetup"_s});
    QCOMPARE(TopLine(help), u"Host address"_s);
    const auto* page = help.findChild<QTextBrowser*>(u"txtHelp"_s);
    QVERIFY(page->cursorRect().top() >= 0 && page->cursorRect().top() < 60); // the heading is on top
    help.Open({u"frmAgwpeSetup"_s});
    QCOMPARE(TopLine(help), u"Packet engine"_s);
    help.Open({u"unknown"_s});
    QCOMPARE(TopLine(help), u"QIRAN Telemetry Decoder"_s);
    QCOMPARE(page->verticalScrollBar()->value(), 0);
}

void HelpTest::backReturnsToWhereTheUserWas() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({u"frmAgwpeSetup"_s});
    help.Open({u"messages"_s});
    auto* back = help.findChild<QPushButton*>(u"cmdBack"_s);
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(TopLine(help), u"Packet engine"_s);
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(TopLine(help), u"QIRAN Telemetry Decoder"_s);
    QVERIFY(!back->isEnabled());
}

void HelpTest::contentsEntryGoesToItsHeading() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    auto* contents = help.findChild<QTreeWidget*>(u"lstContents"_s);
    const QRect place = contents->visualItemRect(contents->topLevelItem(0)->child(1));
    QTest::mouseClick(contents->viewport(), Qt::LeftButton, {}, place.center());
    QCOMPARE(TopLine(help), u"Messages"_s);
}

void HelpTest::searchGoesOnAroundTheEndAndSaysWhenNothingIsFound() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    auto* field = help.findChild<QLineEdit*>(u"txtFind"_s);
    const auto* found = help.findChild<QLabel*>(u"labFound"_s);
    QTest::keyClicks(field, u"Needle"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(TopLine(help), u"needle ü"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(TopLine(help), u"needle again"_s);
    QVERIFY(found->text().isEmpty());
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(TopLine(help), u"needle ü"_s);
    QVERIFY(!found->text().isEmpty());
    QTest::mouseClick(help.findChild<QPushButton*>(u"cmdFindPrevious"_s), Qt::LeftButton);
    QCOMPARE(TopLine(help), u"needle again"_s);
    field->setText(u"no such thing"_s);
    QTest::mouseClick(help.findChild<QPushButton*>(u"cmdFindNext"_s), Qt::LeftButton);
    QCOMPARE(TopLine(help), u"needle again"_s);
    QVERIFY(found->text().contains(u"not found"));
}

void HelpTest::linksGoInsideTheDocumentOrToTheBrowser() {
    Browser browser;
    for (const char* scheme : {"http", "https", "file"})
        QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &browser, "Open");
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    auto* page = help.findChild<QTextBrowser*>(u"txtHelp"_s);
    const auto follow = [&](const QString& link) { Q_EMIT page->anchorClicked(QUrl(link)); };
    follow(u"#txtHostAddr"_s);
    QCOMPARE(TopLine(help), u"Host address"_s);
    follow(u"#nowhere"_s);
    follow(u"file:///etc/passwd"_s);
    follow(u"javascript:alert(1)"_s);
    QCOMPARE(TopLine(help), u"Host address"_s);
    QVERIFY(browser.opened.isEmpty());
    follow(u"https://example.org/"_s);
    QCOMPARE(browser.opened, QList{QUrl(u"https://example.org/"_s)});
    for (const char* scheme : {"http", "https", "file"})
        QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
}

void HelpTest::picturesInsideAreShownAndNothingElseIsLoaded() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    QTextDocument* document = help.findChild<QTextBrowser*>(u"txtHelp"_s)->document();
    int shown = 0;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        for (auto piece = block.begin(); !piece.atEnd(); ++piece)
            if (const QTextCharFormat format = piece.fragment().charFormat(); format.isImageFormat()) {
                const QUrl url(format.toImageFormat().name());
                const QVariant picture = document->resource(QTextDocument::ImageResource, url);
                QCOMPARE(!picture.toByteArray().isEmpty() || !picture.value<QImage>().isNull(),
                         url.scheme() == u"data");
                shown += url.scheme() == u"data";
            }
    QCOMPARE(shown, 1);
}

void HelpTest::missingFileIsSaidInTheWindow() {
    HelpWindow help;
    const QString missing = m_folder->File(u"none.HLP"_s);
    help.Load(missing);
    help.Open({u"txtHostAddr"_s});
    const auto* page = help.findChild<QTextBrowser*>(u"txtHelp"_s);
    QVERIFY(page->toPlainText().contains(missing));
    m_folder->Write(u"none.HLP"_s, Document());
    help.Load(missing);
    QVERIFY(help.HasTopic(u"txtHostAddr"_s));
}

void HelpTest::changedFileIsReadAgain() {
    HelpWindow help;
    help.Load(m_file);
    m_folder->Write(u"qirandecode.HLP"_s, "<h1 id='new'>New</h1>");
    help.Load(m_file);
    QVERIFY(help.HasTopic(u"new"_s));
    QVERIFY(!help.HasTopic(u"messages"_s));
}

void HelpTest::linksCanBeReadOnAnyGround() {
    const QPalette before = QApplication::palette();
    HelpWindow help;
    help.Load(m_file);
    help.Open({u"txtHostAddr"_s});
    const auto colour = [&] {
        const QTextDocument* page = help.findChild<QTextBrowser*>(u"txtHelp"_s)->document();
        return page->find(u"host"_s).charFormat().foreground().color();
    };
    QCOMPARE(colour(), before.color(QPalette::Link));

    QPalette dark = Screenshots::DarkPalette();
    dark.setColor(QPalette::Link, Qt::blue); // as on desktops that name no colour for links
    QApplication::setPalette(dark);
    QTRY_VERIFY(colour().lightness() > 160);
    QCOMPARE(TopLine(help), u"Host address"_s);
    QApplication::setPalette(before);
    QTRY_COMPARE(colour(), before.color(QPalette::Link));
}

void HelpTest::printAsksForThePrinter() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    QString asked;
    QTimer user;
    connect(&user, &QTimer::timeout, &user, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            asked = dialog->objectName();
            dialog->close();
        }
    });
    user.start(10);
    help.findChild<QPushButton*>(u"cmdPrint"_s)->click();
    QCOMPARE(asked, u"dlgPrint"_s);
}

void HelpTest::escapeClosesTheHelp() {
    HelpWindow help;
    help.Load(m_file);
    help.Open({});
    QTest::keyClick(help.findChild<QTextBrowser*>(u"txtHelp"_s), Qt::Key_Escape);
    QVERIFY(!help.isVisible());
}

void HelpTest::f1OpensTheTopicOfTheFieldElseOfItsParentsElseTheContents() {
    auto key = std::make_unique<HelpKey>(qApp, *m_presenter);
    QWidget main;
    QDialog dialog(&main);
    dialog.setObjectName(u"frmAgwpeSetup"_s);
    auto* box = new QWidget(&dialog);
    auto* host = new QLineEdit(box);
    host->setObjectName(u"txtHostAddr"_s);
    auto* other = new QLineEdit(box);
    dialog.show();
    QTest::keyClick(host, Qt::Key_F1);
    QVERIFY(Shown() != nullptr);
    QCOMPARE(TopLine(*Shown()), u"Host address"_s);
    QTest::keyClick(other, Qt::Key_F1);
    QCOMPARE(TopLine(*Shown()), u"Packet engine"_s);
    main.setObjectName(u"messages"_s); // a dialog's topic is not that of the window below it
    dialog.setObjectName(u"frmUnknown"_s);
    QTest::keyClick(other, Qt::Key_F1);
    QCOMPARE(TopLine(*Shown()), u"QIRAN Telemetry Decoder"_s);
    QTest::keyClick(other, Qt::Key_F1, Qt::ShiftModifier);
    QCOMPARE(Shown()->findChildren<QTextBrowser*>().size(), 1);
}

void HelpTest::f1WorksWithoutAnyFocus() {
    auto key = std::make_unique<HelpKey>(qApp, *m_presenter);
    QWidget main;
    main.setObjectName(u"messages"_s);
    main.show();
    QVERIFY(QTest::qWaitForWindowActive(&main));
    QTest::keyClick(main.windowHandle(), Qt::Key_F1);
    QTRY_VERIFY(Shown() != nullptr);
    QCOMPARE(TopLine(*Shown()), u"Messages"_s);
}

void HelpTest::f1WithAnotherKeyIsLeftToOthers() {
    auto key = std::make_unique<HelpKey>(qApp, *m_presenter);
    QWidget main;
    main.show();
    QVERIFY(QTest::qWaitForWindowActive(&main));
    for (const auto modifier : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier})
        QTest::keyClick(&main, Qt::Key_F1, modifier);
    QVERIFY(Shown() == nullptr);
}

void HelpTest::helpCanBeUsedOverAModalDialog() {
    QDialog dialog;
    bool pressed = false;
    QTimer::singleShot(50, &dialog, [&] {
        m_presenter->OpenHelp({u"messages"_s});
        HelpWindow* help = Shown();
        if (help != nullptr && QTest::qWaitForWindowExposed(help)) {
            QTest::mouseClick(help->windowHandle(), Qt::LeftButton, {},
                              help->findChild<QPushButton*>(u"cmdClose"_s)->geometry().center());
            pressed = QTest::qWaitFor([] { return Shown() == nullptr; });
        }
        dialog.accept();
    });
    dialog.exec();
    QVERIFY(pressed);
    m_presenter->OpenHelp({});
    QVERIFY(Shown() != nullptr);
}

void HelpTest::helpContentsAndHelpQuit() {
    mb messages(*m_presenter);
    messages.SetUpHelp(nullptr, m_folder->Program().Path());
    QCOMPARE(messages.HelpFile(), m_file);
    messages.HelpContents();
    QVERIFY(Shown() != nullptr);
    messages.HelpQuit();
    QVERIFY(Shown() == nullptr);
}

void HelpTest::messageBoxShowsPlainTextWithItsCaptionAndIcon_data() {
    QTest::addColumn<qint16>("style");
    QTest::addColumn<int>("icon");
    QTest::newRow("critical") << MessageStyle::Critical << int(QMessageBox::Critical);
    QTest::newRow("exclamation") << MessageStyle::Exclamation << int(QMessageBox::Warning);
    QTest::newRow("information") << MessageStyle::Information << int(QMessageBox::Information);
    QTest::newRow("none") << qint16(0) << int(QMessageBox::NoIcon);
}

void HelpTest::messageBoxShowsPlainTextWithItsCaptionAndIcon() {
    QFETCH(qint16, style);
    QFETCH(int, icon);
    QWidget owner;
    mb messages(*m_presenter);
    messages.SetTitle(u"QIRAN Telemetry Decoder"_s);
    bool seen = false;
    QTimer::singleShot(0, this, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr)
            return; // the test's own time limit ends it
        seen = box->text() == u"<b>x</b>" && box->textFormat() == Qt::PlainText &&
               box->windowTitle() == u"QIRAN Telemetry Decoder" && int(box->icon()) == icon &&
               box->textInteractionFlags() == Qt::TextSelectableByMouse && box->parentWidget() == &owner;
        box->button(QMessageBox::Ok)->click();
    });
    QCOMPARE(messages.MessageBox(&owner, u"<b>x</b>"_s, style), 1);
    QVERIFY(seen);
}

void HelpTest::messageBoxAnswersTheButtonPressed_data() {
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("answer");
    QTest::newRow("ok") << 0 << int(QMessageBox::Ok) << 1;
    QTest::newRow("cancel") << 1 << int(QMessageBox::Cancel) << 2;
    QTest::newRow("abort") << 2 << int(QMessageBox::Abort) << 3;
    QTest::newRow("yes") << 4 << int(QMessageBox::Yes) << 6;
    QTest::newRow("no") << 3 << int(QMessageBox::No) << 7;
    QTest::newRow("unknown style") << 15 << int(QMessageBox::Ok) << 1;
}

void HelpTest::messageBoxAnswersTheButtonPressed() {
    QFETCH(int, style);
    QFETCH(int, button);
    QFETCH(int, answer);
    const Message message{nullptr, u"x"_s, qint16(style), u"c"_s, -1};
    QCOMPARE(
        WithBox(message, [&](QMessageBox& box) { box.button(QMessageBox::StandardButton(button))->click(); }),
        answer);
}

void HelpTest::messageBoxHasAHelpButtonOnlyWithAContextId() {
    mb messages(*m_presenter);
    for (const auto& [style, contextId] : {std::pair<qint16, qint32>(MessageStyle::Critical, -1),
                                           {MessageStyle::Critical, 5},
                                           {MessageStyle::HelpButton, -1}}) {
        bool seen = false;
        QTimer::singleShot(0, this, [&seen, contextId = contextId] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            seen = (box->button(QMessageBox::Help) != nullptr) == (contextId != -1);
            box->reject();
        });
        messages.MessageBox(nullptr, u"x"_s, style, {}, contextId);
        QVERIFY(seen);
    }
}

void HelpTest::helpButtonOpensItsTopicAndLeavesTheBoxOpen() {
    const Message message{nullptr, u"x"_s, MessageStyle::HelpButton, u"c"_s, HelpTopics::packetEngine};
    QString topic;
    const int answer = WithBox(message, [&](QMessageBox& box) {
        box.button(QMessageBox::Help)->click();
        if (Shown() != nullptr && box.isVisible())
            topic = TopLine(*Shown());
        box.button(QMessageBox::Ok)->click();
    });
    QCOMPARE(topic, u"Packet engine"_s);
    QCOMPARE(answer, 1);
}

void HelpTest::escapeClosesABoxWithAHelpButton() {
    const Message message{nullptr, u"x"_s, MessageStyle::HelpButton, u"c"_s, HelpTopics::packetEngine};
    bool closed = false;
    const int answer = WithBox(message, [&](QMessageBox& box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        closed = !box.isVisible();
        box.button(QMessageBox::Ok)->click(); // where it still stands
    });
    QVERIFY(closed);
    QCOMPARE(answer, 1);
}

void HelpTest::everyContextIdHasAnAnchor() {
    QStringList anchors;
    for (qint32 id = 1; id <= 8; ++id)
        anchors.append(HelpTopics::Anchor(id));
    QCOMPARE(anchors, (QStringList{u"messages"_s, u"formula"_s, u"frmAgwpeSetup"_s, u"frmLocation"_s,
                                   u"frmCalls"_s, u"frmTerm"_s, u"frmDownload"_s, u"files"_s}));
    QCOMPARE(HelpTopics::Anchor(4711), QString());
}

void HelpTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    HelpWindow help;
    help.Load(m_file);
    help.Open({u"txtHostAddr"_s});
    Screenshots::Take(help, u"help"_s);
}

QTEST_MAIN(HelpTest)
#include "HelpTest.moc"
