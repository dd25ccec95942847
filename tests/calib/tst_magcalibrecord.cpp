// The parts of the calibration dialog that need no camera: device-to-dialog axes, the EEPROM
// record and its read-back, and the choice of calibratable cameras from the HID listing.
#include <qwt_plot.h>

#include <QtTest>
#include <cstring>

#include "WidgetTestMain.h"
#include "magcalibdlg.h"
#include "magcalibrecord.h"

namespace {

float floatAt(const bw::_mag_calib_data& record, int offset) {
    float value;
    std::memcpy(&value, reinterpret_cast<const char*>(&record) + offset, sizeof value);
    return value;
}

bw::HidDeviceRecord hid(unsigned short pid, const std::string& serial,
                        unsigned short release = 0x0109) {
    bw::HidDeviceRecord r;
    r.vendorId = bw::ORYX_USB_VENDOR_ID;
    r.productId = pid;
    r.serialNumber = serial;
    r.releaseNumber = release;
    return r;
}

}  // namespace

class TestMagCalibRecord : public QObject {
    Q_OBJECT

private slots:
    void axesFromRawCounts_data() {
        QTest::addColumn<int>("d0");
        QTest::addColumn<int>("d1");
        QTest::addColumn<int>("d2");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<double>("z");
        QTest::newRow("zero") << 0 << 0 << 0 << 0.0 << 0.0 << 0.0;
        QTest::newRow("one count each") << 1 << 1 << 1 << -0.0625 << 0.0625 << 0.0625;
        QTest::newRow("distinct") << 160 << -320 << 48 << 20.0 << 10.0 << 3.0;
        QTest::newRow("extremes") << 32767 << -32768 << -32768 << 2048.0 << 2047.9375 << -2048.0;
    }
    void axesFromRawCounts() {
        QFETCH(int, d0);
        QFETCH(int, d1);
        QFETCH(int, d2);
        const MagAxes a = magAxesFromRaw(std::int16_t(d0), std::int16_t(d1), std::int16_t(d2));
        QTEST(a.x, "x");
        QTEST(a.y, "y");
        QTEST(a.z, "z");
    }

    // Bytes 1..24 of the 25-byte record: scales d0, d1, d2 then offsets d0, d1, d2.
    void recordLayoutFromDialogAxes() {
        const double offset[3] = {1.25, -2.5, 3.75};  // x, y, z
        const double scale[3] = {0.5, 0.25, 0.125};
        const bw::_mag_calib_data r = packMagCalib(offset, scale);
        QCOMPARE(sizeof r, std::size_t(25));
        QCOMPARE(floatAt(r, 1), 0.25f);    // scale d0 = scale y
        QCOMPARE(floatAt(r, 5), 0.5f);     // scale d1 = scale x
        QCOMPARE(floatAt(r, 9), 0.125f);   // scale d2 = scale z
        QCOMPARE(floatAt(r, 13), -2.5f);   // offset d0 = offset y
        QCOMPARE(floatAt(r, 17), -1.25f);  // offset d1 = -offset x
        QCOMPARE(floatAt(r, 21), 3.75f);   // offset d2 = offset z
    }

    void readBackReproducesTheDialogValues() {
        const double offset[3] = {17.3, -8.1, 0.7};
        const double scale[3] = {0.0213, 0.0198, 0.0225};
        const bw::_mag_calib_data r = packMagCalib(offset, scale);
        bw::_eeprom_data image{};
        // Bytes 1 to 12 of the record are the scales d0 to d2, 13 to 24 the offsets.
        std::memcpy(image.mag_scale, reinterpret_cast<const char*>(&r) + 1, 3 * sizeof(float));
        std::memcpy(image.mag_offset, reinterpret_cast<const char*>(&r) + 13, 3 * sizeof(float));
        QVERIFY(eepromHoldsRecord(image, r));
        double o[3], s[3];
        unpackMagCalib(image, o, s);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(o[i], double(float(offset[i])));
            QCOMPARE(s[i], double(float(scale[i])));
        }
        // Any one of the six floats differing is a mismatch.
        for (int i = 0; i < 6; ++i) {
            bw::_eeprom_data other = image;
            if (i < 3)
                other.mag_scale[i] += 1e-3f;
            else
                other.mag_offset[i - 3] += 1e-3f;
            QVERIFY2(!eepromHoldsRecord(other, r), qPrintable(QString::number(i)));
        }
    }

    void deviceFilterKeepsMagnetometerModels() {
        const std::vector<bw::HidDeviceRecord> devices = {
            hid(bw::MCU_PID_ORYX_B, "10000001"),
            hid(bw::MCU_PID_ORYX_C, "20000001", 0x0203),
            hid(bw::MCU_PID_ORYX_D, "30000001", 0x010A),
            hid(0, "30000002"),       // D without product id
            hid(0, "20000002"),       // C without product id
            hid(0, "10000002"),       // B without product id: dropped
            hid(0, "40000002"),       // unknown model digit: stays 0, dropped
            hid(0x1234, "30000003"),  // another product of the vendor, not derived
        };
        const BwDeviceList list = filterMagDevices(devices);
        QCOMPARE(list.serials, (QVector<QString>{"20000001", "30000001", "30000002", "20000002"}));
        QCOMPARE(list.productIds,
                 (QVector<unsigned short>{bw::MCU_PID_ORYX_C, bw::MCU_PID_ORYX_D,
                                          bw::MCU_PID_ORYX_D, bw::MCU_PID_ORYX_C}));
        QCOMPARE(list.firmware, (QVector<QString>{"v2.3", "v1.10", "v1.9", "v1.9"}));
    }

    void deviceFilterSerialText() {
        // Serials are read as decimal numbers, so leading zeros and trailing text drop out.
        const BwDeviceList list =
            filterMagDevices({hid(bw::MCU_PID_ORYX_D, "030000005"), hid(0, "30000006 ")});
        QCOMPARE(list.serials, (QVector<QString>{"30000005", "30000006"}));
        QVERIFY(filterMagDevices({}).serials.isEmpty());
    }
};

WIDGET_TEST_MAIN(TestMagCalibRecord)
#include "tst_magcalibrecord.moc"
