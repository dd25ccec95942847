#include <QtTest>
#include <QtWidgets>
#include <iterator>

#include "WidgetTestMain.h"
#include "palette.h"
#include "style.h"

namespace {

using SheetField = QString Style::*;

// Every style sheet of Style, in declaration order.
const SheetField kSheets[] = {
    &Style::baseWindow,
    &Style::baseFrameless,
    &Style::baseSoil,
    &Style::baseCharcoal,
    &Style::primaryButton,
    &Style::pauseButton,
    &Style::stopButton,
    &Style::refreshButton,
    &Style::gearButton,
    &Style::photoButton,
    &Style::videoButton,
    &Style::recButton,
    &Style::folderButton,
    &Style::streamButton,
    &Style::slider,
    &Style::menu,
    &Style::outlineButton,
    &Style::ghostButton,
    &Style::linkButton,
    &Style::segmentTopButton,
    &Style::segmentMiddleButton,
    &Style::segmentBottomButton,
    &Style::warningButton,
    &Style::limeButton,
    &Style::limeOutlineButton,
    &Style::textToolButton,
    &Style::textPushButton,
    &Style::aspectButton,
    &Style::imageLabel,
    &Style::tabLeftButton,
    &Style::tabMiddleButton,
    &Style::tabRightButton,
    &Style::checkBoxLarge,
    &Style::checkBoxAlwaysOn,
    &Style::checkBoxSmall,
    &Style::checkBoxTransparent,
    &Style::checkBoxSized,
    &Style::comboDark,
    &Style::comboInverted,
    &Style::comboLightFlat,
    &Style::comboLightAccent,
    &Style::comboLightAccentRound,
    &Style::spinBox,
    &Style::spinBoxDark,
    &Style::labelPlain,
    &Style::labelOnColour,
    &Style::radioButton,
    &Style::tabWidget,
    &Style::listWidget,
    &Style::frameRounded,
    &Style::frameBare,
    &Style::frameSeparator,
    &Style::lineEdit,
    &Style::lineEditReadOnly,
    &Style::lineEditError,
    &Style::lineEditHighlighted,
    &Style::lineEditWhite,
    &Style::lineEditTransparent,
    &Style::valueX,
    &Style::valueY,
    &Style::valueZ,
    &Style::valueSingle,
    &Style::lineEditWhitePadded,
    &Style::groupBoxFlat,
    &Style::groupBoxTitled,
    &Style::groupBoxIndented,
    &Style::axisCheckButton,
    &Style::sideMenuButton,
    &Style::threeImageButton,
    &Style::labelMedBlack,
    &Style::messageBox,
};

// The thirteen font texts, in declaration order.
const SheetField kFonts[] = {
    &Style::fontHeadline, &Style::fontText,        &Style::fontTextMedium,  &Style::fontButton,
    &Style::fontTextBold, &Style::fontLabel,       &Style::fontLabelMedium, &Style::fontHeader,
    &Style::fontValue,    &Style::fontValueMedium, &Style::fontAxis,        &Style::fontTitle,
    &Style::fontNote,
};

// Images the style sheets and windows refer to; the bundle must hold every one of them.
const char* const kBundledImages[] = {
    "BW_white",
    "ORYX_white",
    "aspect",
    "aspect_hover",
    "box_off",
    "box_off_hover",
    "box_on",
    "box_u",
    "check_na_off",
    "check_off",
    "check_off_h",
    "check_on",
    "check_on_h",
    "closeCross",
    "closeCross_bw_pearl",
    "combo_arrow_top",
    "drop_arrow_black",
    "drop_arrow_company_color",
    "drop_arrow_bw_iron",
    "drop_arrow_bw_pearl",
    "folder",
    "folder_h",
    "folder_u",
    "gear",
    "gear_h",
    "gear_off",
    "pause",
    "pause_h",
    "photo",
    "photo_h",
    "photo_u",
    "play",
    "play_h",
    "radio_off",
    "rec",
    "rec_h",
    "rec_on",
    "rec_on_h",
    "rec_u",
    "refresh",
    "refresh_h",
    "saveIcon",
    "slider_off",
    "slider_on",
    "slider_on_h",
    "stop",
    "stop_h",
    "stream",
    "stream_h",
    "top_arrow_black",
    "top_arrow_blue",
    "top_arrow_bw_iron",
    "top_arrow_bw_pearl",
    "video",
    "video_h",
    "video_on",
    "video_on_h",
    "video_u",
};

// Fills the %1..%3 placeholders some sheets carry so that they can be applied to a widget.
QString filled(const QString& sheet) {
    QString text = sheet;
    return text.replace("%1", "12").replace("%2", "12").replace("%3", "12");
}

// Collects Qt's "Could not parse stylesheet" warnings while it lives.
class ParseWarnings {
public:
    ParseWarnings() { previous = qInstallMessageHandler(&ParseWarnings::handle); }
    ~ParseWarnings() { qInstallMessageHandler(previous); }
    static QStringList& seen() {
        static QStringList messages;
        return messages;
    }

private:
    static void handle(QtMsgType, const QMessageLogContext&, const QString& message) {
        if (message.contains("Could not parse")) {
            seen().append(message);
        }
    }
    QtMessageHandler previous;
};

// True when Qt's style-sheet parser accepts `sheet` on a plain widget.
bool parses(const QString& sheet) {
    ParseWarnings::seen().clear();
    ParseWarnings warnings;
    QWidget widget;
    QLabel child(&widget);
    widget.setStyleSheet(sheet);
    widget.ensurePolished();
    child.ensurePolished();
    return ParseWarnings::seen().isEmpty();
}

}  // namespace

class TestStyle : public QObject {
    Q_OBJECT

private slots:
    void exampleSheetsAreExact();
    void quotedCatalogueSheetsAreExact();
    void iconButtonsFollowOnePattern();
    void catalogueSheetsUseTheirColourRoles();
    void placeholdersFillWithArg();
    void everySheetParses();
    void everyReferencedImageIsBundled();
    void bundleHoldsTheImagesAndIcon();
    void fontTextsHaveTheListedWeightsInOrder();
    void worksWithoutTheOptionalFonts();
    void bundledRobotoFontsLoad();
};

void TestStyle::exampleSheetsAreExact() {
    const Style style;
    const QString window = "QWidget{background-color : rgb(5,5,5);color : rgb(242,242,242);}";
    QCOMPARE(style.baseWindow, window);
    QCOMPARE(style.baseFrameless,
             window +
                 "QToolButton,QPushButton{border: 0px solid;"
                 "image:url(:/images/closeCross_bw_pearl.png);}QToolButton:hover,"
                 "QPushButton:hover{image:url(:/images/closeCross_bw_pearl.png);}");
    QCOMPARE(style.baseSoil,
             QString("QWidget{background-color : rgb(25,25,25);color : rgb(242,242,242);}"));
    QCOMPARE(style.baseCharcoal,
             QString("QWidget{background-color : rgb(60,60,60);color : rgb(242,242,242);}"
                     "QWidget:disabled{color:rgb(137,137,137);background-color:rgb(45,45,45);}"));
    QCOMPARE(style.primaryButton,
             QString("QAbstractButton{color:rgb(25,25,25);background-color:rgb(217,255,66);"
                     "border: 0px;border-radius: 4px;}QAbstractButton:checked{background-color:"
                     "rgb(217,255,66);}QAbstractButton:hover{background-color:rgb(187,225,36);"
                     "border-color:rgb(187,225,36);}QAbstractButton:disabled{color:"
                     "rgb(242,242,242);background-color:rgb(25,25,25);border: 1px solid "
                     "rgb(137,137,137);}"));
    QCOMPARE(style.pauseButton, QString("QToolButton{border:0px solid;color:rgb(255,255,255);"
                                        "image:url(:/images/pause.png);}QToolButton:hover{"
                                        "image:url(:/images/pause_h.png);}QToolButton:checked{"
                                        "image:url(:/images/play.png);}QToolButton:checked:hover{"
                                        "image:url(:/images/play_h.png);}"));
    QCOMPARE(style.slider,
             QString("QSlider{margin-right:6px;margin-left:6px;}QSlider::groove:horizontal{"
                     "border-radius:1px;background:rgb(204,204,204);height:3px;}"
                     "QSlider::handle:horizontal{image:url(:/images/slider_on.png); height: 12px;"
                     "width: 12px;margin-top:-6px;margin-bottom:-6px;margin-left:-6px;"
                     "margin-right:-6px;}QSlider::handle:horizontal:hover{"
                     "image:url(:/images/slider_on_h.png); }QSlider::add-page:horizontal{"
                     "background:rgb(137,137,137);}QSlider::sub-page:horizontal{"
                     "background:rgb(217,255,66);}QSlider::handle:horizontal:disabled{"
                     "image:url(:/images/slider_off.png); }"
                     "QSlider::sub-page:horizontal:disabled{background:rgb(137,137,137);}"));
    QCOMPARE(style.menu,
             QString("QMenu::item{padding:2px 25px 2px 20px;border:1px solid transparent; "
                     "/* reserve space for selection border */}QMenu::item:selected{"
                     "border-color:darkblue;background:rgba(100, 100, 100, 150); }"));
}

void TestStyle::quotedCatalogueSheetsAreExact() {
    const Style style;
    // "Qlabel" is lower case on purpose.
    QCOMPARE(style.imageLabel,
             QString("Qlabel{border:0px solid;color: transparent;background-color:transparent;"
                     "image:url(%1);}"));
    QCOMPARE(style.checkBoxSmall,
             QString("QCheckBox{color:rgb(%2, %2, %2);background-color:rgb(%1, %1, %1);}"
                     "QCheckBox::indicator{height: 12px;width: 12px;}"
                     "QCheckBox::indicator:unchecked{image:url(:/images/box_off.png);}"
                     "QCheckBox::indicator:checked{image:url(:/images/box_on.png);}"
                     "QCheckBox::indicator:disabled{image:url(:/images/box_u.png);}"));
    QCOMPARE(style.labelPlain, QString("background-color:rgb(25,25,25);color: rgb(242,242,242);"));
    QCOMPARE(style.frameBare, QString("QFrame{border: 0px;margin: 0px;padding: 0px;}"));
    QCOMPARE(style.threeImageButton,
             QString("QToolButton{border: 0px solid;color: rgb(242,242,242);image: url(%1);}"
                     "QToolButton:checked{image: url(%2);}QToolButton:hover{image: url(%3);}"));
    QVERIFY(style.tabWidget.contains("QTabBar::tab{min-width:100px;width: %1 px;padding: 10px;}"));
    QVERIFY(style.tabRightButton.endsWith(
        ";}QToolButton:disabled{color:rgb(127, 140, 141);border-color:rgb(189, 195, 199);}"));
    for (const QString& tab : {style.tabLeftButton, style.tabMiddleButton, style.tabRightButton}) {
        QVERIFY2(tab.startsWith("QToolButton{font-family:'"), qPrintable(tab));
        QVERIFY2(tab.contains("';font-weight:bold;font-size:7.5pt;color:rgb(242,242,242);"
                              "border:1px solid rgb(194,194,194)"),
                 qPrintable(tab));
    }
    QVERIFY(style.linkButton.startsWith("QAbstractButton {font-family: "));
    QVERIFY(
        style.linkButton.contains(";font-weight:Bold;font-size:10.5pt; text-align: left;"
                                  "color: rgb(0,153,204);background-color:rgb(255,255,255)"));
    QVERIFY(style.frameRounded.startsWith(
        "QFrame{border-radius: 20px;border: 0px solid;border-color: rgb(60,60,60)"));
}

void TestStyle::iconButtonsFollowOnePattern() {
    const Style style;
    const QString head = "QToolButton{border:0px solid;color:rgb(255,255,255);";
    QCOMPARE(style.stopButton, head +
                                   "image:url(:/images/stop.png);}QToolButton:hover{"
                                   "image:url(:/images/stop_h.png);}");
    QCOMPARE(style.refreshButton, head +
                                      "image:url(:/images/refresh.png);}QToolButton:hover{"
                                      "image:url(:/images/refresh_h.png);}");
    QCOMPARE(style.gearButton, head +
                                   "image:url(:/images/gear.png);}QToolButton:hover{"
                                   "image:url(:/images/gear_h.png);}QToolButton:disabled{"
                                   "image:url(:/images/gear_off.png);}");

    // Normal image, then pseudo-state -> image, of the remaining buttons.
    const QList<QPair<QString, QStringList>> states = {
        {style.photoButton,
         {"photo", ":checked", "photo_h", ":hover", "photo_h", ":disabled", "photo_u"}},
        {style.videoButton,
         {"video", ":checked", "video_on", ":hover", "video_h", ":checked:hover", "video_on_h",
          ":disabled", "video_u"}},
        {style.recButton,
         {"rec", ":checked", "rec_on", ":checked:hover", "rec_on_h", ":hover", "rec_h", ":disabled",
          "rec_u"}},
        {style.folderButton,
         {"folder", ":checked", "folder_h", ":hover", "folder_h", ":disabled", "folder_u"}},
        {style.streamButton, {"stream", ":checked", "stream_h", ":hover", "stream_h"}},
    };
    for (const auto& button : states) {
        const QString& sheet = button.first;
        const QStringList& images = button.second;
        QVERIFY2(sheet.startsWith(head + "image:url(:/images/" + images[0] + ".png);}"),
                 qPrintable(sheet));
        for (int i = 1; i < images.size(); i += 2) {
            const QString rule =
                "QToolButton" + images[i] + "{image:url(:/images/" + images[i + 1] + ".png);}";
            QVERIFY2(sheet.contains(rule), qPrintable(sheet + "\nlacks " + rule));
        }
    }
}

void TestStyle::catalogueSheetsUseTheirColourRoles() {
    const Style style;
    QCOMPARE(style.valueX, "QLineEdit{color:" + clr::xAxis +
                               ";background-color:rgb(25,25,25);border: 0px;"
                               "border-radius: 0px;}");
    QVERIFY(style.valueY.contains("color:" + clr::yAxis + ";"));
    QVERIFY(style.valueZ.contains("color:" + clr::zAxis + ";"));
    QVERIFY(style.valueSingle.contains("color:" + clr::singleAxis + ";"));
    QVERIFY(style.lineEditHighlighted.contains("background-color:rgb(255, 205, 0)"));
    QVERIFY(
        style.axisCheckButton.contains("QAbstractButton:checked{background-color:" + clr::xAxis));
    QVERIFY(
        style.comboDark.contains("image:url(:/images/drop_arrow_bw_iron.png);width: 15px;"
                                 "height: 15px;"));
    QVERIFY(style.comboLightAccentRound.contains("combo_arrow_top.png"));
    // Disabled accent buttons all look like the primary button's disabled state.
    const QString disabled = style.primaryButton.mid(style.primaryButton.indexOf(":disabled"));
    QVERIFY(style.outlineButton.endsWith(disabled));
}

void TestStyle::placeholdersFillWithArg() {
    const Style style;
    const QString small = style.checkBoxSmall.arg(25).arg(242);
    QVERIFY(
        small.startsWith("QCheckBox{color:rgb(242, 242, 242);background-color:rgb(25, 25, 25);}"));
    QVERIFY(!small.contains('%'));
    QCOMPARE(style.imageLabel.arg(":/images/gear.png"),
             QString("Qlabel{border:0px solid;color: transparent;background-color:transparent;"
                     "image:url(:/images/gear.png);}"));
    QVERIFY(style.tabWidget.arg(120).contains("width: 120 px;"));
    const QString sized = style.checkBoxSized.arg(30).arg(40);
    QCOMPARE(sized.count("height:30px;width:40px;"), sized.count("{"));
}

void TestStyle::everySheetParses() {
    QVERIFY2(!parses("QWidget{color:red"), "the parse check must notice a broken sheet");
    const Style style;
    int index = 0;
    for (SheetField field : kSheets) {
        QVERIFY2(parses(filled(style.*field)),
                 qPrintable(QString("sheet #%1: %2").arg(index).arg(style.*field)));
        ++index;
    }
}

void TestStyle::everyReferencedImageIsBundled() {
    const Style style;
    const QRegularExpression url(QStringLiteral(R"(url\((:/images/[^)]+\.png)\))"));
    QSet<QString> images;
    for (SheetField field : kSheets) {
        auto matches = url.globalMatch(style.*field);
        while (matches.hasNext()) {
            images.insert(matches.next().captured(1));
        }
    }
    QVERIFY(images.size() > 40);
    for (const QString& image : images) {
        QVERIFY2(!QPixmap(image).isNull(), qPrintable(image));
    }
}

void TestStyle::bundleHoldsTheImagesAndIcon() {
    const Style style;  // registers the bundle
    for (const char* name : kBundledImages) {
        const QString path = QString(":/images/%1.png").arg(name);
        const QPixmap pixmap(path);
        QVERIFY2(!pixmap.isNull(), qPrintable(path));
        QVERIFY2(pixmap.hasAlphaChannel(), qPrintable(path));
    }
    QImageReader icon(":/icon/icon/favicon.ico");
    QVERIFY2(icon.canRead(), qPrintable(icon.errorString()));
    QVERIFY2(icon.imageCount() >= 4, "the window icon carries several sizes");
}

void TestStyle::fontTextsHaveTheListedWeightsInOrder() {
    const Style style;
    const QStringList weights = {"ExtraBold", "Regular", "Medium", "Medium",  "Bold",
                                 "Regular",   "Medium",  "Medium", "Regular", "Medium",
                                 "Light",     "Medium",  "Regular"};
    const QStringList families = {"NB Akademie Pro Regular", "NB Akademie Pro Medium",
                                  "NB Akademie Mono Pro Regular", "NB Akademie Mono Pro Medium"};
    const QRegularExpression form(
        QStringLiteral("^font-family: (.+); font-weight: (\\w+); font-size: (\\d+)pt;$"));

    QCOMPARE(int(std::size(kFonts)), weights.size());
    QVERIFY(style.fontSize > 0);
    for (int i = 0; i < weights.size(); ++i) {
        const QString text = style.*kFonts[i];
        const auto match = form.match(text);
        QVERIFY2(match.hasMatch(), qPrintable(text));
        QVERIFY2(families.contains(match.captured(1)), qPrintable(text));
        QCOMPARE(match.captured(2), weights[i]);
        QCOMPARE(match.captured(3), QString::number(style.fontSize));
    }
    QCOMPARE(style.font.pointSize(), style.fontSize);
    QCOMPARE(style.messageBoxFont.pointSize(), style.fontSize);
}

// The NB Akademie and Helvetica fonts are not shipped. Their families stay in the texts and
// widgets that ask for them get a real font all the same.
void TestStyle::worksWithoutTheOptionalFonts() {
    const Style style;
    QVERIFY(!QFile::exists(":/font/NBAkademiePro-Regular.ttf"));
    QVERIFY(!QFontDatabase().families().contains("NB Akademie Pro Regular"));
    QVERIFY(style.fontText.contains("NB Akademie Pro Regular"));

    QLabel label("42.0");
    label.setStyleSheet("QLabel{" + style.fontText + "}");
    label.ensurePolished();
    const QFontInfo resolved(label.font());
    QVERIFY(!resolved.family().isEmpty());
    QCOMPARE(resolved.pointSize(), style.fontSize);
    QVERIFY(!style.baseWindow.isEmpty());
}

void TestStyle::bundledRobotoFontsLoad() {
    const Style style;
    for (const char* file :
         {":/font/Roboto-Medium.ttf", ":/font/Roboto-Bold.ttf", ":/font/Roboto-Regular.ttf"}) {
        QFile font(file);
        QVERIFY2(font.open(QIODevice::ReadOnly), file);
        const int id = QFontDatabase::addApplicationFontFromData(font.readAll());
        QVERIFY2(id >= 0, file);
        QCOMPARE(QFontDatabase::applicationFontFamilies(id), QStringList{"Roboto"});
        QFontDatabase::removeApplicationFont(id);
    }
}

WIDGET_TEST_MAIN(TestStyle)
#include "tst_style.moc"
