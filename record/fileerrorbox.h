#pragma once

class QWidget;
class Style;

// Tells the user that the recording file could not be opened ("File error" / "Error while
// opening file for writing", one "Ok" button) and waits until the box is closed.
void showFileOpenError(QWidget* parent, const Style& style);

