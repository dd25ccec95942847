#include <QtTest>
#include <QtWidgets>

#include "ModalResponder.h"
#include "TempSettings.h"
#include "recoptiondlg.h"
#include "WidgetTestMain.h"

namespace {

const char* const kCheckBoxes[] = {"checkBox_accel",  "checkBox_gyro", "checkBox_mag",
                                   "checkBox_orient", "checkBox_baro", "checkBox_temp",
                                   "checkBox_mov"};
const char* const kKeys[] = {"accelerometer", "gyroscope",    "magnetometer", "orientation",
                             "barometer",     "temperatures", "movement"};

template <class Widget>
Widget* child(QWidget* dialog, const char* name) {
    auto* widget = dialog->findChild<Widget*>(QLatin1String(name));
    if (widget == nullptr) {
        qFatal("no widget %s", name);
    }
    return widget;
}

QString shownFolder(RecOptionDlg& dialog) {
    return child<QLabel>(&dialog, "label_save_path")->text();
}

QComboBox* frequencyBox(RecOptionDlg& dialog) {
    return child<QComboBox>(&dialog, "comboBox_sample_freq");
}

void click(RecOptionDlg& dialog, const char* button) {
    QTest::mouseClick(child<QAbstractButton>(&dialog, button), Qt::LeftButton);
}

// Clicks the folder button and answers the folder chooser: with `folder`, or by cancelling it
// when `folder` is empty.
bool chooseFolder(RecOptionDlg& dialog, const QString& folder) {
    ModalResponder<QFileDialog> responder([&](QFileDialog* chooser) {
        if (folder.isEmpty()) {
            chooser->reject();
            return;
        }
        // As a user would: open the folder, leave the name field empty, choose.
        chooser->setDirectory(folder);
        child<QLineEdit>(chooser, "fileNameEdit")->clear();
        static_cast<QDialog*>(chooser)->accept();  // as the chooser's own "Choose" button does
    });
    click(dialog, "pushButton_rec_folder");
    return responder.answered() && responder.unexpected() == 0;
}

}  // namespace

class TestRecOptionDlg : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void showsDefaultsOnFirstRun();
    void showsStoredOptions();
    void preselectsStoredFrequency_data();
    void preselectsStoredFrequency();
    void unknownFrequencyShowsAndStores400();
    void acceptStoresTheEditedOptions();
    void acceptStoresEachFrequency_data();
    void acceptStoresEachFrequency();
    void chosenFolderIsShownAndStoredOnAccept();
    void cancellingTheChooserKeepsTheFolder();
    void cancelStoresNothing();
    void closingStoresNothing();

private:
    TempSettings settings;
};

void TestRecOptionDlg::initTestCase() { QVERIFY(settings.isValid()); }

void TestRecOptionDlg::init() { TempSettings::clear(); }

void TestRecOptionDlg::showsDefaultsOnFirstRun() {
    RecOptionDlg dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Data recording options"));
    QCOMPARE(shownFolder(dialog), QDir::homePath());
    for (const char* name : kCheckBoxes) {
        QVERIFY2(child<QCheckBox>(&dialog, name)->isChecked(), name);
    }
    QCOMPARE(frequencyBox(dialog)->currentText(), QStringLiteral("400 Hz"));
}

void TestRecOptionDlg::showsStoredOptions() {
    TempSettings::store({{"save_folder", "/srv/recordings"},
                         {"gyroscope", false},
                         {"barometer", false},
                         {"movement", false},
                         {"sample_freq", 50}});
    RecOptionDlg dialog;
    QCOMPARE(shownFolder(dialog), QStringLiteral("/srv/recordings"));
    for (int i = 0; i < 7; ++i) {
        const bool off = QString(kKeys[i]) == "gyroscope" || QString(kKeys[i]) == "barometer" ||
                         QString(kKeys[i]) == "movement";
        QCOMPARE(child<QCheckBox>(&dialog, kCheckBoxes[i])->isChecked(), !off);
    }
    QCOMPARE(frequencyBox(dialog)->currentText(), QStringLiteral("50 Hz"));
    QCOMPARE(dialog.options().sampleFreq, 50);
}

void TestRecOptionDlg::preselectsStoredFrequency_data() {
    QTest::addColumn<int>("stored");
    QTest::addColumn<QString>("shown");
    const int rates[] = {400, 200, 100, 50, 25, 10, 5, 1};
    for (int rate : rates) {
        QTest::newRow(qPrintable(QString::number(rate))) << rate << QString("%1 Hz").arg(rate);
    }
    QTest::newRow("30 is not offered") << 30 << "400 Hz";
    QTest::newRow("0") << 0 << "400 Hz";
    QTest::newRow("negative") << -1 << "400 Hz";
    QTest::newRow("1000") << 1000 << "400 Hz";
}

void TestRecOptionDlg::preselectsStoredFrequency() {
    QFETCH(int, stored);
    QFETCH(QString, shown);
    TempSettings::store({{"sample_freq", stored}});
    RecOptionDlg dialog;
    QCOMPARE(frequencyBox(dialog)->currentText(), shown);
}

void TestRecOptionDlg::unknownFrequencyShowsAndStores400() {
    TempSettings::store({{"sample_freq", 30}});
    RecOptionDlg dialog;
    dialog.show();
    QCOMPARE(frequencyBox(dialog)->currentText(), QStringLiteral("400 Hz"));
    click(dialog, "toolButton_accept");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(TempSettings::stored("sample_freq").toInt(), 400);
    QCOMPARE(RecOptions().sampleFreq, 400);
}

void TestRecOptionDlg::acceptStoresTheEditedOptions() {
    RecOptionDlg dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    // Untick every other group by clicking, as a user would.
    for (int i = 0; i < 7; i += 2) {
        QTest::mouseClick(child<QCheckBox>(&dialog, kCheckBoxes[i]), Qt::LeftButton, {},
                          QPoint(8, 8));
    }
    frequencyBox(dialog)->setCurrentIndex(frequencyBox(dialog)->findText("10 Hz"));
    click(dialog, "toolButton_accept");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());

    const RecOptions stored;
    const bool RecOptions::*fields[] = {&RecOptions::accelerometer, &RecOptions::gyroscope,
                                        &RecOptions::magnetometer,  &RecOptions::orientation,
                                        &RecOptions::barometer,     &RecOptions::temperatures,
                                        &RecOptions::movement};
    for (int i = 0; i < 7; ++i) {
        QCOMPARE(stored.*fields[i], i % 2 == 1);
        QCOMPARE(dialog.options().*fields[i], i % 2 == 1);
    }
    QCOMPARE(stored.sampleFreq, 10);
    QCOMPARE(stored.saveFolder, QDir::homePath());
}

void TestRecOptionDlg::acceptStoresEachFrequency_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("rate");
    const int rates[] = {400, 200, 100, 50, 25, 10, 5, 1};
    for (int index = 0; index < 8; ++index) {
        QTest::newRow(qPrintable(QString("%1 Hz").arg(rates[index]))) << index << rates[index];
    }
}

void TestRecOptionDlg::acceptStoresEachFrequency() {
    QFETCH(int, index);
    QFETCH(int, rate);
    RecOptionDlg dialog;
    dialog.show();
    frequencyBox(dialog)->setCurrentIndex(index);
    QCOMPARE(frequencyBox(dialog)->currentText(), QString("%1 Hz").arg(rate));
    click(dialog, "toolButton_accept");
    QCOMPARE(TempSettings::stored("sample_freq").toInt(), rate);
}

void TestRecOptionDlg::chosenFolderIsShownAndStoredOnAccept() {
    QTemporaryDir target;
    QVERIFY(target.isValid());
    RecOptionDlg dialog;
    dialog.show();
    QVERIFY(chooseFolder(dialog, target.path()));
    QCOMPARE(shownFolder(dialog), target.path());
    QVERIFY(!TempSettings::stored("save_folder").isValid());  // not yet
    click(dialog, "toolButton_accept");
    QCOMPARE(TempSettings::stored("save_folder").toString(), target.path());
    QCOMPARE(dialog.options().saveFolder, target.path());
}

void TestRecOptionDlg::cancellingTheChooserKeepsTheFolder() {
    TempSettings::store({{"save_folder", "/srv/recordings"}});
    RecOptionDlg dialog;
    dialog.show();
    QVERIFY(chooseFolder(dialog, QString()));
    QCOMPARE(shownFolder(dialog), QStringLiteral("/srv/recordings"));
    QCOMPARE(dialog.options().saveFolder, QStringLiteral("/srv/recordings"));
}

void TestRecOptionDlg::cancelStoresNothing() {
    TempSettings::store({{"sample_freq", 25}, {"save_folder", "/srv/recordings"}});
    QTemporaryDir target;
    RecOptionDlg dialog;
    dialog.show();
    QVERIFY(chooseFolder(dialog, target.path()));
    QCOMPARE(shownFolder(dialog), target.path());
    child<QCheckBox>(&dialog, "checkBox_mag")->setChecked(false);
    frequencyBox(dialog)->setCurrentIndex(0);

    click(dialog, "toolButton_reject");
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());

    const QStringList keys =
        QSettings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData")).allKeys();
    QCOMPARE(keys.size(), 2);
    QCOMPARE(TempSettings::stored("sample_freq").toInt(), 25);
    QCOMPARE(TempSettings::stored("save_folder").toString(), QStringLiteral("/srv/recordings"));
}

void TestRecOptionDlg::closingStoresNothing() {
    RecOptionDlg dialog;
    dialog.show();
    child<QCheckBox>(&dialog, "checkBox_accel")->setChecked(false);
    frequencyBox(dialog)->setCurrentIndex(7);
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    dialog.close();
    QVERIFY(QSettings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData"))
                .allKeys()
                .isEmpty());
}

WIDGET_TEST_MAIN(TestRecOptionDlg)
#include "tst_recoptiondlg.moc"
