#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/HelpWindow.h"
#include "support/Screenshots.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QXmlStreamReader>

/// The help document that is shipped with the program.
class HelpDocumentTest : public QObject {
    Q_OBJECT

private:
    QString m_file;
    QString m_source;
    std::unique_ptr<HelpWindow> m_window;

    QString PlainText() const {
        return m_window->findChild<QTextBrowser*>(QStringLiteral("txtHelp"))->toPlainText().simplified();
    }
    QStringList Matches(const QString& pattern) const {
        QStringList found;
        auto matches = QRegularExpression(pattern).globalMatch(m_source);
        while (matches.hasNext())
            found.append(matches.next().captured(1));
        return found;
    }

private Q_SLOTS:
    void initTestCase() {
        m_file = QFINDTESTDATA("../../data/qirandecode.HLP");
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_source = QString::fromUtf8(file.readAll());
        m_window = std::make_unique<HelpWindow>();
        m_window->Load(m_file);
    }
    void cleanupTestCase() { m_window.reset(); }

    void EveryLinkInTheDocumentResolves() {
        const QStringList links = Matches(QStringLiteral("href=\"([^\"]*)\""));
        QVERIFY(links.size() > 30);
        for (const QString& link : links) {
            QVERIFY2(link.startsWith(u'#'), qPrintable(link));
            QVERIFY2(m_window->HasTopic(link.mid(1)), qPrintable(link));
        }
    }

    void EveryAnchorIsSeenByTheHelpWindowAndUnique() {
        QStringList anchors = Matches(QStringLiteral("name=\"([^\"]*)\""));
        for (const QString& anchor : anchors)
            QVERIFY2(m_window->HasTopic(anchor), qPrintable(anchor));
        QCOMPARE(anchors.removeDuplicates(), 0);
    }

    void EveryWindowAndFieldHasItsTopic() {
        for (const char* name : {"frmQIRAN",
                                 "frmAgwpeSetup",
                                 "frmCalls",
                                 "frmLocation",
                                 "frmTerm",
                                 "frmPass",
                                 "frmMap",
                                 "frmDownload",
                                 "frmAbout",
                                 "framLocation",
                                 "txtMon",
                                 "gTlm0",
                                 "gTlm1",
                                 "gTlm2",
                                 "txtHostAddr",
                                 "frmAgwpeSetup.txtPort",
                                 "txtLoginId",
                                 "txtPassword",
                                 "txtCall",
                                 "optA",
                                 "optB",
                                 "cmdAdd",
                                 "lstCalls",
                                 "cmdDefaults",
                                 "txtCallsign",
                                 "txtLat",
                                 "txtLong",
                                 "txtComment",
                                 "rtbMon",
                                 "txtTx",
                                 "txtTo",
                                 "txtVia",
                                 "frmTerm.txtPort",
                                 "cmdAprs",
                                 "cmdLoc",
                                 "mnuLogAllData",
                                 "txtFile0",
                                 "txtFile1",
                                 "txtTerm",
                                 "barProgress",
                                 "cmdDownload",
                                 "txtInfo",
                                 "cmdChangeSat",
                                 "cmdPassInfo",
                                 "picMap",
                                 "mbMessage"})
            QVERIFY2(m_window->HasTopic(QString::fromUtf8(name)), name);
        QVERIFY(!m_window->HasTopic(QStringLiteral("txtPort"))); // two windows have one
    }

    void EveryHelpButtonHasItsTopic() {
        for (qint32 id :
             {HelpTopics::messages, HelpTopics::formulas, HelpTopics::packetEngine, HelpTopics::station,
              HelpTopics::callsigns, HelpTopics::terminal, HelpTopics::elements, HelpTopics::programFolder})
            QVERIFY2(m_window->HasTopic(HelpTopics::Anchor(id)), qPrintable(QString::number(id)));
    }

    void EveryMessageIsExplained() {
        const QString text = PlainText();
        for (const char* message :
             {"QiranDecode is already running.",
              "An error occurred loading the formulae. The error message is '",
              ("Pass predictions will not be not available until you input your latitude and longitude in "
               "'Station Information'."),
              "The program ended at its last start because of ",
              "No Keps found for QIRAN and ISS.",
              "*** AGW-Connected to - ",
              "*** AGWPE V",
              "*** AGW-Disconnected from - ",
              "*** AGW-Error with connection to ",
              "Will automatically retry in 30 seconds time.",
              "*** The settings cannot be saved in ",
              "'Host address' cannot be blank.",
              "'Port' must be a numeric value between 1 and 32767",
              " is not a valid callsign.",
              "You cannot delete all the callsigns.",
              "cannot be shown. The map has a plain background instead.",
              "That is not a valid callsign.",
              "I can't make that into a valid latitude.",
              "I can't make that into a valid longitude.",
              "That is not a valid AX25 address.",
              " is not a valid AX25 address.",
              "The highest available port is ",
              "To be able to transmit, you must input your callsign in 'Station Information'.",
              "To be able to transmit, you must put a valid AX25 callsign or alias in 'To'.",
              "To be able to transmit, you must be connected to AGWPE.",
              ("To be able to transmit a beacon, you must input your latitude and longitude in 'Station "
               "Information'."),
              "Both URLs are blank!",
              "The elements are being fetched already, by ",
              "The Keps have been downloaded.",
              "The following errors occurred - ",
              "The data appears to be an HTML file. Have a look at ",
              "The file could not be stored: ",
              "The server has sent nothing for too long",
              "The file is larger than 64 MiB",
              "The address is not valid",
              "The file did not arrive whole",
              "The packed file is damaged or too large",
              "The server announced no sensible length"})
            QVERIFY2(text.contains(QString::fromUtf8(message)), message);
    }

    void TheDocumentIsSelfContained() {
        QVERIFY(Matches(QStringLiteral("(<(?:link|script|iframe|object)\\b)")).isEmpty());
        for (const QString& source : Matches(QStringLiteral("src=\"([^\"]*)\"")))
            QVERIFY2(source.startsWith(u"data:image/"), qPrintable(source.left(80)));
        QVERIFY(Matches(QStringLiteral("(url\\()")).isEmpty());
    }

    void TheContentsShowEveryChapter() {
        const auto* contents = m_window->findChild<QTreeWidget*>(QStringLiteral("lstContents"));
        QStringList chapters;
        for (int i = 0; i < contents->topLevelItemCount(); ++i)
            chapters.append(contents->topLevelItem(i)->text(0));
        QCOMPARE(chapters.size(), m_source.count(u"<h1>"));
        QVERIFY(chapters.contains(QStringLiteral("First start")));
        QVERIFY(chapters.contains(QStringLiteral("Every message, and what to do")));
        QVERIFY(chapters.contains(QStringLiteral("Every file in the program folder")));
    }

    void EveryLineFitsTheWindow() {
        m_window->Open({});
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        const auto* page = m_window->findChild<QTextBrowser*>(QStringLiteral("txtHelp"));
        m_window->resize(980, 480);
        QVERIFY2(page->document()->size().width() <= page->viewport()->width(),
                 qPrintable(QString::number(page->document()->size().width())));
    }

    void Pictures() {
        for (const char* topic : {"frmQIRAN", "frmDownload", "formula", "messages"}) {
            m_window->Open({QString::fromLatin1(topic)});
            QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
            Screenshots::Take(*m_window, QStringLiteral("frmHelp-") + QString::fromLatin1(topic));
        }
        m_window->close();
    }

    void TagsAreClosedInTheirOrder() {
        QString xml = m_source;
        xml.remove(QStringLiteral("<!DOCTYPE html>")).remove(QStringLiteral("<meta charset=\"utf-8\">"));
        xml.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
        QXmlStreamReader reader(xml);
        while (!reader.atEnd())
            reader.readNext();
        QVERIFY2(!reader.hasError(),
                 qPrintable(
                     QStringLiteral("%1 in line %2").arg(reader.errorString()).arg(reader.lineNumber() + 1)));
    }
};

QTEST_MAIN(HelpDocumentTest)
#include "HelpDocumentTest.moc"
