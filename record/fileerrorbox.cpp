#include "fileerrorbox.h"

#include <QCoreApplication>
#include <QDir>

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

void showFileWriteError(QWidget* parent, const Style& style, const QString& path,
                        const QString& reason) {
    showMessage(parent, style, QMessageBox::Warning, CsvRecorder::tr("File error"),
                CsvRecorder::tr("Error while writing to file %1: %2\n\nThe recording was stopped. "
                                "Every row written before is kept.")
                    .arg(QDir::toNativeSeparators(path), reason),
                {CsvRecorder::tr("Ok")});
}
