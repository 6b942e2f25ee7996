#include "app/frmAbout.h"

#include "support/Screenshots.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

class frmAboutTest : public QObject {
    Q_OBJECT

private:
    static QString TextOf(const frmAbout& window, const char* name) {
        return window.findChild<QLabel*>(QLatin1StringView(name))->text();
    }

private Q_SLOTS:
    void initTestCase() {
        QApplication::setApplicationDisplayName(u"QIRAN Telemetry Decoder"_s);
        QApplication::setWindowIcon(QIcon(u":/qirandecode.png"_s));
    }

    void itSaysWhatTheProgramIsAndWhereMoreIsFound() {
        const frmAbout window(nullptr);
        QCOMPARE(TextOf(window, "labTitle"), u"QIRAN Telemetry Decoder"_s);
        QCOMPARE(TextOf(window, "labVersion"), u"Version 2.4 revision 2"_s);
        QVERIFY(TextOf(window, "labPurpose").contains(u"decodes the satellite's telemetry"_s));
        QVERIFY(TextOf(window, "labHelp").contains(u"press F1"_s));
        QVERIFY(TextOf(window, "labHelp").contains(u"Help Contents"_s));
        QVERIFY(TextOf(window, "labLicence").contains(u"MIT License"_s));
        QVERIFY(TextOf(window, "labWhole").contains(u"QCustomPlot"_s));
        QVERIFY(TextOf(window, "labWhole").contains(u"GNU GPL, version 3 or later"_s));
        QVERIFY(TextOf(window, "labLicence").contains(u"Qt "_s + QLatin1StringView(qVersion())));
    }

    void okAndEscapeCloseIt() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            frmAbout window(nullptr);
            window.show();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            QTest::keyClick(window.findChild<QPushButton*>(u"cmdOk"_s), key);
            QTRY_VERIFY(!window.isVisible());
        }
    }

    void itsTextsAreShownWhole() {
        frmAbout window(nullptr);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (const QLabel* label : window.findChildren<QLabel*>())
            if (label->wordWrap())
                QVERIFY2(label->height() >= label->heightForWidth(label->width()), qPrintable(label->text()));
        Screenshots::Take(window, u"frmAbout"_s);
    }
};

QTEST_MAIN(frmAboutTest)
#include "frmAboutTest.moc"
