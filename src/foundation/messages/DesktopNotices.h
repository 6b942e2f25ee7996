#pragma once

class QString;

/// What tells the user of something while he looks at another program: the desktop, or a recorder in tests.
class DesktopNotices {
public:
    DesktopNotices() = default;
    DesktopNotices(const DesktopNotices&) = delete;
    DesktopNotices& operator=(const DesktopNotices&) = delete;
    virtual ~DesktopNotices() = default;

    /// Shows a notice of plain text, without waiting. Where there is nobody to show it, nothing happens.
    virtual void Show(const QString& title, const QString& text) = 0;
};
