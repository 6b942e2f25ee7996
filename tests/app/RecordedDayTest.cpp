#include "app/MainWindowRig.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// A day on the air, from a scripted engine: what the program showed, logged and stored of it stands in
/// golden/recorded-day.txt, taken before the road of a frame was rebuilt.
class RecordedDayTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void everyByteShownLoggedAndStoredIsTheSame();
};

namespace {

/// The same numbers in every run.
class Numbers {
public:
    int Below(int bound) {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<int>((m_state >> 33U) % static_cast<quint64>(bound));
    }

private:
    quint64 m_state = 20261121;
};

QByteArray TelemetryLine(Numbers& numbers, int sequence) {
    const auto raw = [&] { return QByteArray::number(numbers.Below(256)); };
    QByteArray type = "00000000";
    type[2] = static_cast<char>('0' + numbers.Below(10) / 4); // a 2 now and then: no frame type
    type[3] = static_cast<char>('0' + numbers.Below(2));
    // Drawn from the last to the first, as they were when the day was recorded.
    const QByteArray fourth = raw();
    const QByteArray third = raw();
    const QByteArray second = raw();
    const QByteArray first = raw();
    return "T#" + QByteArray::number(sequence).rightJustified(3, '0') + ',' + first + ',' + second + ".5," +
           third + ",-" + fourth + ",0,0," + type + ",0";
}

QByteArray Information(Numbers& numbers, int sequence) {
    const QByteArrayList ends{"", "\r", "\n", "\r\n", "\n\r"};
    const QByteArray end = ends[numbers.Below(5)];
    switch (numbers.Below(8)) {
    case 0:
        return "Hello from the coast > <x >" + end + "  second line  " + end;
    case 1:
        return "T#" + QByteArray::number(sequence) + ",1,2,3" + end;
    case 2:
        return "gr\xFC\xDF \x80 \x81\x01\tend" + end;
    case 3:
        return end + "   " + end;
    default:
        return TelemetryLine(numbers, sequence) + end;
    }
}

QByteArray HeardBytes(Numbers& numbers, int sequence) {
    const QByteArrayList sources{"XQ9ZZ-1", "XQ9ZZ-1",  "QIRAN-3", "QIRAN-3", "QIRAN",
                                 "NODIGI",  "N0CALL-7", "xq9zz-1", "Fm-To",   "QIRAN-2"};
    const QList<QByteArrayList> paths{{}, {"WIDE2-2"}, {"QIRAN-1*", "WIDE2-1"}, {"A", "B", "C"}};
    const char kinds[] = {'U', 'U', 'U', 'U', 'U', 'U', 'I', 'S', 'T', 'U'};
    const QByteArray source = sources[numbers.Below(10)];
    const QByteArrayList path = paths[numbers.Below(4)];
    const char kind = kinds[numbers.Below(10)];
    return EngineSimulator::HeardBytes({.port = 1 + numbers.Below(3),
                                        .kind = kind,
                                        .from = source,
                                        .to = "APRS",
                                        .via = path,
                                        .information = Information(numbers, sequence)},
                                       "23:59:59");
}

// Frames whose text is not what an engine writes.
QByteArray OddBytes(int number) {
    const QByteArrayList texts{" 1:To APRS Fm XQ9ZZ-1 <UI >[00:00:00]\rT#900,1,2,3,4,0,0,00001111,0\r",
                               "no header at all",
                               "\r",
                               "1:Fm XQ9ZZ-1 To APRS <UI pid=F0 Len=9\rT#901,1,2,3,4,0,0,00011111,0\r",
                               "1:Fm XQ9ZZ-1 To APRS <UI Len=9 >\nT#902,9,8,7,6,0,0,00101111,0\r",
                               " 99999:Fm XQ9ZZ-1 To A Via B Via C <UI pid=F0>\rT#903,9,8,7,6,0,0,0011,0\r"};
    const QByteArray data = texts[number % texts.size()] + '\0';
    QByteArray frame(36, '\0');
    frame[4] = 'U';
    frame.replace(8, 7, "XQ9ZZ-1");
    frame.replace(18, 4, "APRS");
    frame[28] = static_cast<char>(data.size());
    return frame + data;
}

QByteArray Formulae() {
    QByteArray text = "Calibration of a recorded day\r\n";
    const std::pair<const char*, QByteArrayList> grids[] = {
        {"POWER", {"Batt A", "Batt B", "P Out", "8V Reg"}},
        {"CURRENT", {"X+", "X-", "Y+", "Y-", "Z+", "Z-", "Batt"}},
        {"TEMP", {"X+", "X-", "Y+", "Y-", "Z+", "Z-", "Stack", "Batt"}}}; // Xmtr has none
    for (const char* side : {"A", "B"})
        for (int type = 0; type < 4; ++type)
            for (const auto& [grid, rows] : grids)
                for (qsizetype row = 0; row < rows.size(); ++row)
                    text += QByteArray(side) + ',' + QByteArray::number(type) + ',' + grid + ',' + rows[row] +
                            ",1e-6,-0.00" + QByteArray::number(type + 1) + ",1." + QByteArray::number(row) +
                            ",-12.5\r\n";
    return text;
}

// Text as a file can hold it: one line a line, with what is not ASCII escaped.
QByteArray Printable(const QByteArray& text) {
    QByteArray printable;
    for (const char c : text) {
        if (c == '\n')
            printable += "\\n\n";
        else if (c >= ' ' && c < 0x7F && c != '\\')
            printable += c;
        else
            printable += "\\x" + QByteArray(1, c).toHex();
    }
    return printable + '\n';
}

class Recording {
public:
    void Add(const QByteArray& name, const QByteArray& text) {
        m_text += "== " + name + "\n" + Printable(text);
    }
    void Add(const QByteArray& name, const QString& text) { Add(name, text.toUtf8()); }
    const QByteArray& Text() const { return m_text; }

private:
    QByteArray m_text;
};

QByteArray GridText(const QTableView& grid) {
    QByteArray text;
    const QAbstractItemModel& model = *grid.model();
    for (int row = 0; row < model.rowCount(); ++row)
        for (int column = 0; column < model.columnCount(); ++column) {
            const QModelIndex cell = model.index(row, column);
            text += cell.data().toString().toUtf8() + '|' + cell.data(Qt::UserRole).toString().toUtf8() +
                    '|' + cell.data(Qt::AccessibleTextRole).toString().toUtf8() + '\n';
        }
    return text;
}

// The tip over a value, asked for as a mouse does.
QString TipOver(QTableView& grid, int row, int column) {
    const QPoint place = grid.visualRect(grid.model()->index(row - 1, column)).center();
    QTest::mouseMove(grid.viewport(), place);
    QMouseEvent move(QEvent::MouseMove, place, grid.viewport()->mapToGlobal(place), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(grid.viewport(), &move);
    return grid.toolTip();
}

QWidget* Terminal() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == u"frmTerm")
            return window;
    return nullptr;
}

void Snapshot(const MainWindowRig& rig, const QByteArray& when, Recording& recording) {
    QCoreApplication::processEvents(); // panes and grids follow what is logged
    recording.Add(when + ": monitor", rig.Monitor());
    recording.Add(when + ": terminal",
                  Terminal()->findChild<QWidget*>(u"rtbMon"_s)->property("plainText").toString());
    for (const char* name : {"gTlm0", "gTlm1", "gTlm2"}) {
        auto* grid = rig.Find<QTableView>(name);
        recording.Add(when + ": " + name, GridText(*grid));
        recording.Add(when + ": tip of " + name,
                      TipOver(*grid, 2, 2) + u'/' + TipOver(*grid, 1, 1) + u'/' + TipOver(*grid, 3, 0));
    }
}

qsizetype BytesLogged(const MainWindowRig& rig) {
    qsizetype bytes = 0;
    for (const QFileInfo& file : QDir(rig.folder.File(u"LOGS"_s)).entryInfoList(QDir::Files))
        bytes += file.size();
    return bytes;
}

void Hear(MainWindowRig& rig, const QByteArray& bytes) {
    const qsizetype before = BytesLogged(rig);
    rig.engine.SendRaw(bytes);
    QTRY_VERIFY(BytesLogged(rig) > before);
}

QByteArray Golden() {
    QFile file(QStringLiteral(QIRAN_GOLDEN_FOLDER) + u"/recorded-day.txt"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    return text.sliced(text.indexOf("== "));
}

} // namespace

void RecordedDayTest::initTestCase() {
    qputenv("TZ", "Europe/Berlin");
}

void RecordedDayTest::everyByteShownLoggedAndStoredIsTheSame() {
    Numbers numbers;
    Recording recording;
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, Formulae());
    rig.Set("TERMINAL", "LOGGING", u"True"_s);
    rig.Set("SETUP", "CALLSIGN", u"N0CALL-7"_s);
    rig.clock.Set(DateOf(2026, 10, 24) + 5.0 / 24.0); // Berlin's winter begins in the night that follows
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QTRY_VERIFY(rig.Monitor().contains(u"AGWPE V"));
    const qsizetype begun = BytesLogged(rig);
    QTRY_VERIFY(begun > 0);

    for (int frame = 0; frame < 360; ++frame) {
        rig.clock.Advance(257.3);
        Hear(rig, frame % 40 == 39 ? OddBytes(frame / 40) : HeardBytes(numbers, frame));
        if (QTest::currentTestFailed())
            return;
        if (frame % 90 == 30)
            rig.Find<QAction>("mnuOnlyShowQIRAN")->trigger();
        if (frame % 110 == 60)
            rig.Find<QAction>("mnuUseLocalTime")->trigger();
        if (frame % 60 == 59)
            Snapshot(rig, "frame " + QByteArray::number(frame), recording);
        if (frame == 200) {
            auto* txtTx = Terminal()->findChild<QLineEdit*>(u"txtTx"_s);
            const qsizetype before = BytesLogged(rig);
            QTest::keyClicks(txtTx, u"a line of our own"_s);
            QTest::keyClick(txtTx, Qt::Key_Return);
            QTRY_VERIFY(BytesLogged(rig) > before);
        }
    }
    const qsizetype before = BytesLogged(rig);
    rig.engine.DropConnections();
    QTRY_VERIFY(BytesLogged(rig) > before);
    Snapshot(rig, "end", recording);
    rig.window->close();
    rig.window.reset();
    for (const QFileInfo& file : QDir(rig.folder.File(u"LOGS"_s)).entryInfoList(QDir::Files, QDir::Name))
        recording.Add(file.fileName().toUtf8(), rig.folder.Read(u"LOGS/"_s + file.fileName()));
    QByteArray settings = rig.folder.Read(u"QiranDecode.INI"_s);
    settings.replace(QByteArray::number(rig.engine.Port()), "PORT");
    // Where windows stand depends on the desktop's fonts.
    static const QRegularExpression place(u"((LEFT|TOP|WIDTH|HEIGHT)=)-?[0-9.]+"_s);
    recording.Add("settings", QString::fromLatin1(settings).replace(place, u"\\1"_s));

    if (const QString wanted = qEnvironmentVariable("QIRAN_RECORD"); !wanted.isEmpty()) {
        QFile file(wanted);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Made by RecordedDayTest with QIRAN_RECORD=FILE, by the program as of version 2.4.2.\n" +
                   recording.Text());
    }
    const QList<QByteArray> expected = Golden().split('\n');
    const QList<QByteArray> found = recording.Text().split('\n');
    for (qsizetype line = 0; line < std::min(expected.size(), found.size()); ++line)
        QVERIFY2(found[line] == expected[line], "line " + QByteArray::number(line + 1) + ": " + found[line] +
                                                    "\ninstead of " + expected[line]);
    QCOMPARE(found.size(), expected.size());
}

QTEST_MAIN(RecordedDayTest)
#include "RecordedDayTest.moc"
