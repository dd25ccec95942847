#include "palette.h"
#include "sheets.h"

namespace sheet {
namespace {

// Indicator images of the small 12 px check box, shared by the check-box variants.
QString smallBoxIndicator() {
    return QStringLiteral(
        "QCheckBox::indicator{height: 12px;width: 12px;}"
        "QCheckBox::indicator:unchecked{image:url(:/images/box_off.png);}"
        "QCheckBox::indicator:checked{image:url(:/images/box_on.png);}"
        "QCheckBox::indicator:disabled{image:url(:/images/box_u.png);}");
}

// The drop-down button of a combo box and its arrow image (file under :/images/).
QString comboArrow(const QString& image) {
    return "QComboBox::drop-down{subcontrol-origin: padding;subcontrol-position: top right;"
           "width: 20px;border: 0px;}QComboBox::down-arrow{image:url(:/images/" +
           image + ");width: 15px;height: 15px;}";
}

// A bordered combo box on a dark panel, with its popup list in the same colours.
QString darkCombo(const QString& text, const QString& background, const QString& arrow) {
    const QString colours = "color:" + text + ";background-color:" + background +
                            ";selection-color:" + clr::bw_soil +
                            ";selection-background-color:" + clr::bw_iron + ";";
    return "QComboBox{border: 1px solid " + clr::bw_iron +
           ";border-radius: 4px;padding: 1px 18px 1px 6px;" + colours +
           "}QComboBox:disabled{border-color:" + clr::bw_iron + ";color:" + clr::bw_iron + ";}" +
           comboArrow(arrow) +
           "QComboBox::down-arrow:hover{image:url(:/images/drop_arrow_bw_pearl.png);}"
           "QComboBox QAbstractItemView{border: 1px solid " +
           clr::bw_iron + ";" + colours + "}";
}

// A combo box on a white form with the accent border; `corners` says which corners are round.
QString accentCombo(const QString& corners, const QString& arrow) {
    return "QComboBox{border: 2px solid " + clr::company_clr + ";" + corners +
           "padding: 1px 18px 1px 6px;color:" + clr::soft_black +
           ";background-color:" + clr::white + ";}QComboBox:disabled{border-color:" + clr::asphalt +
           ";background-color:" + clr::clouds + ";}" + comboArrow(arrow);
}

// A line edit's colours; the border is 1 px wide.
QString lineEditColours(const QString& text, const QString& border, const QString& background) {
    return "QLineEdit{color:" + text + ";border: 1px solid " + border +
           ";background-color:" + background + ";}";
}

}  // namespace

QString checkBoxLarge() {
    return QStringLiteral(
        "QCheckBox::indicator{width: 40px;height: 40px;}"
        "QCheckBox::indicator:unchecked{image:url(:/images/check_off.png);}"
        "QCheckBox::indicator:unchecked:hover{image:url(:/images/check_off_h.png);}"
        "QCheckBox::indicator:checked{image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:checked:hover{image:url(:/images/check_on_h.png);}"
        "QCheckBox::indicator:disabled{image:url(:/images/check_na_off.png);}");
}

// For options that are always included: looks ticked whatever its state.
QString checkBoxAlwaysOn() {
    return QStringLiteral(
        "QCheckBox::indicator{width: 40px;height: 40px;}"
        "QCheckBox::indicator:unchecked{image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:unchecked:hover{image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:checked{image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:checked:hover{image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:disabled{image:url(:/images/check_on.png);}");
}

QString checkBoxSmall() {
    return "QCheckBox{color:rgb(%2, %2, %2);background-color:rgb(%1, %1, %1);}" +
           smallBoxIndicator();
}

QString checkBoxTransparent() {
    return "QWidget{background-color:" + clr::transparent + ";}QCheckBox{color:" + clr::bw_ash +
           ";background-color:" + clr::transparent + ";}" + smallBoxIndicator();
}

QString checkBoxSized() {
    return QStringLiteral(
        "QCheckBox::indicator{height:%1px;width:%2px;}"
        "QCheckBox::indicator:unchecked{height:%1px;width:%2px;"
        "image:url(:/images/check_off.png);}"
        "QCheckBox::indicator:unchecked:hover{height:%1px;width:%2px;"
        "image:url(:/images/check_off_h.png);}"
        "QCheckBox::indicator:checked{height:%1px;width:%2px;"
        "image:url(:/images/check_on.png);}"
        "QCheckBox::indicator:checked:hover{height:%1px;width:%2px;"
        "image:url(:/images/check_on_h.png);}");
}

QString comboDark() { return darkCombo(clr::bw_pearl, clr::bw_soil, "drop_arrow_bw_iron.png"); }

QString comboInverted() { return darkCombo(clr::bw_ash, clr::bw_pearl, "drop_arrow_black.png"); }

QString comboLightFlat() {
    return "QComboBox{border: 0px;padding: 1px 18px 1px 6px;color:" + clr::med_black +
           ";background-color:" + clr::white +
           ";}QComboBox:disabled{background-color:" + clr::grey + ";}" +
           comboArrow("drop_arrow_black.png");
}

QString comboLightAccent() {
    return accentCombo("border-top-right-radius: 4px;border-bottom-right-radius: 4px;",
                       "drop_arrow_black.png");
}

QString comboLightAccentRound() {
    return accentCombo("border-radius: 4px;", "combo_arrow_top.png");
}

QString spinBox() {
    return "QAbstractSpinBox{color:" + clr::bw_pearl +
           ";}QAbstractSpinBox::up-arrow{image:url(:/images/top_arrow_black.png);}"
           "QAbstractSpinBox::up-arrow:hover{image:url(:/images/top_arrow_blue.png);}"
           "QAbstractSpinBox::down-arrow{image:url(:/images/drop_arrow_black.png);}";
}

QString spinBoxDark() {
    return "QAbstractSpinBox{border: 1px solid " + clr::bw_iron +
           ";border-radius: 4px;color:" + clr::bw_pearl +
           ";}QAbstractSpinBox::up-button,QAbstractSpinBox::down-button{width: 10px;"
           "height: 10px;border: 0px;}"
           "QAbstractSpinBox::up-arrow{image:url(:/images/top_arrow_bw_iron.png);"
           "width: 10px;height: 10px;}"
           "QAbstractSpinBox::up-arrow:hover{image:url(:/images/top_arrow_bw_pearl.png);}"
           "QAbstractSpinBox::down-arrow{image:url(:/images/drop_arrow_bw_iron.png);"
           "width: 10px;height: 10px;}"
           "QAbstractSpinBox::down-arrow:hover{image:url(:/images/drop_arrow_bw_pearl.png);}";
}

QString radioButton() {
    return "QRadioButton,QRadioButton:hover,QRadioButton:checked,QRadioButton:disabled{color:" +
           clr::bw_pearl + ";background-color:" + clr::bw_soil +
           ";}QRadioButton::indicator{width: 14px;height: 14px;}"
           "QRadioButton::indicator:unchecked{image:url(:/images/box_off.png);}"
           "QRadioButton::indicator:unchecked:hover{image:url(:/images/box_off_hover.png);}"
           "QRadioButton::indicator:checked{image:url(:/images/box_on.png);}";
}

// Qt 5 style sheets cannot colour placeholder text: it is drawn in the text colour at half
// opacity, which on this background reads as bw_iron.
QString lineEdit() {
    return "QLineEdit{border-radius: 2px;color:" + clr::bw_pearl + ";border: 1px solid " +
           clr::bw_iron + ";background-color:" + clr::bw_soil + ";selection-color:" + clr::bw_soil +
           ";selection-background-color:" + clr::bw_pearl + ";}";
}

QString lineEditReadOnly() {
    return "QLineEdit{border-radius: 4px;color:" + clr::bw_ash + ";border: 1px solid " +
           clr::bw_ash + ";background-color:" + clr::bw_steel + ";}";
}

QString lineEditError() {
    return "QLineEdit{color:" + clr::bw_demo_red + ";border: 1px solid " + clr::bw_demo_red +
           ";selection-background-color:" + clr::bw_demo_red +
           ";background-color:" + clr::transparent + ";}";
}

QString lineEditHighlighted() { return lineEditColours(clr::black, clr::asphalt, clr::yellow); }

QString lineEditWhite() { return lineEditColours(clr::black, clr::asphalt, clr::white); }

QString lineEditTransparent() {
    return lineEditColours(clr::bw_pearl, clr::bw_iron, clr::transparent);
}

// A read-out of one live value, coloured like its curve in the chart.
QString valueField(const QString& textColour) {
    return "QLineEdit{color:" + textColour + ";background-color:" + clr::bw_soil +
           ";border: 0px;border-radius: 0px;}";
}

QString lineEditWhitePadded() {
    return "QLineEdit{color:" + clr::black + ";background-color:" + clr::white +
           ";border: 0px;padding: 2px 6px;}";
}

}  // namespace sheet
