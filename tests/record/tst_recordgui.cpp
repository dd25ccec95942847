#include <QtTest>
#include <QtWidgets>

#include "ModalResponder.h"
#include "TempSettings.h"
#include "WidgetTestMain.h"
#include "csvwriter.h"
#include "fileerrorbox.h"
#include "messagebox.h"
#include "style.h"

// What the recording shows the user: the error box of a file that cannot be opened. (The
// free-space text is checked in the composed main window, tests/app/tst_window_look.)
class TestRecordGui : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void unopenableFileShowsFileError();

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

WIDGET_TEST_MAIN(TestRecordGui)
#include "tst_recordgui.moc"
