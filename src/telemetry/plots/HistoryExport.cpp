#include "telemetry/plots/HistoryExport.h"

#include "foundation/fields/Named.h"
#include "foundation/messages/mb.h"
#include "foundation/settings/ReplaceFile.h"
#include "telemetry/plots/HistoryCsv.h"
#include "telemetry/plots/HistoryPlot.h"
#include "telemetry/plots/HistoryServices.h"

#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>

namespace {

constexpr QSize pictureSize(1600, 900);

// Pictures and pages of long histories take a while.
class Hourglass {
public:
    Hourglass() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
    ~Hourglass() { QGuiApplication::restoreOverrideCursor(); }
};

// The curves as large as the page is wide.
bool PaintOn(HistoryPlot& plot, QPaintDevice& page) {
    const Hourglass hourglass;
    QCPPainter painter;
    if (!painter.begin(&page))
        return false;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    painter.setMode(QCPPainter::pmNonCosmetic);
    const double scale = page.width() / static_cast<double>(pictureSize.width());
    painter.scale(scale, scale);
    plot.toPainter(&painter, pictureSize.width(), static_cast<int>(page.height() / scale));
    return true;
}

} // namespace

HistoryExport::HistoryExport(const HistoryServices& services, HistoryPlot& plot, HistoryWorker& worker,
                             QWidget* parent)
    : QPushButton(tr("E&xport"), parent)
    , m_services(services)
    , m_plot(plot)
    , m_worker(worker) {
    setObjectName(u"cmdExport");
    auto* menu = Named(u"mnuExport", new QMenu(this));
    const auto add = [&](QAnyStringView name, const QString& caption, auto action) {
        connect(Named(name, menu->addAction(caption)), &QAction::triggered, this, action);
    };
    add(u"mnuExportCsv", tr("&Readings in view (CSV)"), [this] { Readings(); });
    add(u"mnuExportPng", tr("P&icture (PNG)"), [this] { Picture(QStringLiteral("png")); });
    add(u"mnuExportPdf", tr("P&age (PDF)"), [this] { Picture(QStringLiteral("pdf")); });
    add(u"mnuPrintHistory", tr("&Print"), [this] { Print(); });
    add(u"mnuCopyPicture", tr("&Copy as picture"), [this] { Copy(); });
    setMenu(menu);
    connect(&m_worker, &HistoryWorker::Exported, this, &HistoryExport::TellFailure);
}

void HistoryExport::TellFailure(const QString& path, const QString& reason) {
    if (!reason.isEmpty())
        m_services.messages.MessageBox(window(), tr("%1 cannot be written: %2").arg(path, reason),
                                       MessageStyle::Exclamation);
}

void HistoryExport::Readings() {
    const QString path = m_services.chooseFile(window(), tr("Export readings"), QStringLiteral("csv"));
    if (path.isEmpty())
        return;
    m_worker.Export(path, [channels = m_plot.Channels(), readings = m_plot.SharedReadings(),
                           limits = m_services.limits, from = m_plot.From(),
                           to = m_plot.To()](const std::function<bool(int)>& progress) {
        return HistoryCsv(channels, *readings, limits, from, to, progress);
    });
}

void HistoryExport::Picture(const QString& ending) {
    const QString path = m_services.chooseFile(window(), tr("Export picture"), ending);
    if (path.isEmpty())
        return;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (ending == QLatin1StringView("pdf")) {
        QPdfWriter page(&buffer);
        page.setPageOrientation(QPageLayout::Landscape);
        PaintOn(m_plot, page);
    } else {
        const Hourglass hourglass;
        m_plot.toPixmap(pictureSize.width(), pictureSize.height()).save(&buffer, "PNG");
    }
    TellFailure(path, ReplaceFile(path, bytes));
}

void HistoryExport::Print() {
    QPrinter printer(QPrinter::HighResolution); // the default printer
    printer.setPageOrientation(QPageLayout::Landscape);
    if (m_services.choosePrinter(printer, window()) && !PaintOn(m_plot, printer))
        m_services.messages.MessageBox(window(), tr("The printer does not take the page."),
                                       MessageStyle::Exclamation);
}

void HistoryExport::Copy() {
    const Hourglass hourglass;
    QGuiApplication::clipboard()->setPixmap(m_plot.toPixmap(pictureSize.width(), pictureSize.height()));
}

QString HistoryExport::AskForFile(QWidget* window, const QString& caption, const QString& ending) {
    return QFileDialog::getSaveFileName(window, caption, QStringLiteral("history.") + ending,
                                        QStringLiteral("*.") + ending);
}

bool HistoryExport::AskForPrinter(QPrinter& printer, QWidget* window) {
    QPrintDialog dialog(&printer, window);
    return dialog.exec() == QDialog::Accepted;
}
