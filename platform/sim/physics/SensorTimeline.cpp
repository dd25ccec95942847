#include "SensorTimeline.hpp"

#include <Eigen/Core>
#include <Eigen/Geometry>
#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <iterator>
#include <limits>

#include "EarthModel.hpp"
#include "MotionModel.hpp"
#include "MotionStateDetector.hpp"
#include "Noise.hpp"
#include "RandomWalk.hpp"
#include "SampleSchedule.hpp"
#include "TemperatureModel.hpp"

namespace bw::sim {
namespace {

// Nominal sample periods and timestamp jitter (ns); the IMU period follows the configured rate.
constexpr double kMagPeriodNs = 20e6;   // 50 Hz
constexpr double kBaroPeriodNs = 40e6;  // 25 Hz
constexpr double kImuJitterNs = 20e3;
// At high IMU rates a fixed 20 µs would exceed half a period and reorder the timestamps: above
// 400 Hz the jitter shrinks with the period (0.8 % of it, which is 20 µs at 400 Hz).
constexpr double kImuJitterPerPeriod = 0.008;
constexpr double kMagJitterNs = 60e3;
constexpr double kBaroJitterNs = 150e3;
// First sample of each stream after the start; at least its jitter. The streams are offset
// from each other as independent chips would be. The IMU's first sample comes one period in.
constexpr double kMagPhaseNs = 7e6;
constexpr double kBaroPhaseNs = 13e6;
// Largest error of a device's crystal; one clock drives all three streams.
constexpr double kClockErrorPpm = 6.0;

constexpr double kGyroBiasDegS = 0.01;  // largest bias per axis
constexpr double kMagNoiseUt = 0.3;
constexpr double kMagStepUt = 1.0 / 16.0;  // one raw count
// Raw counts are int16; the limit is kept symmetric so that the timeline itself never produces
// the 2048 µT that marks a saturated reading.
constexpr double kMagLimitUt = 32767.0 * kMagStepUt;
constexpr double kPressureNoisePa = 0.5;
constexpr double kSiteAltitudeM = 120.0;
// Weather: a fixed offset per device plus a slow swing of the sea-level pressure.
constexpr double kWeatherOffsetPa = 150.0;
constexpr double kWeatherSwingPa = 20.0;  // a few cm of apparent height per minute at most
constexpr double kWeatherPeriodS = 6.0 * 3600.0;

constexpr double kRadToDeg = 180.0 / 3.14159265358979323846;
constexpr double kTwoPi = 6.283185307179586;
constexpr std::uint64_t kRateWindowNs = 1'000'000'000ull;
constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

// Samples kept behind the newest one: the promised history plus slack for readers at its edge.
constexpr std::uint64_t kKeepNs = SensorTimeline::kHistoryNs + 500'000'000ull;
// A long jump only steps the motion model until this long before the kept window, so that the
// rate windows and the motion-state detector are full again by the first sample kept.
constexpr std::uint64_t kWarmUpNs = 1'500'000'000ull;

Vector3<float> toFloat(const Eigen::Vector3d& v) {
    return {static_cast<float>(v.x()), static_cast<float>(v.y()), static_cast<float>(v.z())};
}

Orientation toOrientation(const Eigen::Quaterniond& q) {
    return Orientation(static_cast<float>(q.x()), static_cast<float>(q.y()),
                       static_cast<float>(q.z()), static_cast<float>(q.w()));
}

template <class Sample>
auto firstStampedAfter(const std::deque<Sample>& samples, std::uint64_t ns) {
    return std::upper_bound(samples.begin(), samples.end(), ns,
                            [](std::uint64_t t, const Sample& s) { return t < s.timestampNs; });
}

// One sample stream: its schedule, the index of the sample due next and the kept history.
template <class Sample>
struct SampleStream {
    explicit SampleStream(const SampleSchedule& s, bool enabled)
        : schedule(s), nextNs(enabled ? s.at(0) : kNever) {}

    // Moves on to the next sample; skipped ones leave a gap in the history.
    void advance(bool skipped) {
        gap = gap || skipped;
        nextNs = schedule.at(++index);
    }

    // Starts a fresh history after a gap: samples from before it say nothing about the rate now.
    bool resumeAfterGap() {
        if (!gap) return false;
        kept.clear();
        gap = false;
        return true;
    }

    // 1 / mean interval over the last second, for a new sample stamped t.
    float effectiveRate(std::uint64_t t) const {
        const std::uint64_t windowStart = t > kRateWindowNs ? t - kRateWindowNs : 0;
        const auto first = firstStampedAfter(kept, windowStart);
        const auto intervals = std::distance(first, kept.end());
        if (intervals == 0) return 0.f;
        return static_cast<float>(static_cast<double>(intervals) * 1e9 /
                                  static_cast<double>(t - first->timestampNs));
    }

    void keep(const Sample& sample) {
        kept.push_back(sample);
        while (kept.back().timestampNs - kept.front().timestampNs > kKeepNs) kept.pop_front();
    }

    const Sample* newestAtOrBefore(std::uint64_t ns) const {
        const auto after = firstStampedAfter(kept, ns);
        return after == kept.begin() ? nullptr : &*std::prev(after);
    }

    const Sample* firstAfter(std::uint64_t ns) const {
        const auto it = firstStampedAfter(kept, ns);
        return it == kept.end() ? nullptr : &*it;
    }

    SampleSchedule schedule;
    std::uint64_t index = 0;
    std::uint64_t nextNs;
    bool gap = false;
    std::deque<Sample> kept;
};

std::array<std::uint64_t, 3> axisKeys(std::uint64_t seed, noise::Stream stream) {
    return {noise::key(seed, stream, 0), noise::key(seed, stream, 1), noise::key(seed, stream, 2)};
}

// The reported (image) axis along each of the motion model's camera axes: image x = -camera y,
// image y = -camera z, image z = camera x. Noise is configured per reported axis.
constexpr std::array<int, 3> kImageAxisOfCameraAxis = {2, 0, 1};

// The bias random walks of one sensor, one per reported axis.
std::array<RandomWalk, 3> biasWalks(std::uint64_t seed, noise::Stream steps, noise::Stream blocks) {
    return {RandomWalk(noise::key(seed, steps, 0), noise::key(seed, blocks, 0)),
            RandomWalk(noise::key(seed, steps, 1), noise::key(seed, blocks, 1)),
            RandomWalk(noise::key(seed, steps, 2), noise::key(seed, blocks, 2))};
}

}  // namespace

Vector3<float> imageFromCameraAxes(const Vector3<float>& c) { return {-c.y, -c.z, c.x}; }

// Both the camera and the world frame turn by the same fixed rotation, so the rotation axis
// turns with them and the angle stays.
Orientation imageFromCameraPose(const Orientation& q) { return {-q.y, -q.z, q.x, q.w}; }

Vector3<float> cameraFromDeviceAxes(const Vector3<float>& d) { return {d.z, -d.x, -d.y}; }

Vector3<float> deviceFromCameraAxes(const Vector3<float>& c) { return imageFromCameraAxes(c); }

struct SensorTimeline::State {
    State(const DeviceConfig& c, std::uint64_t start);

    void step(std::uint64_t fullFrom);
    void makeImu(std::uint64_t t);
    // White noise plus bias walk of one sample along camera axis i, from the densities and walk
    // strengths per reported axis.
    double imuNoise(int i, const Vector3<double>& density, const Vector3<double>& walk,
                    std::uint64_t whiteKey, std::array<RandomWalk, 3>& walks);
    void makeMag(std::uint64_t t);
    void makeBaro(std::uint64_t t);
    double secondsAt(std::uint64_t ns) const { return static_cast<double>(ns - startNs) * 1e-9; }
    double measuredPressure(std::uint64_t index, std::uint64_t t) const;

    DeviceConfig config;
    std::uint64_t startNs;
    MotionModel motion;
    TemperatureModel temperatures;
    MotionStateDetector detector;
    SampleStream<ImuSample> imu;
    SampleStream<MagSample> mag;
    SampleStream<BaroSample> baro;

    std::array<std::uint64_t, 3> accKeys, gyroKeys, magKeys;
    std::array<RandomWalk, 3> accWalks, gyroWalks;
    double imuPeriodS;
    std::uint64_t pressureKey;
    Eigen::Vector3d gyroBias;
    double weatherOffsetPa;
    double weatherPhase;
    double baroReferenceAltitude;
};

namespace {

double imuPeriodNs(const DeviceConfig& c) {
    const double rate = std::isnan(c.imuRateHz) ? DeviceConfig().imuRateHz : c.imuRateHz;
    return 1e9 / std::clamp(rate, DeviceConfig::kMinImuRateHz, DeviceConfig::kMaxImuRateHz);
}

double imuJitterNs(double periodNs) {
    return std::min(kImuJitterNs, kImuJitterPerPeriod * periodNs);
}

SampleSchedule scheduleOf(std::uint64_t seed, std::uint64_t start, double periodNs, double phaseNs,
                          double jitterNs, noise::Stream jitterStream) {
    const double clockScale =
        1.0 + kClockErrorPpm * 1e-6 *
                  noise::uniformSymmetric(noise::key(seed, noise::Stream::ClockError), 0);
    return SampleSchedule(start, periodNs * clockScale, phaseNs, jitterNs,
                          noise::key(seed, jitterStream));
}

}  // namespace

SensorTimeline::State::State(const DeviceConfig& c, std::uint64_t start)
    : config(c),
      startNs(start),
      motion(c.motion, c.seed, c.headingDeg),
      temperatures(c.seed, start),
      imu(scheduleOf(c.seed, start, imuPeriodNs(c), imuPeriodNs(c), imuJitterNs(imuPeriodNs(c)),
                     noise::Stream::ImuJitter),
          true),
      mag(scheduleOf(c.seed, start, kMagPeriodNs, kMagPhaseNs, kMagJitterNs,
                     noise::Stream::MagJitter),
          sensorsOf(c.model).magnetometer),
      baro(scheduleOf(c.seed, start, kBaroPeriodNs, kBaroPhaseNs, kBaroJitterNs,
                      noise::Stream::BaroJitter),
           sensorsOf(c.model).barometer),
      accKeys(axisKeys(c.seed, noise::Stream::Accelerometer)),
      gyroKeys(axisKeys(c.seed, noise::Stream::Gyroscope)),
      magKeys(axisKeys(c.seed, noise::Stream::Magnetometer)),
      accWalks(biasWalks(c.seed, noise::Stream::AccelerometerWalk,
                         noise::Stream::AccelerometerWalkBlocks)),
      gyroWalks(
          biasWalks(c.seed, noise::Stream::GyroscopeWalk, noise::Stream::GyroscopeWalkBlocks)),
      imuPeriodS(imuPeriodNs(c) * 1e-9),
      pressureKey(noise::key(c.seed, noise::Stream::Barometer)) {
    const auto biasKeys = axisKeys(c.seed, noise::Stream::GyroBias);
    for (int i = 0; i < 3; ++i)
        gyroBias[i] = kGyroBiasDegS * noise::uniformSymmetric(biasKeys[i], 0);
    noise::ParameterDraw weather(noise::key(c.seed, noise::Stream::Weather));
    weatherOffsetPa = weather.uniform(-kWeatherOffsetPa, kWeatherOffsetPa);
    weatherPhase = weather.uniform(0.0, kTwoPi);
    // The barometer measures altitude relative to its first reading, noise included.
    baroReferenceAltitude = earth::altitudeFromPressure(measuredPressure(0, baro.schedule.at(0)));
    detector.restart(start);
}

// Produces the earliest due sample. Before fullFrom only the motion model is stepped: nothing
// stamped that early survives the history trimming of the current advance.
void SensorTimeline::State::step(std::uint64_t fullFrom) {
    if (imu.nextNs <= mag.nextNs && imu.nextNs <= baro.nextNs) {
        const std::uint64_t t = imu.nextNs;
        motion.stepTo(secondsAt(t));
        if (t >= fullFrom) makeImu(t);
        imu.advance(t < fullFrom);
    } else if (mag.nextNs <= baro.nextNs) {
        if (mag.nextNs >= fullFrom) makeMag(mag.nextNs);
        mag.advance(mag.nextNs < fullFrom);
    } else {
        if (baro.nextNs >= fullFrom) makeBaro(baro.nextNs);
        baro.advance(baro.nextNs < fullFrom);
    }
}

void SensorTimeline::State::makeImu(std::uint64_t t) {
    if (imu.resumeAfterGap()) detector.restart(t);
    Eigen::Vector3d force = motion.specificForce();
    Eigen::Vector3d rate = motion.angularVelocity() * kRadToDeg + gyroBias;
    for (int i = 0; i < 3; ++i) {
        force[i] += imuNoise(i, config.accNoise, config.accWalk, accKeys[i], accWalks);
        rate[i] +=
            kRadToDeg * imuNoise(i, config.gyroNoise, config.gyroWalk, gyroKeys[i], gyroWalks);
    }
    ImuSample sample;
    sample.timestampNs = t;
    sample.pose = toOrientation(motion.pose());
    sample.acceleration = toFloat(force);
    sample.angularVelocity = toFloat(rate);
    sample.effectiveRate = imu.effectiveRate(t);
    sample.imuTemperature = temperatures.imuAt(t);
    sample.movingState = detector.update(t, sample.acceleration, sample.angularVelocity);
    imu.keep(sample);
}

// Discrete white noise of density N has the standard deviation N / √Δt per sample; a bias
// random walk of strength K moves by K √Δt per sample.
double SensorTimeline::State::imuNoise(int i, const Vector3<double>& density,
                                       const Vector3<double>& walk, std::uint64_t whiteKey,
                                       std::array<RandomWalk, 3>& walks) {
    const int axis = kImageAxisOfCameraAxis[static_cast<std::size_t>(i)];
    const double root = std::sqrt(imuPeriodS);
    double value = density[axis] / root * noise::gaussian(whiteKey, imu.index);
    if (walk[axis] != 0.0) value += walk[axis] * root * walks[std::size_t(axis)].at(imu.index);
    return value;
}

void SensorTimeline::State::makeMag(std::uint64_t t) {
    mag.resumeAfterGap();
    const Eigen::Quaterniond pose = motion.poseAt(secondsAt(t));
    const Vector3<float> trueField =
        deviceFromCameraAxes(toFloat(pose.conjugate() * earth::magneticFieldWorld()));
    MagSample sample;
    sample.timestampNs = t;
    sample.trueField = trueField;
    for (int i = 0; i < 3; ++i) {
        const double measured = config.softIronScale[i] * trueField[i] + config.hardIronOffset[i] +
                                kMagNoiseUt * noise::gaussian(magKeys[i], mag.index);
        const double counts = std::round(measured / kMagStepUt) * kMagStepUt;
        sample.rawField[i] = static_cast<float>(std::clamp(counts, -kMagLimitUt, kMagLimitUt));
    }
    sample.effectiveRate = mag.effectiveRate(t);
    mag.keep(sample);
}

void SensorTimeline::State::makeBaro(std::uint64_t t) {
    baro.resumeAfterGap();
    const double pressure = measuredPressure(baro.index, t);
    BaroSample sample;
    sample.timestampNs = t;
    sample.pressurePa = static_cast<float>(pressure);
    sample.relativeAltitudeM =
        static_cast<float>(earth::altitudeFromPressure(pressure) - baroReferenceAltitude);
    sample.effectiveRate = baro.effectiveRate(t);
    baro.keep(sample);
}

// A pure function of the sample: the height comes from the closed-form translation.
double SensorTimeline::State::measuredPressure(std::uint64_t index, std::uint64_t t) const {
    const double seconds = secondsAt(t);
    const double seaLevel =
        earth::kSeaLevelPressurePa + weatherOffsetPa +
        kWeatherSwingPa * std::sin(kTwoPi * seconds / kWeatherPeriodS + weatherPhase);
    const double altitude = kSiteAltitudeM + motion.height(seconds);
    return earth::pressureAt(altitude, seaLevel) +
           kPressureNoisePa * noise::gaussian(pressureKey, index);
}

SensorTimeline::SensorTimeline(const DeviceConfig& config, std::uint64_t startNs)
    : s_(std::make_unique<State>(config, startNs)) {}

SensorTimeline::~SensorTimeline() = default;

void SensorTimeline::advanceTo(std::uint64_t nowNs) {
    const std::uint64_t lead = kKeepNs + kWarmUpNs;
    const std::uint64_t fullFrom = nowNs > lead ? nowNs - lead : 0;
    while (std::min({s_->imu.nextNs, s_->mag.nextNs, s_->baro.nextNs}) <= nowNs) s_->step(fullFrom);
}

const ImuSample* SensorTimeline::newestImu() const {
    return s_->imu.kept.empty() ? nullptr : &s_->imu.kept.back();
}

const ImuSample* SensorTimeline::firstImuAfter(std::uint64_t afterNs) const {
    return s_->imu.firstAfter(afterNs);
}

std::uint64_t SensorTimeline::nextImuDueNs() const { return s_->imu.nextNs; }

const MagSample* SensorTimeline::magAt(std::uint64_t ns) const {
    return s_->mag.newestAtOrBefore(ns);
}

const MagSample* SensorTimeline::firstMagAfter(std::uint64_t afterNs) const {
    return s_->mag.firstAfter(afterNs);
}

std::uint64_t SensorTimeline::nextMagDueNs() const { return s_->mag.nextNs; }

const BaroSample* SensorTimeline::baroAt(std::uint64_t ns) const {
    return s_->baro.newestAtOrBefore(ns);
}

Temperatures SensorTimeline::temperaturesAt(std::uint64_t ns) const {
    return s_->temperatures.at(ns);
}

const DeviceConfig& SensorTimeline::config() const { return s_->config; }

}  // namespace bw::sim
