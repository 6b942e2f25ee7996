#include "foundation/messages/MessageBoxPresenter.h"

#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/HelpWindow.h"
#include "foundation/settings/ShippedFile.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <array>
#include <utility>

namespace {

using Buttons = QMessageBox::StandardButtons;

// By the low four bits of the style: OK; OK Cancel; Abort Retry Ignore; Yes No Cancel; Yes No; Retry Cancel.
constexpr std::array<int, 6> buttonsOfStyle = {
    QMessageBox::Ok,
    QMessageBox::Ok | QMessageBox::Cancel,
    QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
    QMessageBox::Yes | QMessageBox::No,
    QMessageBox::Retry | QMessageBox::Cancel,
};

// What the platform answers for a button.
constexpr std::array<std::pair<int, int>, 7> answers = {{
    {QMessageBox::Ok, 1},
    {QMessageBox::Cancel, 2},
    {QMessageBox::Abort, 3},
    {QMessageBox::Retry, 4},
    {QMessageBox::Ignore, 5},
    {QMessageBox::Yes, 6},
    {QMessageBox::No, 7},
}};

QMessageBox::Icon IconOf(qint16 style) {
    switch (style & 0x70) {
    case MessageStyle::Critical:
        return QMessageBox::Critical;
    case MessageStyle::Question:
        return QMessageBox::Question;
    case MessageStyle::Exclamation:
        return QMessageBox::Warning;
    case MessageStyle::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

} // namespace

MessageBoxPresenter::MessageBoxPresenter(QString helpFile, clsIni* places)
    : m_helpFile(std::move(helpFile))
    , m_places(places) {}

MessageBoxPresenter::~MessageBoxPresenter() = default;

int MessageBoxPresenter::ShowMessage(const Message& message) {
    auto* owner = qobject_cast<QWidget*>(message.owner);
    // On the heap: should its owner go while it stands open, it goes with it.
    const QPointer<QMessageBox> box(new QMessageBox(owner));
    box->setObjectName(QStringLiteral("mbMessage"));
    box->setWindowTitle(message.caption);
    box->setTextFormat(Qt::PlainText);
    box->setText(message.text);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse); // for the paths in it
    box->setIcon(IconOf(message.style));
    const auto kind = static_cast<std::size_t>(message.style & 0x0F);
    box->setStandardButtons(Buttons::fromInt(buttonsOfStyle[kind < buttonsOfStyle.size() ? kind : 0]));
    if ((message.style & MessageStyle::HelpButton) != 0 && message.contextId != -1) {
        QPushButton* help = box->addButton(QMessageBox::Help);
        help->setObjectName(QStringLiteral("cmdHelp"));
        help->setShortcut(Qt::Key_F1);
        if (kind == 0)
            box->setEscapeButton(QMessageBox::Ok); // with a second button Qt would know of no way out
        // The box stays open while the help is read.
        QObject::disconnect(help, &QPushButton::clicked, nullptr, nullptr);
        QObject::connect(help, &QPushButton::clicked, box,
                         [&, topic = HelpTopics::Anchor(message.contextId)] { OpenHelp({topic}); });
    }
    const int pressed = box->exec();
    delete box;
    for (const auto& [button, answer] : answers)
        if (button == pressed)
            return answer;
    return 2;
}

void MessageBoxPresenter::ShowHelp(QObject*, const QString& helpFile, HelpCommand command) {
    if (command == HelpCommand::Quit) {
        m_help.reset();
        return;
    }
    m_helpFile = helpFile;
    OpenHelp({});
}

void MessageBoxPresenter::OpenHelp(const QStringList& topics) {
    if (!m_help) {
        m_help = std::make_unique<HelpWindow>();
        if (m_places != nullptr)
            m_help->RememberSize(*m_places);
    }
    m_help->Load(ShippedFile(m_helpFile));
    m_help->Open(topics);
}
