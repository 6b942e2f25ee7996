#pragma once

#include <QAnyStringView>

/// Gives a control, menu or entry its name where it is made, and hands it back.
template <typename Object>
Object* Named(QAnyStringView name, Object* object) {
    object->setObjectName(name);
    return object;
}
