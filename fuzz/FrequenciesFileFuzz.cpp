// frequencies.txt: each line counts, is a note, or is told with its reason; and what counts can be shown.

#include "Input.h"
#include "Require.h"
#include "TableFaults.h"
#include "orbit/skyview/FrequenciesFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    const FrequenciesFile file = FrequenciesFile::Parse(Bytes(text));
    CheckFaults(text, file.Faults(), file.Frequencies().size());
    Require(file.Frequencies().size() <= FrequenciesFile::mostFrequencies, "frequencies have their number");
    for (const SatFrequency& frequency : file.Frequencies()) {
        Require(frequency.megahertz >= FrequenciesFile::lowest &&
                    frequency.megahertz <= FrequenciesFile::highest,
                "a frequency has its bounds");
        Require(!frequency.name.isEmpty() && frequency.name.size() <= FrequenciesFile::longestName &&
                    std::ranges::all_of(frequency.name, [](QChar c) { return c.isPrint(); }),
                "a name can be shown");
        const auto own = file.Of(frequency.satellite, frequency.satellite);
        Require(std::ranges::any_of(own, [&](const SatFrequency& one) { return one.name == frequency.name; }),
                "a frequency is its satellite's");
    }
    return 0;
}
