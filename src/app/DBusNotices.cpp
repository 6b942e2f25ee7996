#include "app/DBusNotices.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

void DBusNotices::Show(const QString& title, const QString& text) {
    const QString service = QStringLiteral("org.freedesktop.Notifications");
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, QStringLiteral("/org/freedesktop/Notifications"), service, QStringLiteral("Notify"));
    constexpr uint replacesNone = 0;
    constexpr int untilTheDesktopWills = -1;
    // The service takes the text for markup.
    call.setArguments({QCoreApplication::applicationName(), replacesNone, QStringLiteral("qirandecode"),
                       title, text.toHtmlEscaped(), QStringList(), QVariantMap(), untilTheDesktopWills});
    QDBusConnection::sessionBus().send(call);
}
