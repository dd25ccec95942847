// The camera image view in a real window: letter-box viewports, the click rules and the drawing
// of a BGRA frame from host memory.
#include <QtTest>
#include <memory>
#include <vector>

#include "OGL2DWidget.h"
#include "programstates.h"

class TstImageView : public QObject {
    Q_OBJECT

    std::unique_ptr<OGL2DWidget> view;

    void showView(int w, int h) {
        view = std::make_unique<OGL2DWidget>();
        view->resize(w, h);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    }

    void release(Qt::MouseButton button, QPointF pos) {
        QMouseEvent ev(QEvent::MouseButtonRelease, pos, QPointF(view->mapToGlobal(pos.toPoint())),
                       button, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(view.get(), &ev);
    }

    static QPointF clicked() {
        return {ProgramStates::getDoubleAttr(1), ProgramStates::getDoubleAttr(2)};
    }

private slots:
    void init() {
        ProgramStates::setDoubleAttr(1, -1.0);
        ProgramStates::setDoubleAttr(2, -1.0);
        ProgramStates::setIntAttr(4, 0);
    }
    void cleanup() { view.reset(); }

    void letterBoxViewports() {
        showView(800, 800);
        QSignalSpy spy(view.get(), &OGL2DWidget::init);
        view->InitGLProcess(1920, 1080, 1920 * 4);
        QCOMPARE(spy.count(), 1);
        QVERIFY(view->isAvailable());
        QCOMPARE(view->getViewport(), QRect(0, 175, 800, 450));
        view->resize(1000, 400);
        QTRY_COMPARE(view->getViewport(), QRect(144, 0, 711, 400));
        view->Deinit();
        QVERIFY(!view->isAvailable());
    }

    // A left click stores its place in the picture as shares of the width and height (rounded
    // to whole pixels first); outside the picture it is ignored, a right click clears it, and a
    // locked selection in selection mode ignores left clicks.
    void clickRules() {
        showView(400, 200);
        release(Qt::LeftButton, {99.5, 150.4});
        QCOMPARE(clicked(), QPointF(0.25, 0.75));
        release(Qt::LeftButton, {-3, 50});
        release(Qt::LeftButton, {420, 10});
        QCOMPARE(clicked(), QPointF(0.25, 0.75));
        release(Qt::LeftButton, {400, 200});  // the far edges are inside
        QCOMPARE(clicked(), QPointF(1.0, 1.0));
        release(Qt::RightButton, {-50, -50});
        QCOMPARE(clicked(), QPointF(-1.0, -1.0));

        view->setSelectionLocked(true);
        ProgramStates::setIntAttr(4, 1);
        release(Qt::LeftButton, {100, 50});
        QCOMPARE(clicked(), QPointF(-1.0, -1.0));
        ProgramStates::setIntAttr(4, 0);  // both conditions are needed
        release(Qt::LeftButton, {100, 50});
        QCOMPARE(clicked(), QPointF(0.25, 0.25));
    }

    void drawsHostFrameWithRedAndBlueSwapped() {
        showView(400, 400);
        const int w = 64, h = 36, pitch = w * 4 + 16;  // rows padded
        view->InitGLProcess(w, h, pitch);
        // Top half pure blue, bottom half pure red, in B, G, R, A order.
        std::vector<std::uint8_t> frame(static_cast<std::size_t>(pitch) * h, 0);
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                std::uint8_t* px = &frame[static_cast<std::size_t>(y) * pitch + 4 * x];
                px[y < h / 2 ? 0 : 2] = 255;
                px[3] = 255;
            }
        }
        view->setHostFrame(frame.data());
        view->Ingest();
        view->updateGL();  // paint now rather than on the next event loop pass
        const QImage img = view->grabFrameBuffer();
        // Viewport (0, 87, 400, 225): black bars above and below, blue top, red bottom.
        QCOMPARE(img.pixelColor(200, 40), QColor(Qt::black));
        QCOMPARE(img.pixelColor(200, 360), QColor(Qt::black));
        QCOMPARE(img.pixelColor(200, 130), QColor(Qt::blue));
        QCOMPARE(img.pixelColor(200, 270), QColor(Qt::red));
        // Without a frame to draw, all black.
        view->stopDraw();
        view->updateGL();
        QCOMPARE(view->grabFrameBuffer().pixelColor(200, 130), QColor(Qt::black));
    }
};

QTEST_MAIN(TstImageView)
#include "tst_imageview.moc"
