#include <QtTest>
#include <QtWidgets>

#include "TempSettings.h"
#include "WidgetTestMain.h"
#include "recoptiondlg.h"

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

// Clicks the folder button and answers the folder chooser, from inside its event loop, as a
// user would: opens `folder`, leaves the name field empty and chooses; or cancels when `folder`
// is empty.
bool chooseFolder(RecOptionDlg& dialog, const QString& folder) {
    QTimer poll;
    bool answered = false;
    poll.callOnTimeout([&] {
        auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (chooser == nullptr || !chooser->isVisible()) return;
        poll.stop();
        answered = true;
        if (folder.isEmpty()) return chooser->reject();
        chooser->setDirectory(folder);
        child<QLineEdit>(chooser, "fileNameEdit")->clear();
        static_cast<QDialog*>(chooser)->accept();  // as the chooser's own "Choose" button does
    });
    poll.start(10);
    click(dialog, "pushButton_rec_folder");
    return answered;
}

}  // namespace

// What the recording shows the user: the options dialog and the free-space label.
class TestRecOptionDlg : public QObject {
    Q_OBJECT

    TempSettings settings;

private slots:
    void initTestCase() { QVERIFY(settings.isValid()); }
    void init() { TempSettings::clear(); }

    // The dialog starts from the stored options, the defaults where nothing is stored.
    void showsTheStoredOptions() {
        RecOptionDlg first;
        QCOMPARE(shownFolder(first), QDir::homePath());
        for (const char* name : kCheckBoxes)
            QVERIFY2(child<QCheckBox>(&first, name)->isChecked(), name);
        QCOMPARE(frequencyBox(first)->currentText(), QStringLiteral("400 Hz"));

        TempSettings::store({{"save_folder", "/srv/recordings"}, {"gyroscope", false}});
        RecOptionDlg dialog;
        QCOMPARE(shownFolder(dialog), QStringLiteral("/srv/recordings"));
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(child<QCheckBox>(&dialog, kCheckBoxes[i])->isChecked(),
                     QString(kKeys[i]) != "gyroscope");
        }
    }

    // The stored rate is preselected and OK stores the one shown; a rate the list does not
    // offer shows, and then stores, 400 Hz.
    void frequencyShownAndStored_data() {
        QTest::addColumn<int>("stored");
        QTest::addColumn<QString>("shown");
        QTest::newRow("400") << 400 << "400 Hz";
        QTest::newRow("25") << 25 << "25 Hz";
        QTest::newRow("1") << 1 << "1 Hz";
        QTest::newRow("30 is not offered") << 30 << "400 Hz";
    }

    void frequencyShownAndStored() {
        QFETCH(int, stored);
        QFETCH(QString, shown);
        TempSettings::store({{"sample_freq", stored}});
        RecOptionDlg dialog;
        dialog.show();
        QCOMPARE(frequencyBox(dialog)->currentText(), shown);
        click(dialog, "toolButton_accept");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(TempSettings::stored("sample_freq").toInt(), shown.section(' ', 0, 0).toInt());
    }

    void acceptStoresTheEditedOptions() {
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
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(TempSettings::stored(kKeys[i]).toBool(), i % 2 == 1);
        }
        QCOMPARE(TempSettings::stored("sample_freq").toInt(), 10);
        QCOMPARE(dialog.options().sampleFreq, 10);
    }

    // A cancelled chooser keeps the folder; a chosen folder shows at once and is stored on OK.
    void chosenFolderIsShownAndStoredOnAccept() {
        TempSettings::store({{"save_folder", "/srv/recordings"}});
        QTemporaryDir target;
        RecOptionDlg dialog;
        dialog.show();
        QVERIFY(chooseFolder(dialog, QString()));
        QCOMPARE(shownFolder(dialog), QStringLiteral("/srv/recordings"));
        QVERIFY(chooseFolder(dialog, target.path()));
        QCOMPARE(shownFolder(dialog), target.path());
        QCOMPARE(TempSettings::stored("save_folder").toString(), QStringLiteral("/srv/recordings"));
        click(dialog, "toolButton_accept");
        QCOMPARE(TempSettings::stored("save_folder").toString(), target.path());
    }

    // Cancel, Escape or closing the window: nothing is stored.
    void rejectingStoresNothing_data() {
        QTest::addColumn<bool>("escape");
        QTest::newRow("cancel") << false;
        QTest::newRow("escape") << true;
    }

    void rejectingStoresNothing() {
        QFETCH(bool, escape);
        TempSettings::store({{"sample_freq", 25}, {"save_folder", "/srv/recordings"}});
        QTemporaryDir target;
        RecOptionDlg dialog;
        dialog.show();
        QVERIFY(chooseFolder(dialog, target.path()));
        child<QCheckBox>(&dialog, "checkBox_mag")->setChecked(false);
        frequencyBox(dialog)->setCurrentIndex(0);
        if (escape) {
            QTest::keyClick(&dialog, Qt::Key_Escape);
            dialog.close();
        } else {
            click(dialog, "toolButton_reject");
        }
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(!dialog.isVisible());
        const QStringList keys =
            QSettings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData")).allKeys();
        QCOMPARE(keys.size(), 2);
        QCOMPARE(TempSettings::stored("sample_freq").toInt(), 25);
        QCOMPARE(TempSettings::stored("save_folder").toString(), QStringLiteral("/srv/recordings"));
    }
};

WIDGET_TEST_MAIN(TestRecOptionDlg)
#include "tst_recoptiondlg.moc"
