#pragma once

#include "orbit/elements/ElementRecord.h"
#include "orbit/elements/Omm.h"

namespace orbitmath {

/// A record longer than this is damaged, in bytes.
constexpr std::size_t longestOmm = 64UL * 1024;

/// Hands over the record of a message with these fields: reads them, unless `fault` tells already what is
/// wrong. `record` says where it stands.
bool TakeOmm(ElementRecord record, const OmmFields& fields, const std::optional<ElementFault>& fault,
             const TakeRecord& take);

} // namespace orbitmath
