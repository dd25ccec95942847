#include "style.h"

#include "fonts.h"
#include "palette.h"
#include "resources.h"
#include "sheets.h"

namespace {

QString fontCss(const QString& family, const char* weight, int pointSize) {
    return "font-family: " + family + "; font-weight: " + weight +
           "; font-size: " + QString::number(pointSize) + "pt;";
}

}  // namespace

Style::Style() : fontSize(10) {
    initOryxResources();
    loadApplicationFonts();

    baseWindow = sheet::windowBase(clr::bw_black);
    baseFrameless = sheet::framelessBase();
    baseSoil = sheet::windowBase(clr::bw_soil);
    baseCharcoal = sheet::charcoalBase();
    primaryButton = sheet::primaryButton();
    pauseButton = sheet::pauseButton();
    stopButton = sheet::stopButton();
    refreshButton = sheet::refreshButton();
    gearButton = sheet::gearButton();
    photoButton = sheet::photoButton();
    videoButton = sheet::videoButton();
    recButton = sheet::recButton();
    folderButton = sheet::folderButton();
    streamButton = sheet::streamButton();
    slider = sheet::slider();
    menu = sheet::menu();
    outlineButton = sheet::outlineButton();
    ghostButton = sheet::ghostButton();
    linkButton = sheet::linkButton();
    segmentTopButton = sheet::segmentTopButton();
    segmentMiddleButton = sheet::segmentMiddleButton();
    segmentBottomButton = sheet::segmentBottomButton();
    warningButton = sheet::warningButton();
    limeButton = sheet::limeButton();
    limeOutlineButton = sheet::limeOutlineButton();
    textToolButton = sheet::textToolButton();
    textPushButton = sheet::textPushButton();
    aspectButton = sheet::aspectButton();
    imageLabel = sheet::imageLabel();
    tabLeftButton = sheet::tabLeftButton();
    tabMiddleButton = sheet::tabMiddleButton();
    tabRightButton = sheet::tabRightButton();
    checkBoxLarge = sheet::checkBoxLarge();
    checkBoxAlwaysOn = sheet::checkBoxAlwaysOn();
    checkBoxSmall = sheet::checkBoxSmall();
    checkBoxTransparent = sheet::checkBoxTransparent();
    checkBoxSized = sheet::checkBoxSized();
    comboDark = sheet::comboDark();
    comboInverted = sheet::comboInverted();
    comboLightFlat = sheet::comboLightFlat();
    comboLightAccent = sheet::comboLightAccent();
    comboLightAccentRound = sheet::comboLightAccentRound();
    spinBox = sheet::spinBox();
    spinBoxDark = sheet::spinBoxDark();
    labelPlain = sheet::labelPlain();
    labelOnColour = sheet::labelOnColour();
    radioButton = sheet::radioButton();
    tabWidget = sheet::tabWidget();
    listWidget = sheet::listWidget();
    table = sheet::table();
    progressBar = sheet::progressBar();
    frameRounded = sheet::frameRounded();
    frameBare = sheet::frameBare();
    frameSeparator = sheet::frameSeparator();
    lineEdit = sheet::lineEdit();
    lineEditReadOnly = sheet::lineEditReadOnly();
    lineEditError = sheet::lineEditError();
    lineEditHighlighted = sheet::lineEditHighlighted();
    lineEditWhite = sheet::lineEditWhite();
    lineEditTransparent = sheet::lineEditTransparent();
    valueX = sheet::valueField(clr::xAxis);
    valueY = sheet::valueField(clr::yAxis);
    valueZ = sheet::valueField(clr::zAxis);
    valueSingle = sheet::valueField(clr::singleAxis);
    lineEditWhitePadded = sheet::lineEditWhitePadded();
    groupBoxFlat = sheet::groupBoxFlat();
    groupBoxTitled = sheet::groupBoxTitled();
    groupBoxIndented = sheet::groupBoxIndented();
    axisCheckButton = sheet::axisCheckButton();
    sideMenuButton = sheet::sideMenuButton();
    threeImageButton = sheet::threeImageButton();
    labelMedBlack = sheet::labelMedBlack();

    fontHeadline = fontCss(sheet::familyMedium, "ExtraBold", fontSize);
    fontText = fontCss(sheet::familyRegular, "Regular", fontSize);
    fontTextMedium = fontCss(sheet::familyMedium, "Medium", fontSize);
    fontButton = fontCss(sheet::familyMedium, "Medium", fontSize);
    fontTextBold = fontCss(sheet::familyMedium, "Bold", fontSize);
    fontLabel = fontCss(sheet::familyRegular, "Regular", fontSize);
    fontLabelMedium = fontCss(sheet::familyMedium, "Medium", fontSize);
    fontHeader = fontCss(sheet::familyMedium, "Medium", fontSize);
    fontValue = fontCss(sheet::familyMonoRegular, "Regular", fontSize);
    fontValueMedium = fontCss(sheet::familyMonoMedium, "Medium", fontSize);
    fontAxis = fontCss(sheet::familyMonoRegular, "Light", fontSize);
    fontTitle = fontCss(sheet::familyMedium, "Medium", fontSize);
    fontNote = fontCss(sheet::familyRegular, "Regular", fontSize);

    font = QFont(QStringLiteral("Roboto"), fontSize);
    messageBox = sheet::messageBox();
    messageBoxFont = QFont(QStringLiteral("Roboto"), fontSize);
}

Style::~Style() = default;
