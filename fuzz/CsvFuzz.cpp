// Comma-separated values: any bytes are read to their end, a damaged record costs one line only, and what is
// written reads back as it was.

#include "Input.h"
#include "Require.h"
#include "foundation/files/Csv.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using LineEnds = Csv::Reader::LineEnds;

// The sound records of a text, written anew.
std::string CheckRead(std::string_view text, LineEnds lineEnds) {
    std::string written;
    Csv::Reader reader(text, lineEnds);
    std::size_t line = 0;
    std::size_t records = 0;
    while (reader.Next()) {
        ++records;
        Require(reader.LineNumber() > line, "lines are counted upwards");
        line = reader.LineNumber();
        Require(!reader.Text().empty() && reader.Text().data() >= text.data() &&
                    reader.Text().data() + reader.Text().size() <= text.data() + text.size(),
                "a record stands in its text");
        Require(reader.IsSound() == !reader.Fields().empty(), "a sound record has fields");
        Require(reader.IsSound() || reader.Text().find('\n') == std::string_view::npos,
                "a damaged record costs one line");
        QByteArray made;
        for (const std::string_view field : reader.Fields()) {
            Require(field.size() <= reader.Text().size(), "a field is no longer than its record");
            Csv::AppendField(made, Bytes(field));
            made.append(',');
        }
        if (reader.IsSound()) {
            made.back() = '\n';
            written += View(made);
        }
    }
    Require(records <= static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1, "a record has a line");
    return written;
}

std::vector<std::vector<std::string>> Fields(std::string_view text) {
    std::vector<std::vector<std::string>> records;
    Csv::Reader reader(text);
    while (reader.Next()) {
        Require(reader.IsSound(), "what was written is sound");
        records.emplace_back(reader.Fields().begin(), reader.Fields().end());
    }
    return records;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    CheckRead(text, LineEnds::EndRecords);
    const std::string written = CheckRead(text, LineEnds::MayStandInQuotes);
    // A single empty field is an empty line, which is passed over.
    const std::string again = CheckRead(written, LineEnds::MayStandInQuotes);
    Require(Fields(written) == Fields(again), "what is written reads back");
    return 0;
}
