#include "output.h"

namespace tool {

void Write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

}  // namespace tool
