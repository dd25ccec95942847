#include <QtTest>

#include "WidgetTestMain.h"
#include "mainwindow.h"

class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void showsTitledWindow();
};

void TestMainWindow::showsTitledWindow() {
    QCOMPARE(QGuiApplication::platformName(), QString("xcb"));

    MainWindow w;
    QCOMPARE(w.windowTitle(), QString("Sensor Data Viewer"));
    QVERIFY(w.centralWidget() != nullptr);

    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QVERIFY(w.isVisible());
    QVERIFY(w.width() >= 1280);
    QVERIFY(w.height() >= 800);

    w.close();
    QVERIFY(!w.isVisible());
}

WIDGET_TEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
