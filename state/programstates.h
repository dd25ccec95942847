#pragma once

#include <QString>
#include <atomic>

// Process-wide store of numbered attributes. The main window, the camera input module and the
// views pass settings and camera facts through it without holding pointers to each other.
//
// Everything is static. Indices are not checked: an index outside an array is a programming
// error. There is no locking: numbers and flags are atomics, so a value written by the grab
// thread is read whole (if perhaps stale) by the GUI. Strings are written by the GUI thread only.
// The slots in use, by what they carry. Values without a reader in this program are written
// when a camera opens for the views that take them; their names say so.
enum class StringSlot : int {
    APP_TITLE = 1,    // "Sensor Data Viewer"
    REPLAY_PATH = 2,  // recorded camera file to replay
};
enum class IntSlot : int {
    STREAM_QUALITY = 1,    // camera initialisation: image stream quality
    OPENING_VALUE_2 = 2,   // 25000 at opening, no reader here
    OPENING_VALUE_3 = 3,   // 95 at opening, no reader here
    IMAGE_CLICK_LOCK = 4,  // non-zero: the image view's locked selection ignores clicks
    REPLAY_STEP = 5,       // frames added to the replay position; 1: no explicit seek
    IMAGE_WIDTH = 7,       // of the opened camera
    IMAGE_HEIGHT = 8,
    GRAB_WIDTH = 9,  // as the grab loop runs
    GRAB_HEIGHT = 10,
    RATE_PERCENT_11 = 11,      // the sensor rate share at opening, no reader here
    RATE_PERCENT_12 = 12,      // likewise
    SENSOR_RATE_PERCENT = 13,  // share of the nominal IMU rate to stream (serial-number opening)
    OPENING_VALUE_15 = 15,     // 1 at opening, no reader here
    RATE_PERCENT_17 = 17,      // the sensor rate share at opening, no reader here
    MODEL_CODE = 18,           // of the opened camera
};
enum class DoubleSlot : int {
    CLICKED_X = 1,  // image view: last clicked point, -1 when none
    CLICKED_Y = 2,
    OPEN_TIMEOUT = 3,  // seconds, from the opened camera's parameters
};
enum class BoolSlot : int {
    PAUSE = 1,           // stop grabbing live frames; a replay holds its position
    OPENING_FLAG_3 = 3,  // true at opening, no reader here
};

class ProgramStates {
public:
    ProgramStates();
    ~ProgramStates();

    // All bool, int and double attributes back to false / 0, every string to empty.
    static void resetStates();

    static QString& qstringAttr(int i);

    static void setBoolAttr(int i, bool value);
    static bool getBoolAttr(int i);
    static void switchBoolAttr(int i);

    static void setIntAttr(int i, int value);
    static int getIntAttr(int i);
    static std::atomic<int>& intAttr(int i);

    static void setDoubleAttr(int i, double value);
    static double getDoubleAttr(int i);
    static std::atomic<double>& doubleAttr(int i);

    // The same by slot name.
    static QString& qstringAttr(StringSlot slot) { return qstringAttr(int(slot)); }
    static void setBoolAttr(BoolSlot slot, bool value) { setBoolAttr(int(slot), value); }
    static bool getBoolAttr(BoolSlot slot) { return getBoolAttr(int(slot)); }
    static void setIntAttr(IntSlot slot, int value) { setIntAttr(int(slot), value); }
    static int getIntAttr(IntSlot slot) { return getIntAttr(int(slot)); }
    static void setDoubleAttr(DoubleSlot slot, double value) { setDoubleAttr(int(slot), value); }
    static double getDoubleAttr(DoubleSlot slot) { return getDoubleAttr(int(slot)); }

    static QString qstring_attributes[4];
    static std::atomic<double> double_attributes[4];
    static std::atomic<int> int_attributes[19];
    static std::atomic<bool> bool_attributes[4];
};
