#pragma once

#include <QDialog>

#include "recoptions.h"

class Ui_RecOptionDlg;

// Modal editor of the recording options. It starts from the stored settings; OK stores the
// edited options, Cancel (or closing the window) stores nothing.
class RecOptionDlg : public QDialog {
    Q_OBJECT

public:
    explicit RecOptionDlg(QWidget* parent = nullptr);
    ~RecOptionDlg() override;

    // The options as edited; after exec() returned Accepted, also what is stored.
    const RecOptions& options() const { return recOptions; }

public slots:
    void accept() override;

private slots:
    void on_pushButton_rec_folder_clicked();

private:
    void applyStyle();
    void showOptions();

    Ui_RecOptionDlg* ui;
    RecOptions recOptions;
};

