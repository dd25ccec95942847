#include <QtTest>
#include <QtWidgets>
#include <functional>

#include "messagebox.h"
#include "palette.h"
#include "style.h"
#include "WidgetTestMain.h"

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
    void returnsIndexOfClickedButton_data();
    void returnsIndexOfClickedButton();
    void showsTitleTextIconAndStyle();
    void defaultsToOneOkButtonThatEscapeAnswers();
    void returnsMinusOneWhenClosedOtherwise();
    void buttonsWearTheAccentColour();
};

void TestMessageBox::returnsIndexOfClickedButton_data() {
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<QString>("click");
    QTest::addColumn<int>("index");
    const QStringList three = {"Yes", "No", "Cancel"};
    QTest::newRow("first") << three << "Yes" << 0;
    QTest::newRow("middle") << three << "No" << 1;
    QTest::newRow("last") << three << "Cancel" << 2;
    QTest::newRow("two, second") << QStringList{"Retry", "Abort"} << "Abort" << 1;
}

void TestMessageBox::returnsIndexOfClickedButton() {
    QFETCH(QStringList, buttons);
    QFETCH(QString, click);
    QFETCH(int, index);

    const Style style;
    QWidget parent;
    QStringList order;
    Responder responder([&](QMessageBox* box) {
        order = shownOrder(box);
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

void TestMessageBox::showsTitleTextIconAndStyle() {
    const Style style;
    QWidget parent;
    QString sheet, title, text, family;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool modal = false;
    QWidget* owner = nullptr;
    Responder responder([&](QMessageBox* box) {
        sheet = box->styleSheet();
        title = box->windowTitle();
        text = box->text();
        icon = box->icon();
        modal = box->isModal();
        owner = box->parentWidget();
        family = box->font().family();
        box->buttons().first()->click();
    });
    showMessage(&parent, style, QMessageBox::Critical, "Error",
                "Not enough GPU memory. Try a lower video resolution and/or a lower depth "
                "quality settings.");
    QVERIFY(responder.answered());
    QCOMPARE(sheet, style.messageBox);
    QCOMPARE(title, QString("Error"));
    QVERIFY(text.startsWith("Not enough GPU memory."));
    QCOMPARE(icon, QMessageBox::Critical);
    QVERIFY(modal);
    QCOMPARE(owner, &parent);
    QCOMPARE(family, style.messageBoxFont.family());
}

void TestMessageBox::defaultsToOneOkButtonThatEscapeAnswers() {
    const Style style;
    QStringList texts;
    Responder responder([&](QMessageBox* box) {
        texts = shownOrder(box);
        QTest::keyClick(box, Qt::Key_Escape);
    });
    const int result = showMessage(nullptr, style, QMessageBox::Warning, "Warning", "Careful");
    QVERIFY(responder.answered());
    QCOMPARE(texts, QStringList{"Ok"});
    QCOMPARE(result, 0);
}

void TestMessageBox::returnsMinusOneWhenClosedOtherwise() {
    const Style style;
    Responder responder([](QMessageBox* box) { box->reject(); });
    const int result =
        showMessage(nullptr, style, QMessageBox::Information, "Info", "Text", {"Save", "Discard"});
    QVERIFY(responder.answered());
    QCOMPARE(result, -1);
}

void TestMessageBox::buttonsWearTheAccentColour() {
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
             qPrintable(clr::toStr(background)));
}

WIDGET_TEST_MAIN(TestMessageBox)
#include "tst_messagebox.moc"
