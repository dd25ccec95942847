// Answers the application's modal message boxes while a test runs, and remembers what they said.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include "messagebox.h"

struct ShownMessage {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QString clicked;  // empty when none of the answers was offered
};

class MessageBoxWatcher : public QObject {
public:
    // Each box is answered with the first of `answers` that it offers.
    explicit MessageBoxWatcher(QStringList answers = {QStringLiteral("Ok")})
        : answers_(std::move(answers)) {
        connect(&poll_, &QTimer::timeout, this, &MessageBoxWatcher::answerOpenBoxes);
        poll_.start(10);
    }

    void setAnswers(const QStringList& answers) { answers_ = answers; }
    const QVector<ShownMessage>& shown() const { return shown_; }
    int count(const QString& text) const {
        int n = 0;
        for (const ShownMessage& box : shown_) n += box.text == text;
        return n;
    }
    // What the boxes said, for a failure message: "no message box", or "Title: text" each.
    QString said() const {
        if (shown_.isEmpty()) return QStringLiteral("no message box");
        QStringList boxes;
        for (const ShownMessage& box : shown_) boxes << box.title + QStringLiteral(": ") + box.text;
        return QStringLiteral("message boxes: ") + boxes.join(QStringLiteral(" | "));
    }

private:
    void answerOpenBoxes() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box == nullptr || !box->isVisible() || box->objectName() != kMessageBoxObjectName ||
                answered_.contains(box))
                continue;
            answered_.append(box);
            ShownMessage message{box->windowTitle(), box->text(), box->icon(), {}, {}};
            for (QAbstractButton* button : box->buttons()) message.buttons << button->text();
            QAbstractButton* chosen = answerAmong(box->buttons());
            if (chosen != nullptr) message.clicked = chosen->text();
            shown_.append(message);
            if (chosen != nullptr) chosen->click();
        }
    }

    QAbstractButton* answerAmong(const QList<QAbstractButton*>& buttons) const {
        for (const QString& answer : answers_)
            for (QAbstractButton* button : buttons)
                if (button->text() == answer) return button;
        return nullptr;
    }

    QStringList answers_;
    QTimer poll_;
    QVector<ShownMessage> shown_;
    QVector<QPointer<QMessageBox>> answered_;
};
