#include "drawing/svg.h"

#include "drawing/printable.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace bscan::drawing {
namespace {

// Wide enough for the letters of most sans-serif fonts.
constexpr double kLetterWidth = 0.65;
constexpr double kSmallestText = 5;

using Digits = std::array<char, 400>;  // more than any double needs

// A number in as few digits as tell it.
std::string Number(double value) {
    Digits digits;
    char* const end = digits.data() + digits.size();
    const char* const last = std::to_chars(digits.data(), end, value, std::chars_format::fixed).ptr;
    return std::string(static_cast<const char*>(digits.data()), last);
}

std::string Tenths(double value) {
    Digits digits;
    char* const end = digits.data() + digits.size();
    const char* const last =
        std::to_chars(digits.data(), end, value, std::chars_format::fixed, 1).ptr;
    return std::string(static_cast<const char*>(digits.data()), last);
}

// An attribute with a blank in front.
std::string Attribute(std::string_view name, std::string_view value) {
    return std::string(" ").append(name).append("=\"").append(value).append("\"");
}

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
    body_ += "<g" + Attribute("class", css_class) + ">";
    if (!title.empty()) body_ += "<title>" + XmlText(title) + "</title>";
    body_ += '\n';
}

void Svg::Close() { body_ += "</g>\n"; }

void Svg::Circle(Point centre, double radius) {
    body_ += "<circle" + Attribute("cx", Number(centre.x)) + Attribute("cy", Number(centre.y)) +
             Attribute("r", Number(radius)) + "/>\n";
}

void Svg::Rectangle(Point corner, double width, double height, double rounding) {
    body_ += "<rect" + Attribute("x", Number(corner.x)) + Attribute("y", Number(corner.y)) +
             Attribute("width", Number(width)) + Attribute("height", Number(height)) +
             Attribute("rx", Number(rounding)) + "/>\n";
}

void Svg::Text(Point at, std::string_view text, const TextStyle& style) {
    if (text.empty()) return;
    const double length = static_cast<double>(Width(text)) * kLetterWidth;
    const bool squeezed = style.room > 0 && length * style.size > style.room;
    const double size = squeezed ? std::max(style.room / length, kSmallestText) : style.size;
    body_ += "<text" + Attribute("x", Number(at.x)) + Attribute("y", Tenths(at.y + size * 0.35)) +
             Attribute("font-size", Tenths(size)) + Attribute("text-anchor", style.anchor);
    if (style.bold) body_ += Attribute("font-weight", "bold");
    if (squeezed && length * size > style.room) {
        body_ += Attribute("textLength", Number(style.room)) +
                 Attribute("lengthAdjust", "spacingAndGlyphs");
    }
    if (style.turned != 0) {
        body_ += Attribute("transform", "rotate(" + Number(style.turned) + " " + Number(at.x) +
                                            " " + Number(at.y) + ")");
    }
    body_ += ">" + XmlText(text) + "</text>\n";
}

std::string Svg::Document(double width, double height, std::string_view title,
                          std::string_view css) const {
    const std::string size =
        Attribute("width", Number(width)) + Attribute("height", Number(height));
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg";
    text += Attribute("xmlns", "http://www.w3.org/2000/svg") + size +
            Attribute("viewBox", "0 0 " + Number(width) + " " + Number(height)) +
            Attribute("font-family", "Helvetica, Arial, sans-serif") + ">\n";
    text.append("<title>").append(XmlText(title)).append("</title>\n");
    text.append("<style>\n").append(css).append("</style>\n");
    text += "<rect" + Attribute("class", "page") + size + "/>\n";
    return text.append(body_).append("</svg>\n");
}

}  // namespace bscan::drawing
