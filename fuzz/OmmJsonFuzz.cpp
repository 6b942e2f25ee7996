// OMM as JSON: every record is one, or is told with its reason, and nothing grows with what is nested or
// repeated.

#include "Input.h"
#include "OmmChecks.h"
#include "orbit/elements/OmmJsonReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckPieces<orbitmath::OmmJsonReader>(Input(data, size));
    return 0;
}
