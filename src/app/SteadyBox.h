#pragma once

#include <QWidget>

/// Holds one widget whose text changes often, and asks for a new layout only when that needs more room than
/// it ever did: a layout of the whole window costs a hundred times the painting of a few letters, and what
/// stands beside it does not jump.
class SteadyBox : public QWidget {
    Q_OBJECT
public:
    /// Takes the content over.
    explicit SteadyBox(QWidget* content);

    QSize sizeHint() const override { return m_size; }

    /// As narrow as need be: a long text makes no window wider.
    QSize minimumSizeHint() const override { return {1, m_size.height()}; }

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_content;
    QSize m_size;
};
