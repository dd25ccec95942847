#include "NoiseExport.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "RecordingName.h"

namespace imunoise {

namespace {

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6e", value);
    return text;
}

using Term = std::optional<double> (*)(const AxisResult&);

std::optional<double> noiseDensityOf(const AxisResult& axis) {
    if (!axis.present || !axis.noise.white) return std::nullopt;
    return axis.noise.white->value;
}

std::optional<double> randomWalkOf(const AxisResult& axis) {
    if (!axis.present || !axis.noise.walk) return std::nullopt;
    return axis.noise.walk->value;
}

std::optional<double> biasInstabilityOf(const AxisResult& axis) {
    if (!axis.present || !axis.noise.instability) return std::nullopt;
    return axis.noise.instability->value;
}

std::optional<SensorValue> largestOf(const NoiseReport& report, Sensor sensor, Term term) {
    std::optional<SensorValue> largest;
    for (int c = 0; c < 3; ++c) {
        const ImuAxis axis = axisOf(sensor, c);
        const std::optional<double> value = term(report[axis]);
        if (value && (!largest || *value > largest->value)) largest = SensorValue{*value, axis};
    }
    return largest;
}

std::string jsonTriple(const NoiseReport& report, Sensor sensor, Term term) {
    std::string text = "[";
    for (int c = 0; c < 3; ++c) {
        const std::optional<double> value = term(report[axisOf(sensor, c)]);
        text += (c > 0 ? ", " : "") + (value ? number(*value) : std::string("null"));
    }
    return text + "]";
}

std::string jsonSensor(const NoiseReport& report, Sensor sensor) {
    return "{\"noise_density\": " + jsonTriple(report, sensor, noiseDensityOf) +
           ", \"random_walk\": " + jsonTriple(report, sensor, randomWalkOf) +
           ", \"bias_instability\": " + jsonTriple(report, sensor, biasInstabilityOf) + "}";
}

std::string cell(const std::optional<double>& value, int width) {
    char text[64];
    if (value)
        std::snprintf(text, sizeof text, "%*.3e", width, *value);
    else
        std::snprintf(text, sizeof text, "%*s", width, "-");
    return text;
}

std::string tauText(double tau) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", tau);
    return text;
}

std::string axisLetter(ImuAxis axis) { return std::string(1, "xyz"[componentOf(axis)]); }

}  // namespace

std::optional<SensorValue> largestNoiseDensity(const NoiseReport& report, Sensor sensor) {
    return largestOf(report, sensor, noiseDensityOf);
}

std::optional<SensorValue> largestRandomWalk(const NoiseReport& report, Sensor sensor) {
    return largestOf(report, sensor, randomWalkOf);
}

std::string kalibrYaml(const NoiseReport& report, const std::string& rostopic,
                       std::string& refusal) {
    const auto accNoise = largestNoiseDensity(report, Sensor::ACCELEROMETER);
    const auto accWalk = largestRandomWalk(report, Sensor::ACCELEROMETER);
    const auto gyroNoise = largestNoiseDensity(report, Sensor::GYROSCOPE);
    const auto gyroWalk = largestRandomWalk(report, Sensor::GYROSCOPE);
    if (!accNoise || !accWalk || !gyroNoise || !gyroWalk) {
        refusal = !report.has(Sensor::ACCELEROMETER) || !report.has(Sensor::GYROSCOPE)
                      ? "Kalibr needs both the accelerometer and the gyroscope, and the "
                        "recording lacks one."
                      : "Kalibr needs a noise density and a random walk for each sensor, and "
                        "the curves show no random walk yet: record longer.";
        return {};
    }
    char rate[32];
    std::snprintf(rate, sizeof rate, "%.3f", report.rateHz);
    std::string yaml;
    yaml += "# IMU noise of " + recording::fileNameOf(report.path) + " (" +
            std::to_string(static_cast<long>(report.durationS / 60.0 + 0.5)) +
            " min), from its Allan deviation.\n";
    yaml +=
        "# Kalibr takes one value per sensor: each is the largest of the three axes "
        "(noise densities of accelerometer " +
        axisLetter(accNoise->axis) + " and gyroscope " + axisLetter(gyroNoise->axis) +
        ", random walks of accelerometer " + axisLetter(accWalk->axis) + " and gyroscope " +
        axisLetter(gyroWalk->axis) + ").\n";
    yaml += "accelerometer_noise_density: " + number(accNoise->value) + "  # m/s^2/sqrt(Hz)\n";
    yaml += "accelerometer_random_walk: " + number(accWalk->value) + "  # m/s^3/sqrt(Hz)\n";
    yaml += "gyroscope_noise_density: " + number(gyroNoise->value) + "  # rad/s/sqrt(Hz)\n";
    yaml += "gyroscope_random_walk: " + number(gyroWalk->value) + "  # rad/s^2/sqrt(Hz)\n";
    yaml += "rostopic: " + rostopic + "\n";
    yaml += "update_rate: " + std::string(rate) + "  # Hz\n";
    return yaml;
}

std::string curvesCsv(const NoiseReport& report) {
    std::string csv = "tau_s";
    for (const ImuAxis axis : kAxes) csv += "," + std::string(nameOf(axis));
    csv += "\n";
    std::size_t rows = 0;
    for (const AxisResult& axis : report.axes) rows = std::max(rows, axis.curve.size());
    for (std::size_t i = 0; i < rows; ++i) {
        for (const AxisResult& axis : report.axes) {
            if (i < axis.curve.size()) {
                char tau[32];
                std::snprintf(tau, sizeof tau, "%.9g", axis.curve[i].tau);
                csv += tau;
                break;
            }
        }
        for (const AxisResult& axis : report.axes)
            csv += "," + (i < axis.curve.size() ? number(axis.curve[i].deviation) : std::string());
        csv += "\n";
    }
    return csv;
}

std::string resultsJson(const NoiseReport& report) {
    char head[96];
    std::snprintf(head, sizeof head, "{\"rate_hz\": %.6f, \"duration_s\": %.3f,\n", report.rateHz,
                  report.durationS);
    return std::string(head) + " \"gyroscope\": " + jsonSensor(report, Sensor::GYROSCOPE) +
           ",\n \"accelerometer\": " + jsonSensor(report, Sensor::ACCELEROMETER) + "}\n";
}

std::string resultsTable(const NoiseReport& report) {
    char line[256];
    std::string table;
    std::snprintf(line, sizeof line, "%zu samples at %.3f Hz over %.1f s\n\n", report.samples,
                  report.rateHz, report.durationS);
    table += line;
    std::snprintf(line, sizeof line, "%-6s %12s %12s %12s %10s  %s\n", "axis", "N", "K", "B",
                  "tau(B) s", "units (N, K, B)");
    table += line;
    for (const ImuAxis axis : kAxes) {
        const AxisResult& result = report[axis];
        if (!result.present) continue;
        const Sensor sensor = sensorOf(axis);
        const auto& instability = result.noise.instability;
        std::snprintf(
            line, sizeof line, "%-6s %s %s %s %10s  %s, %s, %s\n",
            std::string(nameOf(axis)).c_str(), cell(noiseDensityOf(result), 12).c_str(),
            cell(randomWalkOf(result), 12).c_str(), cell(biasInstabilityOf(result), 12).c_str(),
            instability ? tauText(instability->tau).c_str() : "-",
            std::string(noiseDensityUnit(sensor)).c_str(),
            std::string(randomWalkUnit(sensor)).c_str(), std::string(rateUnit(sensor)).c_str());
        table += line;
    }
    return table;
}

bool writeTextFile(const std::string& path, const std::string& text, std::string& error) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (file) file << text;
    if (file) file.close();
    if (!file) {
        error = "Cannot write " + path + ": " + std::strerror(errno) + ".";
        return false;
    }
    return true;
}

}  // namespace imunoise
