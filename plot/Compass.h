#pragma once

#include <qwt_compass.h>

// A compass dial for a heading in degrees from -180 to 180 (setValue), 0 at the top, clockwise.
class Compass : public QwtCompass {
    Q_OBJECT

public:
    explicit Compass(QWidget* parent = nullptr);
    ~Compass() override;

    // Restyles the dial: dark red for an uncalibrated (raw) heading, dark blue otherwise. The
    // needle goes back to 0 until the next setValue.
    void setRaw(bool raw);

protected:
    bool event(QEvent* event) override;

private:
    void useHeadingScale();
    void setupScale();
    void setupNeedle();
    void keepDialColours();
};
