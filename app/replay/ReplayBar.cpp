#include "ReplayBar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <cmath>

QString replayTimeText(double seconds) {
    const double s = std::max(0.0, seconds);
    const auto whole = static_cast<long long>(s);
    if (whole >= 3600) {
        return QStringLiteral("%1:%2:%3")
            .arg(whole / 3600)
            .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
            .arg(whole % 60, 2, 10, QLatin1Char('0'));
    }
    const double withinMinute = s - static_cast<double>(whole / 60 * 60);
    return QStringLiteral("%1:%2")
        .arg(whole / 60)
        .arg(std::floor(withinMinute * 10.0) / 10.0, 4, 'f', 1, QLatin1Char('0'));
}

ReplayBar::ReplayBar(QWidget* parent)
    : QWidget(parent),
      playPause(new QToolButton(this)),
      position(new QSlider(Qt::Horizontal, this)),
      times(new QLabel(this)),
      speed(new QComboBox(this)),
      imuNoise(new QPushButton(tr("IMU Noise"), this)) {
    setObjectName(QStringLiteral("replayBar"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(playPause);
    layout->addWidget(position, 1);
    layout->addWidget(times);
    layout->addWidget(speed);
    layout->addWidget(imuNoise);
    imuNoise->setObjectName(QStringLiteral("imuNoiseButton"));
    imuNoise->setFocusPolicy(Qt::NoFocus);
    imuNoise->setToolTip(tr("Allan deviation and noise terms of this recording's IMU"));
    connect(imuNoise, &QPushButton::clicked, this, &ReplayBar::imuNoiseRequested);

    playPause->setCheckable(true);  // checked: paused
    connect(playPause, &QToolButton::toggled, this, [this](bool paused) {
        setPaused(paused);
        emit pauseToggled(paused);
    });
    position->setFocusPolicy(Qt::NoFocus);  // the arrow keys step; the slider does not take them
    connect(position, &QSlider::valueChanged, this, &ReplayBar::seekRequested);

    for (const auto& [text, factor] : {std::pair{"\u00bc\u00d7", 0.25f}, std::pair{"1\u00d7", 1.f},
                                       std::pair{"4\u00d7", 4.f}, std::pair{"16\u00d7", 16.f}})
        speed->addItem(QString::fromUtf8(text), factor);
    connect(speed, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { emit speedChosen(speed->itemData(index).toFloat()); });

    // Enabled only while paused, so that playing leaves the arrow keys to the other widgets.
    for (const auto& [key, frames] : {std::pair{Qt::Key_Left, -1}, std::pair{Qt::Key_Right, 1}}) {
        auto* shortcut = new QShortcut(QKeySequence(key), this);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this, frames = frames] { emit stepRequested(frames); });
        steps << shortcut;
    }
    setPaused(false);
}

void ReplayBar::showRecording(int frameCount, double total) {
    totalSeconds = total;
    const QSignalBlocker blockSlider(position), blockButton(playPause);
    position->setRange(0, std::max(0, frameCount - 1));
    position->setValue(0);
    playPause->setChecked(false);
    setPaused(false);
    speed->setCurrentIndex(speed->findData(1.f));
    showTimes(0.0);
}

void ReplayBar::showPosition(int frame, double elapsedSeconds) {
    if (position->isSliderDown()) return;
    const QSignalBlocker block(position);
    position->setValue(frame);
    showTimes(elapsedSeconds);
}

bool ReplayBar::isPaused() const { return playPause->isChecked(); }

void ReplayBar::setPaused(bool paused) {
    playPause->setText(paused ? tr("Play") : tr("Pause"));
    for (QShortcut* step : steps) step->setEnabled(paused && isVisible());
}

void ReplayBar::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    setPaused(isPaused());
}

void ReplayBar::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    setPaused(isPaused());
}

void ReplayBar::showTimes(double elapsedSeconds) {
    times->setText(tr("%1 / %2").arg(replayTimeText(elapsedSeconds), replayTimeText(totalSeconds)));
}
