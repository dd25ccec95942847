#include <QtTest>
#include <QtWidgets>
#include <functional>

#include "messagebox.h"
#include "style.h"

namespace {

// Waits (inside the message box's own event loop) for the box to appear, then hands it to
// `answer`. Stops polling once it has answered.
class Responder : public QObject {
public:
    explicit Responder(std::function<void(QMessageBox*)> answer) : answer(std::move(answer)) {
        timer.setInterval(10);
        connect(&timer, &QTimer::timeout, this, &Responder::poll);
        timer.start();
    }
    bool answered() const { return done; }

private:
    void poll() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box && box->isVisible() && box->objectName() == kMessageBoxObjectName) {
                timer.stop();
                done = true;
                answer(box);
                return;
            }
        }
    }

    std::function<void(QMessageBox*)> answer;
    QTimer timer;
    bool done = false;
};

QAbstractButton* buttonWithText(QMessageBox* box, const QString& text) {
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}

// Button texts from left to right as shown.
QStringList shownOrder(QMessageBox* box) {
    QList<QAbstractButton*> buttons = box->buttons();
    std::sort(buttons.begin(), buttons.end(), [](QAbstractButton* a, QAbstractButton* b) {
        return a->mapToGlobal(QPoint()).x() < b->mapToGlobal(QPoint()).x();
    });
    QStringList texts;
    for (QAbstractButton* button : buttons) {
        texts << button->text();
    }
    return texts;
}

}  // namespace

class TestMessageBox : public QObject {
    Q_OBJECT

private slots:
    // Buttons show in the order given; the answer is the index of the one that closed the box,
    // the first being the default that Enter answers.
    void returnsIndexOfTheAnsweringButton_data() {
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<QString>("click");
        QTest::addColumn<int>("index");
        const QStringList three = {"Yes", "No", "Cancel"};
        QTest::newRow("first") << three << "Yes" << 0;
        QTest::newRow("middle") << three << "No" << 1;
        QTest::newRow("last") << three << "Cancel" << 2;
        QTest::newRow("two, second") << QStringList{"Retry", "Abort"} << "Abort" << 1;
        QTest::newRow("Enter takes the first") << three << QString() << 0;
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
            if (click.isEmpty()) {
                QTest::keyClick(box, Qt::Key_Return);
                return;
            }
            QAbstractButton* button = buttonWithText(box, click);
            QVERIFY(button);
            QTest::mouseClick(button, Qt::LeftButton);
        });
        const int result =
            showMessage(&parent, style, QMessageBox::Question, "Question", "Proceed?", buttons);
        QVERIFY(responder.answered());
        QCOMPARE(order, buttons);
        QCOMPARE(result, index);
    }

    // Without a list the box has one "Ok" button, which Escape answers too.
    void defaultsToOneOkButtonThatEscapeAnswers() {
        const Style style;
        QWidget parent;
        QStringList texts;
        QString title, text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        bool modalOnParent = false;
        Responder responder([&](QMessageBox* box) {
            texts = shownOrder(box);
            title = box->windowTitle();
            text = box->text();
            icon = box->icon();
            modalOnParent = box->isModal() && box->parentWidget() == &parent;
            QTest::keyClick(box, Qt::Key_Escape);
        });
        const int result = showMessage(&parent, style, QMessageBox::Critical, "Error", "Careful");
        QVERIFY(responder.answered());
        QCOMPARE(texts, QStringList{"Ok"});
        QCOMPARE(result, 0);
        QCOMPARE(title, QString("Error"));
        QCOMPARE(text, QString("Careful"));
        QCOMPARE(icon, QMessageBox::Critical);
        QVERIFY(modalOnParent);
    }

    void returnsMinusOneWhenClosedOtherwise() {
        const Style style;
        Responder responder([](QMessageBox* box) { box->reject(); });
        const int result = showMessage(nullptr, style, QMessageBox::Information, "Info", "Text",
                                       {"Save", "Discard"});
        QVERIFY(responder.answered());
        QCOMPARE(result, -1);
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
        QVERIFY(responder.answered());
        const QColor lime(217, 255, 66);
        QVERIFY2(qAbs(background.red() - lime.red()) < 8 &&
                     qAbs(background.green() - lime.green()) < 8 &&
                     qAbs(background.blue() - lime.blue()) < 8,
                 qPrintable(background.name()));
    }
};

QTEST_MAIN(TestMessageBox)
#include "tst_messagebox.moc"
