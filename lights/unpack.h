#pragma once

#include <cstdint>
#include <functional>
#include <span>

using Piece = std::span<const std::uint8_t>;

/// Gives the next piece of what is packed, which stays until the next call; an empty one at the
/// end.
using Source = std::function<Piece()>;
/// Takes the next piece of what is unpacked; throws to end it.
using Sink = std::function<void(Piece)>;

/// Unpacks one or more complete frames of zstd. Takes about `memory` bytes at most, and 32 MB.
/// Throws std::runtime_error if they are broken or end too early, or if this build lacks libzstd.
void unpack_zstd(const Source& source, const Sink& sink, std::uint64_t memory);

/// Unpacks one stream of zlib.
/// Throws std::runtime_error if it is broken or does not end there, or if this build lacks zlib.
void unpack_zlib(const Source& source, const Sink& sink);
