#pragma once

#include <QtGlobal>

/// What a test's chance starts from: always the same, so that an ordinary run ends as the one before;
/// QIRAN_SEED in the environment takes its place. A test that fails tells it.
inline quint32 ChanceSeed() {
    const int given = qEnvironmentVariableIntValue("QIRAN_SEED");
    return given == 0 ? 1 : static_cast<quint32>(given);
}
