#include "freespace.h"

#include <QLabel>
#include <QStorageInfo>

#include "palette.h"

namespace {

constexpr double kBytesPerGigabyte = 1024.0 * 1024.0 * 1024.0;
constexpr double kLowSpaceGigabytes = 10.0;

// The status label's two text colours. It sits on the window's near-black panel, so the normal
// one is the secondary text grey.
const QString kLowSpaceSheet = QStringLiteral("color : rgb(250,20,20);");
const QString kNormalSheet = "color : " + clr::bw_iron + ";";

}  // namespace

double freeSpaceGigabytes(const QString& folder) {
    return static_cast<double>(QStorageInfo(folder).bytesAvailable()) / kBytesPerGigabyte;
}

// Not translated: the text is a figure with units, read the same in every language.
QString freeSpaceText(double gigabytes, const QString& path) {
    return QStringLiteral("Disk Free Space: %1 Gb  on %2").arg(gigabytes, 4, 'f', 1).arg(path);
}

QString freeSpaceStyleSheet(double gigabytes) {
    return gigabytes < kLowSpaceGigabytes ? kLowSpaceSheet : kNormalSheet;
}

void showFreeSpace(QLabel* label, double gigabytes, const QString& path) {
    label->setStyleSheet(freeSpaceStyleSheet(gigabytes));
    label->setText(freeSpaceText(gigabytes, path));
}
