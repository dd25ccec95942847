#include "recoptions.h"

#include <QDir>
#include <QSettings>

namespace {

const QString kOrganisation = QStringLiteral("Brindlewick");
const QString kApplication = QStringLiteral("ORYXSensorData");

const QString kFolderKey = QStringLiteral("save_folder");
const QString kFrequencyKey = QStringLiteral("sample_freq");
constexpr int kDefaultFrequency = 400;

struct GroupKey {
    const char* key;
    bool RecOptions::*member;
};

// The column groups, in the order they are stored. Every group is on by default.
const GroupKey kGroupKeys[] = {
    {"accelerometer", &RecOptions::accelerometer}, {"gyroscope", &RecOptions::gyroscope},
    {"magnetometer", &RecOptions::magnetometer},   {"barometer", &RecOptions::barometer},
    {"temperatures", &RecOptions::temperatures},   {"orientation", &RecOptions::orientation},
    {"movement", &RecOptions::movement},
};

}  // namespace

RecOptions::RecOptions() : saveFolder(QDir::homePath()) { loadRecSettings(); }

void RecOptions::loadRecSettings() {
    QSettings settings(kOrganisation, kApplication);
    saveFolder = settings.value(kFolderKey, QDir::homePath()).toString();
    for (const GroupKey& group : kGroupKeys) {
        this->*group.member = settings.value(QLatin1String(group.key), true).toBool();
    }
    // A value that is no number would otherwise become 0 rows per second: nothing recorded.
    bool isNumber = false;
    sampleFreq = settings.value(kFrequencyKey, kDefaultFrequency).toInt(&isNumber);
    if (!isNumber) {
        sampleFreq = kDefaultFrequency;
    }
}

void RecOptions::saveRecSettings() {
    QSettings settings(kOrganisation, kApplication);
    settings.setValue(kFolderKey, saveFolder);
    for (const GroupKey& group : kGroupKeys) {
        settings.setValue(QLatin1String(group.key), this->*group.member);
    }
    settings.setValue(kFrequencyKey, sampleFreq);
    settings.sync();
}
