// The main window as a user sees it on a simulated camera: the picture a screenshot takes of the
// whole window, not the properties the code set. The orientation view's colours and frame, the
// free-space label's text, the record button's text in each of its states and the face the
// labels are drawn in.
#include <QOpenGLWidget>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QtTest>
#include <array>

#include "ComposedWindow.h"
#include "MessageBoxWatcher.h"
#include "OGL3DWidget.h"
#include "SimulatedCameras.h"
#include "WidgetTestMain.h"
#include "mainwindow.h"
#include "ui_mainwindow.h"

namespace {

constexpr int kTimeoutMs = 10000;

const QColor kBackground(25, 25, 25);
const QColor kLime(217, 255, 66);
const QColor kFrameGrey(60, 60, 60);

// What the orientation view of an ORYX_D may show over its background: the grid, the fixed and
// the dynamic triads, the model's two greys, the frame.
const std::array<QColor, 10> kSceneColours = {
    kLime,
    QColor(255, 87, 87),
    QColor(48, 214, 149),
    QColor(0, 190, 255),
    QColor(200, 70, 70),
    QColor(40, 200, 125),
    QColor(0, 100, 200),
    QColor(51, 51, 51),
    QColor(0, 0, 0),
    kFrameGrey,
};

struct Vec {
    double r, g, b;
};
Vec operator-(const QColor& a, const QColor& b) {
    return {double(a.red() - b.red()), double(a.green() - b.green()), double(a.blue() - b.blue())};
}
double dot(const Vec& a, const Vec& b) { return a.r * b.r + a.g * b.g + a.b * b.b; }

// Largest channel error of p against background + a * u + b * v.
double residual(const Vec& p, const Vec& u, const Vec& v, double a, double b) {
    return std::max({std::abs(p.r - a * u.r - b * v.r), std::abs(p.g - a * u.g - b * v.g),
                     std::abs(p.b - a * u.b - b * v.b)});
}

// Antialiased and multisampled edges mix a scene colour, or two where lines cross, with the
// background: p lies in the triangle background, c1, c2 (or on one of its edges).
bool isBlendOfTwo(const QColor& pixel, const QColor& c1, const QColor& c2, int tolerance) {
    const Vec p = pixel - kBackground, u = c1 - kBackground, v = c2 - kBackground;
    auto onEdge = [&](const Vec& e) {
        const double len = dot(e, e);
        const double t = len > 0 ? std::clamp(dot(p, e) / len, 0.0, 1.0) : 0.0;
        return residual(p, e, e, t, 0.0) <= tolerance;
    };
    if (onEdge(u) || onEdge(v)) return true;
    const double uu = dot(u, u), uv = dot(u, v), vv = dot(v, v);
    const double det = uu * vv - uv * uv;
    if (std::abs(det) < 1e-6) return false;
    const double a = (dot(p, u) * vv - dot(p, v) * uv) / det;
    const double b = (dot(p, v) * uu - dot(p, u) * uv) / det;
    return a >= 0 && b >= 0 && a + b <= 1.05 && residual(p, u, v, a, b) <= tolerance;
}

// Pixels that no mix of the scene's colours explains: colours that wrapped around.
int foreignPixels(const QImage& view) {
    int n = 0;
    for (int y = 0; y < view.height(); ++y)
        for (int x = 0; x < view.width(); ++x) {
            const QColor p = view.pixelColor(x, y);
            bool explained = false;
            for (std::size_t i = 0; i < kSceneColours.size() && !explained; ++i)
                for (std::size_t j = i; j < kSceneColours.size() && !explained; ++j)
                    explained = isBlendOfTwo(p, kSceneColours[i], kSceneColours[j], 12);
            n += explained ? 0 : 1;
        }
    return n;
}

// The brightest pixel of the outermost three across the middle of one edge of the view: the
// frame's 1 px line, wherever rasterisation put it. (The bottom line lies on the view's last
// pixel boundary, and without multisampling it falls outside; the other three always show.)
QColor edgeColour(const QImage& view, const char* edge) {
    const int w = view.width(), h = view.height();
    QColor best(0, 0, 0);
    for (int i = 0; i < 3; ++i) {
        const QPoint p = qstrcmp(edge, "left") == 0  ? QPoint(i, h / 2)
                         : qstrcmp(edge, "top") == 0 ? QPoint(w / 2, i)
                                                     : QPoint(w - 1 - i, h / 2);
        const QColor c = view.pixelColor(p);
        if (c.red() > best.red()) best = c;
    }
    return best;
}

}  // namespace

class TestWindowLook : public QObject {
    Q_OBJECT

    // The window of the program on its default simulated camera, with the orientation view
    // initialised and drawn since. `samples` is the multisampling of the default GL format.
    struct OpenWindow {
        explicit OpenWindow(int samples)
            : time({simulatedCamera(bw::MODEL::ORYX_D)}), format(withSamples(samples)) {}
        static QSurfaceFormat withSamples(int samples) {
            const QSurfaceFormat previous = QSurfaceFormat::defaultFormat();
            QSurfaceFormat format;
            format.setSamples(samples);
            QSurfaceFormat::setDefaultFormat(format);
            return previous;
        }
        ~OpenWindow() { QSurfaceFormat::setDefaultFormat(format); }
        PacedVirtualTime time;
        QSurfaceFormat format;  // restored afterwards
        MainWindow window;
    };

    static void waitForDrawnScene(MainWindow& w) {
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        OGL3DWidget* view = w.form()->widget_3d_view;
        QTRY_VERIFY_WITH_TIMEOUT(view->isInitialised() && w.isSampling(), kTimeoutMs);
        QSignalSpy swapped(view, &QOpenGLWidget::frameSwapped);
        QVERIFY(swapped.wait(kTimeoutMs));
    }

    static void multisampling_data() {
        QTest::addColumn<int>("samples");
        QTest::newRow("single-sampled") << 0;
        QTest::newRow("16 samples, as the program asks") << 16;
    }

private slots:
    // The orientation view of the composed window: a lime grid, no colour that wrapped around,
    // and the grey frame along its edges (grey 60 where the line covers a pixel, less where
    // multisampling spreads it over two; 25 is the background, where the frame is missing).
    void orientationViewColoursAndFrame_data() { multisampling_data(); }
    void orientationViewColoursAndFrame() {
        QFETCH(int, samples);
        OpenWindow open(samples);
        MainWindow& w = open.window;
        waitForDrawnScene(w);
        if (QTest::currentTestFailed()) return;
        for (const composed::Shot& shot : composed::grabBoth(&w)) {
            const QImage view = composed::region(shot.image, &w, w.form()->widget_3d_view);
            const QImage inner = view.copy(view.rect().adjusted(3, 3, -3, -3));
            const int lime = composed::countNear(inner, kLime, 10);
            QVERIFY2(lime > 1000,
                     qPrintable(QString("%1: %2 lime pixels").arg(shot.how).arg(lime)));
            const int foreign = foreignPixels(inner);
            QVERIFY2(foreign < 20, qPrintable(QString("%1: %2 pixels of colours the scene does "
                                                      "not have, e.g. wrapped ones")
                                                  .arg(shot.how)
                                                  .arg(foreign)));
            for (const char* edge : {"left", "top", "right"}) {
                const QColor c = edgeColour(view, edge);
                const bool grey = c.red() == c.green() && c.green() == c.blue();
                QVERIFY2(
                    grey && c.red() >= 40 && c.red() <= 62,
                    qPrintable(
                        QString("%1, %2 edge: %3").arg(shot.how, edge, composed::describe(c))));
            }
        }
    }

    // Red under 10 GiB, and text that reads on the dark panel otherwise.
    void freeSpaceLabelReads_data() {
        QTest::addColumn<double>("gigabytes");
        QTest::addColumn<bool>("red");
        QTest::newRow("9.99 GiB, shown as 10.0") << 9.99 << true;
        QTest::newRow("10 GiB") << 10.0 << false;
    }
    void freeSpaceLabelReads() {
        QFETCH(double, gigabytes);
        QFETCH(bool, red);
        PacedVirtualTime time({});
        MainWindow w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        w.setFreeSpace(gigabytes, "/data");
        const QWidget* label = &w.freeSpaceLabel();
        for (const composed::Shot& shot : composed::grabBoth(&w)) {
            const QImage text = composed::region(shot.image, &w, label);
            const QColor background = composed::dominantColour(text);
            const QColor ink = composed::inkColour(text, background);
            const double contrast = composed::contrastRatio(ink, background);
            const QString seen =
                QString("%1: %2 on %3, contrast %4")
                    .arg(shot.how, composed::describe(ink), composed::describe(background))
                    .arg(contrast);
            QVERIFY2(contrast >= 4.5, qPrintable(seen));
            const bool reddish = ink.red() > 200 && ink.green() < 60 && ink.blue() < 60;
            QVERIFY2(reddish == red, qPrintable(seen));
        }
    }

    // The record button's text against its own background, where the button's border does not
    // reach: idle, under the mouse, recording (checked), both, and disabled. WCAG AA asks 4.5:1
    // of small text.
    void recordButtonTextReads_data() {
        QTest::addColumn<bool>("recording");
        QTest::addColumn<bool>("hovered");
        QTest::addColumn<bool>("disabled");
        QTest::newRow("idle") << false << false << false;
        QTest::newRow("under the mouse") << false << true << false;
        QTest::newRow("recording") << true << false << false;
        QTest::newRow("recording, under the mouse") << true << true << false;
        QTest::newRow("disabled") << false << false << true;
    }
    void recordButtonTextReads() {
        QFETCH(bool, recording);
        QFETCH(bool, hovered);
        QFETCH(bool, disabled);
        QTemporaryDir folder;
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MessageBoxWatcher boxes;
        MainWindow w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QToolButton* button = w.form()->toolButton_save;
        QTRY_VERIFY_WITH_TIMEOUT(w.isSampling(), kTimeoutMs);
        // As the window does for a camera without motion sensors.
        if (disabled) w.form()->frame_data_options->setEnabled(false);
        if (recording) {
            w.recordingOptions().saveFolder = folder.path();
            button->click();
            QVERIFY2(button->isChecked() && !w.recordingPath().isEmpty(), "not recording");
        }
        // Elsewhere, or onto the button; the pointer of the X server starts anywhere.
        QTest::mouseMove(hovered ? static_cast<QWidget*>(button) : w.form()->label_sensor_type);
        QTRY_COMPARE_WITH_TIMEOUT(button->underMouse(), hovered, kTimeoutMs);
        for (const composed::Shot& shot : composed::grabBoth(&w)) {
            // Inside the 2 px border and its rounded corners.
            const QImage face = composed::region(shot.image, &w, button, 3);
            const QColor background = composed::dominantColour(face);
            const QColor ink = composed::inkColour(face, background);
            const double contrast = composed::contrastRatio(ink, background);
            QVERIFY2(contrast >= 4.5,
                     qPrintable(QString("%1: \"%2\" in %3 on %4, contrast %5")
                                    .arg(shot.how, button->text(), composed::describe(ink),
                                         composed::describe(background))
                                    .arg(contrast, 0, 'f', 2)));
        }
        if (recording) button->click();
        QVERIFY(boxes.shown().isEmpty());
    }

    // The labels' sheets name NB Akademie families, which the project does not ship; they are
    // drawn in the bundled Roboto, the Medium ones in its Medium face. Measured on the glyphs:
    // the label's word is as wide as Roboto Medium draws it (the usual fallback, DejaVu Sans,
    // is wider by a tenth).
    void labelsAreDrawnInRoboto() {
        PacedVirtualTime time({simulatedCamera(bw::MODEL::ORYX_D)});
        MainWindow w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QLabel* label = w.form()->label_sensor_type_top;
        // A long word tells the faces apart by several pixels.
        QTRY_COMPARE_WITH_TIMEOUT(label->text(), QString("Accelerometer"), kTimeoutMs);
        QFont roboto(QStringLiteral("Roboto"));
        roboto.setPointSizeF(label->font().pointSizeF());
        roboto.setWeight(QFont::Medium);
        QCOMPARE(QFontInfo(roboto).styleName(), QString("Medium"));
        for (const composed::Shot& shot : composed::grabBoth(&w)) {
            const QImage image = composed::region(shot.image, &w, label);
            const QColor background = composed::dominantColour(image);
            const QColor ink = composed::inkColour(image, background);
            const int drawn = composed::inkSpan(image, background).width();
            const int expected =
                composed::inkSpan(
                    composed::textAlone(label->text(), roboto, label, ink, background), background)
                    .width();
            QVERIFY2(std::abs(drawn - expected) <= 1,
                     qPrintable(QString("%1: \"%2\" %3 px wide, %4 px in Roboto Medium; the "
                                        "label's font resolves to %5 %6")
                                    .arg(shot.how, label->text())
                                    .arg(drawn)
                                    .arg(expected)
                                    .arg(QFontInfo(label->font()).family(),
                                         QFontInfo(label->font()).styleName())));
        }
    }
};

WIDGET_TEST_MAIN(TestWindowLook)
#include "tst_window_look.moc"
