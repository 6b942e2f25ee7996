#pragma once

#include <QPoint>
#include <QWidget>

/// The box that shows the time at the bottom of the map, its parent, until the user drags it elsewhere on it
/// with the left button.
class TimeBox : public QWidget {
    Q_OBJECT
public:
    explicit TimeBox(QWidget* parent);

    void SetText(const QString& text);
    const QString& Text() const { return m_text; }

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void FitText();
    void Settle();
    void MoveInside(const QPoint& place);

    QString m_text;
    QPoint m_grip; // where the user holds it
    bool m_dragged = false;
};
