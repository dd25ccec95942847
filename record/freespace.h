#pragma once

#include <QString>

class QLabel;

// Free space of the recording disk, as shown in the main window's status label. Low space is
// only signalled (red text under 10 GiB); recording goes on.

// Bytes available to the user on the volume holding `folder`, in GiB (2^30 bytes).
double freeSpaceGigabytes(const QString& folder);

// "Disk Free Space: <gigabytes> Gb  on <path>", the amount with one decimal and at least four
// characters wide.
QString freeSpaceText(double gigabytes, const QString& path);

// Red under 10 GiB, judged on the unrounded amount: 9.99 shows as "10.0" and is still red;
// light grey otherwise.
QString freeSpaceStyleSheet(double gigabytes);

// Both of the above on `label`.
void showFreeSpace(QLabel* label, double gigabytes, const QString& path);

