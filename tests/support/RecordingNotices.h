#pragma once

#include "foundation/messages/DesktopNotices.h"

#include <QStringList>

/// Notes the notices that the user would see: "title: text".
class RecordingNotices : public DesktopNotices {
public:
    QStringList shown;

    void Show(const QString& title, const QString& text) override {
        shown.append(title + QStringLiteral(": ") + text);
    }
};
