// The read-out fields as a user sees them: every field shows its whole text, for every sensor,
// with the widest readings the sensors produce, at the size the window opens with and at the
// smallest size it allows. The readings come from replaying a recording of a camera held at the
// ends of its ranges, through the whole window. The free-space label in the same row gives way
// to them.
#include <QDateTime>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include "ComposedWindow.h"
#include "InputThreadModul.h"
#include "MessageBoxWatcher.h"
#include "SimulatedCameras.h"
#include "TempSettings.h"
#include "WidgetTestMain.h"
#include "csvwriter.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 10000;

// Readings at one end of every sensor's range: ±16 g, ±2000 °/s, the magnetometer's ±2048 µT,
// orientation angles near ±90° (x) and ±180° (y, z), 260 and 1260 hPa, -40 and 125 °C.
struct Extremes {
    double acc, gyro, mag, orientX, orientYZ, pressure, temperature;
};
constexpr Extremes kLowest{-156.9064, -2000.0, -2048.0, -89.0, -179.9, 260.0, -40.0};
constexpr Extremes kHighest{156.9064, 2000.0, 2048.0, 89.0, 179.9, 1260.0, 125.0};

// A second of a recording that holds every reading at `e`, named as the recorder names them.
QString writeRecording(const QString& folder, const Extremes& e) {
    const QString path = QDir(folder).filePath(
        recordingFileName(QDateTime(QDate(2024, 5, 17), QTime(10, 0)), "ORYX_D", 31000017));
    RecOptions everything;
    CsvWriter writer;
    if (!writer.open(path, everything)) return QString();
    for (int i = 0; i < 400; ++i) {
        CsvRow row;
        row.index = i;
        row.imuTime = 100.0 + i * 0.0025;
        row.magTime = 100.0 + (i / 8) * 0.02;
        row.baroTime = 100.0 + (i / 16) * 0.04;
        row.accX = row.accY = row.accZ = e.acc;
        row.gyroX = row.gyroY = row.gyroZ = e.gyro;
        row.magX = row.magY = row.magZ = e.mag;
        row.orientX = e.orientX;
        row.orientY = row.orientZ = e.orientYZ;
        row.pressure = e.pressure;
        row.tempLeft = row.tempRight = row.tempImu = row.tempBarometer = e.temperature;
        if (writer.writeRow(row) != CsvWriter::WriteOutcome::WRITTEN) return QString();
    }
    writer.close();
    return path;
}

// The reading of field 0 that shows a sensor's row of the recording is on screen.
struct Shown {
    const char* button;
    double value;
    int precision;
};

QVector<Shown> sensorsOf(const Extremes& e) {
    return {{"pushButton_accel", e.acc, 3},     {"pushButton_gyro", e.gyro, 3},
            {"pushButton_mag", e.mag, 3},       {"pushButton_orient", e.orientX, 3},
            {"pushButton_baro", e.pressure, 2}, {"pushButton_temper", e.temperature, 2}};
}

// Whether `field` shows its whole text in the picture: the ink in the field is the ink of the
// text drawn whole, and stays clear of the field's edges (a text too long for its field is
// scrolled and cut there).
QString cutText(const QImage& shot, MainWindow& w, const QLineEdit* field) {
    const QImage image = composed::region(shot, &w, field);
    const QColor background = composed::dominantColour(image);
    const QColor ink = composed::inkColour(image, background);
    const composed::InkSpan seen = composed::inkSpan(image, background);
    const composed::InkSpan whole = composed::inkSpan(
        composed::textAlone(field->text(), field->font(), field, ink, background), background);
    const bool fits = std::abs(seen.width() - whole.width()) <= 1 && seen.left > 0 &&
                      seen.right < image.width() - 1;
    if (fits) return QString();
    return QString(
               "%1 \"%2\": %3 px of ink from x = %4 in a field %5 px wide; the whole text "
               "has %6 px (advance %7 px)")
        .arg(field->objectName(), field->text())
        .arg(seen.width())
        .arg(seen.left)
        .arg(field->width())
        .arg(whole.width())
        .arg(field->fontMetrics().horizontalAdvance(field->text()));
}

// Lays the window out now: a changed widget asks its parent's layout, which asks the one above,
// each by a posted request.
void settleLayouts() {
    for (int level = 0; level < 10; ++level)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

// After a resize, the X server shows the new layout only once it has carried out the resize
// and the repaint that follows: until then its picture of the window is stale. Waits (at most a
// few seconds) until it shows the row of read-outs as the window paints it.
void waitUntilTheScreenShowsTheRow(MainWindow& w) {
    const QWidget* row = w.form()->frame_data_options;
    (void)QTest::qWaitFor(
        [&] {
            return composed::region(composed::screenGrab(&w), &w, row) ==
                   composed::region(composed::widgetGrab(&w), &w, row);
        },
        5000);
}

}  // namespace

class TestWindowReadout : public QObject {
    Q_OBJECT

    TempSettings settings;  // never the user's own settings
    QTemporaryDir folder;

private slots:
    void everyFieldShowsItsWholeText_data() {
        QTest::addColumn<bool>("lowest");
        QTest::addColumn<bool>("smallest");
        QTest::newRow("lowest readings, size the window opens with") << true << false;
        QTest::newRow("highest readings, size the window opens with") << false << false;
        QTest::newRow("lowest readings, smallest size") << true << true;
        QTest::newRow("highest readings, smallest size") << false << true;
    }
    void everyFieldShowsItsWholeText() {
        QFETCH(bool, lowest);
        QFETCH(bool, smallest);
        const Extremes& extremes = lowest ? kLowest : kHighest;
        QTemporaryDir recordings(folder.filePath("XXXXXX"));
        const QString recording = writeRecording(recordings.path(), extremes);
        QVERIFY2(!recording.isEmpty(), "the recording could not be written");
        PacedVirtualTime time({});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.openRecordings({recording});
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        const QSize opened = w.size();
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling() && w.input()->isReplaying(), kTimeoutMs);
        QLineEdit* fields[] = {w.form()->lineEdit_value_0, w.form()->lineEdit_value_1,
                               w.form()->lineEdit_value_2};
        for (const Shown& sensor : sensorsOf(extremes)) {
            w.findChild<QPushButton*>(sensor.button)->click();
            const QString reading = QString::number(sensor.value, 'f', sensor.precision);
            QTRY_VERIFY2_WITH_TIMEOUT(
                fields[0]->text().contains(reading),
                qPrintable(QString("%1: the first field shows \"%2\", "
                                   "not the recorded %3")
                               .arg(sensor.button, fields[0]->text(), reading)),
                kTimeoutMs);
            // Smaller than the window allows: the window takes its smallest size.
            if (smallest) w.resize(1, 1);
            settleLayouts();
            waitUntilTheScreenShowsTheRow(w);
            const QString size = QString("%1 x %2").arg(w.width()).arg(w.height());
            if (!smallest)
                QVERIFY2(w.size() == opened,
                         qPrintable(QString("the window went from %1 x %2 to %3 by itself")
                                        .arg(opened.width())
                                        .arg(opened.height())
                                        .arg(size)));
            for (const composed::Shot& shot : composed::grabBoth(&w))
                for (const QLineEdit* field : fields) {
                    if (!field->isVisible()) continue;
                    const QString cut = cutText(shot.image, w, field);
                    QVERIFY2(
                        cut.isEmpty(),
                        qPrintable(
                            QString("%1 at %2, %3: %4").arg(sensor.button, size, shot.how, cut)));
                }
        }
        QVERIFY(boxes.shown().isEmpty());
    }

    // The free-space label shares the row: a long recording folder gives way, cut at its end,
    // and neither widens the window nor hides the amount.
    void aLongRecordingFolderLeavesTheWindowItsSize() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MainWindow w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling(), kTimeoutMs);
        const QSize opened = w.size();
        const QString longFolder =
            "/media/recordings/" + QString("a folder with a rather long name/").repeated(4);
        w.setFreeSpace(812.4, longFolder);
        settleLayouts();
        const QLabel& label = w.freeSpaceLabel();
        QVERIFY2(w.size() == opened, qPrintable(QString("the window went from %1 to %2 px wide")
                                                    .arg(opened.width())
                                                    .arg(w.width())));
        QCOMPARE(label.toolTip(), label.text());
        const QImage shown = composed::region(composed::widgetGrab(&w), &w, &label);
        const QColor background = composed::dominantColour(shown);
        const QColor ink = composed::inkColour(shown, background);
        const int seen = composed::inkSpan(shown, background).width();
        const int amount =
            composed::inkSpan(composed::textAlone("Disk Free Space: 812.4 Gb", label.font(), &label,
                                                  ink, background),
                              background)
                .width();
        QVERIFY2(seen >= amount && seen < label.width(),
                 qPrintable(QString("%1 px of ink in a label %2 px wide; the amount alone has "
                                    "%3 px")
                                .arg(seen)
                                .arg(label.width())
                                .arg(amount)));
    }
};

WIDGET_TEST_MAIN(TestWindowReadout)
#include "tst_window_readout.moc"
