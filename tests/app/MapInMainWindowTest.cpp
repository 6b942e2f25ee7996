#include "app/MainWindowRig.h"
#include "orbit/map/MapPicture.h"
#include "orbit/map/TimeBox.h"
#include "orbit/predictions/frmPass.h"
#include "orbit/service/KVRSatLib.h"
#include "support/Screenshots.h"

#include <QGroupBox>
#include <QMenu>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const DateTime start = DateOf(2026, 11, 21) + (10 * 60 + 20) / secondsPerDay;

QByteArray DataFile(const char* name) {
    QFile file(QLatin1StringView(QIRAN_DATA_FOLDER) + QLatin1StringView(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The true main window with its map open, the true orbit library over the shipped example elements, on
/// 2026-11-21 at 00:10:20 UTC.
struct MapRig : MainWindowRig {
    // What the map must show, by a library of the test's own.
    const Clock systemClock;
    clsSats sats{std::make_unique<KVRSatLib>(), systemClock};
    QWidget* map = nullptr;

    MapRig() {
        clock.Set(start);
        folder.Write(u"Keps/example.txt"_s, DataFile("/demo/Keps/example.txt"));
        folder.Write(u"world.gif"_s, DataFile("/world.gif"));
        Set("SETUP", "LATITUDE", u"5130.00N"_s);
        Set("SETUP", "LONGITUDE", u"00030.00W"_s);
        sats.setStrKeplerPath(folder.Program().KepsFolder());
    }
    bool StartWithMap() {
        if (!Start())
            return false;
        OpenMap();
        return map != nullptr;
    }
    void OpenMap() {
        Find<QAction>("mnuMap")->trigger();
        map = WindowNamed(u"frmMap"_s);
    }
    template <class Type>
    Type* OfMap(const char* name) const {
        return map->findChild<Type*>(QLatin1StringView(name));
    }
    /// Opens the map's menu with the mouse and chooses an entry by its access key.
    void Choose(Qt::Key accessKey) const {
        QTest::mouseClick(OfMap<MapPicture>("picMap"), Qt::RightButton);
        QTest::keyClick(OfMap<QMenu>("mnuSpeed"), accessKey);
    }
    QString TimeOfDay() const { return OfMap<TimeBox>("picTime")->Text().section(u' ', 1); }
    bool IsChecked(const char* name) const { return OfMap<QAction>(name)->isChecked(); }
    QTimer* Ticker() const { return OfMap<QTimer>("Timer1"); }

    /// Whether the satellite's mark stands where the satellite is, some minutes after midnight.
    bool MarkIsAt(const QString& object, double minutes) const {
        const auto* picture = OfMap<MapPicture>("picMap");
        const std::optional<SatPosition> is =
            sats.PositionAt(object, DateOf(2026, 11, 21) + minutes / minutesPerDay);
        const QRectF place = picture->MapPlace();
        const QPointF at = place.topLeft() + QPointF((is->dblLong + 180) / 360 * place.width(),
                                                     (90 - is->dblLat) / 180 * place.height());
        const QImage image = map->findChild<MapPicture*>(u"picMap"_s)->grab().toImage();
        return image.pixelColor((at * image.devicePixelRatio()).toPoint()) == QColor(0, 0, 255);
    }
};

constexpr double realMinutes = 10 + 20.0 / 60;

} // namespace

/// The map as its user meets it: opened from the main window, over real elements.
class MapInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void switchingTheSatelliteInThePanelChangesTheOpenMap();
    void switchingTheSatelliteInTheMapChangesThePanel();
    void runsFastAndBackwardsByItself();
    void pauseHoldsTheTimeAndGoesOnFromIt();
    void resetFollowsTheRealClockAgain();
    void closedMinimisedItKeepsItsPlaceAndOpensAnew();
    void pictures();
};

void MapInMainWindowTest::switchingTheSatelliteInThePanelChangesTheOpenMap() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    QCOMPARE(rig.map->windowTitle(), u"Current Location of QIRAN Right-click for menu"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, realMinutes));
    rig.Choose(Qt::Key_V);
    QCOMPARE(rig.TimeOfDay(), u"00:11:00"_s);
    rig.Find<QPushButton>("cmdChangeSat")->click();
    QCOMPARE(rig.map->windowTitle(), u"Current Location of ISS Right-click for menu"_s);
    QCOMPARE(rig.TimeOfDay(), u"00:10:20"_s);
    QVERIFY(rig.IsChecked("mnuSpeedNormal"));
    QVERIFY(!rig.MarkIsAt(u"90417"_s, realMinutes));
    QVERIFY(rig.MarkIsAt(u"25544"_s, realMinutes));
}

void MapInMainWindowTest::switchingTheSatelliteInTheMapChangesThePanel() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    const QString before = rig.Find<QLabel>("labLat")->text();
    rig.Choose(Qt::Key_C);
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"ISS Current Location"_s);
    QVERIFY(rig.Find<QLabel>("labLat")->text() != before);
    QCOMPARE(rig.map->windowTitle(), u"Current Location of ISS Right-click for menu"_s);
    QVERIFY(rig.MarkIsAt(u"25544"_s, realMinutes));
    rig.Choose(Qt::Key_C);
    QCOMPARE(rig.Find<QGroupBox>("framLocation")->title(), u"QIRAN Current Location"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, realMinutes));
}

void MapInMainWindowTest::runsFastAndBackwardsByItself() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    rig.Choose(Qt::Key_F);
    QCOMPARE(rig.TimeOfDay(), u"00:11:00"_s);
    QTRY_COMPARE(rig.TimeOfDay(), u"00:13:00"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, 13));
    rig.Choose(Qt::Key_B);
    QVERIFY(rig.IsChecked("mnuSpeedFast") && rig.IsChecked("mnuSpeedBackwards"));
    rig.Choose(Qt::Key_V); // and before the time at which it opened
    QTRY_COMPARE(rig.TimeOfDay(), u"00:06:00"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, 6));
}

void MapInMainWindowTest::pauseHoldsTheTimeAndGoesOnFromIt() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    rig.Choose(Qt::Key_F);
    QTRY_COMPARE(rig.TimeOfDay(), u"00:12:00"_s);
    rig.Choose(Qt::Key_P);
    QVERIFY(rig.IsChecked("mnuSpeedPause"));
    QVERIFY(!rig.Ticker()->isActive());
    rig.clock.Advance(3600); // the real clock goes on
    QCOMPARE(rig.TimeOfDay(), u"00:12:00"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, 12));
    rig.Choose(Qt::Key_P);
    QVERIFY(!rig.IsChecked("mnuSpeedPause"));
    QTRY_COMPARE(rig.TimeOfDay(), u"00:13:00"_s);
}

void MapInMainWindowTest::resetFollowsTheRealClockAgain() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    rig.Choose(Qt::Key_B);
    rig.Choose(Qt::Key_V);
    rig.Choose(Qt::Key_P);
    rig.clock.Advance(60);
    rig.Choose(Qt::Key_R);
    QCOMPARE(rig.TimeOfDay(), u"00:11:20"_s);
    QVERIFY(rig.MarkIsAt(u"90417"_s, realMinutes + 1));
    QVERIFY(rig.IsChecked("mnuSpeedNormal"));
    for (const char* name : {"mnuSpeedFast", "mnuSpeedVeryFast", "mnuSpeedBackwards", "mnuSpeedPause"})
        QVERIFY2(!rig.IsChecked(name), name);
    QVERIFY(rig.Ticker()->isActive());
    QCOMPARE(rig.Ticker()->interval(), 15000);
}

void MapInMainWindowTest::closedMinimisedItKeepsItsPlaceAndOpensAnew() {
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    rig.map->move(33, 44);
    rig.map->close();
    QTRY_VERIFY(!WindowNamed(u"frmMap"_s));
    const QString left = rig.Get("SETUP", "MAP_LEFT");
    const QString top = rig.Get("SETUP", "MAP_TOP");
    rig.OpenMap();
    QCOMPARE(rig.map->pos(), QPoint(33, 44));
    rig.map->move(55, 66);
    rig.map->showMinimized();
    const QPointer<QWidget> closed = rig.map;
    rig.map->close();
    QTRY_VERIFY(closed.isNull());
    QCOMPARE(rig.Get("SETUP", "MAP_LEFT"), left);
    QCOMPARE(rig.Get("SETUP", "MAP_TOP"), top);
    rig.Find<QPushButton>("cmdChangeSat")->click(); // the map is forgotten
    rig.OpenMap();
    QVERIFY(!rig.map->isMinimized());
    QCOMPARE(rig.map->pos(), QPoint(33, 44));
    QVERIFY(rig.MarkIsAt(u"25544"_s, realMinutes));
}

void MapInMainWindowTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    MapRig rig;
    QVERIFY(rig.StartWithMap());
    rig.map->resize(1080, 540);
    const auto minuteWhere = [&](const QString& object, auto&& holds) {
        for (int minute = 1; minute < 1440; ++minute) {
            const auto is = rig.sats.PositionAt(object, DateOf(2026, 11, 21) + minute / minutesPerDay);
            if (holds(*is))
                return minute;
        }
        return 0;
    };
    const auto pole = [](const SatPosition& is) { return std::abs(is.dblLat) > 80; };
    const auto nearPole = [](const SatPosition& is) { return std::abs(is.dblLat - 70) < 2; };
    const auto dateLine = [](const SatPosition& is) { return is.dblLong > 172 && is.dblLat < 40; };
    const auto inView = [](const SatPosition& is) { return std::abs(is.dblLat - 45) < 2; };
    for (const QString& name : {u"QIRAN"_s, u"ISS"_s}) {
        const QString object = name == u"ISS"_s ? u"25544"_s : u"90417"_s;
        const auto take = [&](int minute, const QString& what) {
            if (minute == 0)
                return;
            rig.clock.Set(DateOf(2026, 11, 21) + minute / minutesPerDay);
            rig.Choose(Qt::Key_R);
            Screenshots::Take(*rig.map, u"frmMap-"_s + name + what);
        };
        take(minuteWhere(object, pole), u"-over-the-pole"_s);
        take(minuteWhere(object, nearPole), u"-near-the-pole"_s);
        take(minuteWhere(object, dateLine), u"-date-line"_s);
        take(minuteWhere(object, inView), u"-middle"_s);
        QTimer::singleShot(0, rig.window.get(), [name] {
            QWidget* passes = QApplication::activeModalWidget();
            Screenshots::Take(*passes, u"frmPass-"_s + name);
            passes->close();
        });
        rig.Find<QPushButton>("cmdPassInfo")->click();
        Screenshots::Take(*rig.Find<QGroupBox>("framLocation"), u"framLocation-"_s + name);
        Screenshots::Take(*rig.window, u"frmQIRAN-"_s + name);
        rig.Choose(Qt::Key_C);
    }
}

QTEST_MAIN(MapInMainWindowTest)
#include "MapInMainWindowTest.moc"
