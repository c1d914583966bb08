// Messages that a host reports.

#include <bscan/parser.h>

#include "support/border.h"
#include "support/text_view.h"

#include <array>

using namespace bscan::detail;

namespace {

// For an error that the list does not have.
constexpr std::string_view kUnlistedFormat = "XML Parser Error At Line %d, Column %d.";

// Fills the first two "%d" of a format; every other character stands for itself.
std::string Format(std::string_view format, const std::array<int, 2>& numbers) {
    std::string text;
    for (const int number : numbers) {
        const std::size_t place = format.find("%d");
        if (place == std::string_view::npos) break;
        text.append(format.substr(0, place)).append(std::to_string(number));
        format.remove_prefix(place + 2);
    }
    return text.append(format);
}

}  // namespace

int BScanParser::ProcessException(int group, unsigned int number, char* text) {
    if (error_handler_ == nullptr) return bscan::kFailed;
    return Guarded(
        [&]() -> int {
            ErrorElement* const element = error_handler_->GetErrorElement(
                static_cast<unsigned short>(group), static_cast<unsigned short>(number));
            std::string message = "\n";
            if (text != nullptr) message.append(text).push_back('\n');
            message +=
                Format(element == nullptr ? kUnlistedFormat : View(element->GetErrorMessage()),
                       {static_cast<int>(line_number_), column_number_});
            error_handler_->SetErrorOccured(message.data());
            return element == nullptr ? static_cast<int>(bscan::kFailed) : element->GetResult();
        },
        static_cast<int>(bscan::kFailed));
}
