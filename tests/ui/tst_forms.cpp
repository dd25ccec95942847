#include <QtTest>
#include <QtWidgets>

#include "WidgetTestMain.h"
#include "resources.h"
#include "restyle.h"
#include "ui_magcalibdlg.h"
#include "ui_mainwindow.h"

class TestForms : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { initOryxResources(); }

    // The calibration dialog and the header carry sheets from the designer; a sheet put in their
    // place before the first show is what appears on screen.
    void replacedDesignerSheetsShowOnScreen() {
        QDialog dialog;
        Ui::MagCalibDlg calib;
        calib.setupUi(&dialog);
        replaceStyleSheet(&dialog, "QWidget{background-color : rgb(25,25,25);}");
        QMainWindow window;
        Ui::MainWindow main;
        main.setupUi(&window);
        replaceStyleSheet(main.HeaderWidget, "QWidget{background-color : rgb(5,5,5);}");

        dialog.show();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QImage label = calib.label_mag_calib_quality->grab().toImage();
        QCOMPARE(label.pixelColor(1, 1), QColor(25, 25, 25));
        const QImage header = main.HeaderWidget->grab().toImage();
        QCOMPARE(header.pixelColor(header.width() - 2, header.height() - 2), QColor(5, 5, 5));
    }
};

WIDGET_TEST_MAIN(TestForms)
#include "tst_forms.moc"
