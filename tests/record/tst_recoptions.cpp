#include <QDir>
#include <QtTest>

#include "TempSettings.h"
#include "recoptions.h"

namespace {

// The seven column groups by settings key.
const QList<QPair<QString, bool RecOptions::*>> kGroups = {
    {"accelerometer", &RecOptions::accelerometer}, {"gyroscope", &RecOptions::gyroscope},
    {"magnetometer", &RecOptions::magnetometer},   {"orientation", &RecOptions::orientation},
    {"barometer", &RecOptions::barometer},         {"temperatures", &RecOptions::temperatures},
    {"movement", &RecOptions::movement},
};

}  // namespace

class TestRecOptions : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void firstRunGivesDefaults();
    void roundTripsEveryField();
    void eachGroupKeyControlsItsOwnField_data();
    void eachGroupKeyControlsItsOwnField();
    void keysAreReadInTheirDocumentedOrder();
    void unreadableValuesFallBack();

private:
    TempSettings settings;
};

void TestRecOptions::initTestCase() { QVERIFY(settings.isValid()); }

void TestRecOptions::init() { TempSettings::clear(); }

void TestRecOptions::firstRunGivesDefaults() {
    const RecOptions options;
    QCOMPARE(options.saveFolder, QDir::homePath());
    for (const auto& group : kGroups) {
        QVERIFY2(options.*group.second, qPrintable(group.first));
    }
    QCOMPARE(options.sampleFreq, 400);
}

void TestRecOptions::roundTripsEveryField() {
    RecOptions written;
    written.saveFolder = settings.path() + "/recordings";
    written.accelerometer = false;
    written.magnetometer = false;
    written.movement = false;
    written.sampleFreq = 25;
    written.saveRecSettings();

    const RecOptions read;
    QCOMPARE(read.saveFolder, written.saveFolder);
    for (const auto& group : kGroups) {
        QCOMPARE(read.*group.second, written.*group.second);
    }
    QCOMPARE(read.sampleFreq, 25);

    // Stored as a string, booleans and an integer, at top level.
    QCOMPARE(TempSettings::stored("save_folder").toString(), written.saveFolder);
    QCOMPARE(TempSettings::stored("accelerometer").toBool(), false);
    QCOMPARE(TempSettings::stored("gyroscope").toBool(), true);
    QCOMPARE(TempSettings::stored("sample_freq").toInt(), 25);
}

void TestRecOptions::eachGroupKeyControlsItsOwnField_data() {
    QTest::addColumn<int>("group");
    for (int i = 0; i < kGroups.size(); ++i) {
        QTest::newRow(qPrintable(kGroups[i].first)) << i;
    }
}

// A key read into the wrong field would switch off a group the user left on.
void TestRecOptions::eachGroupKeyControlsItsOwnField() {
    QFETCH(int, group);
    TempSettings::store({{kGroups[group].first, false}});
    const RecOptions options;
    for (int i = 0; i < kGroups.size(); ++i) {
        QCOMPARE(options.*kGroups[i].second, i != group);
    }
}

void TestRecOptions::keysAreReadInTheirDocumentedOrder() {
    const QStringList expected = {"save_folder",  "accelerometer", "gyroscope",
                                  "magnetometer", "barometer",     "temperatures",
                                  "orientation",  "movement",      "sample_freq"};
    QCOMPARE(RecOptions::settingsKeys(), expected);

    // Saving writes exactly these keys.
    RecOptions().saveRecSettings();
    QStringList stored =
        QSettings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData")).allKeys();
    QStringList sortedExpected = expected;
    stored.sort();
    sortedExpected.sort();
    QCOMPARE(stored, sortedExpected);
}

void TestRecOptions::unreadableValuesFallBack() {
    TempSettings::store({{"sample_freq", "fast"}, {"gyroscope", "false"}});
    const RecOptions options;
    QCOMPARE(options.sampleFreq, 400);
    QCOMPARE(options.gyroscope, false);
    QCOMPARE(options.accelerometer, true);
}

QTEST_GUILESS_MAIN(TestRecOptions)
#include "tst_recoptions.moc"
