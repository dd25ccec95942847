// Closes any message box that has stood unanswered for a second, and says so in the test's
// output. Tests that expect a box answer it at once with a MessageBoxWatcher; a box that no test
// expected (a refused file, a failed open) would otherwise hold the test in the box's event loop
// until ctest's time limit stops it, without a word of why. Closed, the box lets the test go on
// to fail on what it waits for, with the box's text above the failure.
#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <QVector>
#include <QtGlobal>
#include <algorithm>

class UnansweredMessageBoxes : public QObject {
public:
    static constexpr int kGraceMs = 1000;

    UnansweredMessageBoxes() {
        connect(&poll_, &QTimer::timeout, this, &UnansweredMessageBoxes::closeLongOpenBoxes);
        poll_.start(100);
    }

private:
    struct Open {
        QPointer<QMessageBox> box;
        QElapsedTimer since;
    };

    void closeLongOpenBoxes() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box != nullptr && box->isVisible() && !isTracked(box)) {
                Open open{box, QElapsedTimer()};
                open.since.start();
                open_.append(open);
            }
        }
        for (Open& open : open_) {
            if (open.box.isNull() || !open.box->isVisible() || open.since.elapsed() < kGraceMs)
                continue;
            qWarning("A message box stood unanswered for %d ms and was closed: \"%s\": %s",
                     kGraceMs, qPrintable(open.box->windowTitle()), qPrintable(open.box->text()));
            open.box->reject();
        }
        open_.erase(std::remove_if(open_.begin(), open_.end(),
                                   [](const Open& open) {
                                       return open.box.isNull() || !open.box->isVisible();
                                   }),
                    open_.end());
    }

    bool isTracked(const QMessageBox* box) const {
        for (const Open& open : open_) {
            if (open.box == box) return true;
        }
        return false;
    }

    QTimer poll_;
    QVector<Open> open_;
};
