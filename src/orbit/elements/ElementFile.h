#pragma once

#include "orbit/elements/ElementRecord.h"

#include <optional>
#include <string>
#include <vector>

namespace orbitmath {

/// The names of the element files of a folder, in the file system's order: its regular files, whatever they
/// are called, but for hidden ones (whose names begin with a point). Links count as what they lead to; a pipe
/// or a device would never end. Nothing when `folder` cannot be read.
std::optional<std::vector<std::string>> ElementFilesIn(const std::string& folder);

/// What a file turned out to be.
struct ElementFileKind {
    ElementFormat format = ElementFormat::TwoLines; ///< of what is none of the others too
    bool isCut = false;                             ///< it ends within a set, or within its list
};

/// Hands over what an element file holds, object by object, until `take` answers false: two-line sets, or OMM
/// as CSV, JSON or XML; its content tells which. This is the one reader of element files: whoever names an
/// object and whoever tracks it see the same records. A file that cannot be read has none.
///
/// The file is read a piece at a time; a record longer than 64 KiB is damaged. So memory stays bounded.
ElementFileKind ReadElementFile(const std::string& path, const TakeRecord& take);

/// The same with a file's bytes, such as ElementRecord::Text gives.
ElementFileKind ReadElementText(std::string_view text, const TakeRecord& take);

/// Where in its file a record is at fault, and what it is: "line 5, column 69: the checksum is wrong", or
/// "line 1, record 17, EPOCH: it is missing".
std::string FaultText(const ElementRecord& record, const ElementFault& fault);

} // namespace orbitmath
