#pragma once

#include <QPoint>
#include <QWidget>

class QLabel;

/// The box that shows the time at the bottom of the map, its parent, until the user drags it elsewhere on it
/// with the left button.
class TimeBox : public QWidget {
    Q_OBJECT
public:
    explicit TimeBox(QWidget* parent);

    void SetText(const QString& text);
    const QString& Text() const { return m_text; }

    /// What stands over the box: which clock the time is of. A marked one tints the box, for a time that is
    /// not now.
    void SetNote(const QString& note, bool isMarked);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void FitText();
    void FitNote();
    void Settle();
    void MoveInside(const QPoint& place);

    QString m_text;
    QLabel* labTimeNote;
    bool m_isMarked = false;
    QPoint m_grip; // where the user holds it
    bool m_dragged = false;
};
