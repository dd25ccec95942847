#pragma once

#include <QString>

class QWidget;

// Gives `widget` a new style sheet in place of the one it has, also before it is first shown.
//
// Qt 5 keeps the rules it has already worked out from a widget's previous style sheet when the
// sheet is replaced before the widget is polished (shown), so the new sheet would silently not
// apply. Several widgets of the forms carry a sheet from the designer ("border: 0px;" on the
// calibration dialog, the black header of the main window); use this to restyle those.
void replaceStyleSheet(QWidget* widget, const QString& sheet);

