// What the calibration tells the user about the device, word for word, for the session and
// dialog tests that wait for it.
#pragma once

#include <QString>

namespace calibmsg {

const QString kNotDetected = QStringLiteral(
    "ORYX_C/ORYX_D with serial number %1 not detected. Please verify the connections and retry");
const QString kCannotOpen = QStringLiteral(
    "Cannot open the ORYX_C/ORYX_D camera. Please verify the connections and restart");
const QString kReadError = QStringLiteral("Error retrieving sensors data");

}  // namespace calibmsg
