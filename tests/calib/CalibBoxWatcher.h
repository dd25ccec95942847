// Answers the calibration dialog's modal message boxes while a test runs and remembers them.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include "messagebox.h"

struct ShownBox {
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QString clicked;
};

class CalibBoxWatcher : public QObject {
public:
    // Each box is answered with the first of `answers` that it offers.
    explicit CalibBoxWatcher(QStringList answers = {QStringLiteral("Ok")})
        : answers_(std::move(answers)) {
        connect(&poll_, &QTimer::timeout, this, &CalibBoxWatcher::answerOpenBoxes);
        poll_.start(10);
    }

    void setAnswers(const QStringList& answers) { answers_ = answers; }
    const QVector<ShownBox>& shown() const { return shown_; }
    void clear() { shown_.clear(); }
    int count(const QString& text) const {
        int n = 0;
        for (const ShownBox& box : shown_) n += box.text == text;
        return n;
    }

private:
    void answerOpenBoxes() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box == nullptr || !box->isVisible() || box->objectName() != kMessageBoxObjectName ||
                answered_.contains(box))
                continue;
            answered_.append(box);
            ShownBox message{box->windowTitle(), box->text(), box->icon(), {}, {}};
            QAbstractButton* chosen = nullptr;
            for (QAbstractButton* button : box->buttons()) message.buttons << button->text();
            for (const QString& answer : answers_) {
                for (QAbstractButton* button : box->buttons())
                    if (chosen == nullptr && button->text() == answer) chosen = button;
            }
            if (chosen != nullptr) message.clicked = chosen->text();
            shown_.append(message);
            if (chosen != nullptr) chosen->click();
        }
    }

    QStringList answers_;
    QTimer poll_;
    QVector<ShownBox> shown_;
    QVector<QPointer<QMessageBox>> answered_;
};
