#include "orbit/map/frmMap.h"

#include "foundation/placement/Twips.h"
#include "foundation/settings/Settings.h"
#include "orbit/Circling.h"
#include "orbit/map/TimeBox.h"
#include "support/RecordingPresenter.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QAction>
#include <QBuffer>
#include <QContextMenuEvent>
#include <QMenu>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

namespace {

QByteArray ShippedWorld() {
    QFile file(QStringLiteral(QIRAN_DATA_FOLDER "/world.gif"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A map over satellites that circle the earth, on 2026-11-21 at 00:10:20 UTC.
struct Fixture {
    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    RecordingPresenter presenter;
    mb messages{presenter};
    TestClock clock{DateOf(2026, 11, 21) + (10 * 60 + 20) / secondsPerDay};
    FakeLibrary* library = new FakeLibrary;
    clsSats sats{std::unique_ptr<OrbitLibrary>(library), clock};
    TrackedSatellites satellites;
    std::optional<PassSteps::Place> place;
    std::unique_ptr<frmMap> map;

    explicit Fixture(const QByteArray& world = ShippedWorld()) {
        satellites.LoadSettings(ini);
        LetCircle(*library);
        if (!world.isEmpty())
            folder.Write(QStringLiteral("world.gif"), world);
        Open();
    }
    void Open() {
        map = std::make_unique<frmMap>(sats, satellites, ini, messages, folder.Program(),
                                       [this] { return place; });
        map->show();
    }
    QAction* Entry(const char* name) const { return map->findChild<QAction*>(QString::fromLatin1(name)); }
    void Choose(const char* name) const { Entry(name)->trigger(); }
    QTimer* Ticker() const { return map->findChild<QTimer*>(QStringLiteral("Timer1")); }
    TimeBox* Time() const { return map->findChild<TimeBox*>(QStringLiteral("picTime")); }
    MapPicture* Picture() const { return map->findChild<MapPicture*>(QStringLiteral("picMap")); }
    QString TimeOfDay() const { return Time()->Text().section(u' ', 1); }
    // A tick of the ticker, without waiting for it.
    void Tick() const {
        QTimerEvent event(Ticker()->timerId());
        QCoreApplication::sendEvent(Ticker(), &event);
    }
    QByteArray Checked() const {
        QByteArray checked;
        for (const char* name :
             {"mnuSpeedNormal", "mnuSpeedFast", "mnuSpeedVeryFast", "mnuSpeedBackwards", "mnuSpeedPause"}) {
            if (Entry(name)->isChecked())
                checked += QByteArray(name).mid(8) + ' ';
        }
        return checked.trimmed();
    }
};

int Pixels(const QImage& image, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
}

} // namespace

class frmMapTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void opensOnTheRealClock();
    void captionNamesTheSatellite();
    void captionShowsTheNameAsItStands();
    void fastAndBackwards();
    void veryFastTicksByItself();
    void pauseKeepsTheTimeAndASpeedRestartsTheTicker();
    void resetGoesBackToTheRealClock();
    void timeBoxFollowsLocalTime();
    void timeBoxIsTheSameInEveryLocale();
    void rightReleaseOpensTheMenu();
    void theKeyOpensTheMenu();
    void menuHasItsAccessKeys();
    void timeBoxIsDraggedAndStaysOnTheMap();
    void positionIsSavedAndRestored();
    void closingMinimisedSavesNothing();
    void closingTellsTheOwnerAndStopsTheTicker();
    void escapeCloses();
    void withoutAPictureTheBackgroundIsPlain_data();
    void withoutAPictureTheBackgroundIsPlain();
    void aGifMayGoOnBehindItsEnd_data();
    void aGifMayGoOnBehindItsEnd();
    void aGifThatEndsWithinItsPictureIsRefused();
    void ownPicturesOfAnySizeWork_data();
    void ownPicturesOfAnySizeWork();
    void theFootprintIsAsHighInPixelsAsItIsWide();
    void drawsFootprintTrackAndSatellite();
    void anUnknownSatelliteLeavesTheMapEmpty();
};

void frmMapTest::opensOnTheRealClock() {
    const Fixture f;
    QCOMPARE(f.Time()->Text(), QStringLiteral("2026-Nov-21 00:10:20"));
    QCOMPARE(f.Checked(), QByteArray("Normal"));
    QVERIFY(f.Ticker()->isActive());
    QCOMPARE(f.Ticker()->interval(), 15000);
    QVERIFY(!f.map->isModal());
    QCOMPARE(f.presenter.messages.size(), 0);
}

void frmMapTest::captionNamesTheSatellite() {
    Fixture f;
    QCOMPARE(f.map->windowTitle(), QStringLiteral("Current Location of QIRAN Right-click for menu"));
    f.satellites.Toggle();
    f.map->SatHasChanged();
    QCOMPARE(f.map->windowTitle(), QStringLiteral("Current Location of ISS Right-click for menu"));
}

void frmMapTest::captionShowsTheNameAsItStands() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/keps.txt"), "A & B [*]\n1 90417U\n2 90417 \n");
    f.satellites.FindInKeps(f.folder.Program().KepsFolder());
    f.map->SatHasChanged();
    QCOMPARE(f.map->windowHandle()->title(),
             QStringLiteral("Current Location of QIRAN (A & B [*]) Right-click for menu"));
}

void frmMapTest::fastAndBackwards() {
    const Fixture f;
    f.Choose("mnuSpeedFast");
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:11:00"));
    QCOMPARE(f.Checked(), QByteArray("Fast"));
    QCOMPARE(f.Ticker()->interval(), 500);
    f.Tick();
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:12:00"));
    f.Choose("mnuSpeedBackwards");
    QCOMPARE(f.Checked(), QByteArray("Fast Backwards"));
    f.Tick();
    f.Tick();
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:12:00"));
    f.Choose("mnuSpeedFast"); // is checked: nothing happens, and it stays checked
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:12:00"));
    QCOMPARE(f.Checked(), QByteArray("Fast Backwards"));
    f.Choose("mnuSpeedNormal");
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:11:00"));
    QCOMPARE(f.Ticker()->interval(), 15000);
}

void frmMapTest::veryFastTicksByItself() {
    const Fixture f;
    f.Choose("mnuSpeedVeryFast");
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:11:00"));
    QCOMPARE(f.Ticker()->interval(), 250);
    QTRY_COMPARE(f.TimeOfDay(), QStringLiteral("00:13:00"));
}

void frmMapTest::pauseKeepsTheTimeAndASpeedRestartsTheTicker() {
    const Fixture f;
    f.Choose("mnuSpeedFast");
    f.Choose("mnuSpeedPause");
    QVERIFY(!f.Ticker()->isActive());
    QCOMPARE(f.Checked(), QByteArray("Fast Pause"));
    f.Choose("mnuSpeedPause");
    QVERIFY(f.Ticker()->isActive());
    f.Tick();
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:12:00"));
    f.Choose("mnuSpeedPause");
    f.Choose("mnuSpeedVeryFast");
    QVERIFY(f.Ticker()->isActive());
    QCOMPARE(f.Checked(), QByteArray("VeryFast Pause"));
}

void frmMapTest::resetGoesBackToTheRealClock() {
    const Fixture f;
    f.Choose("mnuSpeedBackwards");
    f.Choose("mnuSpeedVeryFast");
    f.Choose("mnuSpeedPause");
    f.Choose("mnuSpeedReset");
    QCOMPARE(f.TimeOfDay(), QStringLiteral("00:10:20"));
    QCOMPARE(f.Checked(), QByteArray("Normal"));
    QVERIFY(f.Ticker()->isActive());
    QCOMPARE(f.Ticker()->interval(), 15000);
}

void frmMapTest::timeBoxFollowsLocalTime() {
    Fixture f;
    f.clock.SetOffsetHours(5.75);
    f.sats.setBlnLocalTime(true);
    f.Tick();
    QCOMPARE(f.Time()->Text(), QStringLiteral("2026-Nov-21 05:55:20"));
    const QFontMetrics metrics(f.Time()->font());
    QCOMPARE(f.Time()->width(), metrics.horizontalAdvance(f.Time()->Text()) + 6);
}

void frmMapTest::timeBoxIsTheSameInEveryLocale() {
    const Fixture f;
    const QLocale before;
    for (const char* name : {"fi", "ca", "vi", "ja", "de", "en_GB"}) {
        QLocale::setDefault(QLocale(QString::fromLatin1(name)));
        f.Tick();
        QCOMPARE(f.Time()->Text(), QStringLiteral("2026-Nov-21 00:10:20"));
    }
    QLocale::setDefault(before);
}

void frmMapTest::rightReleaseOpensTheMenu() {
    const Fixture f;
    auto* menu = f.map->findChild<QMenu*>(QStringLiteral("mnuSpeed"));
    for (QWidget* target : {static_cast<QWidget*>(f.Picture()), static_cast<QWidget*>(f.Time())}) {
        QTest::mousePress(target, Qt::RightButton);
        QVERIFY(!menu->isVisible());
        QTest::mouseRelease(target, Qt::RightButton);
        QTRY_VERIFY(menu->isVisible());
        menu->close();
    }
    QTest::mouseClick(f.Picture(), Qt::LeftButton);
    QVERIFY(!menu->isVisible());
}

void frmMapTest::theKeyOpensTheMenu() {
    const Fixture f;
    auto* menu = f.map->findChild<QMenu*>(QStringLiteral("mnuSpeed"));
    QContextMenuEvent byMouse(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
    QCoreApplication::sendEvent(f.Picture(), &byMouse);
    QVERIFY(!menu->isVisible()); // the release opens it
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(f.map.get(), &byKey);
    QTRY_VERIFY(menu->isVisible());
    QTest::keyClick(menu, Qt::Key_F);
    QCOMPARE(f.Checked(), QByteArray("Fast"));
}

void frmMapTest::menuHasItsAccessKeys() {
    const Fixture f;
    const std::pair<const char*, const char16_t*> entries[] = {
        {"mnuSpeedNormal", u"&Normal"},         {"mnuSpeedFast", u"&Fast"},
        {"mnuSpeedVeryFast", u"&Very Fast"},    {"mnuSpeedBackwards", u"&Backwards"},
        {"mnuSpeedPause", u"&Pause"},           {"mnuSpeedReset", u"&Reset"},
        {"mnuChangeSat", u"&Change Satellite"},
    };
    for (const auto& [name, caption] : entries)
        QCOMPARE(f.Entry(name)->text(), QString::fromUtf16(caption));
}

void frmMapTest::timeBoxIsDraggedAndStaysOnTheMap() {
    Fixture f;
    TimeBox* box = f.Time();
    for (const QSize size : {QSize(500, 250), QSize(640, 320)}) { // at the bottom, however large the map
        f.map->resize(size);
        QTRY_COMPARE(f.Picture()->size(), size);
        QCOMPARE(box->geometry().bottom(), f.Picture()->height() - 7);
    }
    const QPoint before = box->pos();
    QTest::mousePress(box, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseMove(box, QPoint(-45, -95));
    QTest::mouseRelease(box, Qt::LeftButton);
    QCOMPARE(box->pos(), before - QPoint(50, 100));
    f.sats.setBlnLocalTime(true); // another text, another map: it stays where the user has put it
    f.clock.SetOffsetHours(5);
    f.Tick();
    f.map->resize(660, 330);
    QTRY_COMPARE(f.Picture()->size(), QSize(660, 330));
    QCOMPARE(box->pos(), before - QPoint(50, 100));
    QTest::mousePress(box, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseMove(box, QPoint(9000, 9000));
    QTest::mouseRelease(box, Qt::LeftButton);
    QVERIFY(f.Picture()->rect().contains(box->geometry()));
    f.map->resize(600, 300);
    QTRY_VERIFY(f.Picture()->rect().contains(box->geometry()));
}

void frmMapTest::positionIsSavedAndRestored() {
    Fixture f;
    f.map->move(33, 44);
    f.map->close();
    QCOMPARE(Settings::Read(f.ini, Settings::mapLeft), Twips::TextOf(33, *f.map));
    QCOMPARE(Settings::Read(f.ini, Settings::mapTop), Twips::TextOf(44, *f.map));
    f.Open();
    QCOMPARE(f.map->pos(), QPoint(33, 44));
}

void frmMapTest::closingMinimisedSavesNothing() {
    Fixture f;
    f.map->move(33, 44);
    f.map->close();
    f.Open();
    f.map->move(55, 66);
    f.map->showMinimized();
    f.map->close();
    QCOMPARE(Settings::Read(f.ini, Settings::mapLeft), Twips::TextOf(33, *f.map));
    QCOMPARE(Settings::Read(f.ini, Settings::mapTop), Twips::TextOf(44, *f.map));
}

void frmMapTest::closingTellsTheOwnerAndStopsTheTicker() {
    const Fixture f;
    const QSignalSpy unloading(f.map.get(), &frmMap::ImUnloading);
    f.map->close();
    QCOMPARE(unloading.count(), 1);
    QVERIFY(!f.Ticker()->isActive());
}

void frmMapTest::escapeCloses() {
    const Fixture f;
    QTest::keyClick(f.map.get(), Qt::Key_Escape);
    QVERIFY(!f.map->isVisible());
}

void frmMapTest::withoutAPictureTheBackgroundIsPlain_data() {
    QTest::addColumn<QByteArray>("world");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("broken") << QByteArray("GIF89a and no more");
    QTest::newRow("cut off") << ShippedWorld().first(400);
    QTest::newRow("endless") << QByteArray("GIF89a\xff\xff\xff\xff\x00\x00\x00", 13);
}

void frmMapTest::withoutAPictureTheBackgroundIsPlain() {
    QFETCH(QByteArray, world);
    const Fixture f(world);
    QCOMPARE(f.presenter.messages.size(), 1);
    QVERIFY(f.presenter.messages.front().text.contains(QStringLiteral("world.gif")));
    f.Tick();
    QCOMPARE(f.presenter.messages.size(), 1);
    const QImage image = f.Picture()->grab().toImage();
    QVERIFY(Pixels(image, QColor(201, 219, 232)) > image.width() * image.height() / 2);
    QVERIFY(Pixels(image, QColor(0, 128, 0)) > 100);
    // A line every 30 degrees.
    f.library->position = [](const std::string&, double) { return std::nullopt; };
    f.Tick();
    f.Time()->hide();
    f.map->resize(1080, 540);
    QTRY_COMPARE(f.Picture()->size(), QSize(1080, 540));
    const QImage bare = f.Picture()->grab().toImage();
    for (int x = 15; x < 1080; x += 15)
        QCOMPARE(bare.pixelColor(x, 45), x % 90 == 0 ? QColor(140, 160, 174) : QColor(201, 219, 232));
    for (int y = 15; y < 540; y += 15)
        QCOMPARE(bare.pixelColor(45, y), y % 90 == 0 ? QColor(140, 160, 174) : QColor(201, 219, 232));
}

void frmMapTest::aGifMayGoOnBehindItsEnd_data() {
    QTest::addColumn<QByteArray>("behind");
    QTest::newRow("one byte") << QByteArray("\0", 1);
    QTest::newRow("a kilobyte") << QByteArray(1024, 'x');
    QTest::newRow("a megabyte of zeros") << QByteArray(1 << 20, '\0');
}

void frmMapTest::aGifMayGoOnBehindItsEnd() {
    QFETCH(QByteArray, behind);
    const Fixture f(ShippedWorld() + behind);
    QCOMPARE(f.presenter.messages.size(), 0);
    QCOMPARE(f.Picture()->grab().toImage(), Fixture().Picture()->grab().toImage());
}

void frmMapTest::aGifThatEndsWithinItsPictureIsRefused() {
    const QByteArray whole = ShippedWorld();
    QVERIFY(whole.endsWith(';'));
    for (const qsizetype size : {whole.size() - 2, whole.size() - 3, whole.size() / 2, qsizetype{800}}) {
        const Fixture f(whole.first(size));
        QCOMPARE(f.presenter.messages.size(), 1);
    }
    const Fixture unended(whole.chopped(1)); // the picture is whole
    QCOMPARE(unended.presenter.messages.size(), 0);
}

void frmMapTest::ownPicturesOfAnySizeWork_data() {
    QTest::addColumn<QSize>("size");
    QTest::newRow("small") << QSize(100, 50);
    QTest::newRow("large") << QSize(5000, 2500);
    QTest::newRow("square") << QSize(400, 400);
    QTest::newRow("one pixel") << QSize(1, 1);
}

void frmMapTest::ownPicturesOfAnySizeWork() {
    QFETCH(QSize, size);
    QImage own(size, QImage::Format_RGB32);
    own.fill(Qt::black);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::WriteOnly) &&
            own.save(&buffer, "PNG")); // what a picture is, its bytes say
    const Fixture f(bytes);
    QCOMPARE(f.presenter.messages.size(), 0);
    const QSizeF place = f.Picture()->MapPlace().size();
    const QSizeF room = f.Picture()->size(); // which it fills in one direction and keeps in the other
    QVERIFY(place.width() <= room.width() && place.height() <= room.height());
    QVERIFY(place.width() == room.width() || place.height() == room.height());
    QVERIFY(std::abs(place.width() / place.height() - double(size.width()) / size.height()) < 0.02);
    QVERIFY(QRect(QPoint(), f.map->screen()->size()).contains(QRect(QPoint(), f.map->size())));
    QVERIFY(!f.Picture()->grab().isNull());
}

void frmMapTest::theFootprintIsAsHighInPixelsAsItIsWide() {
    QImage own(800, 800, QImage::Format_RGB32);
    own.fill(Qt::black);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::WriteOnly) && own.save(&buffer, "PNG"));
    Fixture f(bytes);
    f.library->position = [](const std::string&, double) { return LibraryPosition{.altitude = 700}; };
    f.map->resize(800, 800);
    QTRY_COMPARE(f.Picture()->size(), QSize(800, 800));
    f.Tick();
    f.Time()->hide();
    const QImage image = f.Picture()->grab().toImage();
    QRect drawn;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).blue() > 100)
                drawn |= QRect(x, y, 1, 1);
    QVERIFY2(drawn.width() > 80 && std::abs(drawn.width() - drawn.height()) <= 2,
             qPrintable(QStringLiteral("%1 by %2").arg(drawn.width()).arg(drawn.height())));
}

void frmMapTest::drawsFootprintTrackAndSatellite() {
    const Fixture f;
    const QImage image = f.Picture()->grab().toImage();
    QVERIFY(Pixels(image, QColor(0, 128, 0)) > 100);
    QVERIFY(Pixels(image, QColor(0, 0, 192)) > 50);
    QVERIFY(Pixels(image, QColor(0, 0, 255)) > 5);
    // 10 minutes and 20 seconds after the equator, a tenth of an orbit on.
    const QRectF place = f.Picture()->MapPlace();
    const std::optional<SatPosition> now = f.sats.PositionAt(QStringLiteral("90417"), f.sats.datGmtTime());
    const QPointF satellite = place.topLeft() + QPointF((now->dblLong + 180) / 360 * place.width(),
                                                        (90 - now->dblLat) / 180 * place.height());
    QCOMPARE(image.pixelColor((satellite * image.devicePixelRatio()).toPoint()), QColor(0, 0, 255));
}

void frmMapTest::anUnknownSatelliteLeavesTheMapEmpty() {
    const Fixture f;
    f.library->position = [](const std::string&, double) { return std::nullopt; };
    f.Tick();
    const QImage image = f.Picture()->grab().toImage();
    QCOMPARE(Pixels(image, QColor(0, 128, 0)), 0);
    QVERIFY(f.Ticker()->isActive());
}

QTEST_MAIN(frmMapTest)
#include "frmMapTest.moc"
