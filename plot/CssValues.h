#pragma once

#include <QColor>
#include <QFont>
#include <QString>

// The palette and Style hold colours and fonts as style-sheet texts, but plot items take Qt
// values. These read such texts back.

// "rgb(r,g,b)" or "rgba(r,g,b,a)" with decimal components (blanks and leading zeros allowed);
// any other text is handed to QColor, so "#C0C0C0" and colour names work as well. An unreadable
// text gives an invalid colour.
QColor cssColour(const QString& css);

// "font-family: F; font-weight: W; font-size: Npt;". Properties that are missing or not
// understood keep the values of a default QFont.
QFont cssFont(const QString& css);

