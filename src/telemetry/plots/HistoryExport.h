#pragma once

#include <QPushButton>

class HistoryPlot;
class HistoryWorker;
class QPrinter;
struct HistoryServices;

/// The button that takes what is in view out of the history window: as a file, on paper or as a picture to
/// paste. Readings are written on the worker's thread.
class HistoryExport : public QPushButton {
    Q_OBJECT
public:
    /// All must outlive it.
    HistoryExport(const HistoryServices& services, HistoryPlot& plot, HistoryWorker& worker,
                  QWidget* parent = nullptr);

    static QString AskForFile(QWidget* window, const QString& caption, const QString& ending);
    static bool AskForPrinter(QPrinter& printer, QWidget* window);

private:
    void Readings();
    void Picture(const QString& ending);
    void Print();
    void Copy();
    void TellFailure(const QString& path, const QString& reason);

    const HistoryServices& m_services;
    HistoryPlot& m_plot;
    HistoryWorker& m_worker;
};
