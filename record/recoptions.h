#pragma once

#include <QString>

// What a CSV recording writes and where: the folder, the column groups and the row rate.
// Persisted in the user's settings (organisation "Brindlewick", application "ORYXSensorData"),
// all keys at top level. Constructing one reads the stored choices; only saveRecSettings()
// writes them.
class RecOptions {
public:
    // Defaults first, then whatever the settings hold. Copies do not read the settings again.
    RecOptions();

    // Reads every key; a missing or unreadable one gives the default.
    void loadRecSettings();
    // Writes every key and flushes the store.
    void saveRecSettings();

    QString saveFolder;  // folder for new recordings; the home directory by default
    bool accelerometer = true;
    bool gyroscope = true;
    bool magnetometer = true;
    bool orientation = true;
    bool barometer = true;
    bool temperatures = true;
    bool movement = true;
    int sampleFreq = 400;  // rows per second wanted
};

