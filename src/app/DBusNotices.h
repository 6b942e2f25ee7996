#pragma once

#include "foundation/messages/DesktopNotices.h"

/// Notices by the desktop's own service, org.freedesktop.Notifications on the session bus. The bus is asked
/// for with the first notice.
class DBusNotices : public DesktopNotices {
public:
    void Show(const QString& title, const QString& text) override;
};
