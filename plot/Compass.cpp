#include "Compass.h"

#include <qwt_compass.h>
#include <qwt_dial_needle.h>

#include <QEvent>
#include <QPalette>

namespace {

// The dial disc in the base colour on a slightly darker background, its frame shaded with the
// lighter and darker tones, ticks and direction labels in white. Every colour group alike: the
// dial looks the same whether or not its window is active.
QPalette dialPalette(const QColor& base) {
    QPalette palette;
    for (int i = 0; i < QPalette::NColorGroups; ++i) {
        const auto group = static_cast<QPalette::ColorGroup>(i);
        palette.setColor(group, QPalette::Base, base);
        // Also where keepDialColours finds the base colour again: style sheets never set Mid.
        palette.setColor(group, QPalette::Mid, base);
        palette.setColor(group, QPalette::Window, base.darker(120));
        // The face inside the scale.
        palette.setColor(group, QPalette::WindowText, base);
        palette.setColor(group, QPalette::Light, base.lighter(120));
        palette.setColor(group, QPalette::Dark, base.darker(120));
        palette.setColor(group, QPalette::Text, Qt::white);
    }
    return palette;
}

}  // namespace

Compass::Compass(QWidget* parent) : QwtCompass(parent) {
    useHeadingScale();
    setRaw(false);
}

Compass::~Compass() = default;

void Compass::setRaw(bool raw) {
    const QColor base = raw ? QColor(Qt::darkRed) : QColor(Qt::darkBlue);
    setPalette(dialPalette(base));
    setLineWidth(4);
    setFrameShadow(QwtDial::Sunken);
    setupScale();
    setupNeedle();
    setValue(0.0);
}

bool Compass::event(QEvent* event) {
    const bool handled = QwtCompass::event(event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) {
        keepDialColours();
    }
    return handled;
}

// A style sheet of the window around the dial (the calibration dialog has one for all of its
// widgets) sets the window, base, text and foreground roles of the palette whenever it polishes
// the dial, which turned the face near-white. The dial's own palette is put back after.
void Compass::keepDialColours() {
    const QPalette own = dialPalette(palette().color(QPalette::Mid));
    if (palette() != own) {
        setPalette(own);
    }
}

// Headings run from -180 to 180 degrees. On QwtCompass's own scale, 0 to 360, a negative heading
// showed as 0: Qwt 6.1 clamps a value outside the scale, wrapping or not (370 shows as 360). So
// the scale starts at -180, at the bottom of the dial (origin 90: angles go clockwise from
// 3 o'clock), which leaves 0 at the top and 90 to the right.
void Compass::useHeadingScale() {
    setScale(-180.0, 180.0);
    setOrigin(90.0);
}

void Compass::setupScale() {
    auto* scaleDraw = new QwtCompassScaleDraw();
    scaleDraw->enableComponent(QwtAbstractScaleDraw::Ticks, true);
    scaleDraw->enableComponent(QwtAbstractScaleDraw::Labels, true);
    scaleDraw->enableComponent(QwtAbstractScaleDraw::Backbone, false);
    scaleDraw->setTickLength(QwtScaleDiv::MinorTick, 1.0);
    scaleDraw->setTickLength(QwtScaleDiv::MediumTick, 1.0);
    scaleDraw->setTickLength(QwtScaleDiv::MajorTick, 3.0);
    // The dial takes ownership and deletes the previous scale draw.
    setScaleDraw(scaleDraw);
    setScaleMaxMajor(36);
    setScaleMaxMinor(5);
}

void Compass::setupNeedle() {
    // Replaces (and deletes) the previous needle.
    setNeedle(
        new QwtCompassMagnetNeedle(QwtCompassMagnetNeedle::TriangleStyle, Qt::white, Qt::red));
}
