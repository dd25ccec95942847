#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

class Style;

// Object name of every box shown by showMessage(), so that it can be found in the widget tree.
inline const QString kMessageBoxObjectName = QStringLiteral("oryxMessageBox");

// Shows a modal message box in the application's look and waits for the user.
// `buttons` are the button texts, already translated by the caller, shown in the given order;
// the first is the default. Returns the index of the button that closed the box, or -1 if the
// box was closed some other way.
int showMessage(QWidget* parent, const Style& style, QMessageBox::Icon icon, const QString& title,
                const QString& text, const QStringList& buttons = {QStringLiteral("Ok")});

