#include "SensorRecord.hpp"

namespace bw::sim {

namespace {

using Location = SensorsData::TemperatureData::SENSOR_LOCATION;

void fillImu(const DeviceState& state, const ImuSample& sample, SensorsData::IMUData& out) {
    // An IMU that does not answer still leaves the rest of the record usable; timestamp 0 tells
    // readers that there is no IMU sample in it.
    out.is_available = !state.faults.imuUnavailable;
    out.timestamp = out.is_available ? sample.timestampNs : 0;
    out.pose = Transform(imageFromCameraPose(sample.pose), Translation(0.f, 0.f, 0.f));
    out.linear_acceleration = imageFromCameraAxes(sample.acceleration);
    out.angular_velocity = imageFromCameraAxes(sample.angularVelocity);
    out.effective_rate = sample.effectiveRate;
}

void fillMagnetometer(const DeviceState& state, std::uint64_t atNs,
                      SensorsData::MagnetometerData& out) {
    out.is_available = sensorsOf(state.config().model).magnetometer && !state.faults.magUnavailable;
    const MagSample* sample = out.is_available ? state.timeline.magAt(atNs) : nullptr;
    if (!sample) {
        return;
    }
    const Vector3<float> raw = state.reportedMagField(*sample);
    out.timestamp = sample->timestampNs;
    // The magnetometer's device axes are already the reporting frame.
    out.magnetic_field_uncalibrated = raw;
    out.magnetic_field_calibrated = applyMagCalibration(state.eeprom, raw);
    out.effective_rate = sample->effectiveRate;
}

void fillBarometer(const DeviceState& state, std::uint64_t atNs, SensorsData::BarometerData& out) {
    out.is_available = sensorsOf(state.config().model).barometer && !state.faults.baroUnavailable;
    const BaroSample* sample = out.is_available ? state.timeline.baroAt(atNs) : nullptr;
    if (!sample) {
        return;
    }
    out.timestamp = sample->timestampNs;
    out.pressure = sample->pressurePa;
    out.relative_altitude = sample->relativeAltitudeM;
    out.effective_rate = sample->effectiveRate;
}

void setTemperature(SensorsData::TemperatureData& out, Location location, bool available,
                    float celsius) {
    const int i = static_cast<int>(location);
    out.available[i] = available;
    out.value[i] = available ? celsius : 0.f;
}

void fillTemperatures(const DeviceState& state, const ImuSample& sample,
                      SensorsData::TemperatureData& out) {
    const bool onboard = sensorsOf(state.config().model).onboardTemperatures;
    const Temperatures t = state.timeline.temperaturesAt(sample.timestampNs);
    setTemperature(out, Location::IMU, true, sample.imuTemperature);
    setTemperature(out, Location::BAROMETER, onboard, t.barometer);
    setTemperature(out, Location::ONBOARD_LEFT, onboard && !state.faults.temperatureLeftFails,
                   t.onboardLeft);
    setTemperature(out, Location::ONBOARD_RIGHT, onboard && !state.faults.temperatureRightFails,
                   t.onboardRight);
}

}  // namespace

void fillSensorsRecord(const DeviceState& state, const ImuSample& imu, SensorsData& out) {
    out = SensorsData();
    fillImu(state, imu, out.imu);
    fillMagnetometer(state, imu.timestampNs, out.magnetometer);
    fillBarometer(state, imu.timestampNs, out.barometer);
    fillTemperatures(state, imu, out.temperature);
    out.camera_moving_state = static_cast<SensorsData::CAMERA_MOTION_STATE>(imu.movingState);
}

}  // namespace bw::sim
