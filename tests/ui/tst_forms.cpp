#include <QtTest>
#include <QtWidgets>

#include "resources.h"
#include "restyle.h"
#include "ui_magcalibdlg.h"
#include "ui_mainwindow.h"
#include "ui_recoptiondlg.h"
#include "WidgetTestMain.h"

namespace {

const QString kResetTip =
    "Reset calibration to default values.<br>After a reset \"uncalibrated\" and \"calibrated\" "
    "values will match. A new calibration will be required to compensate magnetic distorsions.";

// A translation that changes every text of one form, to check what retranslateUi keeps.
class ShoutingTranslator : public QTranslator {
public:
    explicit ShoutingTranslator(const char* context) : form(context) {}
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override {
        return form == context ? QString::fromUtf8(source).toUpper() + "!" : QString();
    }

private:
    QByteArray form;
};

// Installs a translator for the duration of a scope.
class ScopedTranslator {
public:
    explicit ScopedTranslator(QTranslator* translator) : translator(translator) {
        QCoreApplication::installTranslator(translator);
    }
    ~ScopedTranslator() { QCoreApplication::removeTranslator(translator); }

private:
    QTranslator* translator;
};

QStringList itemTexts(const QComboBox* combo) {
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i) {
        texts << combo->itemText(i);
    }
    return texts;
}

// Object names of the widgets in `layout`, in layout order.
QStringList widgetOrder(const QLayout* layout) {
    QStringList names;
    for (int i = 0; i < layout->count(); ++i) {
        if (QWidget* widget = layout->itemAt(i)->widget()) {
            names << widget->objectName();
        }
    }
    return names;
}

void verifyClass(const QWidget* root, const QString& name, const char* className) {
    const QObject* object = root->findChild<QObject*>(name);
    QVERIFY2(object, qPrintable("missing " + name));
    QVERIFY2(object->inherits(className),
             qPrintable(name + " is " + object->metaObject()->className()));
}

#define VERIFY_SIZES(widget, minW, minH, maxW, maxH)          \
    do {                                                      \
        QCOMPARE((widget)->minimumSize(), QSize(minW, minH)); \
        QCOMPARE((widget)->maximumSize(), QSize(maxW, maxH)); \
    } while (false)

const int kAny = QWIDGETSIZE_MAX;

}  // namespace

class TestForms : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void mainWindowHasItsWidgetTree_data();
    void mainWindowHasItsWidgetTree();
    void mainWindowTextsAndSizes();
    void sensorButtonsAreOrderedAndExclusive();
    void timeRangeItemsKeepOrderWhenRetranslated();

    void calibrationDialogHasItsWidgetTree_data();
    void calibrationDialogHasItsWidgetTree();
    void calibrationButtonsKeepLeadingSpaces();
    void calibrationToolTipsAreExact();
    void calibrationSizes();

    void recordingDialogLayout();
    void sampleFrequencyItemsKeepOrderWhenRetranslated();

    void designerSheetsCanBeReplacedBeforeShow();
};

void TestForms::initTestCase() { initOryxResources(); }

void TestForms::mainWindowHasItsWidgetTree_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    const QList<QPair<const char*, const char*>> widgets = {
        {"CentralWidget", "QWidget"},
        {"HeaderWidget", "QWidget"},
        {"LogoTitle", "QLabel"},
        {"label_sensor_type_top", "QLabel"},
        {"frame_ogl", "QFrame"},
        {"widget_3d_view", "OGL3DWidget"},
        {"frame_data_options", "QFrame"},
        {"label_sensor_type", "QLabel"},
        {"label_sensor_rate", "QLabel"},
        {"lineEdit_value_0", "QLineEdit"},
        {"lineEdit_value_1", "QLineEdit"},
        {"lineEdit_value_2", "QLineEdit"},
        {"comboBox_time_range", "QComboBox"},
        {"toolButton_save", "QToolButton"},
        {"pushButton_rec_option", "QPushButton"},
        {"widget_chart", "DataPlot"},
        {"frame_left", "QFrame"},
        {"frame_camera_sel", "QFrame"},
        {"label_logo", "QLabel"},
        {"comboBox_camera_list", "QComboBox"},
        {"pushButton_refresh_list", "QPushButton"},
        {"pushButton_calib_mag", "QPushButton"},
        {"statusbar", "QStatusBar"},
        {"gridLayout", "QGridLayout"},
        {"HeaderLayout", "QHBoxLayout"},
        {"horizontalLayout_5", "QHBoxLayout"},
        {"MainLayout", "QBoxLayout"},
        {"verticalLayout", "QVBoxLayout"},
        {"horizontalLayout_4", "QHBoxLayout"},
        {"gridLayout_2", "QGridLayout"},
        {"horizontalLayout_11", "QHBoxLayout"},
        {"horizontalLayout_2", "QHBoxLayout"},
        {"verticalLayout_3", "QVBoxLayout"},
        {"verticalLayout_4", "QVBoxLayout"},
        {"horizontalLayout_3", "QHBoxLayout"},
    };
    for (const auto& widget : widgets) {
        QTest::newRow(widget.first) << widget.first << widget.second;
    }
}

void TestForms::mainWindowHasItsWidgetTree() {
    QFETCH(QString, name);
    QFETCH(QString, className);
    QMainWindow window;
    Ui::MainWindow ui;
    ui.setupUi(&window);
    verifyClass(&window, name, className.toLatin1());
}

void TestForms::mainWindowTextsAndSizes() {
    QMainWindow window;
    Ui::MainWindow ui;
    ui.setupUi(&window);

    QCOMPARE(window.objectName(), QString("MainWindow"));
    QCOMPARE(window.windowTitle(), QString("ORYX Sensor Viewer"));
    QVERIFY(!window.windowIcon().isNull());
    QCOMPARE(window.centralWidget(), ui.CentralWidget);
    QCOMPARE(window.statusBar(), ui.statusbar);

    QCOMPARE(ui.HeaderWidget->styleSheet(), QString("background-color: rgb(0,0,0);"));
    QCOMPARE(ui.HeaderWidget->minimumHeight(), 68);
    QCOMPARE(ui.HeaderWidget->maximumHeight(), 68);
    QVERIFY(ui.HeaderWidget->isAncestorOf(ui.LogoTitle));
    VERIFY_SIZES(ui.LogoTitle, 135, 18, 135, 18);

    QCOMPARE(ui.label_sensor_type_top->text(), QString("Sensor"));
    QCOMPARE(ui.label_sensor_type->text(), QString("Sensor"));
    QCOMPARE(ui.label_sensor_rate->text(), QString("---"));
    for (QLineEdit* value : {ui.lineEdit_value_0, ui.lineEdit_value_1, ui.lineEdit_value_2}) {
        QCOMPARE(value->minimumSize(), QSize(80, 18));
        QVERIFY(ui.frame_data_options->isAncestorOf(value));
    }

    QVERIFY(ui.frame_ogl->isAncestorOf(ui.widget_3d_view));
    QCOMPARE(ui.widget_3d_view->minimumSize(), QSize(320, 220));
    QCOMPARE(ui.widget_3d_view->styleSheet(), QString("border-color: rgb(136, 138, 133);"));
    QCOMPARE(ui.widget_chart->minimumSize(), QSize(640, 310));
    QCOMPARE(ui.widget_chart->styleSheet(), QString("background-color: transparent;"));

    // The combo box's minimum width is larger than its maximum; the form keeps both.
    QCOMPARE(ui.comboBox_time_range->minimumSize(), QSize(140, 18));
    QCOMPARE(ui.comboBox_time_range->maximumWidth(), 120);
    QCOMPARE(ui.toolButton_save->text(), QString("RECORD"));
    QVERIFY(ui.toolButton_save->isCheckable());
    QCOMPARE(ui.toolButton_save->minimumSize(), QSize(95, 18));
    QCOMPARE(ui.toolButton_save->maximumWidth(), 100);

    VERIFY_SIZES(ui.pushButton_rec_option, 18, 18, 18, 18);
    VERIFY_SIZES(ui.pushButton_refresh_list, 18, 18, 18, 18);
    QVERIFY(!ui.pushButton_rec_option->icon().isNull());
    QVERIFY(!ui.pushButton_refresh_list->icon().isNull());

    QCOMPARE(ui.label_logo->minimumHeight(), 20);
    QCOMPARE(ui.label_logo->maximumHeight(), 20);
    QCOMPARE(ui.label_logo->styleSheet(), QString("border: 0px;"));
    QCOMPARE(ui.comboBox_camera_list->minimumWidth(), 180);
    QCOMPARE(ui.comboBox_camera_list->minimumHeight(), 22);
    QCOMPARE(ui.comboBox_camera_list->maximumHeight(), 22);
}

void TestForms::sensorButtonsAreOrderedAndExclusive() {
    QMainWindow window;
    Ui::MainWindow ui;
    ui.setupUi(&window);

    const QStringList order = {"pushButton_accel",    "pushButton_gyro", "pushButton_orient",
                               "pushButton_baro",     "pushButton_mag",  "pushButton_temper",
                               "pushButton_calib_mag"};
    const QStringList texts = {"Accelerometer", "Gyroscope",   "Orientation",           "Barometer",
                               "Magnetometer",  "Temperature", "Calibrate Magnetometer"};
    QStringList inLayout = widgetOrder(ui.verticalLayout_4);
    inLayout.erase(std::remove_if(inLayout.begin(), inLayout.end(),
                                  [](const QString& n) { return !n.startsWith("pushButton_"); }),
                   inLayout.end());
    QCOMPARE(inLayout, order);

    for (int i = 0; i < order.size(); ++i) {
        auto* button = window.findChild<QPushButton*>(order[i]);
        QCOMPARE(button->text(), texts[i]);
        VERIFY_SIZES(button, 100, 54, 400, 54);
    }

    // Choosing a sensor releases the previous one.
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(ui.pushButton_accel->isChecked());
    QTest::mouseClick(ui.pushButton_mag, Qt::LeftButton);
    QVERIFY(ui.pushButton_mag->isChecked());
    QVERIFY(!ui.pushButton_accel->isChecked());
}

void TestForms::timeRangeItemsKeepOrderWhenRetranslated() {
    QMainWindow window;
    Ui::MainWindow ui;
    ui.setupUi(&window);
    const QStringList items = {"Last 5 sec", "Last 10 sec", "Last 30 sec", "Last 60 sec"};
    QCOMPARE(itemTexts(ui.comboBox_time_range), items);

    ui.comboBox_time_range->setCurrentIndex(1);
    ShoutingTranslator translator("MainWindow");
    {
        ScopedTranslator installed(&translator);
        ui.retranslateUi(&window);
        QCOMPARE(itemTexts(ui.comboBox_time_range),
                 QStringList({"LAST 5 SEC!", "LAST 10 SEC!", "LAST 30 SEC!", "LAST 60 SEC!"}));
        QCOMPARE(ui.comboBox_time_range->currentIndex(), 1);
        QCOMPARE(window.windowTitle(), QString("ORYX SENSOR VIEWER!"));
    }
    ui.retranslateUi(&window);
    QCOMPARE(itemTexts(ui.comboBox_time_range), items);
}

void TestForms::calibrationDialogHasItsWidgetTree_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("className");
    const QList<QPair<const char*, const char*>> widgets = {
        {"horizontalLayout_3", "QHBoxLayout"},
        {"frame_left", "QFrame"},
        {"verticalLayout", "QVBoxLayout"},
        {"logo_container", "QWidget"},
        {"label_logo", "QLabel"},
        {"pushButton_start", "QPushButton"},
        {"pushButton_clear_data", "QPushButton"},
        {"pushButton_save_calib", "QPushButton"},
        {"pushButton_reset", "QPushButton"},
        {"groupBox_check", "QGroupBox"},
        {"gridLayout", "QGridLayout"},
        {"verticalLayout_5", "QVBoxLayout"},
        {"label_heading_uncalib", "QLabel"},
        {"widget_raw_compass", "Compass"},
        {"horizontalLayout_2", "QHBoxLayout"},
        {"label_mag_calib_quality", "QLabel"},
        {"verticalLayout_6", "QVBoxLayout"},
        {"label_heading_calib", "QLabel"},
        {"widget_calib_compass", "Compass"},
        {"pushButton_exit", "QPushButton"},
        {"frame", "QFrame"},
        {"verticalLayout_3", "QVBoxLayout"},
        {"Instructionlabel", "QLabel"},
        {"horizontalLayout", "QHBoxLayout"},
        {"groupBox_plane_xy", "QGroupBox"},
        {"widget_plot_XY", "CalibPlot"},
        {"groupBox_plane_yz", "QGroupBox"},
        {"widget_plot_YZ", "CalibPlot"},
        {"groupBox_plane_xz", "QGroupBox"},
        {"widget_plot_XZ", "CalibPlot"},
        {"horizontalLayout_mixed_plots", "QHBoxLayout"},
        {"groupBox_mixed_raw", "QGroupBox"},
        {"widget_plot_mixed_raw", "CalibPlot"},
        {"groupBox_mixed_calib", "QGroupBox"},
        {"widget_plot_calibrated", "CalibPlot"},
    };
    for (const auto& widget : widgets) {
        QTest::newRow(widget.first) << widget.first << widget.second;
    }
}

void TestForms::calibrationDialogHasItsWidgetTree() {
    QFETCH(QString, name);
    QFETCH(QString, className);
    QDialog dialog;
    Ui::MagCalibDlg ui;
    ui.setupUi(&dialog);
    verifyClass(&dialog, name, className.toLatin1());
}

void TestForms::calibrationButtonsKeepLeadingSpaces() {
    QDialog dialog;
    Ui::MagCalibDlg ui;
    ui.setupUi(&dialog);

    QCOMPARE(dialog.objectName(), QString("MagCalibDlg"));
    QCOMPARE(dialog.windowTitle(), QString("Magnetometer Calibration"));
    QCOMPARE(dialog.styleSheet(), QString("border: 0px;"));
    QCOMPARE(ui.pushButton_start->text(), QString(" Start Calibration"));
    QCOMPARE(ui.pushButton_clear_data->text(), QString(" Clear Data"));
    QCOMPARE(ui.pushButton_save_calib->text(), QString(" Store Calibration"));
    QCOMPARE(ui.pushButton_reset->text(), QString(" Reset Calibration"));
    QCOMPARE(ui.pushButton_exit->text(), QString(" Exit Calibration"));
    for (QPushButton* button :
         {ui.pushButton_start, ui.pushButton_clear_data, ui.pushButton_save_calib,
          ui.pushButton_reset, ui.pushButton_exit}) {
        QVERIFY2(!button->icon().isNull(), qPrintable(button->objectName()));
    }

    QCOMPARE(ui.label_logo->text(), QString("TextLabel"));
    QCOMPARE(ui.label_heading_uncalib->text(), QString::fromUtf8("Uncalibrated\n---.--°"));
    QCOMPARE(ui.label_heading_calib->text(), QString::fromUtf8("Calibrated\n---.--°"));
    QCOMPARE(ui.label_mag_calib_quality->text(), QString("---"));
    QCOMPARE(ui.groupBox_check->title(), QString("Check Calibration"));
    QCOMPARE(ui.Instructionlabel->text(), QString("Describe circles in various directions"));
    QCOMPARE(ui.groupBox_plane_xy->title(), QString("Plane XY [Roll]"));
    QCOMPARE(ui.groupBox_plane_yz->title(), QString("Plane YZ [Pitch]"));
    QCOMPARE(ui.groupBox_plane_xz->title(), QString("Plane XZ [Yaw]"));
    QCOMPARE(ui.groupBox_mixed_raw->title(), QString("Uncalibrated data"));
    QCOMPARE(ui.groupBox_mixed_calib->title(), QString("Calibrated data"));
}

void TestForms::calibrationToolTipsAreExact() {
    QDialog dialog;
    Ui::MagCalibDlg ui;
    ui.setupUi(&dialog);

    QCOMPARE(ui.pushButton_reset->toolTip(), kResetTip);
    QCOMPARE(ui.pushButton_exit->toolTip(), kResetTip);
    QCOMPARE(ui.pushButton_clear_data->toolTip(), QString("Clear all the acquired data"));
    QCOMPARE(ui.pushButton_save_calib->toolTip(), QString("Save calibration to camera"));
    QVERIFY(ui.pushButton_start->toolTip().startsWith("Start/Stop the calibration process.<br/>"));
    QCOMPARE(ui.label_heading_uncalib->toolTip(),
             QString("Camera heading calculated using \"uncalibrated\" magnetic field values"));
    QCOMPARE(ui.label_heading_calib->toolTip(),
             QString("Camera heading calculated using \"calibrated\" magnetic field values"));

    // A plot's tip may sit on the plot or on its group box.
    const auto tipOf = [](QGroupBox* box, QWidget* plot) {
        return plot->toolTip().isEmpty() ? box->toolTip() : plot->toolTip();
    };
    QCOMPARE(tipOf(ui.groupBox_plane_xz, ui.widget_plot_XZ),
             QString("Uncalibrated magnetic field projected on the plane XZ.<br/>The values of "
                     "this chart change while the camera is rotated around the downward axis "
                     "(yaw). <b>Note:</b> for a good calibration the background ellipsoid must "
                     "be filled with points the most as possible."));
    QCOMPARE(tipOf(ui.groupBox_plane_xy, ui.widget_plot_XY),
             QString("Uncalibrated magnetic field projected on the plane XY.<br/>The values of "
                     "this chart change while the camera is rotated around the forward axis "
                     "(roll).<br/><b>Note:</b> for a good calibration the background ellipsoid "
                     "must be filled with points the most as possible."));
    QVERIFY(tipOf(ui.groupBox_plane_yz, ui.widget_plot_YZ)
                .contains("around the rightward axis (pitch).<br/><b>Note:</b>"));
    QCOMPARE(tipOf(ui.groupBox_mixed_calib, ui.widget_plot_calibrated),
             QString("Magnetic fields after applying the calibration parameters.  <b>Note:</b> "
                     "for a good calibration the background ellipsoid must be covered the most "
                     "as possible."));
    QCOMPARE(tipOf(ui.groupBox_mixed_raw, ui.widget_plot_mixed_raw),
             QString("The three uncalibrated magnetic field projections.<br/><b>Note:</b> for a "
                     "good calibration the background ellipsoids must be covered the most as "
                     "possible."));
}

void TestForms::calibrationSizes() {
    QDialog dialog;
    Ui::MagCalibDlg ui;
    ui.setupUi(&dialog);

    for (QWidget* plot : {ui.widget_plot_XY, ui.widget_plot_YZ, ui.widget_plot_XZ}) {
        VERIFY_SIZES(plot, 290, 270, 290, 270);
    }
    for (QWidget* plot : {ui.widget_plot_mixed_raw, ui.widget_plot_calibrated}) {
        QCOMPARE(plot->minimumSize(), QSize(320, 300));
    }
    QCOMPARE(ui.groupBox_mixed_raw->minimumHeight(), 350);
    QCOMPARE(ui.groupBox_mixed_calib->minimumHeight(), 350);
    for (QWidget* compass : {ui.widget_raw_compass, ui.widget_calib_compass}) {
        QCOMPARE(compass->minimumSize(), QSize(140, 140));
    }
    for (QPushButton* button : {ui.pushButton_start, ui.pushButton_clear_data,
                                ui.pushButton_save_calib, ui.pushButton_reset}) {
        VERIFY_SIZES(button, 100, 54, 400, 54);
    }
    QCOMPARE(ui.pushButton_exit->minimumSize(), QSize(320, 54));
    QCOMPARE(ui.groupBox_check->minimumWidth(), 320);
    QCOMPARE(ui.label_heading_uncalib->minimumWidth(), 100);
    QCOMPARE(ui.label_mag_calib_quality->minimumHeight(), 24);
    QCOMPARE(ui.label_mag_calib_quality->maximumHeight(), 24);
    QCOMPARE(ui.Instructionlabel->minimumHeight(), 20);
    QCOMPARE(ui.Instructionlabel->maximumHeight(), 20);
    QCOMPARE(ui.label_logo->maximumHeight(), 20);
    QVERIFY(ui.pushButton_start->isCheckable());

    // The three projections sit side by side above the two combined plots.
    QCOMPARE(widgetOrder(ui.horizontalLayout),
             QStringList({"groupBox_plane_xy", "groupBox_plane_yz", "groupBox_plane_xz"}));
    QCOMPARE(widgetOrder(ui.horizontalLayout_mixed_plots),
             QStringList({"groupBox_mixed_raw", "groupBox_mixed_calib"}));
}

void TestForms::recordingDialogLayout() {
    QDialog dialog;
    Ui::RecOptionDlg ui;
    ui.setupUi(&dialog);

    QCOMPARE(dialog.objectName(), QString("RecOptionDlg"));
    QCOMPARE(dialog.windowTitle(), QString("Data recording options"));
    QCOMPARE(ui.label_rec_folder->text(), QString("REC Folder"));
    QCOMPARE(ui.label_save_path->text(), QString("TextLabel"));
    QCOMPARE(ui.label_rec_folder->maximumHeight(), 22);
    QCOMPARE(ui.label_save_path->maximumHeight(), 22);
    QCOMPARE(ui.pushButton_rec_folder->styleSheet(), QString("background-color: transparent;"));
    QVERIFY(!ui.pushButton_rec_folder->icon().isNull());
    QCOMPARE(ui.groupBox_data_selection->title(), QString("Data Selection"));
    QCOMPARE(ui.label_sample_freq->text(), QString("Sample Frequency"));

    const QStringList boxes = {"checkBox_orient", "checkBox_temp",  "checkBox_gyro", "checkBox_mag",
                               "checkBox_baro",   "checkBox_accel", "checkBox_mov"};
    const QStringList texts = {"Orientation", "Temperatures",  "Gyroscope",    "Magnetometer",
                               "Barometer",   "Accelerometer", "Moving status"};
    QCOMPARE(widgetOrder(ui.gridLayout), boxes);
    for (int i = 0; i < boxes.size(); ++i) {
        QCOMPARE(dialog.findChild<QCheckBox*>(boxes[i])->text(), texts[i]);
    }

    QCOMPARE(ui.toolButton_accept->text(), QString("OK"));
    QCOMPARE(ui.toolButton_reject->text(), QString("Cancel"));
    for (QToolButton* button : {ui.toolButton_accept, ui.toolButton_reject}) {
        QCOMPARE(button->minimumSize(), QSize(120, 18));
        QCOMPARE(button->maximumWidth(), 120);
    }
}

void TestForms::sampleFrequencyItemsKeepOrderWhenRetranslated() {
    QDialog dialog;
    Ui::RecOptionDlg ui;
    ui.setupUi(&dialog);
    const QStringList items = {"400 Hz", "200 Hz", "100 Hz", "50 Hz",
                               "25 Hz",  "10 Hz",  "5 Hz",   "1 Hz"};
    QCOMPARE(itemTexts(ui.comboBox_sample_freq), items);

    ui.comboBox_sample_freq->setCurrentIndex(5);
    ShoutingTranslator translator("RecOptionDlg");
    ScopedTranslator installed(&translator);
    ui.retranslateUi(&dialog);
    QStringList shouted;
    for (const QString& item : items) {
        shouted << item.toUpper() + "!";
    }
    QCOMPARE(itemTexts(ui.comboBox_sample_freq), shouted);
    QCOMPARE(ui.comboBox_sample_freq->currentIndex(), 5);
    QCOMPARE(ui.checkBox_mov->text(), QString("MOVING STATUS!"));
}

// The calibration dialog and the header carry sheets from the designer; the windows replace
// them with the application's look before they are first shown.
void TestForms::designerSheetsCanBeReplacedBeforeShow() {
    const QString dark = "QWidget{background-color : rgb(25,25,25);color : rgb(242,242,242);}";
    QDialog dialog;
    Ui::MagCalibDlg calib;
    calib.setupUi(&dialog);
    replaceStyleSheet(&dialog, dark);

    QMainWindow window;
    Ui::MainWindow main;
    main.setupUi(&window);
    replaceStyleSheet(main.HeaderWidget, "QWidget{background-color : rgb(5,5,5);}");

    dialog.show();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(dialog.styleSheet(), dark);
    QCOMPARE(dialog.palette().color(QPalette::Window), QColor(25, 25, 25));
    QCOMPARE(calib.label_mag_calib_quality->palette().color(QPalette::WindowText),
             QColor(242, 242, 242));
    QCOMPARE(main.HeaderWidget->palette().color(QPalette::Window), QColor(5, 5, 5));
}

WIDGET_TEST_MAIN(TestForms)
#include "tst_forms.moc"
