// The simulated bus as the camera API sees it: which cameras each class lists, how serials are
// completed, cables pulled by hand or by schedule, and who may open what.
#include <QtTest>
#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "SimFixture.hpp"

using namespace simtest;
using bw::MODEL;

namespace {

std::vector<unsigned> listedSerials(const std::vector<bw::DeviceProperties>& list) {
    std::vector<unsigned> out;
    for (const auto& d : list) out.push_back(d.serial_number);
    return out;
}

bool listed(unsigned serial) {
    const auto all = listedSerials(bw::Camera::getDeviceList());
    return std::find(all.begin(), all.end(), serial) != all.end();
}

const bw::DeviceProperties* entry(const std::vector<bw::DeviceProperties>& list, unsigned serial) {
    for (const auto& d : list) {
        if (d.serial_number == serial) return &d;
    }
    return nullptr;
}

}  // namespace

class TestBus : public QObject {
    Q_OBJECT

private slots:
    void eachClassListsItsModels() {
        SimScope sim({camera(MODEL::ORYX, 11), camera(MODEL::ORYX_B, 12), camera(MODEL::ORYX_C, 13),
                      camera(MODEL::ORYX_D, 14), camera(MODEL::ORYX_E, 15, 1),
                      camera(MODEL::ORYX_F, 16, 2), camera(MODEL::ORYX_SOLO_A, 17, 3),
                      camera(MODEL::ORYX_SOLO_B, 18, 4)});
        const auto stereo = bw::Camera::getDeviceList();
        const auto mono = bw::CameraOne::getDeviceList();
        QCOMPARE(listedSerials(stereo), (std::vector<unsigned>{11, 12, 13, 14, 15, 16}));
        QCOMPARE(listedSerials(mono), (std::vector<unsigned>{17, 18}));
        COMPARE_CODE(entry(stereo, 16)->camera_model, MODEL::ORYX_F);
    }

    void serialsAreCompletedAndUnique() {
        SimScope sim({camera(MODEL::ORYX_D), camera(MODEL::ORYX_C), camera(MODEL::ORYX_D, 777)});
        const auto serials = Bus::instance().serials();
        QCOMPARE(serials.size(), size_t(3));
        COMPARE_CODE(serials[0], DeviceConfig::defaultSerial(MODEL::ORYX_D, 0));
        COMPARE_CODE(serials[1], DeviceConfig::defaultSerial(MODEL::ORYX_C, 1));
        QCOMPARE(serials[2], 777u);

        // plug() finds a serial nobody uses, and refuses a duplicate.
        const unsigned added = Bus::instance().plug(camera(MODEL::ORYX_D));
        QVERIFY(std::count(serials.begin(), serials.end(), added) == 0);
        QVERIFY(listed(added));
        QVERIFY_EXCEPTION_THROWN(Bus::instance().plug(camera(MODEL::ORYX_B, 777)),
                                 std::invalid_argument);
    }

    void cablesFollowTheSchedule() {
        DeviceConfig late = camera(MODEL::ORYX_D, 30000002);
        late.plugAt = 2.0;
        late.unplugAt = 5.0;
        SimScope sim({late});
        QVERIFY(!listed(30000002));
        Clock::advanceTo(sim.startNs + 1999 * kMs);
        QVERIFY(!listed(30000002));
        Clock::advanceTo(sim.startNs + 2 * kSecond);
        QVERIFY(listed(30000002));
        Clock::advanceTo(sim.startNs + 4999 * kMs);
        QVERIFY(Bus::instance().isPlugged(30000002));
        Clock::advanceTo(sim.startNs + 5 * kSecond);
        QVERIFY(!listed(30000002));
        QCOMPARE(Bus::instance().serials(), std::vector<unsigned>{30000002});

        // A scheduled unplug also cuts a camera that is open.
        Bus::instance().load({late});
        bw::Camera cam;
        Clock::advanceBy(3 * kSecond);
        COMPARE_CODE(cam.open(bySerial(30000002)), bw::SUCCESS);
        Clock::advanceBy(3 * kSecond);
        bw::SensorsData data;
        COMPARE_CODE(cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT),
                     bw::CAMERA_NOT_DETECTED);
    }

    void openCameraIsNotAvailableToOthers() {
        SimScope sim({camera(MODEL::ORYX_D, 30000003), camera(MODEL::ORYX_E, 40000001, 1)});
        bw::Camera first, second;
        COMPARE_CODE(first.open(bySerial(30000003)), bw::SUCCESS);
        auto list = bw::Camera::getDeviceList();
        QCOMPARE(entry(list, 30000003)->camera_state, bw::CAMERA_STATE::NOT_AVAILABLE);
        QCOMPARE(entry(list, 40000001)->camera_state, bw::CAMERA_STATE::AVAILABLE);
        COMPARE_CODE(second.open(bySerial(30000003)), bw::CAMERA_ALREADY_IN_USE);

        // Default opening takes the first camera still free.
        COMPARE_CODE(second.open(), bw::SUCCESS);
        QCOMPARE(second.getCameraInformation().serial_number, 40000001u);
        bw::Camera third;
        COMPARE_CODE(third.open(), bw::CAMERA_ALREADY_IN_USE);

        first.close();
        list = bw::Camera::getDeviceList();
        QCOMPARE(entry(list, 30000003)->camera_state, bw::CAMERA_STATE::AVAILABLE);
        COMPARE_CODE(third.open(bySerial(30000003)), bw::SUCCESS);
    }

    // Lists, cables and sensor reads from several threads at once; run under ThreadSanitizer.
    void concurrentUseKeepsTheBusConsistent() {
        SimScope sim({camera(MODEL::ORYX_D, 30000006), camera(MODEL::ORYX_C, 20000006)});
        Clock::setAutoAdvanceLimit(UINT64_MAX);
        std::atomic<bool> stop{false};
        std::atomic<int> listings{0};
        std::thread lister([&] {
            while (!stop) {
                const auto list = bw::Camera::getDeviceList();
                if (!list.empty()) ++listings;
            }
        });
        std::thread cable([&] {
            // The cable moves only once the lister runs, so that the two really overlap.
            while (listings == 0) std::this_thread::yield();
            for (int i = 0; i < 200; ++i) {
                Bus::instance().unplug(30000006);
                Bus::instance().replug(30000006);
            }
        });
        bw::Camera cam;
        COMPARE_CODE(cam.open(bySerial(20000006)), bw::SUCCESS);
        bw::SensorsData data;
        for (int i = 0; i < 500; ++i) {
            COMPARE_CODE(cam.getSensorsData(data, bw::TIME_REFERENCE::CURRENT), bw::SUCCESS);
        }
        cable.join();
        stop = true;
        lister.join();
        QVERIFY(Bus::instance().isPlugged(30000006));
        QCOMPARE(bw::Camera::getDeviceList().size(), size_t(2));
    }
};

QTEST_APPLESS_MAIN(TestBus)
#include "tst_bus.moc"
