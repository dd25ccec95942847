#pragma once

#include <QFont>
#include <QString>

// The application's look: every Qt style sheet and font text, assembled once from the palette
// (palette.h). Windows create one Style and apply its fields to their widgets.
//
// It is the camera family's whole catalogue, shared with the maker's other tools: this program's
// windows apply only some of the sheets, and the others are kept so that the set stays whole.
//
// Constructing a Style registers the resource bundle, so the images the sheets point to
// (":/images/...") resolve, and the application fonts with the families the sheets name mapped to
// them (fonts.h).
class Style {
public:
    Style();
    ~Style();

    // Window backgrounds.
    QString baseWindow;     // bw_black panel, bw_pearl text
    QString baseFrameless;  // baseWindow plus a close-cross button
    QString baseSoil;
    QString baseCharcoal;  // greys out disabled children

    QString primaryButton;  // lime accent button

    // Borderless tool buttons drawn by their image alone.
    QString pauseButton;  // pause; checked shows play
    QString stopButton;
    QString refreshButton;
    QString gearButton;
    QString photoButton;
    QString videoButton;
    QString recButton;
    QString folderButton;
    QString streamButton;

    QString slider;
    QString menu;

    // Text buttons.
    QString outlineButton;
    QString ghostButton;
    QString linkButton;
    QString segmentTopButton;  // vertical group of tool buttons: top, middle, bottom
    QString segmentMiddleButton;
    QString segmentBottomButton;
    QString warningButton;
    QString limeButton;
    QString limeOutlineButton;
    QString textToolButton;
    QString textPushButton;

    QString aspectButton;
    QString imageLabel;  // %1: image path

    QString tabLeftButton;  // horizontal group of tool buttons: left, middle, right
    QString tabMiddleButton;
    QString tabRightButton;

    // Check boxes.
    QString checkBoxLarge;     // 40 px indicator
    QString checkBoxAlwaysOn;  // ticked in every state
    QString checkBoxSmall;     // %1: background grey level, %2: text grey level
    QString checkBoxTransparent;
    QString checkBoxSized;  // %1: indicator height, %2: indicator width in pixels

    // Combo boxes.
    QString comboDark;
    QString comboInverted;
    QString comboLightFlat;
    QString comboLightAccent;       // rounded on the right side
    QString comboLightAccentRound;  // rounded all round

    QString spinBox;
    QString spinBoxDark;

    QString labelPlain;     // for setStyleSheet on one label: no selector
    QString labelOnColour;  // likewise, black text; %1: background colour, e.g. "rgb(r,g,b)"
    QString radioButton;
    QString tabWidget;  // %1: tab width in pixels
    QString listWidget;
    QString table;        // table view with its headers
    QString progressBar;  // accent chunk in a dark groove

    // Frames.
    QString frameRounded;
    QString frameBare;
    QString frameSeparator;

    // Line edits.
    QString lineEdit;
    QString lineEditReadOnly;
    QString lineEditError;
    QString lineEditHighlighted;
    QString lineEditWhite;
    QString lineEditTransparent;
    QString valueX;  // live read-outs, coloured like the chart's curves
    QString valueY;
    QString valueZ;
    QString valueSingle;
    QString lineEditWhitePadded;

    // Group boxes.
    QString groupBoxFlat;
    QString groupBoxTitled;
    QString groupBoxIndented;

    QString axisCheckButton;  // accent button, checked in the x-axis colour
    QString sideMenuButton;
    QString threeImageButton;  // %1 normal, %2 checked, %3 hover image path
    QString labelMedBlack;

    // Point size of every font text below.
    int fontSize;

    // Style-sheet font texts ("font-family: ...; font-weight: ...; font-size: ...pt;").
    QString fontHeadline;     // ExtraBold
    QString fontText;         // Regular
    QString fontTextMedium;   // Medium
    QString fontButton;       // Medium
    QString fontTextBold;     // Bold
    QString fontLabel;        // Regular
    QString fontLabelMedium;  // Medium
    QString fontHeader;       // Medium
    QString fontValue;        // Regular, monospaced
    QString fontValueMedium;  // Medium, monospaced
    QString fontAxis;         // Light, monospaced: chart tick labels
    QString fontTitle;        // Medium: chart axis titles
    QString fontNote;         // Regular

    // Widget font of the bundled family (Roboto) at fontSize points.
    QFont font;

    // Message boxes: a dark panel whose buttons look like primaryButton.
    QString messageBox;
    QFont messageBoxFont;
};
