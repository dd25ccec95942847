// Answers the application's modal message boxes while a test runs, and remembers what they said.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <QVector>

#include "messagebox.h"

struct ShownMessage {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
};

class MessageBoxWatcher : public QObject {
public:
    // Clicks the button whose text is `answer` on every box that appears.
    explicit MessageBoxWatcher(QString answer = QStringLiteral("Ok")) : answer_(std::move(answer)) {
        connect(&poll_, &QTimer::timeout, this, &MessageBoxWatcher::answerOpenBoxes);
        poll_.start(10);
    }

    const QVector<ShownMessage>& shown() const { return shown_; }

private:
    void answerOpenBoxes() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box == nullptr || !box->isVisible() || box->objectName() != kMessageBoxObjectName ||
                answered_.contains(box))
                continue;
            answered_.append(box);
            ShownMessage message{box->windowTitle(), box->text(), box->icon(), {}};
            QAbstractButton* chosen = nullptr;
            for (QAbstractButton* button : box->buttons()) {
                message.buttons << button->text();
                if (button->text() == answer_) chosen = button;
            }
            shown_.append(message);
            if (chosen != nullptr) chosen->click();
        }
    }

    QString answer_;
    QTimer poll_;
    QVector<ShownMessage> shown_;
    QVector<QPointer<QMessageBox>> answered_;
};
