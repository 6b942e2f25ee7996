#pragma once

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

#include <utility>

/// Pictures of windows for a person to look at: written to the folder named by QIRAN_SCREENSHOTS, when it is
/// set.
namespace Screenshots {

/// The folder, or empty when no pictures are wanted.
inline QString Folder() {
    return qEnvironmentVariable("QIRAN_SCREENSHOTS");
}

/// A palette as dark desktops use it.
inline QPalette DarkPalette() {
    QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2a, 0x2a, 0x2a));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        dark.setColor(role, QColor(0xee, 0xee, 0xee));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    dark.setColor(QPalette::AlternateBase, QColor(0x2a, 0x2a, 0x2a));
    dark.setColor(QPalette::ToolTipBase, QColor(0x35, 0x35, 0x35));
    dark.setColor(QPalette::BrightText, Qt::red);
    dark.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xff));
    dark.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::PlaceholderText, QColor(0x90, 0x90, 0x90));
    return dark;
}

/// A palette as desktops of high contrast use it.
inline QPalette HighContrast(const QColor& ground, const QColor& text) {
    QPalette palette(text, ground, ground, ground, ground, text, ground);
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, ground);
    return palette;
}

/// Grabs a window as NAME-SCALEx-light.png, -dark.png and -contrast.png (run once with QT_SCALE_FACTOR=2 for
/// the large ones). Call it while the window is shown.
inline void Take(QWidget& window, const QString& name) {
    if (Folder().isEmpty())
        return;
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QPalette before = QApplication::palette();
    const std::pair<QString, QPalette> themes[] = {
        {QStringLiteral("light"), QApplication::style()->standardPalette()},
        {QStringLiteral("dark"), DarkPalette()},
        {QStringLiteral("contrast"), HighContrast(Qt::black, Qt::white)},
    };
    for (const auto& [theme, palette] : themes) {
        QApplication::setPalette(palette);
        QApplication::processEvents();
        QDir().mkpath(Folder());
        window.grab().save(QDir(Folder()).filePath(
            QStringLiteral("%1-%2x-%3.png").arg(name).arg(qRound(window.devicePixelRatio())).arg(theme)));
    }
    QApplication::setPalette(before);
}

} // namespace Screenshots
