// OMM as CSV: every line below the header is a record, or is told with its reason.

#include "Input.h"
#include "OmmChecks.h"
#include "orbit/elements/OmmCsvReader.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    OmmChecks checks;
    orbitmath::OmmCsvReader reader(
        [&](const orbitmath::ElementRecord& record) { return checks.Take(record); });
    for (std::string_view rest = text; !rest.empty();)
        reader.TakeLine(TakeUntil(rest, '\n').substr(0, 1024));
    reader.End();
    Require(checks.Taken() <= static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1,
            "a line is one record at most");
    return 0;
}
