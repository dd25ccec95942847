// The slim bar beneath the chart while a recording is replayed: play/pause, the position with
// elapsed and total time, the speed, one-sample steps with the arrow keys while paused, and a
// button that asks for the recording's IMU noise.
// It only shows and asks; the window carries its requests to the camera.
#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QShortcut;
class QSlider;
class QToolButton;

class ReplayBar : public QWidget {
    Q_OBJECT

public:
    explicit ReplayBar(QWidget* parent = nullptr);

    // A recording was opened: playing, at 1×, at its first frame.
    void showRecording(int frameCount, double totalSeconds);
    // Where the replay stands. Ignored while the user holds the slider.
    void showPosition(int frame, double elapsedSeconds);
    bool isPaused() const;

signals:
    void pauseToggled(bool paused);
    void seekRequested(int frame);
    void speedChosen(float factor);
    // -1 or +1: one sample back or forward, only while paused.
    void stepRequested(int frames);
    // The user asks for the IMU noise of the recording.
    void imuNoiseRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void setPaused(bool paused);
    void showTimes(double elapsedSeconds);

    QToolButton* playPause;
    QSlider* position;
    QLabel* times;
    QComboBox* speed;
    QPushButton* imuNoise;
    QList<QShortcut*> steps;  // left and right arrow
    double totalSeconds = 0.0;
};

// "m:ss.s" under an hour, "h:mm:ss" from then on.
QString replayTimeText(double seconds);
