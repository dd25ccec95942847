#pragma once

#include <QColor>
#include <QString>

// The application's colours. Widgets never spell colours themselves: they take a colour from
// here or a ready style sheet from Style.
//
// The constants are C++17 inline variables, so every translation unit that includes this header
// sees them initialised before its own static objects (and in the order written here). That makes
// them safe to use while other files are being statically initialised.
namespace clr {

// "rgb(r,g,b)" in decimal, no padding, no spaces: the form Qt style sheets read.
QString toStr(const QColor& color);

inline const QColor blue_clr{0, 190, 255};
inline const QColor green_clr{48, 214, 149};
inline const QColor dark{58, 58, 58};
inline const QColor soft_black_clr{72, 72, 72};
inline const QColor med_black_clr{130, 130, 130};
inline const QColor grey_clr{210, 210, 210};
inline const QColor bw_black_clr{5, 5, 5};
inline const QColor bw_soil_clr{25, 25, 25};

// Light widgets (combo boxes and line edits on white).
inline const QString asphalt = QStringLiteral("rgb(52,73,94)");
inline const QString concrete = QStringLiteral("rgb(149,165,166)");
inline const QString silver = QStringLiteral("rgb(189,195,199)");
inline const QString clouds = QStringLiteral("rgb(236,240,241)");

// Axis colours and their hover shades. Some texts are written with leading zeros or spaces;
// style sheets read them the same, and they are kept as they have always been.
inline const QString blue = toStr(blue_clr);
inline const QString blue_h = QStringLiteral("rgb(00,149,243)");
inline const QString blue_light = QStringLiteral("rgba(44,201,255,123)");
inline const QString green = toStr(green_clr);
inline const QString green_h = QStringLiteral("rgb(38,171,119)");
inline const QString red = QStringLiteral("rgb(255,87,87)");
inline const QString red_h = QStringLiteral("rgb(204,70,70)");
inline const QString xAxis = red;
inline const QString yAxis = green;
inline const QString zAxis = blue;
inline const QString singleAxis = QStringLiteral("rgb(255,87,48)");

// Neutrals.
inline const QString white = QStringLiteral("rgb(255,255,255)");
inline const QString transparent = QStringLiteral("rgba(255,255,255,0)");
inline const QString black = toStr(dark);
inline const QString soft_black = toStr(soft_black_clr);
inline const QString med_black = toStr(med_black_clr);
inline const QString grey = toStr(grey_clr);
inline const QString lightgrey = QStringLiteral("rgb(235,235,235)");
inline const QString yellow = QStringLiteral("rgb(255, 205, 0)");

// The dark theme: lime accent on near-black greys.
inline const QString bw_lime = QStringLiteral("rgb(217,255,66)");
inline const QString bw_dark_lime = QStringLiteral("rgb(187,225,36)");
inline const QString bw_white = QStringLiteral("rgb(255,255,255)");
inline const QString bw_pearl = QStringLiteral("rgb(242,242,242)");
inline const QString bw_iron = QStringLiteral("rgb(194,194,194)");
inline const QString bw_ash = QStringLiteral("rgb(137,137,137)");
inline const QString bw_charcoal = QStringLiteral("rgb(60,60,60)");
inline const QString bw_steel = QStringLiteral("rgb(45,45,45)");
inline const QString bw_soil = QStringLiteral("rgb(25,25,25)");
inline const QString bw_black = QStringLiteral("rgb(5,5,5)");
inline const QString bw_demo_red = QStringLiteral("rgb(255,100,100)");

// The accent the style sheets use; one place to re-brand.
inline const QString company_clr = bw_lime;
inline const QString company_clr_h = bw_dark_lime;

}  // namespace clr

