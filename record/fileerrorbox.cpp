#include "fileerrorbox.h"

#include <QCoreApplication>

#include "messagebox.h"

namespace {

// Translation context of the recorder's messages.
struct CsvRecorder {
    Q_DECLARE_TR_FUNCTIONS(CsvRecorder)
};

}  // namespace

void showFileOpenError(QWidget* parent, const Style& style) {
    showMessage(parent, style, QMessageBox::Warning, CsvRecorder::tr("File error"),
                CsvRecorder::tr("Error while opening file for writing"), {CsvRecorder::tr("Ok")});
}
