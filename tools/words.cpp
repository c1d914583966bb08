#include "words.h"

namespace tool {

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& character : upper) {
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character - 32);
    }
    return upper;
}

}  // namespace tool
