#include "orbit/SkyRig.h"
#include "orbit/skyview/SkyPath.h"

#include <QTest>

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace Qt::StringLiterals;

/// What the sky window draws, beside what python3-skyfield's find_events tells. The tolerances are derived in
/// golden/make_sky.py.
class SkyGoldenTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void drawnPassesAgreeWithSkyfield();
};

namespace {

const QString qiran = u"90417"_s;

/// Goes through the passes of one satellite over one station.
class Run : public SkyRig {
public:
    Run(PassSteps::Place where, double start, const std::string& line1, const std::string& line2)
        : m_start(start) {
        folder.Write(u"Keps/keps.txt"_s, QByteArray::fromStdString("QIRAN\n" + line1 + '\n' + line2 + '\n'));
        sats.setStrKeplerPath(folder.Program().KepsFolder());
        MoveTo(where);
    }

    // What is drawn of the next pass.
    bool Next() {
        m_pass = m_pass ? Steps().Later(*m_pass) : FirstAfterStart();
        if (m_pass)
            path = SkyPath::OfPass(sats, qiran, *m_pass);
        return m_pass.has_value();
    }
    double SecondsOf(const std::optional<SkyPoint>& point) const {
        return point ? (point->utc - m_start) * secondsPerDay : -1;
    }
    // The drawn line's direction, straight between its points.
    SkyPoint DrawnAt(double seconds) const {
        const DateTime utc = m_start + seconds / secondsPerDay;
        const auto behind = std::ranges::lower_bound(path.points, utc, {}, &SkyPoint::utc);
        if (behind == path.points.begin())
            return *behind;
        if (behind == path.points.end())
            return path.points.back();
        const SkyPoint& from = *(behind - 1);
        const double part = (utc - from.utc) / (behind->utc - from.utc);
        return {utc, from.azimuth + part * std::remainder(behind->azimuth - from.azimuth, 360),
                std::lerp(from.elevation, behind->elevation, part)};
    }

    SkyPath path;

private:
    // A pass that is under way at the start is none of those told.
    std::optional<SatPass> FirstAfterStart() const {
        std::optional<SatPass> first = Steps().PresentOrNext(m_start);
        return first && first->riseUtc < m_start ? Steps().Later(*first) : first;
    }

    const double m_start;
    std::optional<SatPass> m_pass;
};

} // namespace

void SkyGoldenTest::drawnPassesAgreeWithSkyfield() {
    std::ifstream file(ORBIT_GOLDEN "/sky.txt");
    std::unique_ptr<Run> run;
    int passes = 0;
    int points = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        std::array<double, 4> v{};
        for (double& value : v)
            words >> value;
        if (kind == "run") {
            std::string line1;
            std::string line2;
            std::getline(file, line1);
            std::getline(file, line2);
            run = std::make_unique<Run>(PassSteps::Place{v[0], v[1]}, v[2], line1, line2);
        } else if (kind == "pass") {
            QVERIFY2(run->Next(), line.c_str());
            ++passes;
            const auto [rise, top, set, elevation] = v;
            const auto isNear = [&](const std::optional<SkyPoint>& point, double seconds, double limit) {
                return std::abs(run->SecondsOf(point) - seconds) <= limit;
            };
            QVERIFY2(isNear(run->path.rise, rise, 1.5), line.c_str());
            QVERIFY2(isNear(run->path.culmination, top, elevation < 5 ? 10 : 1.5), line.c_str());
            QVERIFY2(isNear(run->path.set, set, 1.5), line.c_str());
            QVERIFY2(std::abs(run->path.culmination->elevation - elevation) < 0.1, line.c_str());
        } else if (kind == "at") {
            ++points;
            const SkyPoint drawn = run->DrawnAt(v[0]);
            const double cosine = std::cos(v[2] * std::numbers::pi / 180);
            // Between two of its points the line is straight: a little of the way, at the zenith most.
            if (drawn.utc > run->path.points.front().utc && drawn.utc < run->path.points.back().utc) {
                QVERIFY2(std::abs(drawn.elevation - v[2]) < 0.12, line.c_str());
                QVERIFY2(std::abs(std::remainder(drawn.azimuth - v[1], 360)) * cosine < 0.12, line.c_str());
            }
            const auto exact = run->sats.PositionAt(qiran, DateTime(46343) + v[0] / secondsPerDay);
            QVERIFY2(std::abs(exact->dblEl - v[2]) < 0.005, line.c_str());
            QVERIFY2(std::abs(std::remainder(exact->dblAz - v[1], 360)) * cosine < 0.005, line.c_str());
        }
    }
    QVERIFY2(passes > 100 && points == 9 * passes, qPrintable(u"%1 passes"_s.arg(passes)));
}

QTEST_GUILESS_MAIN(SkyGoldenTest)
#include "SkyGoldenTest.moc"
