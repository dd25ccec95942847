#include <QtTest>
#include <QtWidgets>

#include "ModalResponder.h"
#include "TempSettings.h"
#include "csvwriter.h"
#include "fileerrorbox.h"
#include "freespace.h"
#include "messagebox.h"
#include "style.h"
#include "WidgetTestMain.h"

// What the recording shows the user: the error box of a file that cannot be opened, and the
// free-space status text.
class TestRecordGui : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void unopenableFileShowsFileError();
    void freeSpaceLabelTurnsRedUnderTenGigabytes_data();
    void freeSpaceLabelTurnsRedUnderTenGigabytes();

private:
    TempSettings settings;
};

void TestRecordGui::initTestCase() { QVERIFY(settings.isValid()); }

// The path of a recording folder that has disappeared since it was chosen.
void TestRecordGui::unopenableFileShowsFileError() {
    QTemporaryDir dir;
    CsvWriter writer;
    QVERIFY(!writer.open(dir.filePath("removed/20240101_000000-ORYX_C-sn_1-ORYXSensorsData.csv"),
                         RecOptions()));

    const Style style;
    QString title, text, sheet;
    QStringList buttons;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    ModalResponder<QMessageBox> responder([&](QMessageBox* box) {
        title = box->windowTitle();
        text = box->text();
        icon = box->icon();
        sheet = box->styleSheet();
        for (QAbstractButton* button : box->buttons()) {
            buttons << button->text();
        }
        QCOMPARE(box->objectName(), kMessageBoxObjectName);
        box->buttons().first()->click();
    });
    showFileOpenError(nullptr, style);
    QVERIFY(responder.answered());
    QCOMPARE(responder.unexpected(), 0);
    QCOMPARE(title, QStringLiteral("File error"));
    QCOMPARE(text, QStringLiteral("Error while opening file for writing"));
    QCOMPARE(icon, QMessageBox::Warning);
    QCOMPARE(buttons, QStringList{"Ok"});
    QCOMPARE(sheet, style.messageBox);
}

void TestRecordGui::freeSpaceLabelTurnsRedUnderTenGigabytes_data() {
    QTest::addColumn<double>("gigabytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("9.99") << 9.99 << "Disk Free Space: 10.0 Gb  on /rec/" << QColor(250, 20, 20);
    QTest::newRow("250") << 250.0 << "Disk Free Space: 250.0 Gb  on /rec/" << QColor(20, 20, 20);
}

// The colour a user sees, read from the rendered label's palette.
void TestRecordGui::freeSpaceLabelTurnsRedUnderTenGigabytes() {
    QFETCH(double, gigabytes);
    QFETCH(QString, text);
    QFETCH(QColor, colour);
    QLabel label;
    showFreeSpace(&label, gigabytes, "/rec/");
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));
    QCOMPARE(label.text(), text);
    QCOMPARE(label.palette().color(QPalette::WindowText), colour);
}

WIDGET_TEST_MAIN(TestRecordGui)
#include "tst_recordgui.moc"
