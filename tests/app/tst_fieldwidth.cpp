// The width a line edit needs to show a text whole, checked on the pictures of real line edits in
// the looks a style can give them: a frame, a style sheet's border and padding, text margins.
#include <QLineEdit>
#include <QtTest>

#include "ComposedWindow.h"
#include "FieldWidth.h"
#include "WidgetTestMain.h"

namespace {

const QColor kInk(220, 0, 0);
const QColor kBackground(Qt::white);

// The columns that hold the text's red ink, whatever frame or border surrounds it.
composed::InkSpan redSpan(const QImage& image) {
    composed::InkSpan span{image.width(), -1};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() - std::max(c.green(), c.blue()) > 60) {
                span.left = std::min(span.left, x);
                span.right = std::max(span.right, x);
            }
        }
    return span;
}

// Whether `field` shows all of its text: its ink is as wide as the text's drawn whole (a text
// too wide for its field is scrolled and cut at the field's inner edges).
bool showsWhole(QLineEdit& field) {
    const QImage image = field.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage whole = composed::textAlone(field.text(), field.font(), &field, kInk, kBackground);
    return std::abs(redSpan(image).width() - redSpan(whole).width()) <= 1;
}

}  // namespace

class TestFieldWidth : public QObject {
    Q_OBJECT

private slots:
    void theWidestTextShowsWhole_data() {
        QTest::addColumn<QString>("sheet");
        QTest::addColumn<bool>("frame");
        QTest::addColumn<int>("textMargin");
        QTest::newRow("framed") << QString() << true << 0;
        QTest::newRow("no frame") << QString() << false << 0;
        QTest::newRow("sheet without border") << "QLineEdit{border: 0px;}" << true << 0;
        QTest::newRow("sheet with border and padding")
            << "QLineEdit{border: 3px solid gray;padding: 0 9px;}" << true << 0;
        QTest::newRow("text margins") << QString() << true << 7;
    }
    void theWidestTextShowsWhole() {
        QFETCH(QString, sheet);
        QFETCH(bool, frame);
        QFETCH(int, textMargin);
        const QStringList texts = {"X -2048.000 µT", "Atmospheric Pressure 1260.00 hPa",
                                   "Left 125.00°C"};
        QLineEdit field;
        field.setStyleSheet("QLineEdit{color: rgb(220,0,0); background: white;}" + sheet);
        field.setFrame(frame);
        field.setTextMargins(textMargin, 0, textMargin, 0);
        field.setAlignment(Qt::AlignCenter);
        field.setReadOnly(true);
        field.ensurePolished();
        const int width = widthShowingWhole(field, texts);
        field.resize(width, field.sizeHint().height());
        field.show();
        for (const QString& text : texts) {
            field.setText(text);
            QVERIFY2(showsWhole(field),
                     qPrintable(QString("\"%1\" cut at %2 px").arg(text).arg(width)));
        }
        // Ten pixels narrower, the widest is cut: the width is not a generous guess.
        field.resize(width - 10, field.height());
        field.setText(texts[1]);
        QVERIFY2(!showsWhole(field), qPrintable(QString("whole at %1 px").arg(width - 10)));
    }
};

WIDGET_TEST_MAIN(TestFieldWidth)
#include "tst_fieldwidth.moc"
