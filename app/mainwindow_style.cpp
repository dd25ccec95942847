// The window's look: style sheets and fonts from Style, logos, background.
#include <QPixmap>

#include "mainwindow.h"
#include "palette.h"
#include "restyle.h"
#include "style.h"
#include "ui_mainwindow.h"

void MainWindow::applyStyle() {
    setWindowTitle(tr("Sensor Data Viewer"));
    ui->LogoTitle->setScaledContents(true);
    ui->LogoTitle->setPixmap(QPixmap(QStringLiteral(":/images/BW_white.png")));

    setStyleSheet(style->baseWindow);
    replaceStyleSheet(ui->HeaderWidget,
                      style->baseWindow + QStringLiteral("QWidget{background-color: "
                                                         "rgb(0,0,0);}"));
    QFont buttonFont = style->font;
    buttonFont.setPointSize(12);
    for (QPushButton* button :
         {ui->pushButton_accel, ui->pushButton_gyro, ui->pushButton_orient, ui->pushButton_baro,
          ui->pushButton_mag, ui->pushButton_temper, ui->pushButton_calib_mag}) {
        button->setStyleSheet(style->sideMenuButton);
        button->setFont(buttonFont);
    }
    for (QLabel* label : {ui->label_sensor_type_top, ui->label_sensor_type, ui->label_sensor_rate})
        label->setStyleSheet(style->labelPlain + style->fontLabelMedium);
    ui->comboBox_camera_list->setStyleSheet(style->comboDark);
    ui->comboBox_time_range->setStyleSheet(style->comboDark);
    ui->pushButton_refresh_list->setStyleSheet(style->refreshButton);
    ui->pushButton_rec_option->setStyleSheet(style->gearButton);
    ui->toolButton_save->setStyleSheet(style->outlineButton);
    // Free disk space: dark on the dark panel, and red when the disk runs low.
    ui->horizontalLayout_2->insertWidget(ui->horizontalLayout_2->indexOf(ui->toolButton_save),
                                         &statusLabel);
    for (QLineEdit* field : {ui->lineEdit_value_0, ui->lineEdit_value_1, ui->lineEdit_value_2})
        field->setReadOnly(true);

    const int logoHeight =
        ui->label_logo->geometry().bottom() - ui->label_logo->geometry().top() + 1;
    ui->label_logo->setPixmap(QPixmap(QStringLiteral(":/images/ORYX_white.png"))
                                  .scaledToHeight(logoHeight, Qt::SmoothTransformation));

    QPalette windowPalette = palette();
    windowPalette.setBrush(QPalette::Window, QBrush(clr::bw_soil_clr));
    setPalette(windowPalette);
    setAutoFillBackground(true);
}
