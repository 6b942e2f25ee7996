#pragma once

#include "cli/output/Record.h"

#include <span>

/// The kinds of records of the command line. Fields are only ever added.
namespace Records {

extern const RecordType status;
extern const RecordType frame;
extern const RecordType reading;
extern const RecordType event;
extern const RecordType pass;
extern const RecordType position;
extern const RecordType elements;
extern const RecordType forward;
extern const RecordType setting;

std::span<const RecordType* const> All();

} // namespace Records
