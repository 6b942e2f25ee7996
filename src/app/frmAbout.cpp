#include "app/frmAbout.h"

#include "core/Texts.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel* Paragraph(const QString& text, QLatin1StringView name) {
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    return label;
}

} // namespace

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent) {
    using namespace Qt::StringLiterals;
    setObjectName("frmAbout"_L1);
    setWindowTitle(u"About QiranDecode"_s);

    auto* title = Paragraph(Texts::Title(), "labTitle"_L1);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    title->setFont(large);

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(Paragraph(Texts::Version(), "labVersion"_L1));
    texts->addWidget(Paragraph(
        u"The ground station of radio amateurs who listen to the QIRAN satellite: it shows the frames that "
        u"a packet engine hears, decodes the satellite's telemetry, tracks QIRAN and the ISS, and sends "
        u"messages and beacons."_s,
        "labPurpose"_L1));
    texts->addWidget(
        Paragraph(u"More information: press F1 in any window, or choose Help Contents from the Help "
                  u"menu."_s,
                  "labHelp"_L1));
    texts->addWidget(
        Paragraph(u"Free software under the MIT License. It uses Qt %1 under the GNU LGPL; the world map "
                  u"is made from Natural Earth data."_s.arg(QLatin1StringView(qVersion())),
                  "labLicence"_L1));
    texts->addWidget(
        Paragraph(u"The curves of the history window are drawn by QCustomPlot, which is under the "
                  u"GNU GPL; so the program as a whole is distributed under the GNU GPL, version "
                  u"3 or later."_s,
                  "labWhole"_L1));
    texts->addStretch();

    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);
    auto* body = new QHBoxLayout;
    body->addWidget(icon);
    body->addLayout(texts, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOk"_L1);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addWidget(buttons);
    layout->addStrut(fontMetrics().averageCharWidth() * 64); // the width for which the texts are broken
    layout->setSizeConstraint(
        QLayout::SetFixedSize); // left to itself, a small screen would cut the texts off
}
