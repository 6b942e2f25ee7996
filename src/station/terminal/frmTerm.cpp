#include "station/terminal/frmTerm.h"

#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/Named.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "foundation/messages/mb.h"
#include "foundation/placement/PlaceWindow.h"
#include "foundation/placement/Twips.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/QIRUtil.h"
#include "link/UnprotoLink.h"
#include "station/identity/FieldRules.h"
#include "station/terminal/LineWrap.h"
#include "station/terminal/TerminalFont.h"
#include "station/terminal/TerminalPane.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int columns = 84; // of the pane, when it opens for the first time
constexpr int lines = 26;
constexpr qsizetype mostSent = 100; // lines to walk back through

QLineEdit* Field(QAnyStringView name, int characters) {
    auto* field = Named(name, new QLineEdit);
    field->setFont(FixedFont());
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * characters);
    SelectAllOnFocus(field);
    return field;
}

QLabel* LabelOf(QWidget* buddy, const QString& text) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    QFont font = label->font();
    font.setKerning(false); // the underlined letter is drawn apart: "To" would lose half of its "o"
    label->setFont(font);
    return label;
}

} // namespace

frmTerm::frmTerm(clsIni& cIni, const mb& messages, UnprotoLink& link, TerminalSession& session,
                 const ProgramFolder& folder, QWidget* parent)
    : QMainWindow(parent)
    , m_cIni(cIni)
    , m_messages(messages)
    , m_link(link)
    , m_folder(folder)
    , m_session(session)
    , m_guard(this) {
    setObjectName(QStringLiteral("frmTerm"));
    setWindowTitle(QStringLiteral("Terminal"));
    Build();
    BuildMenu();
    SetRules();
    LoadFont();
    AddFontSizes();
    const QFontMetrics metrics = rtbMon->fontMetrics();
    resize(metrics.averageCharWidth() * columns, metrics.lineSpacing() * lines);

    m_place = std::make_unique<KeptPlace>(*this, QStringLiteral("TERMINAL"), m_cIni);
    mnuLogAllData->setChecked(m_session.log.IsLogging());
    LoadFields();
    m_session.transmitter.SetOwner(this);
    m_session.SetPane([this](QByteArrayView text, qint16 kind) { ShowData(text, kind); });
}

frmTerm::~frmTerm() {
    Release();
}

void frmTerm::Build() {
    txtTo = Field(u"txtTo", 11);
    txtVia = Field(u"txtVia", 22);
    txtPort = Field(u"txtPort", 4);
    txtPort->setMaximumWidth(txtPort->minimumWidth() * 2);
    txtTx = Field(u"txtTx", 20);
    cmdAprs = Named(u"cmdAprs", new QPushButton(QStringLiteral("&APRS beacon")));
    cmdLoc = Named(u"cmdLoc", new QPushButton(QStringLiteral("&Locator beacon")));
    rtbMon = Named(u"rtbMon", new TerminalPane);
    rtbMon->setAccessibleName(QStringLiteral("Traffic"));

    auto* address = new QHBoxLayout;
    address->addWidget(LabelOf(txtTo, QStringLiteral("&To")));
    address->addWidget(txtTo, 1);
    address->addWidget(LabelOf(txtVia, QStringLiteral("&Via")));
    address->addWidget(txtVia, 4);
    address->addWidget(LabelOf(txtPort, QStringLiteral("&Port")));
    address->addWidget(txtPort);
    address->addWidget(cmdAprs);
    address->addWidget(cmdLoc);

    auto* inside = new QWidget(this);
    auto* layout = new QVBoxLayout(inside);
    layout->addLayout(address);
    layout->addWidget(rtbMon, 1);
    labCount = Named(u"labCount", new QLabel);
    labCount->setAccessibleName(QStringLiteral("Characters until it is sent"));
    auto* above = new QHBoxLayout;
    above->addWidget(LabelOf(txtTx, QStringLiteral("T&ransmit")));
    above->addStretch();
    above->addWidget(labCount);
    layout->addLayout(above);
    layout->addWidget(txtTx);
    setCentralWidget(inside);
    const QList<QWidget*> order{txtTo, txtVia, txtPort, cmdAprs, cmdLoc, rtbMon, txtTx};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmTerm::BuildMenu() {
    QMenu* menu = Named(u"mnuFile", menuBar()->addMenu(QStringLiteral("&File")));
    const auto add = [&](const QString& caption, QAnyStringView name, auto action) {
        QAction* entry = Named(name, menu->addAction(caption));
        connect(entry, &QAction::triggered, this, action);
        return entry;
    };
    mnuLogAllData = add(QStringLiteral("Log All Data"), u"mnuLogAllData", [this] {
        m_session.log.ToggleLogging();
        mnuLogAllData->setChecked(m_session.log.IsLogging());
    });
    mnuLogAllData->setCheckable(true);
    add(QStringLiteral("&Clear"), u"mnuClear", [this] { rtbMon->Empty(); });
    Named(u"mnuBar1", menu->addSeparator());
    add(QStringLiteral("Cl&ose"), u"mnuClose", [this] { Close(); });
}

void frmTerm::SetRules() {
    FilterCharacters(txtTo, QIRUtil::CallsignCharacter);
    FilterCharacters(txtVia, FieldRules::ViaCharacter);
    FilterCharacters(txtPort, QIRUtil::DigitCharacter);
    KeepOnOneLine(txtTx);
    for (QLineEdit* field : {txtTo, txtVia, txtPort})
        m_guard.AddField(field, [this, field] { return MayLeave(field); });
    txtTx->installEventFilter(this);
    connect(txtTx, &QLineEdit::textChanged, this, &frmTerm::Wrap);
    connect(rtbMon, &TrafficPane::PutInToAsked, this, &frmTerm::PutInTo);
    connect(rtbMon, &TrafficPane::AddToCallsignsAsked, this, &frmTerm::AddToCallsignsAsked);
    connect(rtbMon, &TrafficPane::LogFolderAsked, this, &frmTerm::LogFolderAsked);
    ShowCount();
    connect(cmdAprs, &QPushButton::clicked, this, [this] { m_session.transmitter.SendPosition(Fields()); });
    connect(cmdLoc, &QPushButton::clicked, this, [this] { m_session.transmitter.SendLocator(Fields()); });
}

// The font that the pane is meant for, if it is installed or lies beside the program.
void frmTerm::LoadFont() {
    const QString family = QStringLiteral("VORNAK");
    const QString file = m_folder.File(QStringLiteral("vornak.fon"));
    if (!QFontDatabase::hasFamily(family) && QFile::exists(file))
        QFontDatabase::addApplicationFont(file);
    m_textFont = FixedFont();
    if (QFontDatabase::hasFamily(family))
        m_textFont.setFamily(family);
    ApplyFontSize();
}

// As large as the desktop's text, or as the user wants it: always one of the sizes that the font has.
void frmTerm::ApplyFontSize() {
    const float twipsPerPixel = Twips::FromPixels(1, *this);
    const int pixels = Settings::NumberOf(m_cIni, Settings::terminalFontSize);
    const float wanted = pixels > 0 ? TerminalFont::PointsOf(pixels, twipsPerPixel)
                                    : static_cast<float>(QFontInfo(QApplication::font(this)).pointSizeF());
    m_textFont.setPointSizeF(static_cast<qreal>(TerminalFont::SnapSize(wanted, twipsPerPixel)));
    rtbMon->setFont(m_textFont);
    txtTx->setFont(m_textFont);
}

// So many sizes larger; 0 is the desktop's again.
void frmTerm::ChangeFontSize(int steps) {
    const auto now = static_cast<float>(m_textFont.pointSizeF());
    const int pixels = steps == 0 ? 0 : TerminalFont::StepFrom(now, Twips::FromPixels(1, *this), steps);
    Settings::Save(m_cIni, Settings::terminalFontSize, QString::number(pixels));
    ApplyFontSize();
}

void frmTerm::AddFontSizes() {
    const auto add = [this](const QString& caption, QAnyStringView name, const QList<QKeySequence>& keys,
                            int steps) {
        QAction* entry = Named(name, new QAction(caption, this));
        entry->setShortcuts(keys);
        connect(entry, &QAction::triggered, this, [this, steps] { ChangeFontSize(steps); });
        addAction(entry);
    };
    add(QStringLiteral("&Larger text"), u"mnuLarger",
        {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}, 1);
    add(QStringLiteral("S&maller text"), u"mnuSmaller", {QKeySequence(Qt::CTRL | Qt::Key_Minus)}, -1);
    add(QStringLiteral("&Usual text size"), u"mnuUsualSize", {QKeySequence(Qt::CTRL | Qt::Key_0)}, 0);
    rtbMon->viewport()->installEventFilter(this);
}

bool frmTerm::Wheel(const QWheelEvent& wheel) {
    if (!wheel.modifiers().testFlag(Qt::ControlModifier))
        return false;
    m_wheel += wheel.angleDelta().y();
    const int steps = m_wheel / QWheelEvent::DefaultDeltasPerStep;
    m_wheel %= QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        ChangeFontSize(steps);
    return true;
}

void frmTerm::LoadFields() {
    txtTo->setText(m_session.fields.to);
    txtVia->setText(m_session.fields.via);
    txtPort->setText(m_session.fields.port);
}

void frmTerm::ShowData(QByteArrayView text, qint16 kind) {
    if (!m_isUnloaded)
        rtbMon->Append(text, kind);
}

void frmTerm::BringForward() {
    ::BringForward(this);
}

AddressFields frmTerm::Fields() const {
    return {.to = txtTo->text(), .via = txtVia->text(), .port = txtPort->text()};
}

// What is wrong with an address field; empty when nothing is. A good path is brought into form.
QString frmTerm::FaultOf(const QWidget* field) {
    const QString wrongAddress = QStringLiteral(" is not a valid AX25 address.");
    if (field == txtTo && !FieldRules::IsCallsignOrEmpty(txtTo->text()))
        return QStringLiteral("That") + wrongAddress;
    if (field == txtVia) {
        const FieldRules::ViaPath via = FieldRules::NormaliseVia(txtVia->text());
        if (!via.wrong.isEmpty())
            return via.wrong + wrongAddress;
        if (via.path != txtVia->text())
            txtVia->setText(via.path);
    }
    if (field == txtPort && !FieldRules::IsPortAvailable(txtPort->text(), m_link.PortCount()))
        return FieldRules::PortMessage(m_link.PortCount());
    return {};
}

bool frmTerm::MayLeave(const QWidget* field) {
    const QString fault = FaultOf(field);
    if (fault.isEmpty())
        return true;
    m_messages.MessageBox(this, fault, MessageStyle::Critical);
    return false;
}

bool frmTerm::TransmitKey(const QKeyEvent& key) {
    if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
        m_lastLine = txtTx->text();
        Transmit({*m_lastLine});
        txtTx->clear();
        return true;
    }
    if (key.key() == Qt::Key_R && key.modifiers() == Qt::ControlModifier) {
        if (m_lastLine)
            txtTx->setText(*m_lastLine);
        return true;
    }
    if ((key.key() == Qt::Key_Up || key.key() == Qt::Key_Down) &&
        (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier)
        return WalkHistory(key.key() == Qt::Key_Up ? -1 : 1);
    return false;
}

// Up and Down through what was sent; below the newest lies what the user was about to write.
bool frmTerm::WalkHistory(int step) {
    const qsizetype at = std::clamp<qsizetype>(m_sentAt + step, 0, m_sent.size());
    if (at == m_sentAt)
        return true;
    if (m_sentAt == m_sent.size())
        m_ownText = txtTx->text();
    m_sentAt = at;
    {
        const QSignalBlocker silent(txtTx); // a full line waits for Enter
        txtTx->setText(at == m_sent.size() ? m_ownText : m_sent[at]);
    }
    ShowCount();
    return true;
}

void frmTerm::Remember(const QStringList& texts) {
    for (const QString& text : texts)
        if (!text.isEmpty() && (m_sent.isEmpty() || m_sent.last() != text))
            m_sent.append(text);
    m_sent.remove(0, std::max<qsizetype>(m_sent.size() - mostSent, 0));
    m_sentAt = m_sent.size();
    m_ownText.clear();
}

void frmTerm::ShowCount() {
    labCount->setText(QStringLiteral("%1/%2").arg(txtTx->text().size()).arg(longestLine));
}

void frmTerm::PutInTo(const QString& callsign) {
    txtTo->setText(callsign);
}

void frmTerm::Wrap() {
    const LineWrap wrap = WrapLines(txtTx->text());
    if (wrap.lines.isEmpty()) {
        ShowCount();
        return;
    }
    {
        const QSignalBlocker silent(txtTx);
        txtTx->setText(wrap.rest);
    }
    ShowCount();
    m_lastLine = wrap.lines.last();
    Transmit(wrap.lines);
}

void frmTerm::Transmit(const QStringList& texts) {
    const AddressFields fields = Fields();
    Remember(texts);
    rtbMon->GoToEnd(); // where what is sent will be seen
    m_session.transmitter.TransmitText(texts, fields, fields.to);
}

bool frmTerm::event(QEvent* event) {
    // Whoever comes back to a field with something wrong in it still has to mend it.
    if (event->type() == QEvent::WindowActivate && FaultOf(focusWidget()).isEmpty())
        txtTx->setFocus(Qt::ActiveWindowFocusReason);
    const bool isTaken = QMainWindow::event(event);
    const bool isFont = event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange;
    if (isFont && rtbMon != nullptr) // the window may be gone after any other event
        ApplyFontSize();
    return isTaken;
}

bool frmTerm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == rtbMon->viewport() && event->type() == QEvent::Wheel)
        return Wheel(*static_cast<QWheelEvent*>(event));
    if (watched == txtTx && event->type() == QEvent::KeyPress)
        return TransmitKey(*static_cast<QKeyEvent*>(event));
    return QMainWindow::eventFilter(watched, event);
}

void frmTerm::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        Close();
    else
        QMainWindow::keyPressEvent(event);
}

void frmTerm::closeEvent(QCloseEvent* event) {
    // The close box unloads, as the menu does; but what is stored then and wrong has been said.
    m_guard.MayClose();
    event->accept();
    Unload();
}

void frmTerm::Close() {
    const QPointer<frmTerm> self(this);
    Unload();
    if (self)
        hide();
}

void frmTerm::Unload() {
    if (Release())
        Q_EMIT ImUnloading();
}

// False when it has been done before.
bool frmTerm::Release() {
    if (m_isUnloaded)
        return false;
    m_isUnloaded = true;
    m_session.SetPane({});
    m_session.transmitter.SetOwner(nullptr);
    m_session.fields = Fields();
    m_session.Close();
    m_place.reset();
    return true;
}
