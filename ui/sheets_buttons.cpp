#include "palette.h"
#include "sheets.h"

namespace sheet {
namespace {

// The look every accent button falls back to when it is disabled.
QString accentDisabled() {
    return "QAbstractButton:disabled{color:" + clr::bw_pearl + ";background-color:" + clr::bw_soil +
           ";border: 1px solid " + clr::bw_ash + ";}";
}

// One button of a vertical group; `shape` sets the border and which corners are rounded.
QString segmentButton(const QString& shape) {
    return "QToolButton{color:" + clr::bw_soil + ";background-color:" + clr::company_clr + ";" +
           shape + "}QToolButton:checked,QToolButton:hover{background-color:" + clr::company_clr_h +
           ";}QToolButton:disabled{color:" + clr::bw_soil + ";background-color:" + clr::bw_ash +
           ";}";
}

// One button of a horizontal tab-like group; `corners` says which corners are rounded.
QString tabButton(const QString& corners) {
    return "QToolButton{font-family:'" + familyMedium +
           "';font-weight:bold;font-size:7.5pt;color:" + clr::bw_pearl + ";border:1px solid " +
           clr::bw_iron + ";background-color:" + clr::transparent + ";" + corners +
           "}QToolButton:checked{color:" + clr::bw_soil + ";background-color:" + clr::company_clr +
           ";border-color:" + clr::company_clr + ";}";
}

// A flat button with one fill colour and no border.
QString solidButton(const QString& background) {
    return "QAbstractButton{color:" + clr::bw_soil + ";background-color:" + background +
           ";border: 0px;border-radius: 4px;}";
}

// A button that is only its text, underlined under the mouse.
QString textButton(const QString& type) {
    return type + "{color:" + clr::white + ";background-color:" + clr::transparent +
           ";border: 0px;}" + type + ":hover{color:" + clr::bw_pearl +
           ";text-decoration: underline;}";
}

}  // namespace

QString primaryButton() {
    return "QAbstractButton{color:" + clr::bw_soil + ";background-color:" + clr::company_clr +
           ";border: 0px;border-radius: 4px;}QAbstractButton:checked{background-color:" +
           clr::company_clr + ";}QAbstractButton:hover{background-color:" + clr::company_clr_h +
           ";border-color:" + clr::company_clr_h + ";}" + accentDisabled();
}

// Checked, the button fills with the accent and its text turns dark, as on every accent fill:
// the light grey of the idle text would read at 1.2:1 on the lime.
QString outlineButton() {
    return "QAbstractButton{color:" + clr::bw_iron + ";background-color:" + clr::bw_soil +
           ";border: 2px solid " + clr::company_clr +
           ";border-radius: 4px;}QAbstractButton:checked{color:" + clr::bw_soil +
           ";background-color:" + clr::company_clr_h +
           ";}QAbstractButton:hover{border-color:" + clr::company_clr_h + ";}" + accentDisabled();
}

QString ghostButton() {
    return "QAbstractButton{color:" + clr::bw_white + ";background-color:" + clr::transparent +
           ";border-radius: 4px;border: 1px solid " + clr::bw_iron +
           ";}QAbstractButton:hover{color:" + clr::bw_soil + ";background-color:" + clr::bw_white +
           ";}QAbstractButton:disabled{color:" + clr::bw_soil +
           ";background-color:" + clr::bw_white + ";}";
}

QString linkButton() {
    return "QAbstractButton {font-family: " + familyMedium +
           ";font-weight:Bold;font-size:10.5pt; text-align: left;color: rgb(0,153,204);"
           "background-color:" +
           clr::white + ";border: 0px;}QAbstractButton:hover{text-decoration: underline;}" +
           "QAbstractButton:disabled{color:" + clr::black + ";background-color:" + clr::white +
           ";}";
}

QString segmentTopButton() {
    return segmentButton("border: 0px;border-top-left-radius: 4px;border-top-right-radius: 4px;");
}

QString segmentMiddleButton() {
    return segmentButton("border: 0px;border-top: 1px solid " + clr::bw_soil +
                         ";border-radius: 0px;");
}

QString segmentBottomButton() {
    return segmentButton("border: 0px;border-top: 1px solid " + clr::bw_soil +
                         ";border-bottom-left-radius: 4px;border-bottom-right-radius: 4px;");
}

QString warningButton() { return solidButton(clr::bw_demo_red); }

QString limeButton() { return solidButton(clr::bw_dark_lime); }

QString limeOutlineButton() {
    return "QAbstractButton{color:" + clr::bw_lime +
           ";background-color:" + clr::toStr(clr::bw_black_clr) + ";border: 1px solid " +
           clr::bw_dark_lime + ";border-radius: 4px;}";
}

QString textToolButton() { return textButton("QToolButton"); }

QString textPushButton() { return textButton("QPushButton"); }

QString tabLeftButton() {
    return tabButton("border-top-left-radius:4px;border-bottom-left-radius:4px;");
}

QString tabMiddleButton() { return tabButton("border-radius:0px;"); }

// Only the last button of the group greys out: the group is disabled as a whole.
QString tabRightButton() {
    return tabButton("border-top-right-radius:4px;border-bottom-right-radius:4px;") +
           "QToolButton:disabled{color:rgb(127, 140, 141);border-color:rgb(189, 195, 199);}";
}

QString axisCheckButton() {
    return solidButton(clr::company_clr) +
           "QAbstractButton:checked{background-color:" + clr::xAxis +
           ";}QAbstractButton:disabled{color:" + clr::black + ";background-color:" + clr::concrete +
           ";}";
}

QString sideMenuButton() {
    return "QAbstractButton{color:" + clr::white + ";background-color:" + clr::transparent +
           ";font-size:11pt;text-align: left;padding-left: 20px;border: 0px;outline: none;}"
           "QAbstractButton:checked{color:" +
           clr::bw_soil + ";background-color:" + clr::company_clr +
           ";}QAbstractButton:hover{color:" + clr::bw_soil +
           ";background-color:" + clr::company_clr_h + ";}QAbstractButton:focus{outline: none;}" +
           "QAbstractButton:disabled{color:" + clr::bw_ash + ";}";
}

}  // namespace sheet
