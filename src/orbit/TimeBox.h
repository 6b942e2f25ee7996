#pragma once

#include <QPoint>
#include <QWidget>

/// The box on the map that shows the time. The user drags it with the left button; it stays on its parent.
class TimeBox : public QWidget {
    Q_OBJECT
public:
    explicit TimeBox(QWidget* parent);

    void SetText(const QString& text);
    const QString& Text() const { return m_text; }

    /// Moves to the bottom of the parent, in the middle.
    void MoveToBottom();

    /// Moves back onto the parent, which has become smaller.
    void StayInside();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void FitText();
    void MoveInside(const QPoint& place);

    QString m_text;
    QPoint m_grip; // where the user holds it
};
