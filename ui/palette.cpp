#include "palette.h"

namespace clr {

QString toStr(const QColor& color) {
    return QStringLiteral("rgb(%1,%2,%3)").arg(color.red()).arg(color.green()).arg(color.blue());
}

}  // namespace clr
