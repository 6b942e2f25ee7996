#pragma once

#include <QFrame>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// A line over the upper edge of a pane, in which the user looks for a text. Enter goes towards the
/// beginning, since the newest is at the end, Shift+Enter back again; Escape closes it.
class FindBar : public QFrame {
    Q_OBJECT
public:
    explicit FindBar(QPlainTextEdit* pane);

    void Open();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Find(bool towardsEnd);
    void Place();

    QPlainTextEdit* m_pane;
    QLineEdit* txtFindText;
    QLabel* labFindResult;
};
