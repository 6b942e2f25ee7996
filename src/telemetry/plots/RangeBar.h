#pragma once

#include "telemetry/plots/HistoryRange.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class QPushButton;
struct HistoryServices;

/// The fields in which the user says which part of the history he wants to see.
class RangeBar : public QWidget {
    Q_OBJECT
public:
    /// `services` must outlive it.
    explicit RangeBar(const HistoryServices& services, QWidget* parent = nullptr);

    /// What was chosen last.
    const HistoryRange& Range() const { return m_range; }
    void SetRange(const HistoryRange& range);

    /// Shows what is in view, in display time.
    void ShowTimes(qint64 from, qint64 to);

Q_SIGNALS:
    /// The user has chosen a range, the same one maybe.
    void Chosen();

private:
    void TakeTyped();
    std::optional<qint64> TimeOf(const QString& text) const;

    const HistoryServices& m_services;
    HistoryRange m_range;
    QComboBox* cboRange;
    QLineEdit* txtFrom;
    QLineEdit* txtTo;
    QPushButton* cmdShow;
};
