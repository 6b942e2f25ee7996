#include "pesim/ScriptPlayer.h"

#include <QFile>
#include <QSet>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

namespace {

QByteArray Captured(char kind, const QByteArray& from, const QByteArray& to, const QByteArray& text) {
    return AgwFrame{.kind = kind, .callFrom = from, .callTo = to, .data = text}.ToBytes();
}

} // namespace

/// The simulator against what a real engine was seen to send, and its scripts.
class PesimScriptTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void monitoredFramesLookLikeARealEngines();
    void everyCommandIsUnderstood_data();
    void everyCommandIsUnderstood();
    void nonsenseIsNamedWithItsLine();
    void escapesBecomeBytes();
    void theDemonstrationPassHasAllFrameTypesOfBothSides();
    void aScriptWaitsForAProgramAndPlaysInOrder();
};

void PesimScriptTest::monitoredFramesLookLikeARealEngines() {
    QCOMPARE(EngineSimulator::HeardBytes({.from = "XQ9ZZ-1",
                                          .to = "APRS",
                                          .via = {"WIDE2-2"},
                                          .information = "T#001,10,20,30,40,0,0,00101111,0\n"},
                                         "00:16:57"),
             Captured('U', "XQ9ZZ-1", "APRS",
                      QByteArray(" 1:Fm XQ9ZZ-1 To APRS Via WIDE2-2 <UI pid=F0 Len=33 PF=0 "
                                 ">[00:16:57]\rT#001,10,20,30,40,0,0,00101111,0\n\r") +
                          '\0'));
    QCOMPARE(
        EngineSimulator::HeardBytes(
            {.kind = 'T', .from = "N0CALL-7", .to = "CQ", .via = {}, .information = "test tx\r"}, "00:16:56"),
        Captured('T', "N0CALL-7", "CQ",
                 QByteArray(" 1:Fm N0CALL-7 To CQ <UI pid=F0 Len=8 PF=0 >[00:16:56]\rtest tx\r\r") + '\0'));
}

void PesimScriptTest::everyCommandIsUnderstood_data() {
    QTest::addColumn<QByteArray>("line");
    for (const char* line : {"heard A>B,C:text",
                             "heard A>B:",
                             "information A>B:x",
                             "supervisory A>B:",
                             "transmitted A>B:x",
                             "port 2",
                             "pause 100",
                             "await",
                             "drop",
                             "down 50",
                             "mute on",
                             "dribble off",
                             "close-after G",
                             "close-after never",
                             "broken length",
                             "broken zeros",
                             "broken kind",
                             "broken half",
                             "broken garbage",
                             "raw 00ff",
                             "quit"})
        QTest::newRow(line) << QByteArray(line);
}

void PesimScriptTest::everyCommandIsUnderstood() {
    QFETCH(QByteArray, line);
    const PesimScript::Line parsed = PesimScript::ParseLine(line + "\r\n");
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.commands.size(), 1);
}

void PesimScriptTest::nonsenseIsNamedWithItsLine() {
    const auto script =
        PesimScript::Parse("# fine\n\nheard A>B:x\nheard AB:x\nport 0\npause\nraw 0g\nmute\nx\n"
                           "heard A>B:\\x0\nawait now\n");
    QCOMPARE(script.commands.size(), 1);
    QCOMPARE(script.errors.size(), 8);
    QCOMPARE(script.errors[0], QStringLiteral("line 4: not understood: heard AB:x"));
}

void PesimScriptTest::escapesBecomeBytes() {
    const auto line = PesimScript::ParseLine("heard A>B:a:\\r\\n\\0\\\\\\xFF>");
    QCOMPARE(std::get<PesimStep::Heard>(line.commands[0]).frame.information,
             QByteArray("a:\r\n\0\\\xFF>", 8));
}

void PesimScriptTest::theDemonstrationPassHasAllFrameTypesOfBothSides() {
    QFile file(QStringLiteral(QIRAN_DATA_DIR "/demo/pass.pesim"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto script = PesimScript::Parse(file.readAll());
    QCOMPARE(script.errors, QStringList());
    QSet<QByteArray> types;
    int milliseconds = 0;
    for (const PesimCommand& command : script.commands) {
        if (const auto* pause = std::get_if<PesimStep::Pause>(&command))
            milliseconds += pause->milliseconds;
        if (const auto* heard = std::get_if<PesimStep::Heard>(&command)) {
            const QByteArrayList fields = heard->frame.information.split(',');
            if (heard->frame.information.startsWith("T#")) {
                QCOMPARE(fields.size(), 9);
                types.insert(heard->frame.from + ' ' + fields[7].mid(2, 2));
            }
        }
    }
    QCOMPARE(types, (QSet<QByteArray>{"XQ9ZZ-1 00", "XQ9ZZ-1 01", "XQ9ZZ-1 10", "XQ9ZZ-1 11", "QIRAN-3 00",
                                      "QIRAN-3 01", "QIRAN-3 10", "QIRAN-3 11"}));
    QVERIFY(milliseconds >= 60000 && milliseconds <= 120000);
}

void PesimScriptTest::aScriptWaitsForAProgramAndPlaysInOrder() {
    EngineSimulator engine;
    QVERIFY(engine.Listen());
    ScriptPlayer player(engine);
    const QSignalSpy ended(&player, &ScriptPlayer::Ended);
    player.Append(PesimScript::Parse("await\nport 3\nheard A>B:one\npause 20\nraw 00\ndrop\n").commands);
    QTcpSocket program;
    program.connectToHost(QHostAddress::LocalHost, engine.Port());
    QTRY_COMPARE(engine.ConnectionCount(), 1);
    QVERIFY(ended.isEmpty());
    program.write(AgwFrame{.kind = 'm'}.ToBytes());
    QTRY_COMPARE(ended.size(), 1);
    QTRY_COMPARE(program.state(), QAbstractSocket::UnconnectedState);
    const QByteArray bytes = program.readAll();
    QCOMPARE(bytes[0], '\2');
    QVERIFY(bytes.contains(" 3:Fm A To B <UI pid=F0 Len=3 PF=0 >["));
    QVERIFY(bytes.endsWith(QByteArray("]\rone\r\0\0", 8)));
}

QTEST_GUILESS_MAIN(PesimScriptTest)
#include "PesimScriptTest.moc"
