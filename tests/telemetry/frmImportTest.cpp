#include "telemetry/imports/frmImport.h"

#include "foundation/text/IsoTime.h"
#include "support/Drop.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/SmallDisk.h"
#include "telemetry/HistoryRoom.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/history/HistoryWriter.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

using namespace HistoryRoom;
using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60000;        // milliseconds, on a busy machine
constexpr qint64 noon = 1795262400000; // 2026-11-21 12:00 UTC

QByteArray Information(int number) {
    return "T#" + QByteArray::number(number) + ",1,2,3,4,0,0,00111111,0";
}

QByteArray Logged(int number) {
    const QByteArray information = Information(number);
    return "12:00:01R XQ9ZZ-1>APRS Port=1 <UI Len=" + QByteArray::number(information.size()) + ">:\r\n" +
           information + "\r\n\r\n";
}

} // namespace

/// The import dialog, beside a station that writes its history.
class frmImportTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void filesAreCountedThenComeInThenAreTakenBack();
    void aPlainRecordingComesInAtTheTimeGiven();
    void whatWasCountedIsForgottenWhenAnythingChanges();
    void aWrongZoneOrTimeIsSaid();
    void whatIsHeardDuringAnImportIsKept();
    void whatWaitsForRoomHoldsTheImportOff();
    void aCancelledImportChangesNothing();
    void filesCanBeDropped();
    void aFileThatCannotBeReadIsNamed();

private:
    template <class Type>
    Type* Find(const char* name) const {
        return m_window->findChild<Type*>(QLatin1StringView(name));
    }
    void Press(const char* name) { QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton); }
    bool IsIdle() const { return Find<QPushButton>("cmdClose")->text() == u"Close"; }
    QString Shown() const { return Find<QPlainTextEdit>("txtCount")->toPlainText(); }
    QByteArray History() const { return m_folder->Read(u"tlm.txt"_s); }
    void Hear(int number) {
        const QByteArray information = Information(number);
        TelemetryFrame frame{.utc = noon + number, .source = "XQ9ZZ-1", .side = 0, .line = information};
        std::ranges::copy(*SplitAtCommas<TelemetryFrame::fieldsInLine>(ToView(information)),
                          m_fields.begin());
        std::ranges::transform(m_fields, frame.fields.begin(), [](std::string_view field) {
            return QByteArrayView(field.data(), static_cast<qsizetype>(field.size()));
        });
        m_writer->Take(frame);
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    QStringList m_chosen;
    std::array<std::string_view, TelemetryFrame::fieldsInLine> m_fields;
    std::unique_ptr<HistoryWriter> m_writer;
    std::unique_ptr<frmImport> m_window;
};

void frmImportTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_presenter.messages.clear();
    const QString path = m_folder->File(u"tlm.txt"_s);
    m_writer = std::make_unique<HistoryWriter>(path, [](const QString&) {});
    m_window = std::make_unique<frmImport>(
        path, Sides(), [this] { return m_writer->Settle(); }, m_messages, nullptr,
        [this](QWidget*) { return m_chosen; });
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void frmImportTest::cleanup() {
    m_window.reset();
    m_writer.reset();
    m_folder.reset();
}

void frmImportTest::filesAreCountedThenComeInThenAreTakenBack() {
    Hear(1);
    const QByteArray before = History();
    QVERIFY(!Find<QPushButton>("cmdCount")->isEnabled());
    QVERIFY(!Find<QPushButton>("cmdUndo")->isEnabled());
    m_folder->Write(u"20261121.TXT"_s, Logged(7) + Logged(8) + "what is this?\r\n");
    m_chosen = {m_folder->File(u"20261121.TXT"_s)};
    Press("cmdAdd");
    Find<QComboBox>("cboZone")->setCurrentText(u"Asia/Tokyo"_s);
    QVERIFY(!Find<QPushButton>("cmdImport")->isEnabled());
    QSignalSpy changed(m_window.get(), &frmImport::HistoryChanged);
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QVERIFY2(Shown().startsWith(u"frames that come in: 2\n  from 2026-11-21T03:00:01.000Z to "),
             qPrintable(Shown()));
    QVERIFY(Shown().endsWith(u"not understood: 1\n  what is this?"));
    QCOMPARE(History(), before);
    Screenshots::Take(*m_window, u"frmImport"_s);
    Press("cmdImport");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QCOMPARE(Shown(), u"Frames that have come in: 2"_s);
    QVERIFY(History().contains("2026-11-21T03:00:01.000Z,XQ9ZZ-1,A,T#7,"));
    QCOMPARE(changed.size(), 1);
    QVERIFY(!Find<QPushButton>("cmdImport")->isEnabled());
    Hear(2);
    Press("cmdUndo");
    QVERIFY(!IsIdle()); // the window is alive meanwhile
    Hear(3);
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(History(), before + header + IsoTime::Milliseconds(noon + 2) + ",XQ9ZZ-1,A," + Information(2) +
                            '\n' + IsoTime::Milliseconds(noon + 3) + ",XQ9ZZ-1,A," + Information(3) + '\n');
    QVERIFY(!Find<QPushButton>("cmdUndo")->isEnabled());
    QVERIFY(m_presenter.messages.isEmpty());
    Press("cmdClose");
    QVERIFY(m_window->isHidden());
}

void frmImportTest::aPlainRecordingComesInAtTheTimeGiven() {
    const QByteArray information = Information(5);
    Ax25Frame frame;
    frame.source.callsign = "XQ9ZZ-1";
    frame.destination.callsign = "APRS";
    frame.information = ToView(information);
    const QByteArray bytes = QByteArray::fromStdString(*frame.ToBytes());
    m_folder->Write(u"pass.kss"_s, QByteArray("\xC0\x00", 2) + bytes + "\xC0");
    m_window->AddFiles({m_folder->File(u"pass.kss"_s)});
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QVERIFY2(Shown().startsWith(u"frames that come in: 0\n"), qPrintable(Shown()));
    QVERIFY(!Find<QPushButton>("cmdImport")->isEnabled());
    QTest::keyClicks(Find<QLineEdit>("txtTime"), u"2026-11-21T15:00Z"_s);
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    Press("cmdImport");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QVERIFY2(History().contains("2026-11-21T15:00:00.000Z,XQ9ZZ-1,A,T#5,"), History());
}

void frmImportTest::whatWasCountedIsForgottenWhenAnythingChanges() {
    m_folder->Write(u"20261121.TXT"_s, Logged(7));
    const auto count = [this] {
        m_window->AddFiles({m_folder->File(u"20261121.TXT"_s)});
        Press("cmdCount");
        return QTest::qWaitFor([this] { return IsIdle(); }, patience) &&
               Find<QPushButton>("cmdImport")->isEnabled();
    };
    const auto isForgotten = [this] {
        return !Find<QPushButton>("cmdImport")->isEnabled() && Shown().isEmpty();
    };
    QVERIFY(count());
    Find<QComboBox>("cboZone")->setCurrentText(u"local"_s);
    QVERIFY(isForgotten());
    QVERIFY(count());
    QTest::keyClick(Find<QLineEdit>("txtTime"), Qt::Key_2);
    QVERIFY(isForgotten());
    Find<QLineEdit>("txtTime")->clear();
    QVERIFY(count());
    Find<QListWidget>("lstFiles")->selectAll();
    Press("cmdRemove");
    QVERIFY(isForgotten());
    QVERIFY(!Find<QPushButton>("cmdCount")->isEnabled());
}

void frmImportTest::aWrongZoneOrTimeIsSaid() {
    m_folder->Write(u"20261121.TXT"_s, Logged(7));
    m_window->AddFiles({m_folder->File(u"20261121.TXT"_s)});
    Find<QComboBox>("cboZone")->setCurrentText(u"Nowhere/Else"_s);
    Press("cmdCount");
    QCOMPARE(m_presenter.Texts(), QStringList(u"There is no time zone Nowhere/Else. It is UTC, local, or a "
                                              "name such as Europe/Berlin."_s));
    QVERIFY(IsIdle());
    Find<QComboBox>("cboZone")->setCurrentText(u"UTC"_s);
    Find<QLineEdit>("txtTime")->setText(u"yesterday"_s);
    Press("cmdCount");
    QCOMPARE(m_presenter.Texts().last(), u"The time is to be written like 2026-11-21T15:00Z."_s);
    QVERIFY(IsIdle());
}

void frmImportTest::whatIsHeardDuringAnImportIsKept() {
    QByteArray log;
    for (int number = 0; number < 5000; ++number)
        log += Logged(900000000 + number);
    m_folder->Write(u"20261121.TXT"_s, log);
    Hear(0);
    m_window->AddFiles({m_folder->File(u"20261121.TXT"_s)});
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    Press("cmdImport");
    int heard = 0;
    while (!IsIdle()) {
        Hear(++heard);
        QCoreApplication::processEvents();
    }
    Hear(++heard);
    QCOMPARE(Shown(), u"Frames that have come in: 5000"_s);
    QVERIFY(heard > 1);
    const QByteArray history = History();
    QCOMPARE(history.count("T#90000"), 5000);
    for (int number = 0; number <= heard; ++number)
        QCOMPARE(history.count(",XQ9ZZ-1,A," + Information(number) + '\n'), 1);
}

void frmImportTest::whatWaitsForRoomHoldsTheImportOff() {
    Hear(1);
    m_folder->Write(u"20261121.TXT"_s, Logged(7));
    m_window->AddFiles({m_folder->File(u"20261121.TXT"_s)});
    const QByteArray before = History();
    {
        Press("cmdCount");
        QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
        const SmallDisk full(static_cast<rlim_t>(before.size()) + 10);
        Hear(2); // its start is in the file now
        Press("cmdImport");
        QVERIFY(IsIdle());
        QCOMPARE(m_presenter.Texts(), QStringList(u"what was heard last cannot be written to the history"_s));
    }
    QVERIFY(!History().contains("T#7,"));
    // There is room again, and the history is replaced before the station writes by itself.
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    Press("cmdImport");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QVERIFY(History().contains("T#7,"));
    QVERIFY(History().contains(",XQ9ZZ-1,A," + Information(2) + '\n'));
    QCOMPARE(History().count('\n'), 5); // with two headers
}

void frmImportTest::aCancelledImportChangesNothing() {
    Hear(1);
    const QByteArray before = History();
    QByteArray log;
    for (int number = 0; number < 5000; ++number)
        log += Logged(number);
    m_folder->Write(u"20261121.TXT"_s, log);
    m_window->AddFiles({m_folder->File(u"20261121.TXT"_s)});
    Press("cmdCount");
    QCOMPARE(Find<QPushButton>("cmdClose")->text(), u"Cancel"_s);
    QVERIFY(!Find<QListWidget>("lstFiles")->isEnabled());
    QVERIFY(Find<QProgressBar>("barProgress")->isVisible());
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QVERIFY(m_window->isVisible());
    QVERIFY(!Find<QPushButton>("cmdImport")->isEnabled());
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    Press("cmdImport");
    Press("cmdClose");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QCOMPARE(History(), before);
    QVERIFY(m_presenter.messages.isEmpty());
    QVERIFY(Find<QPushButton>("cmdImport")->isEnabled()); // what was counted still holds
}

void frmImportTest::filesCanBeDropped() {
    m_folder->Write(u"20261121.TXT"_s, Logged(7));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_folder->File(u"20261121.TXT"_s)), QUrl(u"https://example.org/x"_s)});
    QVERIFY(Drop(*m_window, data, {1, 1}));
    QCOMPARE(Find<QListWidget>("lstFiles")->count(), 1);
    QVERIFY(Drop(*m_window, data, {1, 1})); // once more
    QCOMPARE(Find<QListWidget>("lstFiles")->count(), 1);
}

void frmImportTest::aFileThatCannotBeReadIsNamed() {
    m_window->AddFiles({m_folder->File(u"missing.txt"_s)});
    Press("cmdCount");
    QTRY_VERIFY_WITH_TIMEOUT(IsIdle(), patience);
    QCOMPARE(m_presenter.messages.size(), 1);
    QVERIFY(m_presenter.Texts().first().contains(u"missing.txt"));
    QVERIFY(!Find<QPushButton>("cmdImport")->isEnabled());
}

QTEST_MAIN(frmImportTest)
#include "frmImportTest.moc"
