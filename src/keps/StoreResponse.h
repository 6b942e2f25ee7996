#pragma once

#include "keps/ConvertKepsFile.h"

class InternetTransfer;

/// Takes the body of a completed response and brings it into the Keps folder as ConvertKepsFile does, by way
/// of KepsFiles::Target. A body of less than 80 bytes is not stored, and that is no error.
KepsConversion StoreResponse(InternetTransfer& inet, const ProgramFolder& folder, const QString& name,
                             qint16 index);
