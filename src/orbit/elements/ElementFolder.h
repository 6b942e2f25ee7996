#pragma once

#include "orbit/elements/ElementRecord.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orbitmath {

/// One object of a folder: its newest elements and where they stand.
struct ElementSet {
    Elements elements;
    std::string name;     ///< see ElementRecord; empty when no set has one
    std::size_t file = 0; ///< see ElementFolder::FileOf
    std::size_t line = 0; ///< of that file, where the elements begin
    ElementFormat format = ElementFormat::TwoLines;
};

/// The elements in a folder's files, as ReadElementFile finds them; files below in other folders are not
/// read.
///
/// Damaged sets are passed over and hide no good set of the same object. Of several good sets of an object
/// the one with the newest epoch counts. What is no text at all is passed over file by file. Memory depends
/// on the number of different objects alone.
class ElementFolder {
public:
    /// Gets a line for each file that holds damaged sets: the file, the line and column of the first one, why
    /// it was passed over, and how many more there are.
    using Report = std::function<void(const std::string& line)>;

    ElementFolder() = default;

    /// Nothing when `path` is no folder that can be read.
    static std::optional<ElementFolder> Read(const std::string& path, const Report& report);

    /// `object` is a catalogue number (plain or Alpha-5) or a name line in any case. Nothing when it is
    /// unknown. Stays valid as long as the folder.
    const ElementSet* Find(std::string_view object) const;

    /// The name of the file a set stands in.
    const std::string& FileOf(const ElementSet& set) const { return m_files.at(set.file); }

    std::size_t Count() const { return m_sets.size(); }

private:
    void Add(const ElementRecord& record, const Elements& elements, std::size_t file);
    void IndexNames();

    std::vector<std::string> m_files;
    std::vector<ElementSet> m_sets;
    std::unordered_map<std::uint32_t, std::size_t> m_byNumber;
    std::unordered_map<std::string, std::size_t> m_byName; ///< in upper case
};

} // namespace orbitmath
