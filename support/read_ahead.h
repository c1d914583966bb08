// What the C library has read of a stream, and not delivered yet.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace bscan::detail {

// The characters that reading the stream gives next, without a call of the system and without
// copying them. There may be none; there is none before the stream is known to be one of bytes,
// which the first other reading settles. They are valid until the stream is read in another way.
inline std::string_view ReadAhead(const FILE* file) {
    if (file->_mode >= 0) return {};
    return {file->_IO_read_ptr, static_cast<std::size_t>(file->_IO_read_end - file->_IO_read_ptr)};
}

// Takes characters that are read ahead off the stream, as reading them would.
inline void TakeReadAhead(FILE* file, std::size_t count) { file->_IO_read_ptr += count; }

}  // namespace bscan::detail
