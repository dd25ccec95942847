// Answers a modal dialog from inside its own event loop: waits for a dialog of type Dialog and
// hands it to a callback, once. Any other modal window that shows up meanwhile or afterwards
// (a warning the test did not expect), and the expected one if it never arrives, is rejected
// and counted, so that a test fails instead of waiting forever.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <functional>

template <class Dialog>
class ModalResponder : public QObject {
public:
    explicit ModalResponder(std::function<void(Dialog*)> answer, int patience = 3000)
        : answer(std::move(answer)), patience(patience) {
        timer.setInterval(10);
        connect(&timer, &QTimer::timeout, this, &ModalResponder::poll);
        timer.start();
    }

    bool answered() const { return done; }
    int unexpected() const { return rejected; }

private:
    void poll() {
        QWidget* modal = QApplication::activeModalWidget();
        auto* dialog = qobject_cast<Dialog*>(modal);
        if (!done && dialog != nullptr && dialog->isVisible()) {
            done = true;
            // Answer from the event loop rather than from this timer: the answer may open another
            // modal window (a warning), and a timer does not fire again while its slot runs.
            QMetaObject::invokeMethod(
                this, [this, dialog] { answer(dialog); }, Qt::QueuedConnection);
            return;
        }
        if (done || --patience <= 0) {
            if (auto* other = qobject_cast<QDialog*>(modal);
                other != nullptr && other->isVisible()) {
                ++rejected;
                other->reject();
            }
        }
    }

    std::function<void(Dialog*)> answer;
    int patience;
    QTimer timer;
    bool done = false;
    int rejected = 0;
};
