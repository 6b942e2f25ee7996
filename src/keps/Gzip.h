#pragma once

#include <QByteArray>

#include <optional>

/// Files packed with gzip (RFC 1952, RFC 1951).
namespace Gzip {

/// What `packed` holds; nothing when it is no gzip file, is cut or damaged anywhere, or holds more than
/// `most` bytes.
std::optional<QByteArray> Unpack(QByteArrayView packed, qsizetype most);

} // namespace Gzip
