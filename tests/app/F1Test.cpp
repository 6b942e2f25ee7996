#include "app/MainWindowRig.h"
#include "app/StatusBarView.h"
#include "foundation/messages/HelpKey.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/HelpWindow.h"
#include "foundation/messages/MessageBoxPresenter.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>

/// F1 in the true windows, with the help document that is shipped.
class F1Test : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void inEveryWindowAndFieldItOpensTheTopic_data();
    void inEveryWindowAndFieldItOpensTheTopic();
    void inAMessageBoxItOpensTheMessages();
    void theHelpButtonOpensItsTopic_data();
    void theHelpButtonOpensItsTopic();

private:
    QString Press(QWidget* target);
    QString HelpShows() const;

    std::unique_ptr<MessageBoxPresenter> m_presenter;
    std::unique_ptr<HelpKey> m_key;
    std::unique_ptr<MainWindowRig> m_rig;
};

namespace {

// Answers whether the check came to see a modal window.
template <class Check>
bool WhileModal(QObject* context, const std::function<void()>& open, Check check) {
    bool seen = false;
    QTimer::singleShot(0, context, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr)
            return;
        seen = true;
        check(modal);
        modal->close();
    });
    open();
    return seen;
}

} // namespace

void F1Test::init() {
    m_presenter = std::make_unique<MessageBoxPresenter>(QFINDTESTDATA("../../data/qirandecode.HLP"));
    m_key = std::make_unique<HelpKey>(qApp, *m_presenter);
    m_rig = std::make_unique<MainWindowRig>();
    m_rig->Set("SETUP", "LATITUDE", QStringLiteral("5130.00N"));
    m_rig->Set("SETUP", "LONGITUDE", QStringLiteral("00030.00W"));
    QVERIFY(m_rig->Start());
}

void F1Test::cleanup() {
    m_rig.reset();
    m_key.reset();
    m_presenter.reset();
}

// Presses F1 and answers the names of the topic at which the help opens.
QString F1Test::Press(QWidget* target) {
    if (target == nullptr)
        return QStringLiteral("no such widget");
    target->setFocus();
    QTest::keyClick(target, Qt::Key_F1);
    (void)QTest::qWaitFor(
        [] { return WindowNamed(QStringLiteral("frmHelp")) != nullptr; }); // a button is down a while
    QString topics = HelpShows();
    if (QWidget* help = WindowNamed(QStringLiteral("frmHelp")))
        help->close();
    return topics;
}

QString F1Test::HelpShows() const {
    const QWidget* help = WindowNamed(QStringLiteral("frmHelp"));
    if (help == nullptr)
        return QStringLiteral("no help");
    QStringList names;
    const QTextBlock block = help->findChild<QTextBrowser*>(QStringLiteral("txtHelp"))->textCursor().block();
    for (auto piece = block.begin(); !piece.atEnd(); ++piece)
        names += piece.fragment().charFormat().anchorNames();
    return names.join(u' ');
}

void F1Test::inEveryWindowAndFieldItOpensTheTopic_data() {
    QTest::addColumn<QString>("opener"); // a menu entry or a button; none for the main window
    QTest::addColumn<QString>("window");
    QTest::addColumn<QStringList>("fields"); // each with a topic of its own
    const auto row = [](const char* opener, const char* window, const QStringList& fields) {
        QTest::newRow(window) << QString::fromLatin1(opener) << QString::fromLatin1(window) << fields;
    };
    using namespace Qt::StringLiterals;
    row("", "frmQIRAN",
        {u"txtMon"_s, u"gTlm0"_s, u"gTlm1"_s, u"gTlm2"_s, u"labEvent"_s, u"cmdChangeSat"_s,
         u"cmdPassInfo"_s});
    row("mnuTerminal", "frmTerm",
        {u"txtTo"_s, u"txtVia"_s, u"txtPort"_s, u"cmdAprs"_s, u"cmdLoc"_s, u"rtbMon"_s, u"txtTx"_s});
    row("mnuMap", "frmMap", {u"picMap"_s});
    row("cmdPassInfo", "frmPass", {u"txtInfo"_s, u"cmdCopy"_s, u"cmdPrint"_s, u"cmdFinished"_s});
    row("mnuLocation", "frmLocation", {u"txtCallsign"_s, u"txtLat"_s, u"txtLong"_s, u"txtComment"_s});
    row("mnuAGWPESetup", "frmAgwpeSetup",
        {u"txtHostAddr"_s, u"txtPort"_s, u"txtLoginId"_s, u"txtPassword"_s});
    row("mnuCallsigns", "frmCalls",
        {u"txtCall"_s, u"optA"_s, u"optB"_s, u"cmdAdd"_s, u"lstCalls"_s, u"cmdDefaults"_s});
    row("mnuDownloadKeps", "frmDownload", {u"txtFile0"_s, u"txtFile1"_s, u"txtTerm"_s, u"cmdDownload"_s});
    row("staStatus", "frmForward",
        {u"chkUse"_s, u"chkDryRun"_s, u"txtUrl"_s, u"txtToken"_s, u"txtExample"_s, u"lstParked"_s,
         u"cmdRetry"_s, u"cmdDiscard"_s});
    row("mnuAbout", "frmAbout", {});
}

void F1Test::inEveryWindowAndFieldItOpensTheTopic() {
    QFETCH(const QString, opener);
    QFETCH(const QString, window);
    QFETCH(const QStringList, fields);
    QStringList wrong;
    const auto check = [&](QWidget* shown) {
        if (shown->objectName() != window)
            wrong += QStringLiteral("opened ") + shown->objectName();
        const auto expect = [&](QWidget* target, const QStringList& topics) {
            const QStringList names = Press(target).split(u' ');
            if (std::ranges::none_of(topics, [&](const QString& topic) { return names.contains(topic); }))
                wrong += topics.join(u'/') + QStringLiteral(": ") + names.join(u' ');
        };
        expect(shown, {window});
        for (const QString& field : fields)
            expect(shown->findChild<QWidget*>(field), {window + u'.' + field, field});
    };
    const auto open = [&] {
        if (auto* button = m_rig->window->findChild<QPushButton*>(opener))
            button->click();
        else if (opener == u"staStatus")
            Q_EMIT m_rig->Find<StatusBarView>("staStatus")->ForwardingRequested();
        else
            m_rig->window->findChild<QAction*>(opener)->trigger();
    };
    if (opener.isEmpty())
        check(m_rig->window.get());
    else if (!WhileModal(this, open, check)) {
        QVERIFY(WindowNamed(window) != nullptr);
        check(WindowNamed(window));
    }
    QCOMPARE(wrong, QStringList());
}

void F1Test::inAMessageBoxItOpensTheMessages() {
    QString topics;
    QVERIFY(WhileModal(
        this,
        [this] {
            m_presenter->ShowMessage({m_rig->window.get(), QStringLiteral("text"), 64, {}, -1});
        },
        [&](QWidget* box) { topics = Press(box->findChild<QPushButton*>()); }));
    QVERIFY2(topics.contains(QStringLiteral("messages")), qPrintable(topics));
}

void F1Test::theHelpButtonOpensItsTopic_data() {
    QTest::addColumn<qint32>("contextId");
    for (qint32 id = HelpTopics::messages; id <= HelpTopics::programFolder; ++id)
        QTest::newRow(qPrintable(HelpTopics::Anchor(id))) << id;
}

void F1Test::theHelpButtonOpensItsTopic() {
    QFETCH(const qint32, contextId);
    QStringList clicked;
    QStringList pressed;
    QVERIFY(WhileModal(
        this,
        [&] {
            m_presenter->ShowMessage(
                {m_rig->window.get(), QStringLiteral("text"), MessageStyle::HelpButton, {}, contextId});
        },
        [&](QWidget* box) {
            auto* button = box->findChild<QPushButton*>(QStringLiteral("cmdHelp"));
            QVERIFY(QTest::qWaitForWindowActive(box));
            pressed = Press(button).split(u' ');
            button->click();
            clicked = HelpShows().split(u' ');
        }));
    QVERIFY2(clicked.contains(HelpTopics::Anchor(contextId)), qPrintable(clicked.join(u' ')));
    QVERIFY2(pressed.contains(HelpTopics::Anchor(contextId)), qPrintable(pressed.join(u' ')));
}

QTEST_MAIN(F1Test)
#include "F1Test.moc"
