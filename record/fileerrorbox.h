#pragma once

class QString;
class QWidget;
class Style;

// Tells the user that the recording file could not be opened ("File error" / "Error while
// opening file for writing", one "Ok" button) and waits until the box is closed.
void showFileOpenError(QWidget* parent, const Style& style);

// Tells the user that writing the recording `path` failed for `reason` and that the recording
// was stopped ("File error", one "Ok" button), and waits until the box is closed.
void showFileWriteError(QWidget* parent, const Style& style, const QString& path,
                        const QString& reason);
