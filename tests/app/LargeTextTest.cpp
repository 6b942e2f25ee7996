#include "app/EveryWindow.h"
#include "support/Screenshots.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QStyle>
#include <QTabBar>
#include <QTemporaryFile>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

/// Every window at 200 %, with the desktop's usual text and a large one, in several languages: no text is cut
/// off.
class LargeTextTest : public QObject {
    Q_OBJECT
public:
    static void initMain();

private Q_SLOTS:
    void cleanup();
    void noTextIsCutOff_data();
    void noTextIsCutOff();
};

namespace {

// A text that is as long as chance wants, for which no window gets wider. It is told in full as description
// or tip.
const QStringList elastic{u"labLink"_s, u"labReading"_s, u"labEvent"_s};

bool IsRoomFor(const QWidget& widget, const QSize& wanted) {
    return widget.width() >= wanted.width() && widget.height() >= wanted.height();
}

bool IsLabelWhole(const QLabel& label) {
    if (label.text().isEmpty())
        return true;
    if (label.wordWrap())
        return label.height() >= label.heightForWidth(label.width());
    return IsRoomFor(label, label.sizeHint());
}

bool IsHintWhole(const QLineEdit& field) {
    constexpr int margins = 12;
    return field.fontMetrics().horizontalAdvance(field.placeholderText()) + margins <= field.width();
}

// The titles of the columns, and what stands under them as long as the user has not made them narrower.
QStringList CutColumns(const QHeaderView& header) {
    QStringList cut;
    const QAbstractItemModel* model = header.model();
    for (int column = 0; model != nullptr && column < model->columnCount(); ++column)
        if (!header.isSectionHidden(column) &&
            header.fontMetrics().horizontalAdvance(
                model->headerData(column, header.orientation()).toString()) >= header.sectionSize(column))
            cut += u"column "_s + model->headerData(column, header.orientation()).toString();
    return cut;
}

QStringList CutCells(const QAbstractItemView& view) {
    QStringList cut;
    const QAbstractItemModel* model = view.model();
    for (int row = 0; model != nullptr && row < std::min(model->rowCount(), 40); ++row)
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex cell = model->index(row, column);
            const QRect place = view.visualRect(cell);
            if (place.isEmpty() || cell.data().toString().isEmpty())
                continue;
            const QVariant font = cell.data(Qt::FontRole);
            const QFontMetrics metrics(font.isValid() ? font.value<QFont>() : view.font());
            if (metrics.horizontalAdvance(cell.data().toString()) > place.width() ||
                metrics.height() > place.height())
                cut += u"cell "_s + cell.data().toString();
        }
    return cut;
}

QStringList CutIn(const QWidget& widget) {
    QStringList cut;
    if (const auto* label = qobject_cast<const QLabel*>(&widget); label != nullptr && !IsLabelWhole(*label))
        cut += label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        button != nullptr && !button->text().isEmpty() && !IsRoomFor(*button, button->minimumSizeHint()))
        cut += button->text();
    if (const auto* box = qobject_cast<const QGroupBox*>(&widget);
        box != nullptr && !IsRoomFor(*box, box->minimumSizeHint()))
        cut += box->title();
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget); field != nullptr && !IsHintWhole(*field))
        cut += field->placeholderText();
    if (const auto* choice = qobject_cast<const QComboBox*>(&widget);
        choice != nullptr && !IsRoomFor(*choice, choice->minimumSizeHint()))
        cut += choice->currentText();
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget);
        tabs != nullptr && tabs->width() < tabs->sizeHint().width())
        cut += u"tabs"_s;
    if (const auto* header = qobject_cast<const QHeaderView*>(&widget))
        cut += CutColumns(*header);
    else if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget))
        cut += CutCells(*view);
    return cut;
}

} // namespace

// A large screen at 200 %, of which the windows see the half. The platform takes it from a file.
void LargeTextTest::initMain() {
    static QTemporaryFile screen;
    if (!screen.open())
        qFatal("no file for the screen");
    screen.write(
        R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 3840, "height": 2160, "dpr": 1}]})");
    screen.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toLocal8Bit());
    qputenv("QT_SCALE_FACTOR", "2");
}

void LargeTextTest::cleanup() {
    QLocale::setDefault(QLocale::c());
}

void LargeTextTest::noTextIsCutOff_data() {
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<qreal>("points"); // of the desktop's text
    QTest::newRow("usual") << QLocale::c() << 9.0;
    for (const char* locale : {"de_DE", "fi_FI", "ja_JP"})
        QTest::newRow(locale) << QLocale(QLatin1StringView(locale)) << 18.0;
}

void LargeTextTest::noTextIsCutOff() {
    QFETCH(const QLocale, locale);
    QFETCH(const qreal, points);
    QLocale::setDefault(locale);
    const QFont usual = QApplication::font();
    QFont font = usual;
    font.setPointSizeF(points);
    QApplication::setFont(font);
    QStringList cut;
    int controls = 0;
    const auto look = [&](QWidget* window) {
        Screenshots::Take(*window, window->objectName() + u'-' + QString::number(points));
        const QRect screen = window->screen()->availableGeometry();
        if (window->width() > screen.width() || window->height() > screen.height())
            cut += u"%1 is larger than the screen: %2x%3"_s.arg(window->objectName())
                       .arg(window->width())
                       .arg(window->height());
        for (const QWidget* widget : window->findChildren<QWidget*>()) {
            if (window->inherits("QFileDialog") || // Qt's own
                !widget->isVisibleTo(window) || elastic.contains(widget->objectName()) ||
                widget->window() != window)
                continue;
            ++controls;
            const bool isTerminal = window->objectName() == u"frmTerm"; // whose font has a few sizes only
            if (!isTerminal && QFontInfo(widget->font()).pointSizeF() < points - 0.5)
                cut += window->objectName() + u'.' + widget->objectName() +
                       u" is smaller than the desktop's text"_s;
            for (const QString& text : CutIn(*widget))
                cut += window->objectName() + u'.' + widget->objectName() + u": "_s + text;
        }
    };
    QStringList seen;
    {
        EveryWindow windows;
        seen = windows.Show(look);
    }
    QApplication::setFont(usual);
    QCOMPARE(QGuiApplication::primaryScreen()->devicePixelRatio(), 2.0);
    QCOMPARE(seen.size(), 17);
    QVERIFY2(cut.isEmpty(), qPrintable(cut.join(u'\n')));
    QVERIFY2(controls > 150, qPrintable(QString::number(controls)));
}

QTEST_MAIN(LargeTextTest)
#include "LargeTextTest.moc"
