#pragma once

#include <QString>

// Builders of the application's Qt style sheets, one function per sheet. Style calls each of
// them once at start-up; everything else reads the assembled texts from Style.
//
// Placeholders are left in a few sheets for the caller to fill with QString::arg(); each such
// function says which.
namespace sheet {

// Family names the sheets ask for. They are not shipped; loadApplicationFonts (fonts.h) maps them
// to the bundled Roboto.
inline const QString familyRegular = QStringLiteral("NB Akademie Pro Regular");
inline const QString familyMedium = QStringLiteral("NB Akademie Pro Medium");
inline const QString familyMonoRegular = QStringLiteral("NB Akademie Mono Pro Regular");
inline const QString familyMonoMedium = QStringLiteral("NB Akademie Mono Pro Medium");

// --- Windows and containers (sheets_containers.cpp) ---
QString windowBase(const QString& background);
QString framelessBase();
QString charcoalBase();
QString slider();
QString menu();
QString labelPlain();
QString labelOnColour();  // %1: background colour
QString tabWidget();      // %1: tab width in pixels
QString listWidget();
QString table();
QString progressBar();
QString frameRounded();
QString frameBare();
QString frameSeparator();
QString groupBoxFlat();
QString groupBoxTitled();
QString groupBoxIndented();
QString labelMedBlack();
QString messageBox();

// --- Text buttons (sheets_buttons.cpp) ---
QString primaryButton();
QString outlineButton();
QString ghostButton();
QString linkButton();
QString segmentTopButton();
QString segmentMiddleButton();
QString segmentBottomButton();
QString warningButton();
QString limeButton();
QString limeOutlineButton();
QString textToolButton();
QString textPushButton();
QString tabLeftButton();
QString tabMiddleButton();
QString tabRightButton();
QString axisCheckButton();
QString sideMenuButton();

// --- Image buttons and labels (sheets_images.cpp) ---
QString pauseButton();
QString stopButton();
QString refreshButton();
QString gearButton();
QString photoButton();
QString videoButton();
QString recButton();
QString folderButton();
QString streamButton();
QString aspectButton();
QString imageLabel();        // %1: image path
QString threeImageButton();  // %1 normal, %2 checked, %3 hover image path

// --- Input widgets (sheets_inputs.cpp) ---
QString checkBoxLarge();
QString checkBoxAlwaysOn();
QString checkBoxSmall();  // %1: background grey level, %2: text grey level (0..255)
QString checkBoxTransparent();
QString checkBoxSized();  // %1: indicator height, %2: indicator width in pixels
QString comboDark();
QString comboInverted();
QString comboLightFlat();
QString comboLightAccent();
QString comboLightAccentRound();
QString spinBox();
QString spinBoxDark();
QString radioButton();
QString lineEdit();
QString lineEditReadOnly();
QString lineEditError();
QString lineEditHighlighted();
QString lineEditWhite();
QString lineEditTransparent();
QString valueField(const QString& textColour);
QString lineEditWhitePadded();

}  // namespace sheet

