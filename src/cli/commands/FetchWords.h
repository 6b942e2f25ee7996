#pragma once

#include <QString>

struct KepsFetchResult;

/// What became of an address, in words, after its name.
QString FetchWords(const KepsFetchResult& result);
