#include "keps/KepsText.h"

#include <QTest>

class KepsTextTest : public QObject {
    Q_OBJECT

private:
    static QByteArray Convert(const QByteArray& text, qsizetype pieceSize, bool* isHtml = nullptr) {
        KepsText keps;
        QByteArray result;
        for (qsizetype at = 0; at < text.size(); at += pieceSize)
            result += keps.Convert(QByteArrayView(text).sliced(at, qMin(pieceSize, text.size() - at)));
        if (isHtml != nullptr)
            *isHtml = keps.IsHtml();
        return result;
    }

private Q_SLOTS:
    void EveryLineEndBecomesCrLf() {
        QCOMPARE(Convert("a\nb\rc\r\nd\n\re\r\rf\n\n", 8192),
                 QByteArray("a\r\nb\r\nc\r\nd\r\n\r\ne\r\n\r\nf\r\n\r\n"));
    }

    void SplitBetweenPiecesAnywhereTheResultIsTheSame() {
        const QByteArray text = "one\r\ntwo\nthree\rfour\r\n\r\nfive\n\nsix\r\r\nseven";
        const QByteArray whole = Convert(text, text.size());
        for (qsizetype size = 1; size < text.size(); ++size)
            QCOMPARE(Convert(text, size), whole);
    }

    void HtmlTagIsFoundInAnyCaseAndWithAttributes_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isHtml");
        QTest::newRow("lower case") << QByteArray("junk <html> more") << true;
        QTest::newRow("upper case") << QByteArray("<HTML>") << true;
        QTest::newRow("mixed case") << QByteArray("<!DOCTYPE html>\n<Html>") << true;
        QTest::newRow("attributes") << QByteArray("<html lang=\"en\">") << true;
        QTest::newRow("attributes on the next line") << QByteArray("<html\nlang=\"en\">") << true;
        QTest::newRow("longer name first") << QByteArray("<htmlx><html>") << true;
        QTest::newRow("longer name") << QByteArray("<htmlx>") << false;
        QTest::newRow("word") << QByteArray("html") << false;
        QTest::newRow("unfinished") << QByteArray("text <html") << false;
        QTest::newRow("closing tag") << QByteArray("</html>") << false;
        QTest::newRow("elements") << QByteArray("QIRAN\n1 90417U\n2 90417") << false;
    }

    void HtmlTagIsFoundInAnyCaseAndWithAttributes() {
        QFETCH(QByteArray, text);
        QFETCH(bool, isHtml);
        QCOMPARE(KepsText::IsHtml(text), isHtml);
        for (qsizetype size = 1; size <= text.size(); ++size) { // also across pieces
            bool found = !isHtml;
            Convert(text, size, &found);
            QCOMPARE(found, isHtml);
        }
    }
};

QTEST_GUILESS_MAIN(KepsTextTest)
#include "KepsTextTest.moc"
