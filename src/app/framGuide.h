#pragma once

#include "core/StartGuide.h"

#include <QGroupBox>

#include <array>

class QGridLayout;
class QLabel;
class QPushButton;

/// Leads through the first start: a line for everything that a station needs, with how it stands and a button
/// to the place that mends it.
class framGuide : public QGroupBox {
    Q_OBJECT
public:
    explicit framGuide(QWidget* parent = nullptr);

    /// Shows how things stand.
    void Show(const std::array<StartGuide::Line, StartGuide::steps>& lines);

Q_SIGNALS:
    void Mend(StartGuide::Step step);
    void CloseAsked();

private:
    void AddRow(QGridLayout& layout, StartGuide::Step step, const QString& name);

    struct Row {
        QLabel* mark = nullptr;
        QLabel* text = nullptr;
        QPushButton* button = nullptr;
    };
    std::array<Row, StartGuide::steps> m_rows;
};
