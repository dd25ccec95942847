// The simulated sensor streams of one camera: physics, rates, history and determinism.
#include <Eigen/Core>
#include <Eigen/Geometry>
#include <QtTest>
#include <algorithm>
#include <bw/sim/Clock.hpp>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <set>
#include <vector>

#include "VirtualTime.h"
#include "physics/MotionModel.hpp"
#include "physics/SensorTimeline.hpp"

using namespace bw::sim;

// |actual - expected| <= tolerance, printing the values when it fails.
#define VERIFY_NEAR(actual, expected, tolerance)                               \
    QVERIFY2(std::abs(double(actual) - double(expected)) <= double(tolerance), \
             qPrintable(QString("%1 is %2, expected %3 within %4")             \
                            .arg(#actual)                                      \
                            .arg(double(actual), 0, 'g', 12)                   \
                            .arg(double(expected), 0, 'g', 12)                 \
                            .arg(double(tolerance))))

namespace {

constexpr std::uint64_t kStart = Clock::kVirtualEpochNs;
using virtualtime::kMs;
using virtualtime::kSecond;
constexpr double kGravity = 9.80665;
const Eigen::Vector3d kEarthField(22.0, 0.0, -42.0);  // µT, world: x north, z up

DeviceConfig cameraWith(MotionProfile motion, std::uint64_t seed = 11,
                        bw::MODEL model = bw::MODEL::ORYX_D) {
    DeviceConfig config;
    config.model = model;
    config.motion = motion;
    config.seed = seed;
    return config;
}

Eigen::Vector3d toEigen(const bw::Vector3<float>& v) { return {v.x, v.y, v.z}; }
Eigen::Quaterniond toEigen(const bw::Orientation& q) { return {q.w, q.x, q.y, q.z}; }

double degreesBetween(const Eigen::Vector3d& a, const Eigen::Vector3d& b) {
    return std::atan2(a.cross(b).norm(), a.dot(b)) * 180.0 / kPi;
}

double seconds(std::uint64_t ns) { return static_cast<double>(ns - kStart) * 1e-9; }

// Everything a reader sees of the three streams, read as a device would: advancing in steps
// and taking each new sample once.
struct Streams {
    std::vector<ImuSample> imu;
    std::vector<MagSample> mag;
    std::vector<BaroSample> baro;
};

Streams collect(SensorTimeline& timeline, std::uint64_t fromNs, std::uint64_t toNs,
                std::uint64_t stepNs = 10 * kMs) {
    Streams out;
    std::uint64_t imuSeen = fromNs, magSeen = fromNs, baroSeen = fromNs;
    for (std::uint64_t now = fromNs + stepNs; now <= toNs; now += stepNs) {
        timeline.advanceTo(now);
        while (const ImuSample* s = timeline.firstImuAfter(imuSeen)) {
            out.imu.push_back(*s);
            imuSeen = s->timestampNs;
        }
        while (const MagSample* s = timeline.firstMagAfter(magSeen)) {
            out.mag.push_back(*s);
            magSeen = s->timestampNs;
        }
        // Barometer samples are 40 ms apart, so a 10 ms step sees each as the newest once.
        const BaroSample* b = timeline.baroAt(now);
        if (b != nullptr && b->timestampNs > baroSeen) {
            out.baro.push_back(*b);
            baroSeen = b->timestampNs;
        }
    }
    return out;
}

template <class Sample>
bool strictlyIncreasing(const std::vector<Sample>& samples) {
    return std::adjacent_find(samples.begin(), samples.end(), [](const Sample& a, const Sample& b) {
               return b.timestampNs <= a.timestampNs;
           }) == samples.end();
}

bool sameImu(const ImuSample& a, const ImuSample& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Calls check(a, b) for every IMU sample that `a` keeps after `after` and its twin in `b`;
// returns how many there were, or -1 when `b` lacks one.
template <class Check>
int compareKeptImu(const SensorTimeline& a, const SensorTimeline& b, std::uint64_t after,
                   Check check) {
    int compared = 0;
    while (const ImuSample* x = a.firstImuAfter(after)) {
        const ImuSample* y = b.firstImuAfter(after);
        if (y == nullptr) return -1;
        check(*x, *y, compared);
        after = x->timestampNs;
        ++compared;
    }
    return compared;
}

}  // namespace

Q_DECLARE_METATYPE(Eigen::Vector3d)

class TimelineTest : public QObject {
    Q_OBJECT

private slots:
    // A camera on the table: gravity alone on the accelerometer, no turn on the gyroscope, and
    // the earth's field on the magnetometer through the configured distortion.
    void stillCamera_data() {
        QTest::addColumn<Eigen::Vector3d>("hardIron");
        QTest::addColumn<Eigen::Vector3d>("softIron");
        QTest::newRow("undistorted") << Eigen::Vector3d(0, 0, 0) << Eigen::Vector3d(1, 1, 1);
        QTest::newRow("strong") << Eigen::Vector3d(-150, 80, 300) << Eigen::Vector3d(0.7, 1.4, 1.2);
    }

    void stillCamera() {
        QFETCH(Eigen::Vector3d, hardIron);
        QFETCH(Eigen::Vector3d, softIron);
        DeviceConfig config = cameraWith(MotionProfile::Still);
        for (int i = 0; i < 3; ++i) {
            config.hardIronOffset[i] = static_cast<float>(hardIron[i]);
            config.softIronScale[i] = static_cast<float>(softIron[i]);
        }
        SensorTimeline timeline(config, kStart);
        const Streams s = collect(timeline, kStart, kStart + kSecond);
        QVERIFY(s.imu.size() > 300 && s.mag.size() > 40);
        Eigen::Vector3d acc = Eigen::Vector3d::Zero(), gyro = Eigen::Vector3d::Zero();
        for (const ImuSample& sample : s.imu) {
            acc += toEigen(sample.acceleration) / s.imu.size();
            gyro += toEigen(sample.angularVelocity) / s.imu.size();
        }
        VERIFY_NEAR(acc.z(), kGravity, 0.1);  // level, z up: the whole force on z
        VERIFY_NEAR(acc.norm(), kGravity, 0.1);
        VERIFY_NEAR(gyro.norm(), 0.0, 0.05);
        QCOMPARE(s.imu.back().movingState, 0);

        const Eigen::Quaterniond pose = toEigen(s.imu.back().pose);
        Eigen::Vector3d meanScale = Eigen::Vector3d::Zero();
        for (const MagSample& m : s.mag) {
            const Eigen::Vector3d trueField = toEigen(m.trueField);
            const Eigen::Vector3d raw = toEigen(m.rawField);
            // The true field is the earth's, seen through the pose and the device axes.
            const Eigen::Vector3d inCamera = toEigen(cameraFromDeviceAxes(m.trueField));
            VERIFY_NEAR((inCamera - pose.conjugate() * kEarthField).norm(), 0.0, 0.01);
            for (int i = 0; i < 3; ++i) {
                VERIFY_NEAR(raw[i], softIron[i] * trueField[i] + hardIron[i], 1.5);
                meanScale[i] += (raw[i] - hardIron[i]) / trueField[i] / s.mag.size();
            }
        }
        // The scale shows through the noise on every axis that carries a useful field.
        for (int i = 0; i < 3; ++i) {
            if (std::abs(toEigen(s.mag.front().trueField)[i]) > 10.0) {
                VERIFY_NEAR(meanScale[i], softIron[i], 0.02);
            }
        }
    }

    void gyroscopeIntegratesToThePose() {
        SensorTimeline timeline(cameraWith(MotionProfile::Tumbling, 3), kStart);
        const Streams s = collect(timeline, kStart, kStart + 4 * kSecond);
        Eigen::Quaterniond integrated = toEigen(s.imu.front().pose);
        double worstDeg = 0.0, turnedDeg = 0.0;
        for (std::size_t k = 1; k < s.imu.size(); ++k) {
            const double dt =
                static_cast<double>(s.imu[k].timestampNs - s.imu[k - 1].timestampNs) * 1e-9;
            const Eigen::Vector3d meanRate =
                0.5 * (toEigen(s.imu[k].angularVelocity) + toEigen(s.imu[k - 1].angularVelocity));
            const Eigen::Vector3d turn = meanRate * kPi / 180.0 * dt;
            integrated =
                (integrated * Eigen::Quaterniond(Eigen::AngleAxisd(turn.norm(), turn.normalized())))
                    .normalized();
            const Eigen::Quaterniond pose = toEigen(s.imu[k].pose);
            worstDeg = std::max(worstDeg, integrated.angularDistance(pose) * 180.0 / kPi);
            turnedDeg =
                std::max(turnedDeg, toEigen(s.imu[0].pose).angularDistance(pose) * 180 / kPi);
        }
        VERIFY_NEAR(worstDeg, 0.0, 0.5);
        QVERIFY2(turnedDeg > 3.0, "the camera must actually turn for this to mean anything");
    }

    // A camera held in the hand and put down now and then: its streams at their rates, the
    // accelerometer along the pose's up axis and the barometer following the height.
    void handHeldCamera() {
        const DeviceConfig config = cameraWith(MotionProfile::Gentle, 4);
        SensorTimeline timeline(config, kStart);
        const Streams s = collect(timeline, kStart, kStart + 20 * kSecond);
        const double span = 20.0;

        QVERIFY(strictlyIncreasing(s.imu));
        QVERIFY(strictlyIncreasing(s.mag));
        QVERIFY(strictlyIncreasing(s.baro));
        VERIFY_NEAR(s.mag.size() / span, 50.0, 0.5);
        VERIFY_NEAR(s.baro.size() / span, 25.0, 0.25);
        VERIFY_NEAR(s.mag.back().effectiveRate, 50.0, 1.0);
        VERIFY_NEAR(s.baro.back().effectiveRate, 25.0, 0.5);

        std::set<int> states;
        double maxTilt = 0.0, maxRate = 0.0, sumAngle = 0.0, worstAngle = 0.0;
        for (std::size_t k = 0; k < s.imu.size(); ++k) {
            const ImuSample& sample = s.imu[k];
            // IMU timestamps are 2.5 ms apart give or take the jitter.
            if (k > 0) VERIFY_NEAR(sample.timestampNs - s.imu[k - 1].timestampNs, 2.5e6, 50e3);
            states.insert(sample.movingState);
            const double rate = toEigen(sample.angularVelocity).norm();
            maxRate = std::max(maxRate, rate);
            if (sample.movingState == 0) VERIFY_NEAR(rate, 0.0, 1.0);
            const Eigen::Quaterniond pose = toEigen(sample.pose);
            maxTilt = std::max(
                maxTilt, degreesBetween(pose * Eigen::Vector3d::UnitZ(), Eigen::Vector3d::UnitZ()));
            const double angle = degreesBetween(toEigen(sample.acceleration),
                                                pose.conjugate() * Eigen::Vector3d::UnitZ());
            sumAngle += angle;
            worstAngle = std::max(worstAngle, angle);
        }
        QVERIFY(states.count(0) == 1 && states.count(1) == 1);
        QVERIFY(maxTilt > 1.0 && maxTilt < 15.0);
        QVERIFY(maxRate > 3.0 && maxRate < 30.0);
        // Hand accelerations of a few tenths of m/s² tilt the force by a degree or two at most.
        VERIFY_NEAR(sumAngle / s.imu.size(), 0.0, 1.0);
        VERIFY_NEAR(worstAngle, 0.0, 3.0);

        // Averaged over a second the noise (~5 cm per sample) drops below a centimetre. What
        // remains is a fixed offset, from the noise of the first reading that sets the zero, and
        // the slow drift of the weather.
        const MotionModel motion(config.motion, config.seed);
        const double firstHeight = motion.height(seconds(s.baro.front().timestampNs));
        QCOMPARE(s.baro.front().relativeAltitudeM == 0.f, true);
        std::vector<double> errors;
        double minHeight = 0.0, maxHeight = 0.0;
        for (std::size_t begin = 0; begin + 25 <= s.baro.size(); begin += 25) {
            double measured = 0.0, modelled = 0.0;
            for (std::size_t k = begin; k < begin + 25; ++k) {
                measured += s.baro[k].relativeAltitudeM / 25.0;
                modelled += (motion.height(seconds(s.baro[k].timestampNs)) - firstHeight) / 25.0;
                VERIFY_NEAR(s.baro[k].pressurePa, 99'900.0, 400.0);  // ~120 m above sea level
            }
            errors.push_back(measured - modelled);
            minHeight = std::min(minHeight, modelled);
            maxHeight = std::max(maxHeight, modelled);
        }
        const double offset = std::accumulate(errors.begin(), errors.end(), 0.0) / errors.size();
        VERIFY_NEAR(offset, 0.0, 0.2);
        for (double error : errors) VERIFY_NEAR(error, offset, 0.05);
        QVERIFY2(maxHeight - minHeight > 0.1, "the height must change for this to mean anything");
    }

    // Every sample arrives, one period after the one before it, however fast the IMU runs; the
    // configured rate is held to its bounds. The timeline keeps a second of history and no more
    // than three, also at 20 kHz.
    void imuRateFollowsTheConfiguration_data() {
        QTest::addColumn<double>("configured");
        QTest::addColumn<double>("rate");
        QTest::addColumn<double>("span");  // seconds
        QTest::newRow("100 Hz") << 100.0 << 100.0 << 1.0;
        QTest::newRow("20 kHz") << 20'000.0 << 20'000.0 << 1.5;
        QTest::newRow("400 Hz, half a minute") << 400.0 << 400.0 << 30.0;
        QTest::newRow("above the maximum") << 1e9 << DeviceConfig::kMaxImuRateHz << 0.02;
        QTest::newRow("zero") << 0.0 << DeviceConfig::kMinImuRateHz << 5.0;
    }

    void imuRateFollowsTheConfiguration() {
        QFETCH(double, configured);
        QFETCH(double, rate);
        QFETCH(double, span);
        DeviceConfig config = cameraWith(MotionProfile::Gentle);
        config.imuRateHz = configured;
        SensorTimeline timeline(config, kStart);
        const std::uint64_t end = kStart + static_cast<std::uint64_t>(span * kSecond);
        const Streams s = collect(timeline, kStart, end, std::min(10 * kMs, (end - kStart) / 10));
        QVERIFY(strictlyIncreasing(s.imu));
        VERIFY_NEAR(s.imu.size(), rate * span, rate * span * 0.01 + 1.0);
        const double period = 1e9 / rate;
        for (std::size_t k = 1; k < s.imu.size(); ++k) {
            VERIFY_NEAR(s.imu[k].timestampNs - s.imu[k - 1].timestampNs, period, 0.02 * period);
        }
        if (s.imu.size() > 2) VERIFY_NEAR(s.imu.back().effectiveRate, rate, rate * 0.01);
        // The other streams keep their own rate.
        VERIFY_NEAR(s.mag.size(), 50.0 * span, 1.0);
        const std::uint64_t oldest = timeline.firstImuAfter(0)->timestampNs;
        const std::uint64_t newest = timeline.newestImu()->timestampNs;
        QVERIFY(oldest >= newest - std::min(newest - kStart, 3 * SensorTimeline::kHistoryNs));
        if (span > 1.0 && rate >= 100.0) QVERIFY(oldest <= newest - SensorTimeline::kHistoryNs);
    }

    void sameSeedGivesSameSamplesHoweverTimeIsSliced() {
        const DeviceConfig config = cameraWith(MotionProfile::Tumbling, 5);
        SensorTimeline inSteps(config, kStart), inOneJump(config, kStart);
        const std::uint64_t end = kStart + 8 * kSecond;
        for (std::uint64_t now = kStart; now <= end; now += 7 * kMs) inSteps.advanceTo(now);
        inOneJump.advanceTo(end);

        bool same = true;
        const int compared = compareKeptImu(
            inSteps, inOneJump, end - SensorTimeline::kHistoryNs,
            [&](const ImuSample& a, const ImuSample& b, int) { same = same && sameImu(a, b); });
        QVERIFY(same);
        QVERIFY(compared >= 390);
        const std::uint64_t t = end - 500 * kMs;
        QCOMPARE(inSteps.magAt(t)->rawField, inOneJump.magAt(t)->rawField);
        QCOMPARE(inSteps.baroAt(t)->relativeAltitudeM, inOneJump.baroAt(t)->relativeAltitudeM);

        // Another seed, other samples.
        SensorTimeline other(cameraWith(MotionProfile::Tumbling, 6), kStart);
        other.advanceTo(end);
        QVERIFY(other.newestImu()->timestampNs != inSteps.newestImu()->timestampNs);
        QVERIFY(other.newestImu()->acceleration != inSteps.newestImu()->acceleration);
        QVERIFY(!(other.newestImu()->pose == inSteps.newestImu()->pose));
    }

    // A bias walk reaches a far sample through sums of whole blocks of steps: a jump across
    // several blocks gives the samples that small steps give, and the bias does wander.
    void biasWalksAreTheSameHoweverFarTheJump() {
        DeviceConfig config = cameraWith(MotionProfile::Still, 9);
        config.gyroNoise = {0.0, 0.0, 0.0};
        config.accNoise = {0.0, 0.0, 0.0};
        config.gyroWalk = {1e-3, 2e-3, 3e-3};
        config.accWalk = {1e-2, 2e-2, 3e-2};
        SensorTimeline inSteps(config, kStart), inOneJump(config, kStart);
        const std::uint64_t end = kStart + 75 * kSecond;  // 30 000 samples: 7 blocks
        const ImuSample* first = nullptr;
        ImuSample start;
        for (std::uint64_t now = kStart; now <= end; now += 250 * kMs) {
            inSteps.advanceTo(now);
            if (!first && (first = inSteps.newestImu())) start = *first;
        }
        QVERIFY(first != nullptr);
        inOneJump.advanceTo(end);
        // Summed in another order: equal to the float's last digits.
        double largest = 0.0;
        const int compared = compareKeptImu(
            inSteps, inOneJump, end - SensorTimeline::kHistoryNs,
            [&](const ImuSample& a, const ImuSample& b, int) {
                for (int i = 0; i < 3; ++i) {
                    largest =
                        std::max({largest, double(std::abs(a.acceleration[i] - b.acceleration[i])),
                                  double(std::abs(a.angularVelocity[i] - b.angularVelocity[i]))});
                }
            });
        VERIFY_NEAR(largest, 0.0, 1e-5);
        QVERIFY(compared >= 390);
        const ImuSample& last = *inSteps.newestImu();
        QVERIFY((toEigen(last.acceleration) - toEigen(start.acceleration)).norm() > 1e-3);
        QVERIFY((toEigen(last.angularVelocity) - toEigen(start.angularVelocity)).norm() > 1e-3);
    }

    // Temperatures are a slow function of time alone; the IMU samples carry the IMU's.
    void temperaturesDriftSlowly() {
        SensorTimeline timeline(cameraWith(MotionProfile::Still), kStart);
        const std::uint64_t warm = kStart + 1200 * kSecond;
        const Temperatures t = timeline.temperaturesAt(warm);
        VERIFY_NEAR(timeline.temperaturesAt(warm + kSecond).imu, t.imu, 0.2);
        QCOMPARE(timeline.temperaturesAt(warm).onboardLeft, t.onboardLeft);
        QVERIFY(t.onboardLeft != t.onboardRight && t.imu != t.barometer);
        timeline.advanceTo(kStart + kSecond);
        const ImuSample* sample = timeline.newestImu();
        QCOMPARE(sample->imuTemperature, timeline.temperaturesAt(sample->timestampNs).imu);
    }
};

QTEST_APPLESS_MAIN(TimelineTest)
#include "tst_timeline.moc"
