#include "package_drawing.h"

#include "package_layout.h"
#include "svg.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>

namespace tool {
namespace {

constexpr double kMargin = 40;
constexpr double kHead = 64;   // above the package: title and view
constexpr double kPitch = 50;  // of balls
constexpr double kRadius = 21;
constexpr double kSlot = 26;    // of numbered pins
constexpr double kLead = 40;    // length of a numbered pin
constexpr double kName = 110;   // room for a port's name inside the body
constexpr double kCorner = 60;  // kept free at the corners of four sides, for names to pass
constexpr double kLegendRow = 24;

// Light fills keep black text readable; the marks and outlines tell the modes apart in print.
constexpr std::string_view kCss =
    "text { fill: #000000; }\n"
    "circle, rect { stroke: #333333; stroke-width: 1; }\n"
    ".page { fill: #ffffff; stroke: none; }\n"
    ".body rect { fill: #f7f7f7; }\n"
    ".in > circle, .in > rect { fill: #bcdcf5; }\n"
    ".out > circle, .out > rect { fill: #f8c58c; stroke-width: 2.5; }\n"
    ".inout > circle, .inout > rect { fill: #c3e6b5; stroke-width: 2.5; stroke-dasharray: 7 2; }\n"
    ".buffer > circle, .buffer > rect { fill: #e5c3ec; stroke-width: 4; }\n"
    ".linkage > circle, .linkage > rect { fill: #e4e4e4; stroke-dasharray: 2 2; }\n";

struct Kind {
    std::string_view css_class;
    std::string_view mark;
    std::string_view legend;
};

// By PortType.
constexpr std::array<Kind, 5> kKinds = {{{"in", "in", "in: receives"},
                                         {"out", "out", "out: drives"},
                                         {"inout", "i/o", "inout: does both"},
                                         {"buffer", "buf", "buffer: always drives"},
                                         {"linkage", "", "linkage: power, ground, analogue"}}};

// What is bonded to one pin; two ports on one pin happen in files, if not in packages.
using Bonds = std::vector<const Element*>;
using BondTable = std::unordered_map<std::string, Bonds>;

std::size_t KindOf(const Bonds& bonds) {
    return static_cast<std::size_t>(bonds.front()->node->GetPortType());
}

std::string Label(const Bonds& bonds) {
    std::string label;
    for (const Element* element : bonds) {
        if (!label.empty()) label += ' ';
        label += element->Label();
    }
    return label;
}

std::string CellLine(const LBScanCell& cell) {
    std::string line = fmt::format("cell {}: {} {}", cell.GetBoundaryCellPosition(),
                                   Word(cell.GetBScanCellType()), Word(cell.GetFunction()));
    if (const LBScanCell* control = cell.GetControlCell()) {
        line += fmt::format(", control cell {}", control->GetBoundaryCellPosition());
    }
    return line;
}

std::string Tooltip(const std::string& pin, const Bonds& bonds) {
    std::string text = pin;
    for (const Element* element : bonds) {
        text += fmt::format(": {}, {}", element->Label(), Word(element->node->GetPortType()));
        if (element->node->IsPositive()) text += ", positive leg";
        if (element->node->IsNegative()) text += ", negative leg";
        for (const LBScanCell* cell : CellsOf(*element->node)) text += "; " + CellLine(*cell);
    }
    return text;
}

std::string_view LegMark(const Bonds& bonds) {
    if (bonds.front()->node->IsPositive()) return " +";
    return bonds.front()->node->IsNegative() ? " \xE2\x88\x92" : "";  // a minus sign
}

class Drawing {
public:
    explicit Drawing(const Device& device);
    std::string Document();

private:
    void DrawGrid();
    void DrawSides();
    void DrawBall(const PinPlace& place);
    void DrawLead(const PinPlace& place, double width, double height);
    void DrawElsewhere();
    void DrawLegend();
    const Bonds& BondsOf(const std::string& pin) const;
    std::string Title() const;

    const Device& device_;
    BondTable bonds_;
    PackageLayout layout_;
    Svg svg_;
    double width_ = 0;
    double bottom_ = 0;  // of what has been drawn
};

Drawing::Drawing(const Device& device) : device_(device) {
    std::vector<std::string> pins;
    for (const Element& element : device.elements()) {
        if (element.pin.empty()) continue;
        Bonds& bonds = bonds_[element.pin];
        if (bonds.empty()) pins.push_back(element.pin);
        bonds.push_back(&element);
    }
    layout_ = LayOut(pins, device.PackageName());
}

const Bonds& Drawing::BondsOf(const std::string& pin) const { return bonds_.at(pin); }

std::string Drawing::Title() const {
    const std::string package = device_.PackageName();
    return device_.ComponentName() + (package.empty() ? "" : " in " + package);
}

void Drawing::DrawBall(const PinPlace& place) {
    const Bonds& bonds = BondsOf(place.pin);
    const Kind& kind = kKinds[KindOf(bonds)];
    const Point centre{kMargin + kPitch * (place.column + 0.5), kHead + kPitch * (place.row + 1)};
    svg_.Open(kind.css_class, Tooltip(place.pin, bonds));
    svg_.Circle(centre, kRadius);
    const bool marked = !kind.mark.empty();
    svg_.Text({centre.x, centre.y - (marked ? 3 : 0)}, Label(bonds),
              {10, "middle", 0, 2 * kRadius - 5, false});
    svg_.Text({centre.x, centre.y + 9}, std::string(kind.mark) + std::string(LegMark(bonds)),
              {8, "middle", 0, 0, true});
    svg_.Close();
}

void Drawing::DrawGrid() {
    const double width = kPitch * layout_.columns;
    const double height = kPitch * (layout_.rows + 0.5);
    svg_.Open("body", "");
    svg_.Rectangle({kMargin - 4, kHead + 10}, width + 8, height - 2, 8);
    svg_.Close();
    for (const AxisLabel& row : layout_.row_labels) {
        svg_.Text({kMargin - 20, kHead + kPitch * (row.position + 1)}, row.text,
                  {13, "middle", 0, 0, true});
    }
    for (const AxisLabel& column : layout_.column_labels) {
        svg_.Text({kMargin + kPitch * (column.position + 0.5), kHead}, column.text,
                  {13, "middle", 0, 0, true});
    }
    for (const PinPlace& place : layout_.places) DrawBall(place);
    width_ = 2 * kMargin + width;
    bottom_ = kHead + 10 + height;
}

// A lead is drawn as if on the left side of the body and then turned into its place.
void Drawing::DrawLead(const PinPlace& place, double width, double height) {
    const bool four = layout_.shape == PackageShape::kFourSides;
    const double along = kSlot * (place.slot + 1) + (four ? kCorner : 0);
    const double left = kMargin + kLead;
    const double top = kHead + (four ? kLead : 0);
    Point lead;
    Point name;
    TextStyle name_style{10, "start", 0, kName - 10, false};
    bool upright = false;
    switch (place.side) {
        case Side::kLeft:
            lead = {left - kLead, top + along - 9};
            name = {left + 6, top + along};
            break;
        case Side::kRight:
            lead = {left + width, top + height - along - 9};
            name = {left + width - 6, top + height - along};
            name_style.anchor = "end";
            break;
        case Side::kBottom:
            lead = {left + along - 9, top + height};
            name = {left + along, top + height - 6};
            upright = true;
            break;
        case Side::kTop:
            lead = {left + width - along - 9, top - kLead};
            name = {left + width - along, top + 6};
            name_style.anchor = "end";
            upright = true;
            break;
    }
    const Bonds& bonds = BondsOf(place.pin);
    const Kind& kind = kKinds[KindOf(bonds)];
    svg_.Open(kind.css_class, Tooltip(place.pin, bonds));
    svg_.Rectangle(lead, upright ? 18 : kLead, upright ? kLead : 18, 2);
    const Point middle =
        upright ? Point{lead.x + 9, lead.y + kLead / 2} : Point{lead.x + kLead / 2, lead.y + 9};
    svg_.Text(middle, kind.mark.empty() ? place.pin : fmt::format("{} {}", place.pin, kind.mark),
              {9, "middle", upright ? -90.0 : 0.0, kLead - 4, false});
    name_style.turned = upright ? -90 : 0;
    svg_.Text(name, Label(bonds) + std::string(LegMark(bonds)), name_style);
    svg_.Close();
}

void Drawing::DrawSides() {
    const bool four = layout_.shape == PackageShape::kFourSides;
    const double side = kSlot * (layout_.slots + 1);
    const double height = side + (four ? 2 * kCorner : 0);
    const double width = four ? height : 2 * kName + 20;
    const double top = kHead + (four ? kLead : 0);
    svg_.Open("body", "");
    svg_.Rectangle({kMargin + kLead, top}, width, height, 4);
    svg_.Circle({kMargin + kLead + 9, top + 9}, 4);
    svg_.Close();
    for (const PinPlace& place : layout_.places) DrawLead(place, width, height);
    width_ = 2 * (kMargin + kLead) + width;
    bottom_ = top + height + (four ? kLead : 0);
}

void Drawing::DrawElsewhere() {
    for (const std::string& pin : layout_.elsewhere) {
        const Bonds& bonds = BondsOf(pin);
        const Kind& kind = kKinds[KindOf(bonds)];
        bottom_ += kSlot;
        svg_.Open(kind.css_class, Tooltip(pin, bonds));
        svg_.Rectangle({kMargin, bottom_ - 9}, kLead, 18, 2);
        svg_.Text({kMargin + kLead / 2, bottom_}, pin, {9, "middle", 0, kLead - 4, false});
        svg_.Text({kMargin + kLead + 6, bottom_}, Label(bonds), {10, "start", 0, 0, false});
        svg_.Close();
    }
}

void Drawing::DrawLegend() {
    std::array<int, kKinds.size()> counts{};
    for (const auto& [pin, bonds] : bonds_) ++counts[KindOf(bonds)];
    bottom_ += 12;
    for (std::size_t i = 0; i < kKinds.size(); ++i) {
        if (counts[i] == 0) continue;
        bottom_ += kLegendRow;
        svg_.Open(kKinds[i].css_class, "");
        svg_.Rectangle({kMargin, bottom_ - 9}, kLead, 18, 4);
        svg_.Text({kMargin + kLead / 2, bottom_}, kKinds[i].mark, {9, "middle", 0, 0, true});
        svg_.Text({kMargin + kLead + 10, bottom_},
                  fmt::format("{} ({})", kKinds[i].legend, counts[i]), {12, "start", 0, 0, false});
        svg_.Close();
    }
}

std::string Drawing::Document() {
    if (layout_.shape == PackageShape::kGrid) {
        DrawGrid();
    } else {
        DrawSides();
    }
    DrawElsewhere();
    DrawLegend();
    svg_.Text({kMargin, 20}, Title(), {16, "start", 0, 0, true});
    svg_.Text({kMargin, 40}, fmt::format("{} pins, seen from above", bonds_.size()),
              {11, "start", 0, 0, false});
    return svg_.Document(std::max(width_, 320.0), bottom_ + kMargin, Title(), kCss);
}

}  // namespace

std::string DrawPackage(const Device& device) { return Drawing(device).Document(); }

}  // namespace tool
