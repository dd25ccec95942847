#include "recoptiondlg.h"

#include <QFileDialog>

#include "style.h"
#include "ui_recoptiondlg.h"

namespace {

// Rows per second of each entry of comboBox_sample_freq, in the form's item order.
constexpr int kFrequencies[] = {400, 200, 100, 50, 25, 10, 5, 1};
constexpr int kFrequencyCount = static_cast<int>(sizeof(kFrequencies) / sizeof(kFrequencies[0]));

int frequencyOfIndex(int index) {
    return (index >= 0 && index < kFrequencyCount) ? kFrequencies[index] : kFrequencies[0];
}

// A rate that the list does not offer (edited by hand, or from an older version) shows as the
// first entry, so accepting the dialog replaces it with 400 Hz.
int indexOfFrequency(int frequency) {
    for (int index = 1; index < kFrequencyCount; ++index) {
        if (kFrequencies[index] == frequency) {
            return index;
        }
    }
    return 0;
}

}  // namespace

RecOptionDlg::RecOptionDlg(QWidget* parent) : QDialog(parent), ui(new Ui_RecOptionDlg) {
    ui->setupUi(this);
    applyStyle();
    showOptions();
    connect(ui->toolButton_accept, &QToolButton::clicked, this, &RecOptionDlg::accept);
    connect(ui->toolButton_reject, &QToolButton::clicked, this, &RecOptionDlg::reject);
}

RecOptionDlg::~RecOptionDlg() { delete ui; }

void RecOptionDlg::applyStyle() {
    const Style style;
    setStyleSheet(style.baseWindow);
    setFont(style.font);
    ui->toolButton_accept->setStyleSheet(style.primaryButton);
    ui->toolButton_reject->setStyleSheet(style.outlineButton);
    for (QLabel* label : {ui->label_rec_folder, ui->label_save_path, ui->label_sample_freq}) {
        label->setStyleSheet(style.labelPlain + style.fontLabel);
    }
    ui->comboBox_sample_freq->setStyleSheet(style.comboDark);
    for (QCheckBox* box :
         {ui->checkBox_accel, ui->checkBox_gyro, ui->checkBox_mag, ui->checkBox_orient,
          ui->checkBox_baro, ui->checkBox_temp, ui->checkBox_mov}) {
        box->setStyleSheet(style.checkBoxTransparent + "QCheckBox{" + style.fontText + "}");
    }
    ui->groupBox_data_selection->setStyleSheet(style.groupBoxTitled);
}

void RecOptionDlg::showOptions() {
    ui->label_save_path->setText(recOptions.saveFolder);
    ui->checkBox_accel->setChecked(recOptions.accelerometer);
    ui->checkBox_gyro->setChecked(recOptions.gyroscope);
    ui->checkBox_mag->setChecked(recOptions.magnetometer);
    ui->checkBox_orient->setChecked(recOptions.orientation);
    ui->checkBox_baro->setChecked(recOptions.barometer);
    ui->checkBox_temp->setChecked(recOptions.temperatures);
    ui->checkBox_mov->setChecked(recOptions.movement);
    ui->comboBox_sample_freq->setCurrentIndex(indexOfFrequency(recOptions.sampleFreq));
}

void RecOptionDlg::on_pushButton_rec_folder_clicked() {
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Choose the saving folder"), recOptions.saveFolder,
        QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks |
            QFileDialog::DontUseNativeDialog);
    if (folder.isEmpty()) {
        return;
    }
    recOptions.saveFolder = folder;
    ui->label_save_path->setText(folder);
}

void RecOptionDlg::accept() {
    recOptions.saveFolder = ui->label_save_path->text();
    recOptions.accelerometer = ui->checkBox_accel->isChecked();
    recOptions.gyroscope = ui->checkBox_gyro->isChecked();
    recOptions.magnetometer = ui->checkBox_mag->isChecked();
    recOptions.orientation = ui->checkBox_orient->isChecked();
    recOptions.barometer = ui->checkBox_baro->isChecked();
    recOptions.temperatures = ui->checkBox_temp->isChecked();
    recOptions.movement = ui->checkBox_mov->isChecked();
    recOptions.sampleFreq = frequencyOfIndex(ui->comboBox_sample_freq->currentIndex());
    recOptions.saveRecSettings();
    QDialog::accept();
}
