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

/// Hands over what an element file holds, object by object, until `take` answers false. This is the one
/// reader of element files: whoever names an object and whoever tracks it see the same records. A file that
/// cannot be read has none.
void ReadElementFile(const std::string& path, const TakeRecord& take);

/// "line 5, column 69: the checksum is wrong": where in its file a record is at fault, and what it is.
std::string FaultText(std::size_t line, const ElementFault& fault);

} // namespace orbitmath
