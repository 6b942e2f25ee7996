#pragma once

#include "foundation/settings/ProgramFolder.h"

/// What became of a fetched file.
struct KepsConversion {
    bool converted = false; ///< stored in the Keps folder or, being HTML, in the program's folder
    QString error;          ///< what the user is to know; empty when all is well
};

/// Where a download keeps what.
namespace KepsFiles {
QString Target(const ProgramFolder& folder);                      ///< what the server sent, while it runs
QString Work(const ProgramFolder& folder);                        ///< the same, with its line ends mended
QString Result(const ProgramFolder& folder, const QString& name); ///< what is kept of it
QString HtmlCopy(const ProgramFolder& folder, qint16 index);      ///< or of a page in HTML instead
QString WorkName();

/// Removes what a download keeps only while it runs, for instance after a crash. FolderLock::OfKeps must be
/// held.
void RemoveWork(const ProgramFolder& folder);
} // namespace KepsFiles

/// Stores the fetched file `source` as `name`, a plain file name, in the Keps folder, which is made where it
/// is missing. All line ends become CR LF; an older file is replaced whole or left as it is. A page in HTML
/// becomes "File1.HTML" or "File2.HTML" (by `index`, 0 or 1) in the program's folder instead. A source
/// shorter than 80 bytes is no element file: nothing happens. Nor does an older file give way to one that
/// ends within a set of elements, or that is JSON, XML or CSV and holds none.
KepsConversion ConvertKepsFile(const ProgramFolder& folder, const QString& source, const QString& name,
                               qint16 index);
