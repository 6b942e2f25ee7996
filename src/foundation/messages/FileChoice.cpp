#include "foundation/messages/FileChoice.h"

#include <QFileDialog>
#include <QFileInfo>

namespace FileChoice {

QString Ask(QWidget* window, const QString& caption, const QString& proposal) {
    QFileDialog dialog(window, caption);
    dialog.setObjectName(QStringLiteral("dlgSave"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QFileInfo(proposal).suffix());
    dialog.selectFile(proposal);
    return dialog.exec() == QFileDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace FileChoice
