#include <bscan/byte_buffer.h>

#include "support/border.h"

using bscan::detail::Guarded;
using bscan::detail::GuardedQuietly;

LByteBuffer::LByteBuffer() = default;
LByteBuffer::~LByteBuffer() = default;

LByteBuffer* LByteBuffer::WriteData(char* text) {
    if (text != nullptr) GuardedQuietly([&] { bytes_.append(text); });
    return this;
}

bool LByteBuffer::WriteData(char byte) {
    return Guarded(
        [&] {
            bytes_.push_back(byte);
            return true;
        },
        false);
}

unsigned int LByteBuffer::GetTotalSize() { return static_cast<unsigned int>(bytes_.size()); }

char LByteBuffer::ReadData(int index) {
    return index >= 0 && static_cast<unsigned int>(index) < GetTotalSize()
               ? bytes_[static_cast<std::size_t>(index)]
               : '\0';
}
