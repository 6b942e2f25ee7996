#include "orbit/panel/framLocation.h"

#include "foundation/looks/Amber.h"
#include "orbit/FakeLibrary.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

namespace {

const QColor lightCyan(192, 255, 255);
const QStringList values{QStringLiteral("labLat"), QStringLiteral("labLong"), QStringLiteral("labAz"),
                         QStringLiteral("labEl"), QStringLiteral("labDue")};

/// Counts how often a widget's palette changes.
class PaletteCounter : public QObject {
public:
    int changes = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        changes += event->type() == QEvent::PaletteChange ? 1 : 0;
        return false;
    }
};

/// The panel over a fake library, at 2026-11-21 12:00 UTC.
struct Fixture {
    TemporaryProgramFolder folder;
    clsIni ini{folder.IniFile()};
    TestClock clock{DateOf(2026, 11, 21) + 0.5};
    FakeLibrary* library = new FakeLibrary;
    clsSats sats{std::unique_ptr<OrbitLibrary>(library), clock};
    TrackedSatellites satellites;
    std::unique_ptr<framLocation> panel;

    Fixture() {
        satellites.LoadSettings(ini);
        panel = std::make_unique<framLocation>(sats, satellites);
        library->passes = "(20261121150102 1 2 3 600)";
        InView(false);
        panel->show();
    }
    void InView(bool inView) {
        library->position = [inView](const std::string& object, double) {
            return LibraryPosition{.visible = inView,
                                   .azimuth = 123.5 * radian,
                                   .elevation = 45.4 * radian,
                                   .longitude = (object == "25544" ? 10.5 : 200) * radian,
                                   .latitude = -33.5 * radian};
        };
    }
    QLabel* Label(const QString& name) const { return panel->findChild<QLabel*>(name); }
    QPushButton* Button(const QString& name) const { return panel->findChild<QPushButton*>(name); }
    QStringList Texts() const {
        QStringList texts;
        for (const QString& name : values)
            texts.append(Label(name)->text());
        return texts;
    }
    // The colour that all five share, as painted.
    QColor Background() const {
        QColor colour;
        for (const QString& name : values) {
            const QColor own = Label(name)->grab().toImage().pixelColor(4, 4);
            if (colour.isValid() && colour != own)
                return {};
            colour = own;
        }
        return colour;
    }
};

} // namespace

class framLocationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void unknownStationShowsTheSubSatellitePointAlone_data();
    void unknownStationShowsTheSubSatellitePointAlone();
    void notInViewShowsWhenItIsDue();
    void inViewShowsWhereToPoint();
    void coloursChangeOnlyWhenTheViewDoes();
    void aBackgroundIsNewOnceWhenTheViewChanges();
    void inViewIsDarkOnLightCyanInADarkTheme();
    void losingTheStationTakesTheMarkAway();
    void aFailingLibraryShowsDashesAndTheTickGoesOn();
    void everyTenthTickRefreshes();
    void theOtherSatelliteIsShownAtOnce();
    void captionCarriesTheNameOfTheElements();
    void dueCaptionSaysWhichTime();
    void passInfoIsAskedFor();
    void theElementsAgeIsNamedAmberWhenOld();
    void buttonsAnswerTheirAccessKeys();
    void pictures();
};

void framLocationTest::unknownStationShowsTheSubSatellitePointAlone_data() {
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("latitude 0") << 0.0 << 13.5;
    QTest::newRow("longitude 0") << 52.5 << 0.0;
    QTest::newRow("both 0") << 0.0 << 0.0;
}

void framLocationTest::unknownStationShowsTheSubSatellitePointAlone() {
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    Fixture f;
    f.panel->ApplyStationPosition(latitude, longitude);
    f.InView(true);
    f.panel->Refresh();
    QCOMPARE(f.Texts(), QStringList({QStringLiteral("33.30.00S"), QStringLiteral("160.00.00W"),
                                     QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")}));
    QVERIFY(!f.Button(QStringLiteral("cmdPassInfo"))->isEnabled());
    QVERIFY(f.Background() != lightCyan);
    QCOMPARE(f.satellites.Selected().intInView, qint16(0));
    f.panel->ApplyStationPosition(52.5, 13.5);
    QVERIFY(f.Button(QStringLiteral("cmdPassInfo"))->isEnabled());
}

void framLocationTest::notInViewShowsWhenItIsDue() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.panel->Refresh();
    QCOMPARE(f.Texts(), QStringList({QStringLiteral("33.30.00S"), QStringLiteral("160.00.00W"),
                                     QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("15:01:02")}));
    QCOMPARE(f.Background(), QApplication::palette().color(QPalette::Base));
}

void framLocationTest::inViewShowsWhereToPoint() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.InView(true);
    f.panel->Refresh();
    QCOMPARE(f.Texts(), QStringList({QStringLiteral("33.30.00S"), QStringLiteral("160.00.00W"),
                                     QStringLiteral("124"), QStringLiteral("45"), QStringLiteral("Now!")}));
    QCOMPARE(f.Background(), lightCyan);
    QCOMPARE(f.satellites.Selected().intInView, qint16(5));
}

void framLocationTest::coloursChangeOnlyWhenTheViewDoes() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.panel->Refresh();
    PaletteCounter counter;
    f.Label(QStringLiteral("labLat"))->installEventFilter(&counter);
    f.panel->Refresh();
    QCOMPARE(counter.changes, 0);
    f.InView(true);
    f.panel->Refresh();
    QCOMPARE(counter.changes, 1);
    f.panel->Refresh();
    QCOMPARE(counter.changes, 1);
    f.InView(false);
    f.panel->Refresh();
    f.panel->Refresh();
    QCOMPARE(counter.changes, 2);
}

void framLocationTest::aBackgroundIsNewOnceWhenTheViewChanges() {
    Fixture f;
    TrackingDisplay display(f.sats, f.satellites);
    display.ApplyStationPosition(52.5, 13.5);
    using Background = TrackingLabels::Background;
    const auto none = std::optional<Background>();
    QVERIFY(display.Refresh().newBackground == none);
    f.InView(true);
    QVERIFY(display.Refresh().newBackground == Background::InView);
    QVERIFY(display.Refresh().newBackground == none);
    f.InView(false);
    QVERIFY(display.Refresh().newBackground == Background::Window);
    QVERIFY(display.Refresh().newBackground == none);
}

void framLocationTest::inViewIsDarkOnLightCyanInADarkTheme() {
    Fixture f;
    const QPalette before = QApplication::palette();
    QApplication::setPalette(Screenshots::DarkPalette());
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.panel->Refresh();
    QTRY_COMPARE(f.Background(), QColor(0x1e, 0x1e, 0x1e));
    f.InView(true);
    f.panel->Refresh();
    QCOMPARE(f.Background(), lightCyan);
    QCOMPARE(f.Label(QStringLiteral("labAz"))->palette().color(QPalette::Text), QColor(Qt::black));
    f.InView(false);
    f.panel->Refresh();
    QCOMPARE(f.Background(), QColor(0x1e, 0x1e, 0x1e));
    QApplication::setPalette(before);
}

void framLocationTest::losingTheStationTakesTheMarkAway() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.InView(true);
    f.panel->Refresh();
    f.panel->ApplyStationPosition(0, 0);
    QCOMPARE(f.Texts().mid(2), QStringList({QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")}));
    QVERIFY(f.Background() != lightCyan);
}

void framLocationTest::aFailingLibraryShowsDashesAndTheTickGoesOn() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.InView(true);
    f.panel->Refresh();
    f.library->position = [](const std::string&, double) { return std::nullopt; };
    f.panel->Tick(true);
    for (const QString& text : f.Texts())
        QCOMPARE(text, QStringLiteral("-"));
    QVERIFY(f.Background() != lightCyan);
    f.InView(true);
    f.panel->Tick(true);
    QCOMPARE(f.Texts().last(), QStringLiteral("Now!"));
}

void framLocationTest::everyTenthTickRefreshes() {
    Fixture f;
    for (int tick = 1; tick <= 9; ++tick)
        f.panel->Tick();
    QCOMPARE(f.library->positionCalls, 0);
    f.panel->Tick();
    QCOMPARE(f.library->positionCalls, 1);
}

void framLocationTest::theOtherSatelliteIsShownAtOnce() {
    Fixture f;
    const QSignalSpy changed(f.panel.get(), &framLocation::SatChanged);
    QCOMPARE(f.panel->title(), QStringLiteral("QIRAN Current Location"));
    QTest::mouseClick(f.Button(QStringLiteral("cmdChangeSat")), Qt::LeftButton);
    QCOMPARE(f.panel->title(), QStringLiteral("ISS Current Location"));
    QCOMPARE(f.Texts().at(1), QStringLiteral("010.30.00E"));
    QCOMPARE(changed.count(), 1);
    f.panel->ChangeSat();
    QCOMPARE(f.panel->title(), QStringLiteral("QIRAN Current Location"));
}

void framLocationTest::captionCarriesTheNameOfTheElements() {
    Fixture f;
    f.folder.Write(QStringLiteral("Keps/a.txt"), "BIRD & BEE\n1 90417U x\n2 90417 y\n");
    f.satellites.FindInKeps(f.folder.Program().KepsFolder());
    f.panel->ShowCaption();
    QCOMPARE(f.panel->title(), QStringLiteral("QIRAN (BIRD && BEE) Current Location")); // no access key
}

void framLocationTest::dueCaptionSaysWhichTime() {
    Fixture f;
    QCOMPARE(f.Label(QStringLiteral("labDueCap"))->text(), QStringLiteral("Due (UTC)"));
    f.sats.setBlnLocalTime(true);
    f.panel->SetDueCaption();
    QCOMPARE(f.Label(QStringLiteral("labDueCap"))->text(), QStringLiteral("Due (local)"));
}

void framLocationTest::passInfoIsAskedFor() {
    Fixture f;
    const QSignalSpy asked(f.panel.get(), &framLocation::PassInfoRequested);
    QTest::mouseClick(f.Button(QStringLiteral("cmdPassInfo")), Qt::LeftButton);
    QCOMPARE(asked.count(), 0);
    f.panel->ApplyStationPosition(52.5, 13.5);
    QTest::mouseClick(f.Button(QStringLiteral("cmdPassInfo")), Qt::LeftButton);
    QCOMPARE(asked.count(), 1);
}

void framLocationTest::theElementsAgeIsNamedAmberWhenOld() {
    Fixture f;
    const DateTime now = f.sats.datGmtTime();
    f.library->source = ElementSource{.name = "X", .file = "<b>amateur</b>.txt", .epochUtc = now - 14.0};
    f.panel->Refresh();
    QVERIFY2(f.panel->toolTip().contains(QStringLiteral("14 days old.\nEpoch")),
             qPrintable(f.panel->toolTip()));
    QVERIFY(!f.panel->toolTip().contains(QStringLiteral("color")));
    f.library->source->epochUtc = now + 1.5;
    f.panel->Refresh();
    QVERIFY(f.panel->toolTip().contains(QStringLiteral("0 days old.")));
    f.library->source->epochUtc = now - 14.01;
    f.panel->Refresh();
    QVERIFY(f.panel->toolTip().contains(QStringLiteral("14 days old: passes may be wrong.")));
    QVERIFY(f.panel->toolTip().contains(QStringLiteral("color:") +
                                        AmberOn(QToolTip::palette().color(QPalette::ToolTipBase)).name()));
    f.library->source->epochUtc = now - 20.5;
    f.panel->Refresh();
    const QString tip = f.panel->toolTip();
    QVERIFY2(tip.contains(QStringLiteral("QIRAN are 20 days old")), qPrintable(tip));
    QVERIFY2(tip.contains(QStringLiteral("2026-Nov-01 00:00 UTC")), qPrintable(tip));
    QVERIFY2(tip.contains(QStringLiteral("&lt;b&gt;amateur&lt;/b&gt;.txt")), qPrintable(tip));
    f.library->source.reset();
    f.panel->Refresh();
    QCOMPARE(f.panel->toolTip(), QString());
}

void framLocationTest::buttonsAnswerTheirAccessKeys() {
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    QVERIFY(QTest::qWaitForWindowActive(f.panel.get()));
    const QSignalSpy changed(f.panel.get(), &framLocation::SatChanged);
    const QSignalSpy asked(f.panel.get(), &framLocation::PassInfoRequested);
    QTest::keyClick(f.panel.get(), Qt::Key_C, Qt::AltModifier);
    QTRY_COMPARE(changed.count(), 1);
    QTest::keyClick(f.panel.get(), Qt::Key_P, Qt::AltModifier);
    QTRY_COMPARE(asked.count(), 1);
}

void framLocationTest::pictures() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures are wanted");
    Fixture f;
    f.panel->ApplyStationPosition(52.5, 13.5);
    f.panel->Refresh();
    Screenshots::Take(*f.panel, QStringLiteral("framLocation"));
    f.InView(true);
    f.panel->Refresh();
    Screenshots::Take(*f.panel, QStringLiteral("framLocation-in-view"));
}

QTEST_MAIN(framLocationTest)
#include "framLocationTest.moc"
