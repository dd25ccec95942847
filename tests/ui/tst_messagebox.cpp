#include <QtTest>
#include <QtWidgets>
#include <functional>

#include "WidgetTestMain.h"
#include "messagebox.h"
#include "style.h"

namespace {

// Hands the box, once it shows, to `answer`, from inside the box's own event loop.
struct Responder {
    explicit Responder(std::function<void(QMessageBox*)> answer) {
        timer.callOnTimeout([this, answer] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(widget);
                if (!answered && box && box->isVisible() &&
                    box->objectName() == kMessageBoxObjectName) {
                    answered = true;
                    timer.stop();
                    answer(box);
                }
            }
        });
        timer.start(10);
    }
    QTimer timer;
    bool answered = false;
};

// Button texts from left to right as shown.
QStringList shownOrder(QMessageBox* box) {
    QList<QAbstractButton*> buttons = box->buttons();
    std::sort(buttons.begin(), buttons.end(), [](QAbstractButton* a, QAbstractButton* b) {
        return a->mapToGlobal(QPoint()).x() < b->mapToGlobal(QPoint()).x();
    });
    QStringList texts;
    for (QAbstractButton* button : buttons) texts << button->text();
    return texts;
}

}  // namespace

class TestMessageBox : public QObject {
    Q_OBJECT

private slots:
    // Buttons show in the order given; the answer is the index of the one that closed the box,
    // the first being the default that Enter answers. Without a list the box has one "Ok"
    // button, which Escape answers too; a box closed otherwise answers -1.
    void returnsIndexOfTheAnsweringButton_data() {
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<QString>("click");
        QTest::addColumn<int>("index");
        const QStringList three = {"Yes", "No", "Cancel"};
        QTest::newRow("first") << three << "Yes" << 0;
        QTest::newRow("middle") << three << "No" << 1;
        QTest::newRow("last") << three << "Cancel" << 2;
        QTest::newRow("Enter takes the first") << three << "Enter" << 0;
        QTest::newRow("default list: Ok, which Escape answers") << QStringList() << "Escape" << 0;
        QTest::newRow("closed otherwise") << three << "reject" << -1;
    }

    void returnsIndexOfTheAnsweringButton() {
        QFETCH(QStringList, buttons);
        QFETCH(QString, click);
        QFETCH(int, index);
        const Style style;
        QWidget parent;
        QStringList order;
        Responder responder([&](QMessageBox* box) {
            order = shownOrder(box);
            if (click == "Enter") return QTest::keyClick(box, Qt::Key_Return);
            if (click == "Escape") return QTest::keyClick(box, Qt::Key_Escape);
            if (click == "reject") return box->reject();
            for (QAbstractButton* button : box->buttons()) {
                if (button->text() == click) QTest::mouseClick(button, Qt::LeftButton);
            }
        });
        // An empty list stands for the default argument.
        const int result = buttons.isEmpty() ? showMessage(&parent, style, QMessageBox::Critical,
                                                           "Error", "Careful")
                                             : showMessage(&parent, style, QMessageBox::Question,
                                                           "Question", "Proceed?", buttons);
        QVERIFY(responder.answered);
        QCOMPARE(order, buttons.isEmpty() ? QStringList{"Ok"} : buttons);
        QCOMPARE(result, index);
    }

    void buttonsWearTheAccentColour() {
        const Style style;
        QColor background;
        Responder responder([&](QMessageBox* box) {
            QAbstractButton* button = box->buttons().first();
            const QImage image = button->grab().toImage();
            background = image.pixelColor(6, image.height() / 2);
            button->click();
        });
        showMessage(nullptr, style, QMessageBox::Information, "Info", "Text");
        QVERIFY(responder.answered);
        const QColor lime(217, 255, 66);
        QVERIFY2(qAbs(background.red() - lime.red()) < 8 &&
                     qAbs(background.green() - lime.green()) < 8 &&
                     qAbs(background.blue() - lime.blue()) < 8,
                 qPrintable(background.name()));
    }
};

WIDGET_TEST_MAIN(TestMessageBox)
#include "tst_messagebox.moc"
