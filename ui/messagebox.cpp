#include "messagebox.h"

#include <QAbstractButton>
#include <QList>
#include <QPushButton>

#include "style.h"

int showMessage(QWidget* parent, const Style& style, QMessageBox::Icon icon, const QString& title,
                const QString& text, const QStringList& buttons) {
    QMessageBox box(icon, title, text, QMessageBox::NoButton, parent);
    box.setObjectName(kMessageBoxObjectName);
    box.setStyleSheet(style.messageBox);
    box.setFont(style.messageBoxFont);

    // One role for all buttons: the box then keeps them in the order given instead of sorting
    // them by role as the platform's button layout would.
    QList<QAbstractButton*> added;
    for (const QString& caption : buttons) {
        QPushButton* button = box.addButton(caption, QMessageBox::AcceptRole);
        if (added.isEmpty()) {
            box.setDefaultButton(button);
        }
        added.append(button);
    }
    // With a single button, Escape and the title bar's close button answer with it.
    if (added.size() == 1) {
        box.setEscapeButton(added.first());
    }

    box.exec();
    return added.indexOf(box.clickedButton());
}
