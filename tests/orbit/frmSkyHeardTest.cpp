#include "foundation/messages/mb.h"
#include "orbit/SkyRig.h"
#include "orbit/skyview/frmSky.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// A sky window that knows of frames.
struct Fixture : SkyRig {
    using SkyRig::Find;

    void Open() {
        SkyHearing hearing{.between =
                               [this](DateTime from, DateTime to) {
                                   std::vector<DateTime> found;
                                   std::ranges::copy_if(frames, std::back_inserter(found), [&](DateTime utc) {
                                       return utc >= from && utc <= to;
                                   });
                                   return found;
                               },
                           .directionAt = [this](DateTime utc) -> std::optional<SkyPoint> {
                               const auto position = sats.PositionAt(u"90417"_s, utc);
                               return utc < day - 14
                                          ? std::nullopt
                                          : std::optional(SkyPoint{utc, position->dblAz, position->dblEl});
                           },
                           .chooseFile =
                               [this](QWidget*, const QString&, const QString& proposal) {
                                   proposals += proposal;
                                   return path;
                               },
                           .messages = &messages};
        if (!knowsFrames)
            hearing = {};
        window = std::make_unique<frmSky>(
            sats, satellites, [this] { return place; }, [] { return std::nullopt; }, ini, folder.Program(),
            hearing);
        window->show();
    }
    template <class Widget>
    Widget* Find(const char* name) const {
        return window->findChild<Widget*>(QString::fromLatin1(name));
    }
    QString Heard() const {
        const auto* table = Find<QTableWidget>("tblValues");
        for (int row = 0; row < table->rowCount(); ++row)
            if (table->item(row, 0)->text() == u"Heard")
                return table->item(row, 1)->text();
        return {};
    }
    // A pass with frames in its middle half.
    SatPass HearPass(int count) {
        const SatPass pass = Find(day, [](const SatPass& p) { return p.maxElevation > 50; });
        const double length = pass.setUtc - pass.riseUtc;
        for (int k = 0; k < count; ++k)
            frames.push_back(pass.riseUtc + length * (0.25 + 0.5 * k / count));
        return pass;
    }
    int Green() const {
        const QImage image = window->findChild<SkyPicture*>()->grab().toImage();
        int green = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                green += c.green() > c.red() + 40 && c.green() > c.blue() + 20 ? 1 : 0;
            }
        return green;
    }

    std::vector<DateTime> frames;
    bool knowsFrames = true;
    QString path = folder.File(u"heard.csv"_s);
    QStringList proposals;
    RecordingPresenter presenter;
    mb messages{presenter};
    std::unique_ptr<frmSky> window;
};

} // namespace

class frmSkyHeardTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void framesAreMarkedAlongTheirPassAndCounted();
    void newFramesAppear();
    void theOtherSatelliteHasNone();
    void aFloodOfFramesIsCountedAndMarkedInPart();
    void allPassesAreSummedUpWhileTheWindowLives();
    void theSumIsSaved();
    void aFileThatCannotBeWrittenIsSaid();
    void withoutAHistoryThereIsNothingOfIt();
    void screenshots();
};

void frmSkyHeardTest::framesAreMarkedAlongTheirPassAndCounted() {
    Fixture f;
    const SatPass pass = f.HearPass(12);
    f.clock.Set(pass.setUtc + 0.3);
    f.Open();
    QCOMPARE(f.Heard(), QString());
    QCOMPARE(f.Green(), 0);
    f.window->ShowPassAt(pass.riseUtc);
    QCOMPARE(f.Heard(), u"12 frames"_s);
    QVERIFY(f.Green() > 12 * 8);
    // Each on the way: the stroke's middle.
    SkyView view(
        f.sats, f.satellites, [&] { return f.place; }, [] { return std::nullopt; }, f.folder.Program(),
        [&](DateTime, DateTime) { return f.frames; });
    view.Refresh();
    QVERIFY(view.ShowPassAt(pass.riseUtc));
    QCOMPARE(view.Scene().heard.size(), std::size_t{12});
    for (const SkyPoint& heard : view.Scene().heard) {
        const auto position = f.sats.PositionAt(u"90417"_s, heard.utc);
        QCOMPARE(heard.azimuth, position->dblAz);
        QCOMPARE(heard.elevation, position->dblEl);
    }
    f.window->findChild<QPushButton*>(u"cmdLater"_s)->click();
    QCOMPARE(f.Heard(), QString());
}

void frmSkyHeardTest::newFramesAppear() {
    Fixture f;
    const SatPass pass = f.HearPass(0);
    f.clock.Set(pass.culminationUtc);
    f.Open();
    QCOMPARE(f.Heard(), QString());
    f.frames.push_back(pass.culminationUtc);
    f.window->Refresh();
    QCOMPARE(f.Heard(), u"1 frame"_s);
}

void frmSkyHeardTest::theOtherSatelliteHasNone() {
    Fixture f;
    f.satellites.Toggle();
    for (int k = 0; k < 86400; k += 20)
        f.frames.push_back(SkyRig::day + k / secondsPerDay);
    f.Open();
    QCOMPARE(f.Heard(), QString());
    f.satellites.Toggle();
    f.window->SatHasChanged();
    QVERIFY(!f.Heard().isEmpty());
}

void frmSkyHeardTest::aFloodOfFramesIsCountedAndMarkedInPart() {
    Fixture f;
    const SatPass pass = f.HearPass(5000);
    SkyView view(
        f.sats, f.satellites, [&] { return f.place; }, [] { return std::nullopt; }, f.folder.Program(),
        [&](DateTime, DateTime) { return f.frames; });
    view.Refresh();
    QVERIFY(view.ShowPassAt(pass.riseUtc));
    QCOMPARE(view.Scene().heard.size(), SkyView::mostHeard);
    QVERIFY(std::ranges::any_of(view.Rows(), [](const SkyRow& row) { return row.value == u"5000 frames"; }));
}

void frmSkyHeardTest::allPassesAreSummedUpWhileTheWindowLives() {
    Fixture f;
    f.HearPass(10000);
    for (int k = 0; k < 7; ++k)
        f.frames.push_back(SkyRig::day - 20 - k);
    std::ranges::sort(f.frames);
    f.Open();
    auto* check = f.Find<QCheckBox>("chkHeard");
    auto* save = f.Find<QPushButton>("cmdSaveHeard");
    QVERIFY(!save->isEnabled());
    const int before = f.Green();
    check->click();
    QVERIFY(!save->isEnabled()); // ten thousand frames take more than one turn
    QTRY_VERIFY(save->isEnabled());
    QCOMPARE(f.Find<QLabel>("labHeard")->text(), u"10000 frames, 7 more without elements of their time"_s);
    QVERIFY(f.Green() > before + 200);
    f.frames.resize(f.frames.size() - 9000);
    f.window->HeardHasChanged();
    QTRY_COMPARE(f.Find<QLabel>("labHeard")->text(), u"1000 frames, 7 more without elements of their time"_s);
    check->click();
    QCOMPARE(f.Find<QLabel>("labHeard")->text(), QString());
    QCOMPARE(f.Green(), before);
    QVERIFY(!save->isEnabled());
}

void frmSkyHeardTest::theSumIsSaved() {
    Fixture f;
    f.HearPass(30);
    f.Open();
    f.Find<QCheckBox>("chkHeard")->click();
    auto* save = f.Find<QPushButton>("cmdSaveHeard");
    QTRY_VERIFY(save->isEnabled());
    save->click();
    QCOMPARE(f.proposals, QStringList(u"heard.csv"_s));
    int frames = 0;
    for (const QByteArray& line : f.folder.Read(u"heard.csv"_s).split('\n').sliced(1))
        frames += line.isEmpty() ? 0 : line.trimmed().split(',').last().toInt();
    QCOMPARE(frames, 30);
    f.path.clear(); // does not want to
    save->click();
    QVERIFY(f.presenter.messages.isEmpty());
}

void frmSkyHeardTest::aFileThatCannotBeWrittenIsSaid() {
    Fixture f;
    f.path = f.folder.File(u"no/such/folder.csv"_s);
    f.Open();
    f.Find<QCheckBox>("chkHeard")->click();
    QTRY_VERIFY(f.Find<QPushButton>("cmdSaveHeard")->isEnabled());
    f.Find<QPushButton>("cmdSaveHeard")->click();
    QCOMPARE(f.presenter.messages.size(), 1);
    QVERIFY(f.presenter.Texts().first().startsWith(u"The table cannot be saved in "_s + f.path));
}

void frmSkyHeardTest::withoutAHistoryThereIsNothingOfIt() {
    Fixture f;
    f.knowsFrames = false;
    f.Open();
    QVERIFY(!f.Find<QCheckBox>("chkHeard")->isVisible());
}

void frmSkyHeardTest::screenshots() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    Fixture f;
    const SatPass pass = f.HearPass(25);
    f.clock.Set(pass.setUtc);
    f.Open();
    f.window->ShowPassAt(pass.riseUtc);
    Screenshots::Take(*f.window, u"frmSky-heard"_s);
    quint32 chance = 1;
    for (int k = 0; k < 20 * 86400; k += 15) { // a house hides the west
        const DateTime utc = SkyRig::day - 10 + k / secondsPerDay;
        const auto position = f.sats.PositionAt(u"90417"_s, utc);
        chance = chance * 1664525 + 1013904223;
        const bool isHidden = position->dblAz > 220 && position->dblAz < 310 && position->dblEl < 35;
        if (position->dblEl > 0 && !isHidden && chance % 90 < position->dblEl + 10)
            f.frames.push_back(utc);
    }
    f.Find<QCheckBox>("chkHeard")->click();
    QTRY_VERIFY(f.Find<QPushButton>("cmdSaveHeard")->isEnabled());
    Screenshots::Take(*f.window, u"frmSky-where"_s);
}

QTEST_MAIN(frmSkyHeardTest)
#include "frmSkyHeardTest.moc"
