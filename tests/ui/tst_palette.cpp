#include <QtTest>

#include "palette.h"

namespace {

// Initialised before main(), like the static tables of other files that take their colours
// from the palette: the palette texts must already be set when this runs.
const QString axisColoursAtStartUp = clr::xAxis + clr::yAxis + clr::zAxis + clr::black;

}  // namespace

class TestPalette : public QObject {
    Q_OBJECT

private slots:
    void toStrFormatsDecimalWithoutPadding_data();
    void toStrFormatsDecimalWithoutPadding();
    void textsAreExact_data();
    void textsAreExact();
    void derivedTextsFollowTheirSource();
    void colourConstantsAreOpaqueRgb_data();
    void colourConstantsAreOpaqueRgb();
    void textsAreReadyDuringStaticInitialisation();
};

void TestPalette::toStrFormatsDecimalWithoutPadding_data() {
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QString>("text");
    QTest::newRow("blue") << QColor(0, 190, 255) << "rgb(0,190,255)";
    QTest::newRow("black") << QColor(0, 0, 0) << "rgb(0,0,0)";
    QTest::newRow("white") << QColor(255, 255, 255) << "rgb(255,255,255)";
    QTest::newRow("single digits") << QColor(5, 5, 5) << "rgb(5,5,5)";
    QTest::newRow("mixed widths") << QColor(7, 80, 200) << "rgb(7,80,200)";
    QTest::newRow("alpha ignored") << QColor(10, 20, 30, 40) << "rgb(10,20,30)";
}

void TestPalette::toStrFormatsDecimalWithoutPadding() {
    QFETCH(QColor, colour);
    QFETCH(QString, text);
    QCOMPARE(clr::toStr(colour), text);
}

// The palette texts are an external contract: style sheets and other tools use them verbatim,
// odd spellings included.
void TestPalette::textsAreExact_data() {
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QString& actual, const char* expected) {
        QTest::newRow(name) << actual << QString::fromLatin1(expected);
    };
    row("asphalt", clr::asphalt, "rgb(52,73,94)");
    row("concrete", clr::concrete, "rgb(149,165,166)");
    row("silver", clr::silver, "rgb(189,195,199)");
    row("clouds", clr::clouds, "rgb(236,240,241)");
    row("blue", clr::blue, "rgb(0,190,255)");
    row("blue_h keeps leading zeros", clr::blue_h, "rgb(00,149,243)");
    row("blue_light", clr::blue_light, "rgba(44,201,255,123)");
    row("green", clr::green, "rgb(48,214,149)");
    row("green_h", clr::green_h, "rgb(38,171,119)");
    row("red", clr::red, "rgb(255,87,87)");
    row("red_h", clr::red_h, "rgb(204,70,70)");
    row("singleAxis", clr::singleAxis, "rgb(255,87,48)");
    row("white", clr::white, "rgb(255,255,255)");
    row("transparent", clr::transparent, "rgba(255,255,255,0)");
    row("black", clr::black, "rgb(58,58,58)");
    row("soft_black", clr::soft_black, "rgb(72,72,72)");
    row("med_black", clr::med_black, "rgb(130,130,130)");
    row("grey", clr::grey, "rgb(210,210,210)");
    row("lightgrey", clr::lightgrey, "rgb(235,235,235)");
    row("yellow keeps its spaces", clr::yellow, "rgb(255, 205, 0)");
    row("bw_lime", clr::bw_lime, "rgb(217,255,66)");
    row("bw_dark_lime", clr::bw_dark_lime, "rgb(187,225,36)");
    row("bw_white", clr::bw_white, "rgb(255,255,255)");
    row("bw_pearl", clr::bw_pearl, "rgb(242,242,242)");
    row("bw_iron", clr::bw_iron, "rgb(194,194,194)");
    row("bw_ash", clr::bw_ash, "rgb(137,137,137)");
    row("bw_charcoal", clr::bw_charcoal, "rgb(60,60,60)");
    row("bw_steel", clr::bw_steel, "rgb(45,45,45)");
    row("bw_soil", clr::bw_soil, "rgb(25,25,25)");
    row("bw_black", clr::bw_black, "rgb(5,5,5)");
    row("bw_demo_red", clr::bw_demo_red, "rgb(255,100,100)");
}

void TestPalette::textsAreExact() {
    QFETCH(QString, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected);
}

void TestPalette::derivedTextsFollowTheirSource() {
    QCOMPARE(clr::xAxis, clr::red);
    QCOMPARE(clr::yAxis, clr::green);
    QCOMPARE(clr::zAxis, clr::blue);
    QCOMPARE(clr::company_clr, clr::bw_lime);
    QCOMPARE(clr::company_clr_h, clr::bw_dark_lime);
    QCOMPARE(clr::blue, clr::toStr(clr::blue_clr));
    QCOMPARE(clr::green, clr::toStr(clr::green_clr));
    QCOMPARE(clr::black, clr::toStr(clr::dark));
    QCOMPARE(clr::soft_black, clr::toStr(clr::soft_black_clr));
    QCOMPARE(clr::med_black, clr::toStr(clr::med_black_clr));
    QCOMPARE(clr::grey, clr::toStr(clr::grey_clr));
    // The GL views clear to bw_soil given as a QColor; both spellings must agree.
    QCOMPARE(clr::toStr(clr::bw_soil_clr), clr::bw_soil);
    QCOMPARE(clr::toStr(clr::bw_black_clr), clr::bw_black);
}

void TestPalette::colourConstantsAreOpaqueRgb_data() {
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<int>("red");
    QTest::addColumn<int>("green");
    QTest::addColumn<int>("blue");
    QTest::newRow("blue_clr") << clr::blue_clr << 0 << 190 << 255;
    QTest::newRow("green_clr") << clr::green_clr << 48 << 214 << 149;
    QTest::newRow("dark") << clr::dark << 58 << 58 << 58;
    QTest::newRow("soft_black_clr") << clr::soft_black_clr << 72 << 72 << 72;
    QTest::newRow("med_black_clr") << clr::med_black_clr << 130 << 130 << 130;
    QTest::newRow("grey_clr") << clr::grey_clr << 210 << 210 << 210;
    QTest::newRow("bw_black_clr") << clr::bw_black_clr << 5 << 5 << 5;
    QTest::newRow("bw_soil_clr") << clr::bw_soil_clr << 25 << 25 << 25;
}

void TestPalette::colourConstantsAreOpaqueRgb() {
    QFETCH(QColor, colour);
    QFETCH(int, red);
    QFETCH(int, green);
    QFETCH(int, blue);
    // Equality of QColor includes the colour model, so this also pins plain RGB.
    QCOMPARE(colour, QColor::fromRgb(red, green, blue));
    QCOMPARE(colour.red(), red);
    QCOMPARE(colour.green(), green);
    QCOMPARE(colour.blue(), blue);
    QCOMPARE(colour.alpha(), 255);
}

void TestPalette::textsAreReadyDuringStaticInitialisation() {
    QCOMPARE(axisColoursAtStartUp,
             QString("rgb(255,87,87)rgb(48,214,149)rgb(0,190,255)rgb(58,58,58)"));
}

QTEST_APPLESS_MAIN(TestPalette)
#include "tst_palette.moc"
