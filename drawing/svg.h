// A small writer of SVG drawings.
#pragma once

#include <string>
#include <string_view>

namespace bscan::drawing {

/// Text for an SVG element or attribute.
std::string XmlText(std::string_view text);

struct Point {
    double x = 0;
    double y = 0;
};

struct TextStyle {
    double size = 10;
    std::string_view anchor = "middle";  ///< start, middle or end
    double turned = 0;                   ///< degrees, about the point
    double room = 0;  ///< longest length, for which text is made smaller; 0 for any
    bool bold = false;
};

/// Collects elements and gives the drawing.
class Svg {
public:
    /// Opens a group whose tooltip is @p title.
    void Open(std::string_view css_class, std::string_view title);
    void Close();

    void Circle(Point centre, double radius);
    void Rectangle(Point corner, double width, double height, double rounding);
    void Text(Point at, std::string_view text, const TextStyle& style);

    /// The whole drawing.
    std::string Document(double width, double height, std::string_view title,
                         std::string_view css) const;

private:
    std::string body_;
};

}  // namespace bscan::drawing
