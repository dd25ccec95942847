// Scenario text: which simulated cameras exist and how they behave.
#include <unistd.h>

#include <QTemporaryFile>
#include <QtTest>
#include <bw/sim/Scenario.hpp>
#include <cstdio>
#include <memory>
#include <set>

using namespace bw::sim;
using bw::MODEL;

namespace {

ScenarioParseResult parse(const char* text) { return parseScenario(text); }

// QCOMPARE would print these enums through the API's own toString and not compile; compare
// their codes and names instead.
int code(MODEL model) { return static_cast<int>(model); }
QString name(MotionProfile profile) { return QString(toString(profile)); }

// Runs f with standard error going into a file and returns what was written.
template <class Function>
QByteArray captureStandardError(Function f) {
    QTemporaryFile file;
    if (!file.open()) return "cannot capture";
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    f();
    std::fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    file.seek(0);
    return file.readAll();
}

// Sets ORYX_SIM for a scope and removes it afterwards.
class ScenarioVariable {
public:
    explicit ScenarioVariable(const QByteArray& value) { qputenv(kScenarioVariable, value); }
    ~ScenarioVariable() { qunsetenv(kScenarioVariable); }
};

}  // namespace

class ScenarioTest : public QObject {
    Q_OBJECT

private slots:
    void everyKeyIsRead() {
        const ScenarioParseResult result = parse(
            "model=oryx_c serial=20012345 id=4 motion=Tumbling seed=18446744073709551615 "
            "heading=-100.5 "
            "imu_rate=20000 hard_iron=20,-12.5,5e1 soft_iron=1.1,0.9,1 plug=2.5 unplug=30 "
            "firmware=1600 "
            "sensor_firmware=801 faults=mag_saturated,repeat_imu_ts,imu_unavailable,"
            "mag_unavailable,baro_unavailable,temp_left,temp_right,open,gpu_memory,mcu_open,"
            "mcu_read,eeprom_write,eeprom_readback=3");
        QVERIFY2(result.ok, result.error.c_str());
        QCOMPARE(result.cameras.size(), std::size_t{1});
        const DeviceConfig& c = result.cameras.front();
        QCOMPARE(code(c.model), code(MODEL::ORYX_C));
        QCOMPARE(c.serial, 20012345u);
        QCOMPARE(c.cameraId, 4);
        QCOMPARE(name(c.motion), name(MotionProfile::Tumbling));
        QCOMPARE(c.seed, std::uint64_t{18446744073709551615ull});
        QCOMPARE(c.headingDeg.value_or(0.0), -100.5);
        QCOMPARE(c.imuRateHz, 20000.0);
        QCOMPARE(c.hardIronOffset, bw::Vector3<float>(20.f, -12.5f, 50.f));
        QCOMPARE(c.softIronScale, bw::Vector3<float>(1.1f, 0.9f, 1.f));
        QCOMPARE(c.plugAt, 2.5);
        QVERIFY(c.unplugAt.has_value());
        QCOMPARE(*c.unplugAt, 30.0);
        QCOMPARE(c.cameraFirmware, 1600u);
        QCOMPARE(c.sensorFirmware, 801u);
        const Faults& f = c.faults;
        QVERIFY(f.magSaturated && f.repeatedImuTimestamps && f.imuUnavailable && f.magUnavailable);
        QVERIFY(f.baroUnavailable && f.temperatureLeftFails && f.temperatureRightFails);
        QVERIFY(f.openFails && f.gpuMemoryFails && f.mcuOpenFails && f.mcuReadFails);
        QVERIFY(f.eepromWriteFails);
        QCOMPARE(f.eepromBadReads, 3);
    }

    // Ids, seeds and serials follow the position unless given; other settings keep the device
    // defaults.
    void severalCamerasGetTheirOwnDefaults() {
        const ScenarioParseResult result =
            parse("model=ORYX_D motion=still;  model=3 ;model=ORYX_SOLO_A id=7; model=30;");
        QVERIFY2(result.ok, result.error.c_str());
        QCOMPARE(result.cameras.size(), std::size_t{4});
        const auto& cams = result.cameras;
        QCOMPARE(name(cams[0].motion), name(MotionProfile::Still));
        QCOMPARE(name(cams[1].motion), name(MotionProfile::Gentle));
        QCOMPARE(code(cams[3].model), code(MODEL::ORYX_SOLO_A));
        QCOMPARE(cams[2].cameraId, 7);
        QCOMPARE(cams[3].cameraId, 3);
        std::set<std::uint64_t> seeds;
        for (int i = 0; i < 4; ++i) {
            seeds.insert(cams[i].seed);
            QCOMPARE(cams[i].serial, DeviceConfig::defaultSerial(cams[i].model, i));
        }
        QCOMPARE(seeds.size(), std::size_t{4});
        QCOMPARE(cams[0].hardIronOffset, DeviceConfig().hardIronOffset);
        QCOMPARE(cams[0].imuRateHz, 400.0);
        QVERIFY(!cams[0].headingDeg);
    }

    void badTextNamesTheBadPart_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown key") << "model=ORYX_D; modle=ORYX_D"
                                     << "camera 2: unknown key \"modle\" in \"modle=ORYX_D\"";
        QTest::newRow("missing =") << "ORYX_D"
                                   << "camera 1: missing '=' in \"ORYX_D\"";
        QTest::newRow("key twice") << "id=1 id=2"
                                   << "camera 1: key \"id\" given twice in \"id=2\"";
        QTest::newRow("unknown model") << "model=ORYX_Z"
                                       << "camera 1: unknown model \"ORYX_Z\" in \"model=ORYX_Z\"";
        QTest::newRow("unknown motion")
            << "motion=wobbly"
            << "camera 1: unknown motion \"wobbly\" in \"motion=wobbly\"";
        QTest::newRow("readback count missing")
            << "faults=eeprom_readback"
            << "camera 1: missing count (eeprom_readback=N) in \"faults=eeprom_readback\"";
        QTest::newRow("unplug before plug")
            << "model=ORYX_B; unplug=3 plug=5"
            << "camera 2: unplug time in \"unplug=3\" is not after the plug time (5 s)";
        QTest::newRow("same serial twice")
            << "serial=30000001; model=ORYX_C; serial=30000001"
            << "camera 3: serial 30000001 in \"serial=30000001\" is already used by camera 1";
    }

    void badTextNamesTheBadPart() {
        QFETCH(QString, text);
        QFETCH(QString, error);
        const ScenarioParseResult result = parseScenario(text.toStdString());
        QVERIFY(!result.ok);
        QVERIFY(result.cameras.empty());
        QCOMPARE(QString::fromStdString(result.error), error);
    }

    // Refused, whatever the message: overflows, non-finite numbers, values out of range.
    void badValuesAreRefused() {
        const QByteArray texts =
            "=|;;;=;;|model==|model=|model=6|faults=,,,|faults=open,|faults=open,smoke|"
            "hard_iron=,,|hard_iron=1,2|hard_iron=1,nan,2|soft_iron=1e-400,1,1|soft_iron=1,0,1|"
            "soft_iron=1,1,1,1|id=99999999999999999999|id=-1|serial=0|serial=4294967296|"
            "plug=1e999|plug=-1|unplug=0|seed=-0|seed=12x|imu_rate=0|imu_rate=100001|"
            "imu_rate=fast|heading=north|heading=inf|serial=31007936; model=ORYX_D|\x01\xff=\x80";
        for (const QByteArray& text : texts.split('|')) {
            QVERIFY2(!parse(text.constData()).ok, text.constData());
        }
    }

    // Derived serials are distinct; those of the stereo models with a micro-controller lead with
    // the model code, those of other models never look like them.
    void derivedSerials() {
        std::set<unsigned int> serials;
        for (MODEL model : {MODEL::ORYX, MODEL::ORYX_B, MODEL::ORYX_C, MODEL::ORYX_D, MODEL::ORYX_E,
                            MODEL::ORYX_F, MODEL::ORYX_SOLO_A, MODEL::ORYX_SOLO_B}) {
            const bool stereo =
                model == MODEL::ORYX_B || model == MODEL::ORYX_C || model == MODEL::ORYX_D;
            for (int index = 0; index < 500; ++index) {
                const unsigned int serial = DeviceConfig::defaultSerial(model, index);
                const unsigned int leading = serial / 10'000'000u;
                QVERIFY2(stereo ? leading == unsigned(code(model)) : leading < 1 || leading > 3,
                         qPrintable(QString::number(serial)));
                serials.insert(serial);
            }
        }
        QCOMPARE(serials.size(), std::size_t{8 * 500});
    }

    // ORYX_SIM chooses the cameras; unset, blank or bad (which is reported) it is one ORYX_D in
    // gentle motion.
    void environmentChoosesTheScenario() {
        {
            ScenarioVariable variable("model=ORYX_E id=2; model=ORYX_C");
            const std::vector<DeviceConfig> cameras = scenarioFromEnvironment();
            QCOMPARE(cameras.size(), std::size_t{2});
            QCOMPARE(code(cameras[0].model), code(MODEL::ORYX_E));
            QCOMPARE(cameras[0].cameraId, 2);
            QCOMPARE(code(cameras[1].model), code(MODEL::ORYX_C));
        }
        QCOMPARE(parse(" ; \t;").cameras.size(), std::size_t{1});
        for (const char* text : {"", "model=ORYX_C; model=ORYX_D motion=sideways"}) {
            std::unique_ptr<ScenarioVariable> variable;  // unset for the empty text
            if (*text != 0) variable = std::make_unique<ScenarioVariable>(text);
            std::vector<DeviceConfig> cameras;
            const QByteArray printed =
                captureStandardError([&] { cameras = scenarioFromEnvironment(); });
            QCOMPARE(cameras.size(), std::size_t{1});
            QCOMPARE(code(cameras[0].model), code(MODEL::ORYX_D));
            QCOMPARE(name(cameras[0].motion), name(MotionProfile::Gentle));
            QCOMPARE(cameras[0].serial, DeviceConfig::defaultSerial(MODEL::ORYX_D, 0));
            QCOMPARE(printed.contains("camera 2: unknown motion \"sideways\""), *text != 0);
        }
    }
};

QTEST_APPLESS_MAIN(ScenarioTest)
#include "tst_scenario.moc"
