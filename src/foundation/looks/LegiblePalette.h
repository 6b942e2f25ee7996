#pragma once

#include <QObject>

class QWidget;

/// Keeps what the program shows as disabled, and the hints in empty fields, legible in whatever colours the
/// desktop brings: greyer than the rest, but never below Contrast::least. One for the program; it follows the
/// desktop's changes through one window.
class LegiblePalette : public QObject {
    Q_OBJECT
public:
    explicit LegiblePalette(QWidget* window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Apply();

    bool m_isApplying = false;
};
