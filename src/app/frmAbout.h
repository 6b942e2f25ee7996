#pragma once

#include <QDialog>

/// The about box: what the program is, its version, where help is, its licence.
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent);
};
