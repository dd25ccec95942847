#ifndef PROGRAMSTATES_H
#define PROGRAMSTATES_H

#include <QString>
#include <atomic>

// Process-wide store of numbered attributes. The main window, the camera input module and the
// views pass settings and camera facts through it without holding pointers to each other.
//
// Everything is static. Indices are not checked: an index outside an array is a programming
// error. There is no locking: numbers and flags are atomics, so a value written by the grab
// thread is read whole (if perhaps stale) by the GUI. Strings are written by the GUI thread only.
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

    static QString qstring_attributes[4];
    static std::atomic<double> double_attributes[4];
    static std::atomic<int> int_attributes[19];
    static std::atomic<bool> bool_attributes[4];
};

#endif  // PROGRAMSTATES_H
