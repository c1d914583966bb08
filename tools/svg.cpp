#include "svg.h"

#include "printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tool {
namespace {

// Wide enough for the letters of most sans-serif fonts.
constexpr double kLetterWidth = 0.65;
constexpr double kSmallestText = 5;

}  // namespace

std::string XmlText(std::string_view text) {
    std::string out;
    for (const char character : Printable(text)) {
        switch (character) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += character;
        }
    }
    return out;
}

void Svg::Open(std::string_view css_class, std::string_view title) {
    body_ += fmt::format("<g class=\"{}\">", css_class);
    if (!title.empty()) body_ += fmt::format("<title>{}</title>", XmlText(title));
    body_ += '\n';
}

void Svg::Close() { body_ += "</g>\n"; }

void Svg::Circle(Point centre, double radius) {
    body_ += fmt::format("<circle cx=\"{}\" cy=\"{}\" r=\"{}\"/>\n", centre.x, centre.y, radius);
}

void Svg::Rectangle(Point corner, double width, double height, double rounding) {
    body_ += fmt::format("<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" rx=\"{}\"/>\n",
                         corner.x, corner.y, width, height, rounding);
}

void Svg::Text(Point at, std::string_view text, const TextStyle& style) {
    if (text.empty()) return;
    const double length = static_cast<double>(Width(text)) * kLetterWidth;
    const bool squeezed = style.room > 0 && length * style.size > style.room;
    const double size = squeezed ? std::max(style.room / length, kSmallestText) : style.size;
    auto out = std::back_inserter(body_);
    fmt::format_to(out, "<text x=\"{}\" y=\"{:.1f}\" font-size=\"{:.1f}\" text-anchor=\"{}\"", at.x,
                   at.y + size * 0.35, size, style.anchor);
    if (style.bold) body_ += " font-weight=\"bold\"";
    if (squeezed && length * size > style.room) {
        fmt::format_to(out, " textLength=\"{}\" lengthAdjust=\"spacingAndGlyphs\"", style.room);
    }
    if (style.turned != 0) {
        fmt::format_to(out, " transform=\"rotate({} {} {})\"", style.turned, at.x, at.y);
    }
    fmt::format_to(out, ">{}</text>\n", XmlText(text));
}

std::string Svg::Document(double width, double height, std::string_view title,
                          std::string_view css) const {
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
        "viewBox=\"0 0 {0} {1}\" font-family=\"Helvetica, Arial, sans-serif\">\n"
        "<title>{2}</title>\n<style>\n{3}</style>\n"
        "<rect class=\"page\" width=\"{0}\" height=\"{1}\"/>\n{4}</svg>\n",
        width, height, XmlText(title), css, body_);
}

}  // namespace tool
