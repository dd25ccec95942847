#include "restyle.h"

#include <QWidget>

void replaceStyleSheet(QWidget* widget, const QString& sheet) {
    // On a polished widget Qt drops the cached rules and re-applies the sheet at once.
    widget->ensurePolished();
    widget->setStyleSheet(sheet);
}
