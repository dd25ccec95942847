#include "palette.h"
#include "sheets.h"

namespace sheet {

QString windowBase(const QString& background) {
    return "QWidget{background-color : " + background + ";color : " + clr::bw_pearl + ";}";
}

// Borderless floating panels: their only button is the close cross.
QString framelessBase() {
    return windowBase(clr::bw_black) +
           "QToolButton,QPushButton{border: 0px solid;"
           "image:url(:/images/closeCross_bw_pearl.png);}"
           "QToolButton:hover,QPushButton:hover{image:url(:/images/closeCross_bw_pearl.png);}";
}

QString charcoalBase() {
    return windowBase(clr::bw_charcoal) + "QWidget:disabled{color:" + clr::bw_ash +
           ";background-color:" + clr::bw_steel + ";}";
}

QString slider() {
    return "QSlider{margin-right:6px;margin-left:6px;}"
           "QSlider::groove:horizontal{border-radius:1px;background:rgb(204,204,204);height:3px;}"
           "QSlider::handle:horizontal{image:url(:/images/slider_on.png); height: 12px;"
           "width: 12px;margin-top:-6px;margin-bottom:-6px;margin-left:-6px;margin-right:-6px;}"
           "QSlider::handle:horizontal:hover{image:url(:/images/slider_on_h.png); }"
           "QSlider::add-page:horizontal{background:" +
           clr::bw_ash + ";}QSlider::sub-page:horizontal{background:" + clr::company_clr +
           ";}QSlider::handle:horizontal:disabled{image:url(:/images/slider_off.png); }"
           "QSlider::sub-page:horizontal:disabled{background:" +
           clr::bw_ash + ";}";
}

QString menu() {
    return QStringLiteral(
        "QMenu::item{padding:2px 25px 2px 20px;border:1px solid transparent; "
        "/* reserve space for selection border */}"
        "QMenu::item:selected{border-color:darkblue;background:rgba(100, 100, 100, 150); }");
}

// Applied to a single label, so it has no selector.
QString labelPlain() {
    return "background-color:" + clr::bw_soil + ";color: " + clr::bw_pearl + ";";
}

// A label whose background tells something (the calibration quality): black reads on any
// light or saturated colour.
QString labelOnColour() {
    return "background-color:%1;color: " + clr::toStr(QColor(Qt::black)) + ";";
}

QString tabWidget() {
    return "QTabWidget{background-color:" + clr::bw_soil +
           ";}QTabWidget::pane{border: 0px;}"
           "QTabBar::tab{min-width:100px;width: %1 px;padding: 10px;}"
           "QTabBar::tab:selected{background-color:" +
           clr::company_clr + ";color:" + clr::bw_soil +
           ";}QTabBar::tab:!selected{background-color:" + clr::bw_charcoal +
           ";color:" + clr::bw_pearl + ";}QTabBar::tab:disabled{background-color:" + clr::bw_iron +
           ";color:" + clr::bw_soil + ";}";
}

QString listWidget() {
    return "QListWidget{color:" + clr::bw_ash + ";border: 1px solid " + clr::company_clr +
           ";}QListWidget::item:selected{color:" + clr::bw_soil +
           ";background-color:" + clr::bw_lime + ";}";
}

// Results tables: values on the darkest panel, headers on charcoal, thin steel rules.
QString table() {
    return "QTableView{color:" + clr::bw_pearl + ";background-color:" + clr::bw_soil +
           ";gridline-color:" + clr::bw_steel + ";border: 1px solid " + clr::bw_steel +
           ";selection-color:" + clr::bw_soil + ";selection-background-color:" + clr::bw_lime +
           ";}QHeaderView::section{color:" + clr::bw_pearl +
           ";background-color:" + clr::bw_charcoal + ";border: 0px;border-right: 1px solid " +
           clr::bw_steel + ";border-bottom: 1px solid " + clr::bw_steel +
           ";padding: 3px 6px;}QTableCornerButton::section{background-color:" + clr::bw_charcoal +
           ";border: 0px;}";
}

// Progress of long work: the accent fills a dark groove.
QString progressBar() {
    return "QProgressBar{border: 1px solid " + clr::bw_iron +
           ";border-radius: 2px;background-color:" + clr::bw_soil +
           ";}QProgressBar::chunk{background-color:" + clr::company_clr + ";}";
}

QString frameRounded() {
    return "QFrame{border-radius: 20px;border: 0px solid;border-color: " + clr::bw_charcoal +
           ";background-color: " + clr::bw_charcoal + ";}";
}

QString frameBare() { return QStringLiteral("QFrame{border: 0px;margin: 0px;padding: 0px;}"); }

QString frameSeparator() {
    return "QFrame{border: 0px;border-right: 1px solid " + clr::bw_steel + ";}";
}

QString groupBoxFlat() {
    return QStringLiteral("QGroupBox{border: 0px;margin: 0px;padding: 0px;}");
}

// The title sits on the rounded border; the extra top padding keeps the contents clear of it.
QString groupBoxTitled() {
    return "QGroupBox{border: 1px solid " + clr::bw_charcoal +
           ";border-radius: 5px;margin: 10px 0px 0px 0px;padding: 14px 10px 10px 10px;}"
           "QGroupBox::title{subcontrol-origin: margin;subcontrol-position: top left;"
           "left: 10px;padding: 0px 4px;color:" +
           clr::bw_ash + ";}";
}

QString groupBoxIndented() {
    return "QGroupBox{border: 0px;margin-left: 20px;}QGroupBox::title{color:" + clr::bw_pearl +
           ";}";
}

QString labelMedBlack() { return "QLabel{color:" + clr::med_black + ";}"; }

// Message boxes are dark panels whose buttons look like the primary button.
QString messageBox() {
    return "QMessageBox{background-color:" + clr::bw_soil +
           ";}QMessageBox QLabel{color:" + clr::bw_pearl +
           ";background-color:transparent;}QMessageBox QPushButton{color:" + clr::bw_soil +
           ";background-color:" + clr::company_clr +
           ";border: 0px;border-radius: 4px;min-width: 80px;min-height: 24px;"
           "padding: 2px 12px;}QMessageBox QPushButton:hover{background-color:" +
           clr::company_clr_h + ";}QMessageBox QPushButton:focus{border: 1px solid " +
           clr::bw_iron + ";}";
}

}  // namespace sheet
