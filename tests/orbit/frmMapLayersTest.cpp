#include "foundation/settings/Settings.h"
#include "orbit/SkyRig.h"
#include "orbit/map/NightLevels.h"
#include "orbit/map/frmMap.h"
#include "orbit/sky/Sun.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;
using orbitmath::radiansPerDegree;

namespace {

const QStringList layers{u"mnuNight"_s, u"mnuStation"_s, u"mnuOtherSat"_s, u"mnuPassTrack"_s};

/// A map over a station and two satellites with true orbits.
struct Fixture : SkyRig {
    explicit Fixture(PassSteps::Place where = {52.0, 11.0}) {
        MoveTo(where);
        QFile shipped(QStringLiteral(QIRAN_DATA_FOLDER "/world.gif"));
        if (!shipped.open(QIODevice::ReadOnly))
            qFatal("no world.gif");
        folder.Write(u"world.gif"_s, shipped.readAll());
        Open();
    }
    void Open() {
        map = std::make_unique<frmMap>(sats, satellites, ini, messages, folder.Program(),
                                       [this] { return place; });
        map->show();
    }
    QAction* Entry(const QString& name) const { return map->findChild<QAction*>(name); }
    MapPicture* Picture() const { return map->findChild<MapPicture*>(u"picMap"_s); }
    // The map alone, without the time box.
    QImage Image() const {
        map->findChild<QWidget*>(u"picTime"_s)->hide();
        return Picture()->grab().toImage();
    }
    void ShowAll() const {
        for (const QString& layer : layers)
            Entry(layer)->trigger();
    }

    RecordingPresenter presenter;
    mb messages{presenter};
    std::unique_ptr<frmMap> map;
};

// What the map draws when nothing else is asked for.
QImage DrawingAlone(const Fixture& f) {
    const QRectF place = f.Picture()->MapPlace();
    const MapGeometry::MapSize size{place.width(), place.height()};
    QPixmap pixmap(f.Picture()->size() * f.Picture()->devicePixelRatio());
    pixmap.setDevicePixelRatio(f.Picture()->devicePixelRatio());
    QPainter painter(&pixmap);
    if (place.size() != QSizeF(f.Picture()->size()))
        painter.fillRect(f.Picture()->rect(), f.Picture()->palette().color(QPalette::Window));
    const QSize pixels = (place.size() * f.Picture()->devicePixelRatioF()).toSize();
    QPixmap world = QPixmap::fromImage(QImage(f.folder.File(u"world.gif"_s))
                                           .scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    world.setDevicePixelRatio(f.Picture()->devicePixelRatioF());
    painter.drawPixmap(place.topLeft(), world);
    painter.setClipRect(place);
    painter.translate(place.topLeft());
    painter.setRenderHint(QPainter::Antialiasing);
    const auto draw = [&](const std::vector<MapGeometry::Piece>& pieces) {
        for (const MapGeometry::Piece& piece : pieces) {
            QPolygonF line;
            for (const MapGeometry::GeoPoint& point : piece)
                line += QPointF((point.longitude + 180.0) / 360.0 * size.width,
                                (90.0 - point.latitude) / 180.0 * size.height);
            painter.drawPolyline(line);
        }
    };
    const GroundTrack track = GroundTrack::Of(f.sats, u"90417"_s, f.sats.datGmtTime());
    const MapGeometry::GeoPoint& now = track.points.front();
    painter.setPen(QPen(QColor(0, 0, 192), 2.0));
    draw(MapGeometry::Footprint(now, track.altitude, size));
    painter.setPen(QPen(QColor(0, 128, 0), 2.0));
    const QPointF centre((now.longitude + 180.0) / 360.0 * size.width,
                         (90.0 - now.latitude) / 180.0 * size.height);
    painter.drawPoint(centre);
    draw(MapGeometry::TrackPieces(track.points));
    painter.translate(centre);
    painter.setPen(QPen(QColor(0, 0, 255), 2.0));
    for (const auto& [from, to] : MapGeometry::SatMark())
        painter.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 255));
    painter.drawPolygon(QPolygonF{QPointF(3, 0), QPointF(0, 3), QPointF(-3, 0), QPointF(0, -3)});
    painter.end();
    return pixmap.toImage();
}

int Pixels(const QImage& image, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    return count;
}

double Elevation(const orbitmath::Vector3& sun, double latitude, double longitude) {
    return orbitmath::SunElevation(sun, {latitude * radiansPerDegree, longitude * radiansPerDegree, 0}) /
           radiansPerDegree;
}

const QList<DateTime> seasons{DateOf(2026, 3, 20) + 0.61, DateOf(2026, 6, 21) + 0.1, DateOf(2026, 9, 23),
                              DateOf(2026, 12, 21) + 0.9, DateOf(2026, 11, 17) + 0.5};

} // namespace

class frmMapLayersTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theyStandBelowASeparatorAndAreOffAtFirst();
    void withoutThemTheMapIsTheDrawingAlone();
    void eachIsRememberedAndWrittenOnlyWhenChanged();
    void nightFollowsTheSun();
    void theTerminatorIsNoLineAcrossTheMap();
    void nightDarkensTheMapByTheMinute();
    void theStationStandsAtItsPlace();
    void theOtherSatelliteHasItsFootprintAndTrack();
    void thePassRunsFromRiseToSet();
    void thePassIsKeptUntilItIsOver();
    void thePassFollowsSatelliteStationAndElements();
    void withoutAPlaceThereIsNeitherStationNorPass();
    void pictures_data();
    void pictures();
};

void frmMapLayersTest::theyStandBelowASeparatorAndAreOffAtFirst() {
    const Fixture f;
    const QList<QAction*> entries = f.map->findChild<QMenu*>(u"mnuSpeed"_s)->actions();
    const QList<QAction*> last = entries.last(5);
    QVERIFY(last.first()->isSeparator());
    QStringList names;
    QStringList keys;
    for (const QAction* entry : last.sliced(1)) {
        names += entry->objectName();
        QVERIFY(entry->isCheckable() && !entry->isChecked());
    }
    QCOMPARE(names, layers);
    for (const QAction* entry : entries)
        if (!entry->isSeparator())
            keys += entry->text().section(u'&', 1).first(1).toUpper();
    QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
}

void frmMapLayersTest::withoutThemTheMapIsTheDrawingAlone() {
    const Fixture f;
    QCOMPARE(f.Image(), DrawingAlone(f));
    f.ShowAll();
    QVERIFY(f.Image() != DrawingAlone(f));
    f.ShowAll(); // and off again
    QCOMPARE(f.Image(), DrawingAlone(f));
    f.map->resize(500, 400);
    QTRY_COMPARE(f.Picture()->size(), QSize(500, 400));
    QCOMPARE(f.Image(), DrawingAlone(f));
}

void frmMapLayersTest::eachIsRememberedAndWrittenOnlyWhenChanged() {
    Fixture f;
    f.map->close();
    f.Open();
    QVERIFY(!f.folder.Read(u"QiranDecode.INI"_s).contains("MAP_NIGHT"));
    const std::pair<QString, QByteArray> keys[] = {{u"mnuNight"_s, "MAP_NIGHT"},
                                                   {u"mnuStation"_s, "MAP_STATION"},
                                                   {u"mnuOtherSat"_s, "MAP_OTHER"},
                                                   {u"mnuPassTrack"_s, "MAP_PASS"}};
    for (const auto& [name, key] : keys) {
        f.Entry(name)->trigger();
        QVERIFY2(f.folder.Read(u"QiranDecode.INI"_s).contains(key + "=TRUE"), key);
        const QImage shown = f.Image();
        f.Open();
        for (const QString& other : layers)
            QCOMPARE(f.Entry(other)->isChecked(), other == name);
        QCOMPARE(f.Image(), shown);
        f.Entry(name)->trigger();
        QVERIFY2(f.folder.Read(u"QiranDecode.INI"_s).contains(key + "=FALSE"), key);
    }
}

void frmMapLayersTest::nightFollowsTheSun() {
    constexpr int width = 72;
    constexpr int height = 37;
    for (const DateTime utc : seasons) {
        const orbitmath::Vector3 sun = orbitmath::Sun::At(utc).OverEarth();
        const std::vector<std::uint8_t> levels = MapGeometry::NightLevels(sun, width, height);
        QCOMPARE(levels.size(), std::size_t{width} * height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double elevation =
                    Elevation(sun, 90 - (y + 0.5) * 180 / height, (x + 0.5) * 360 / width - 180);
                const int expected = elevation >= 0     ? 0
                                     : elevation >= -6  ? 1
                                     : elevation >= -12 ? 2
                                     : elevation >= -18 ? 3
                                                        : 4;
                QCOMPARE(int{levels[static_cast<std::size_t>(y * width + x)]}, expected);
            }
        }
    }
}

void frmMapLayersTest::theTerminatorIsNoLineAcrossTheMap() {
    for (const DateTime utc : seasons) {
        const orbitmath::Vector3 sun = orbitmath::Sun::At(utc).OverEarth();
        std::size_t points = 0;
        for (const MapGeometry::Piece& piece : MapGeometry::Terminator(sun)) {
            points += piece.size();
            for (std::size_t k = 0; k < piece.size(); ++k) {
                QVERIFY(std::abs(Elevation(sun, piece[k].latitude, piece[k].longitude)) < 0.5);
                QVERIFY(k == 0 || std::abs(piece[k].longitude - piece[k - 1].longitude) < 180);
            }
        }
        QVERIFY(points >= 361);
    }
}

void frmMapLayersTest::nightDarkensTheMapByTheMinute() {
    Fixture f;
    const QImage day = f.Image();
    f.Entry(u"mnuNight"_s)->trigger();
    const QImage shaded = f.Image();
    int darker = 0;
    int lighter = 0;
    for (int y = 0; y < day.height(); y += 3) {
        for (int x = 0; x < day.width(); x += 3) {
            darker += qGray(shaded.pixel(x, y)) < qGray(day.pixel(x, y)) ? 1 : 0;
            lighter += qGray(shaded.pixel(x, y)) > qGray(day.pixel(x, y)) ? 1 : 0;
        }
    }
    const int all = day.width() * day.height() / 9;
    QVERIFY(darker > all * 4 / 10 && darker < all * 6 / 10);
    QVERIFY(lighter < all / 50); // the terminator's line
    f.clock.Set(SkyRig::day + 0.25);
    f.map->DataHaveChanged(); // the shown time is the last tick's
    QCOMPARE(f.Image(), shaded);
    f.map->SatHasChanged();
    QVERIFY(f.Image() != shaded);
}

void frmMapLayersTest::theStationStandsAtItsPlace() {
    for (const PassSteps::Place where :
         {PassSteps::Place{52, 11}, PassSteps::Place{-17.7, 179.5}, PassSteps::Place{88, -30}}) {
        const Fixture f(where);
        const int before = Pixels(f.Image(), QColor(208, 0, 0));
        f.Entry(u"mnuStation"_s)->trigger();
        QCOMPARE(before, 0);
        const QRectF map = f.Picture()->MapPlace();
        const QPointF place = map.topLeft() + QPointF((where.longitude + 180) / 360 * map.width(),
                                                      (90 - where.latitude) / 180 * map.height());
        const QImage image = f.Image();
        const auto isRed = [&](double x, double y) {
            return image.pixelColor((QPointF(x, y) * image.devicePixelRatio()).toPoint()) ==
                   QColor(208, 0, 0);
        };
        QVERIFY(isRed(place.x() - 1, place.y() + (where.latitude < 80 ? -9 : 9)));
        if (where.longitude > 179)
            QVERIFY(isRed(map.left() + 1, place.y() - 9)); // its other part
    }
}

void frmMapLayersTest::theOtherSatelliteHasItsFootprintAndTrack() {
    Fixture f;
    MapLayers shown(f.sats, f.satellites, [&] { return f.place; });
    QVERIFY(shown.At(SkyRig::day).other.points.empty());
    shown.Show(MapLayer::Other, true);
    const auto expect = [&](const QString& object) {
        const GroundTrack expected = GroundTrack::Of(f.sats, object, SkyRig::day);
        const GroundTrack other = shown.At(SkyRig::day).other;
        return expected.points.size() == other.points.size() && other.altitude == expected.altitude &&
               other.points.back().latitude == expected.points.back().latitude;
    };
    QVERIFY(expect(u"25544"_s));
    f.satellites.Toggle();
    QVERIFY(expect(u"90417"_s));
    f.satellites.Toggle();
    QCOMPARE(Pixels(f.Image(), QColor(176, 80, 0)), 0);
    f.Entry(u"mnuOtherSat"_s)->trigger();
    QVERIFY(Pixels(f.Image(), QColor(176, 80, 0)) > 100);
    QVERIFY(Pixels(f.Image(), QColor(208, 112, 0)) > 100);
}

void frmMapLayersTest::thePassRunsFromRiseToSet() {
    Fixture f;
    MapLayers shown(f.sats, f.satellites, [&] { return f.place; });
    QVERIFY(shown.At(SkyRig::day).passOver.empty());
    shown.Show(MapLayer::Pass, true);
    const std::vector<MapGeometry::GeoPoint> way = shown.At(SkyRig::day).passOver;
    const SatPass pass = f.Steps().PresentOrNext(SkyRig::day).value();
    for (const auto& [point, utc] : {std::pair(way.front(), pass.riseUtc), {way.back(), pass.setUtc}}) {
        const auto position = f.sats.PositionAt(u"90417"_s, utc);
        QVERIFY(std::abs(point.latitude - position->dblLat) < 1e-9);
        QVERIFY(std::abs(position->dblEl) < 0.01);
    }
    QVERIFY(way.size() > 20 && way.size() <= MapLayers::mostPassPoints);
    f.Entry(u"mnuPassTrack"_s)->trigger();
    QVERIFY(Pixels(f.Image(), QColor(208, 0, 112)) > 50);
}

void frmMapLayersTest::thePassIsKeptUntilItIsOver() {
    Fixture f;
    MapLayers shown(f.sats, f.satellites, [&] { return f.place; });
    shown.Show(MapLayer::Pass, true);
    const SatPass pass = f.Steps().PresentOrNext(SkyRig::day).value();
    const auto first = [&](DateTime utc) { return shown.At(utc).passOver.front().longitude; };
    const double kept = first(SkyRig::day);
    QCOMPARE(first(pass.riseUtc + 0.001), kept);
    QCOMPARE(first(pass.setUtc - 0.0001), kept);
    QVERIFY(first(pass.setUtc + 0.0001) != kept);
    QCOMPARE(first(pass.setUtc - 0.0001), kept); // back again: under way
    QCOMPARE(first(SkyRig::day), kept);
    QVERIFY(first(SkyRig::day - 0.5) != kept);
}

void frmMapLayersTest::thePassFollowsSatelliteStationAndElements() {
    Fixture f;
    MapLayers shown(f.sats, f.satellites, [&] { return f.place; });
    shown.Show(MapLayer::Pass, true);
    const auto first = [&] { return shown.At(SkyRig::day).passOver.front().longitude; };
    QList<double> seen{first()};
    f.satellites.Toggle();
    seen += first();
    f.satellites.Toggle();
    f.MoveTo({-33, 151});
    seen += first();
    f.MoveTo({52, 11});
    f.folder.Write(u"Keps/newer.txt"_s,
                   SkyRig::Elements("QIRAN", "90417", SkyRig::equatorial).replace("26320.0", "26320.5"));
    f.MoveTo({5, 11});
    seen += first();
    QCOMPARE(QSet<double>(seen.begin(), seen.end()).size(), seen.size());
}

void frmMapLayersTest::withoutAPlaceThereIsNeitherStationNorPass() {
    Fixture f;
    f.place.reset();
    f.ShowAll();
    QCOMPARE(Pixels(f.Image(), QColor(208, 0, 0)), 0);
    QCOMPARE(Pixels(f.Image(), QColor(208, 0, 112)), 0);
    QVERIFY(Pixels(f.Image(), QColor(176, 80, 0)) > 100);
}

void frmMapLayersTest::pictures_data() {
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("utc");
    QTest::newRow("middle") << 52.0 << 11.0 << SkyRig::day + 0.3;
    QTest::newRow("eastOfTheLine") << -17.7 << -178.0 << SkyRig::day + 0.72;
    QTest::newRow("westOfTheLine") << 60.0 << 178.0 << DateOf(2026, 11, 18) + 0.05;
    QTest::newRow("pole") << 88.0 << -30.0 << DateOf(2026, 11, 16) + 0.5;
}

void frmMapLayersTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    QFETCH(const double, latitude);
    QFETCH(const double, longitude);
    QFETCH(const double, utc);
    Fixture f({latitude, longitude});
    f.clock.Set(utc);
    f.map->SatHasChanged();
    f.ShowAll();
    Screenshots::Take(*f.map, u"frmMap-"_s + QString::fromLatin1(QTest::currentDataTag()));
}

QTEST_MAIN(frmMapLayersTest)
#include "frmMapLayersTest.moc"
