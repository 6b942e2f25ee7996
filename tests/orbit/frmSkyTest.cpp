#include "orbit/skyview/frmSky.h"

#include "orbit/SkyRig.h"
#include "support/Screenshots.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

namespace {

const QString qiran = QStringLiteral("90417");

/// A sky window over the rig's station.
struct Fixture : SkyRig {
    using SkyRig::SkyRig;

    void Open() {
        window = std::make_unique<frmSky>(
            sats, satellites, [this] { return place; }, [this] { return simulated; }, ini, folder.Program());
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    template <class Widget>
    Widget* Find(const char* name) const {
        return window->findChild<Widget*>(QString::fromLatin1(name));
    }
    QString Pass() const { return Find<QLabel>("labPass")->text(); }
    SkyPicture* Picture() const { return Find<SkyPicture>("picSky"); }
    QString Value(const QString& name) const {
        const auto* table = Find<QTableWidget>("tblValues");
        for (int row = 0; row < table->rowCount(); ++row)
            if (table->item(row, 0)->text().startsWith(name))
                return table->item(row, 1)->text();
        return {};
    }
    void ShowAt(DateTime utc) {
        clock.Set(utc);
        window->Refresh();
    }

    using SkyRig::Find;
    std::unique_ptr<frmSky> window;
};

QString Setting(const Fixture& f, const char16_t* key) {
    return f.ini.GetIniString(QStringLiteral("SETUP"), QString::fromUtf16(key), QStringLiteral("-"));
}

} // namespace

class frmSkyTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void opensOnThePresentOrNextPass();
    void arrowsStepAndHomeComesBack();
    void arrowsStepWhereverTheFocusIs_data();
    void arrowsStepWhereverTheFocusIs();
    void eastGoesToTheLeftAndStaysThere();
    void valuesAreATableThatKeepsItsPlace();
    void runsWithTheClock();
    void theOtherSatelliteIsFollowed();
    void placeAndSizeAreRemembered();
    void escapeClosesAndTellsTheOwner();
    void everythingHasAName();
    void wrongLinesAreTold();
    void pictureShowsWhatThereIs();
    void screenshots();
};

void frmSkyTest::opensOnThePresentOrNextPass() {
    Fixture f;
    f.Open();
    QVERIFY(!f.window->isModal());
    QVERIFY(f.Pass().startsWith(QStringLiteral("QIRAN: 2026-Nov-17, rises ")));
    QCOMPARE(f.Find<QLabel>("labTime")->text(), QStringLiteral("2026-Nov-17 00:00:00 UTC"));
    QCOMPARE(f.Picture()->accessibleDescription(), f.Pass());
    QVERIFY(!f.Find<QPushButton>("cmdPresent")->isEnabled());
    const SatPass pass = f.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 60; });
    f.window->ShowPassAt(pass.riseUtc);
    QVERIFY(f.Pass().contains(QStringLiteral("highest %1°").arg(pass.maxElevation, 0, 'f', 1)));
    f.window->ShowPassAt(pass.culminationUtc); // no pass begins then
    QVERIFY(!f.Find<QPushButton>("cmdPresent")->isEnabled());
}

void frmSkyTest::arrowsStepAndHomeComesBack() {
    Fixture f;
    f.Open();
    const QString present = f.Pass();
    QTest::keyClick(f.window.get(), Qt::Key_Right);
    const QString later = f.Pass();
    QVERIFY(later != present);
    QVERIFY(f.Find<QPushButton>("cmdPresent")->isEnabled());
    QTest::keyClick(f.window.get(), Qt::Key_Left);
    QCOMPARE(f.Pass(), present);
    QTest::mouseClick(f.Find<QPushButton>("cmdEarlier"), Qt::LeftButton);
    QVERIFY(f.Pass() != present && f.Pass() != later);
    QVERIFY(!f.Value(QStringLiteral("Set before")).isEmpty());
    QTest::keyClick(f.window.get(), Qt::Key_Home);
    QCOMPARE(f.Pass(), present);
    QTest::mouseClick(f.Find<QPushButton>("cmdLater"), Qt::LeftButton);
    QCOMPARE(f.Pass(), later);
}

void frmSkyTest::arrowsStepWhereverTheFocusIs_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"tblValues", "cmdEarlier", "cmdLater", "chkEastLeft"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void frmSkyTest::arrowsStepWhereverTheFocusIs() {
    QFETCH(QString, name);
    Fixture f;
    f.Open();
    auto* widget = f.window->findChild<QWidget*>(name);
    widget->setFocus();
    const QString present = f.Pass();
    QTest::keyClick(widget, Qt::Key_Right);
    QVERIFY(f.Pass() != present);
    QTest::keyClick(widget, Qt::Key_Left);
    QCOMPARE(f.Pass(), present);
}

void frmSkyTest::eastGoesToTheLeftAndStaysThere() {
    Fixture f;
    f.Open();
    const double middle = QRectF(f.Picture()->rect()).center().x();
    QVERIFY(f.Picture()->PointOf(90, 0).x() > middle);
    QCOMPARE(Setting(f, u"SKY_EAST_LEFT"), QStringLiteral("-")); // not written before it is changed
    f.Find<QCheckBox>("chkEastLeft")->click();
    QVERIFY(f.Picture()->PointOf(90, 0).x() < middle);
    QVERIFY(f.Picture()->PointOf(0, 0).y() < f.Picture()->PointOf(180, 0).y());
    QCOMPARE(Setting(f, u"SKY_EAST_LEFT"), QStringLiteral("TRUE"));
    f.window->close();
    f.Open();
    QVERIFY(f.Find<QCheckBox>("chkEastLeft")->isChecked());
    QVERIFY(f.Picture()->PointOf(90, 0).x() < middle);
    f.Find<QCheckBox>("chkEastLeft")->click();
    QCOMPARE(Setting(f, u"SKY_EAST_LEFT"), QStringLiteral("FALSE"));
}

void frmSkyTest::valuesAreATableThatKeepsItsPlace() {
    Fixture f;
    f.folder.Write(QStringLiteral("frequencies.txt"), "QIRAN,Telemetry,437.8\n");
    f.Open();
    auto* table = f.Find<QTableWidget>("tblValues");
    QCOMPARE(table->rowCount(), 8);
    QVERIFY(table->item(7, 1)->font().pointSizeF() > table->font().pointSizeF());
    QVERIFY(table->rowHeight(7) > table->rowHeight(2));
    table->setCurrentCell(7, 1);
    const QString before = table->item(7, 1)->text();
    f.ShowAt(SkyRig::day + 60 / secondsPerDay);
    QVERIFY(table->item(7, 1)->text() != before);
    QCOMPARE(table->currentRow(), 7);
    QCOMPARE(table->currentItem()->text(), table->item(7, 1)->text());
}

void frmSkyTest::runsWithTheClock() {
    Fixture f;
    f.Open();
    auto* timer = f.Find<QTimer>("Timer1");
    QCOMPARE(timer->interval(), 1000);
    QVERIFY(timer->isActive());
    f.clock.Advance(61);
    QTRY_COMPARE(f.Find<QLabel>("labTime")->text(), QStringLiteral("2026-Nov-17 00:01:01 UTC"));
    f.simulated = SkyRig::day + 0.25;
    f.window->Refresh();
    QVERIFY(f.Find<QLabel>("labTime")->text().endsWith(QStringLiteral("06:00:00 UTC, simulated by the map")));
}

void frmSkyTest::theOtherSatelliteIsFollowed() {
    Fixture f;
    f.Open();
    QTest::keyClick(f.window.get(), Qt::Key_Right);
    f.satellites.Toggle();
    f.window->SatHasChanged();
    QVERIFY(f.Pass().startsWith(QStringLiteral("ISS: ")));
    QVERIFY(!f.Find<QPushButton>("cmdPresent")->isEnabled());
    f.folder.Write(QStringLiteral("Keps/keps.txt"), "");
    f.sats.setStrKeplerPath(f.folder.Program().KepsFolder());
    f.window->DataHaveChanged();
    QVERIFY(f.Pass().contains(QStringLiteral("no elements")));
}

void frmSkyTest::placeAndSizeAreRemembered() {
    Fixture f;
    f.Open();
    f.window->move(31, 42);
    f.window->resize(f.window->size() + QSize(37, 21));
    const QSize size = f.window->size();
    QTRY_COMPARE(f.window->pos(), QPoint(31, 42));
    QTest::qWait(0);
    f.window->close();
    f.Open();
    QCOMPARE(f.window->size(), size);
    QCOMPARE(f.window->pos(), QPoint(31, 42));
}

void frmSkyTest::escapeClosesAndTellsTheOwner() {
    Fixture f;
    f.Open();
    const QSignalSpy told(f.window.get(), &frmSky::ImUnloading);
    QTest::keyClick(f.window.get(), Qt::Key_Escape);
    QVERIFY(!f.window->isVisible());
    QCOMPARE(told.size(), 1);
    QVERIFY(!f.Find<QTimer>("Timer1")->isActive());
}

void frmSkyTest::everythingHasAName() {
    Fixture f;
    f.Open();
    for (const QWidget* child : f.window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        QVERIFY(!child->objectName().isEmpty());
    for (const char* name : {"picSky", "tblValues"})
        QVERIFY(!f.Find<QWidget>(name)->accessibleName().isEmpty());
}

void frmSkyTest::wrongLinesAreTold() {
    Fixture f;
    f.Open();
    QVERIFY(!f.Find<QLabel>("labNote")->isVisible());
    f.window->close();
    f.folder.Write(QStringLiteral("horizon.txt"), "0,<b>1</b>\n");
    f.Open();
    QVERIFY(f.Find<QLabel>("labNote")->isVisible());
    QVERIFY(f.Find<QLabel>("labNote")->text().startsWith(QStringLiteral("horizon.txt, line 1: ")));
}

void frmSkyTest::pictureShowsWhatThereIs() {
    Fixture f;
    f.Open();
    const SatPass pass = f.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 40; });
    f.ShowAt(pass.culminationUtc);
    const SatPosition now = f.sats.PositionAt(qiran, f.sats.datGmtTime()).value();
    const QPoint place = f.Picture()->PointOf(now.dblAz, now.dblEl).toPoint();
    const QImage image = f.Picture()->grab().toImage();
    QCOMPARE(image.pixelColor(place * image.devicePixelRatio()), QColor(0x00, 0x50, 0xb4));
    // The plot fills its room, round and whole.
    const QPointF top = f.Picture()->PointOf(0, 0);
    const QPointF right = f.Picture()->PointOf(90, 0);
    const QPointF zenith = f.Picture()->PointOf(77, 90);
    QVERIFY(std::abs((zenith.y() - top.y()) - (right.x() - zenith.x())) < 1e-6);
    QVERIFY(QRectF(f.Picture()->rect()).contains(top) && QRectF(f.Picture()->rect()).contains(right));
    f.window->resize(f.window->minimumSizeHint());
    QVERIFY(!f.Picture()->grab().isNull());
}

void frmSkyTest::screenshots() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    Fixture f;
    for (const char* name : {"horizon", "frequencies"}) {
        QFile example(QStringLiteral(QIRAN_DATA_FOLDER "/%1.example.txt").arg(QString::fromLatin1(name)));
        QVERIFY(example.open(QIODevice::ReadOnly));
        f.folder.Write(QString::fromLatin1(name) + QStringLiteral(".txt"), example.readAll());
    }
    f.Open();
    const auto take = [&](const char* name, const SatPass& pass) {
        f.ShowAt(pass.riseUtc + 0.4 * (pass.setUtc - pass.riseUtc));
        Screenshots::Take(*f.window, QStringLiteral("sky-") + QString::fromLatin1(name));
    };
    const auto isNorth = [](double azimuth) { return azimuth < 25 || azimuth > 335; };
    take("high",
         f.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 40 && p.maxElevation < 70; }));
    take("grazing", f.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation < 3; }));
    take("zenith", f.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 88; }));
    take("north", f.Find(SkyRig::day, [&](const SatPass& p) {
        return isNorth(p.riseAzimuth) && p.setAzimuth > 180 && p.maxElevation > 8;
    }));
    take("noon", f.Find(SkyRig::day + 0.35, [](const SatPass&) { return true; }));
    for (int minute = 0; minute < 20 * 1440; ++minute) {
        const DateTime utc = SkyRig::day + minute / minutesPerDay;
        if (f.sats.PositionAt(qiran, utc)->dblEl > 15 &&
            f.sats.PositionAt(QStringLiteral("25544"), utc)->dblEl > 10) {
            f.ShowAt(utc);
            Screenshots::Take(*f.window, QStringLiteral("sky-both"));
            break;
        }
    }
    f.MoveTo({85, 11});
    f.satellites.Toggle();
    f.window->SatHasChanged();
    Screenshots::Take(*f.window, QStringLiteral("sky-none"));
    Fixture hovering(SkyRig::hovering);
    hovering.MoveTo({48, hovering.sats.PositionAt(qiran, SkyRig::day)->dblLong + 20});
    hovering.Open();
    Screenshots::Take(*hovering.window, QStringLiteral("sky-geostationary"));
}

QTEST_MAIN(frmSkyTest)
#include "frmSkyTest.moc"
