#include "drawing/package_drawing.h"

#include "drawing/declared_elements.h"
#include "drawing/package_layout.h"
#include "drawing/pin_kinds.h"
#include "drawing/svg.h"
#include "drawing/words.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace bscan::drawing {
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

constexpr std::string_view kCss =
    "text { fill: #000000; }\n"
    "circle, rect { stroke: #333333; stroke-width: 1; }\n"
    ".page { fill: #ffffff; stroke: none; }\n"
    ".body rect { fill: #f7f7f7; }\n"
    ".guess rect { fill: #ffffff; stroke-dasharray: 8 6; }\n";

// What is bonded to one pin; two ports on one pin happen in files, if not in packages.
using Bonds = std::vector<const DeclaredElement*>;
using BondTable = std::unordered_map<std::string, Bonds>;

std::string Label(const Bonds& bonds) {
    std::string label;
    for (const DeclaredElement* element : bonds) {
        if (!label.empty()) label += ' ';
        label += element->Label();
    }
    return label;
}

std::string_view LegMark(const Bonds& bonds) {
    if (bonds.front()->node->IsPositive()) return " +";
    return bonds.front()->node->IsNegative() ? " \xE2\x88\x92" : "";  // a minus sign
}

std::string CellLine(const LBScanCell& cell) {
    std::string line = "cell " + std::to_string(cell.GetBoundaryCellPosition()) + ": ";
    line.append(Word(cell.GetBScanCellType())).append(" ").append(Word(cell.GetFunction()));
    if (const LBScanCell* const control = cell.GetControlCell()) {
        line += ", control cell " + std::to_string(control->GetBoundaryCellPosition());
    }
    return line;
}

// Levels as people say them.
std::string OneOf(const std::string& levels) {
    return levels.size() == 1 ? levels : "0 or 1, by pattern";
}

class Drawing {
public:
    Drawing(const Facts& facts, const BScanPinMap* device, std::string_view package);
    std::string Document();

private:
    // Where a lead is, and its port's name inside the body.
    struct LeadPlace {
        Point lead;
        Point name;
        Point mark;  // of pin 1
        std::string_view anchor;
        bool upright = false;
    };

    void DrawGrid();
    void DrawSides();
    void DrawBall(const PinPlace& place);
    LeadPlace PlaceOf(Side side, int slot) const;
    void DrawLead(const PinPlace& place);
    void DrawElsewhere();
    void DrawLegend();
    const Bonds& BondsOf(const std::string& pin) const;
    int KindOf(const Bonds& bonds) const { return kinds_.Of(*bonds.front()); }
    std::string Tooltip(const std::string& pin, const Bonds& bonds) const;
    std::string Title() const;
    std::string Subtitle() const;
    std::string Css() const;

    std::string component_;
    std::string package_;
    PinKinds kinds_;
    std::vector<DeclaredElement> elements_;
    BondTable bonds_;
    std::array<int, kKindCount> counts_{};  // of pins of each kind
    PackageLayout layout_;
    Svg svg_;
    double body_width_ = 0;
    double body_height_ = 0;
    double width_ = 0;
    double bottom_ = 0;  // of what has been drawn
};

Drawing::Drawing(const Facts& facts, const BScanPinMap* device, std::string_view package)
    : component_(facts.entity.text),
      package_(package),
      kinds_(facts),
      elements_(DeclaredElements(facts, device)) {
    std::vector<std::string> pins;
    for (const DeclaredElement& element : elements_) {
        if (element.pin.empty()) continue;
        Bonds& bonds = bonds_[element.pin];
        if (bonds.empty()) pins.push_back(element.pin);
        bonds.push_back(&element);
    }
    for (const std::string& pin : pins) {
        ++counts_[static_cast<std::size_t>(KindOf(BondsOf(pin)))];
    }
    layout_ = LayOut(pins, package_);
}

const Bonds& Drawing::BondsOf(const std::string& pin) const { return bonds_.at(pin); }

std::string Drawing::Tooltip(const std::string& pin, const Bonds& bonds) const {
    std::string text = pin;
    for (const DeclaredElement* element : bonds) {
        text.append(": " + element->Label() + ", ").append(Word(element->port->mode));
        if (element->node->IsPositive()) text += ", positive leg";
        if (element->node->IsNegative()) text += ", negative leg";
        const std::string& levels = kinds_.ComplianceLevels(*element);
        if (!levels.empty()) text += ", must be " + OneOf(levels);
        for (const LBScanCell* cell : CellsOf(*element->node)) text += "; " + CellLine(*cell);
    }
    return text;
}

std::string Drawing::Title() const {
    return component_ + (package_.empty() ? "" : " in " + package_);
}

std::string Drawing::Subtitle() const {
    if (bonds_.empty()) return "The file tells no pins of this package";
    std::string text = std::to_string(bonds_.size()) + " pins, ";
    if (layout_.is_known) return text + "seen from above";
    return text + "the shape of this package is not known: pins in the order of their numbers";
}

std::string Drawing::Css() const {
    std::string css(kCss);
    for (int kind = 0; kind < kKindCount; ++kind) {
        if (counts_[static_cast<std::size_t>(kind)] == 0) continue;
        const PinKind& look = KindAt(kind);
        const std::string css_class(look.css_class);
        css.append(".").append(css_class).append(" > circle, .").append(css_class);
        css.append(" > rect { ");
        css.append(look.css).append(" }\n");
    }
    return css;
}

void Drawing::DrawBall(const PinPlace& place) {
    const Bonds& bonds = BondsOf(place.pin);
    const std::string mark = kinds_.Mark(*bonds.front()) + std::string(LegMark(bonds));
    const Point centre{kMargin + kPitch * (place.column + 0.5), kHead + kPitch * (place.row + 1)};
    svg_.Open(KindAt(KindOf(bonds)).css_class, Tooltip(place.pin, bonds));
    svg_.Circle(centre, kRadius);
    svg_.Text({centre.x, centre.y - (mark.empty() ? 0 : 3)}, Label(bonds),
              {10, "middle", 0, 2 * kRadius - 5, false});
    svg_.Text({centre.x, centre.y + 9}, mark, {8, "middle", 0, 0, true});
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

Drawing::LeadPlace Drawing::PlaceOf(Side side, int slot) const {
    const bool four = layout_.shape == PackageShape::kFourSides;
    const double along = kSlot * (slot + 1) + (four ? kCorner : 0);
    const double left = kMargin + kLead;
    const double top = kHead + (four ? kLead : 0);
    const double right = left + body_width_;
    const double bottom = top + body_height_;
    const bool at_corner = slot == 0;  // where the mark of pin 1 is in nobody's way
    switch (side) {
        case Side::kLeft: {
            const double y = top + along;
            const Point mark = at_corner ? Point{left + 9, top + 9} : Point{left + kName, y};
            return {{left - kLead, y - 9}, {left + 6, y}, mark, "start", false};
        }
        case Side::kRight: {
            const double y = bottom - along;
            return {{right, y - 9}, {right - 6, y}, {right - kName, y}, "end", false};
        }
        case Side::kBottom: {
            const double x = left + along;
            return {{x - 9, bottom}, {x, bottom - 6}, {x, bottom - kName}, "start", true};
        }
        case Side::kTop:
            break;
    }
    const double x = right - along;
    return {{x - 9, top - kLead}, {x, top + 6}, {x, top + kName}, "end", true};
}

void Drawing::DrawLead(const PinPlace& place) {
    const auto [lead, name, mark_of_pin_1, anchor, upright] = PlaceOf(place.side, place.slot);
    const Bonds& bonds = BondsOf(place.pin);
    const std::string mark = kinds_.Mark(*bonds.front());
    svg_.Open(KindAt(KindOf(bonds)).css_class, Tooltip(place.pin, bonds));
    svg_.Rectangle(lead, upright ? 18 : kLead, upright ? kLead : 18, 2);
    const Point middle =
        upright ? Point{lead.x + 9, lead.y + kLead / 2} : Point{lead.x + kLead / 2, lead.y + 9};
    const double turned = upright ? -90 : 0;
    svg_.Text(middle, mark.empty() ? place.pin : place.pin + " " + mark,
              {9, "middle", turned, kLead - 4, false});
    svg_.Text(name, Label(bonds) + std::string(LegMark(bonds)),
              {10, anchor, turned, kName - 10, false});
    svg_.Close();
}

void Drawing::DrawSides() {
    const bool four = layout_.shape == PackageShape::kFourSides;
    const double side = kSlot * (layout_.slots + 1);
    body_height_ = side + (four ? 2 * kCorner : 0);
    body_width_ = four ? body_height_ : 2 * kName + 20;
    const double top = kHead + (four ? kLead : 0);
    svg_.Open(layout_.is_known ? "body" : "guess", "");
    svg_.Rectangle({kMargin + kLead, top}, body_width_, body_height_, 4);
    if (layout_.is_known) svg_.Circle(PlaceOf(layout_.first_side, layout_.first_slot).mark, 4);
    svg_.Close();
    for (const PinPlace& place : layout_.places) DrawLead(place);
    width_ = 2 * (kMargin + kLead) + body_width_;
    bottom_ = top + body_height_ + (four ? kLead : 0);
}

void Drawing::DrawElsewhere() {
    for (const std::string& pin : layout_.elsewhere) {
        const Bonds& bonds = BondsOf(pin);
        bottom_ += kSlot;
        svg_.Open(KindAt(KindOf(bonds)).css_class, Tooltip(pin, bonds));
        svg_.Rectangle({kMargin, bottom_ - 9}, kLead, 18, 2);
        svg_.Text({kMargin + kLead / 2, bottom_}, pin, {9, "middle", 0, kLead - 4, false});
        svg_.Text({kMargin + kLead + 6, bottom_}, Label(bonds), {10, "start", 0, 0, false});
        svg_.Close();
    }
}

void Drawing::DrawLegend() {
    bottom_ += 12;
    for (int kind = 0; kind < kKindCount; ++kind) {
        const int count = counts_[static_cast<std::size_t>(kind)];
        if (count == 0) continue;
        const PinKind& look = KindAt(kind);
        bottom_ += kLegendRow;
        svg_.Open(look.css_class, "");
        svg_.Rectangle({kMargin, bottom_ - 9}, kLead, 18, 4);
        svg_.Text({kMargin + kLead / 2, bottom_}, look.mark, {9, "middle", 0, 0, true});
        svg_.Text({kMargin + kLead + 10, bottom_},
                  std::string(look.legend) + " (" + std::to_string(count) + ")",
                  {12, "start", 0, 0, false});
        svg_.Close();
    }
}

std::string Drawing::Document() {
    if (layout_.shape == PackageShape::kGrid) {
        DrawGrid();
    } else if (layout_.slots > 0) {
        DrawSides();
    } else {
        bottom_ = kHead;
    }
    DrawElsewhere();
    DrawLegend();
    svg_.Text({kMargin, 20}, Title(), {16, "start", 0, 0, true});
    svg_.Text({kMargin, 40}, Subtitle(), {11, "start", 0, 0, false});
    const double least = layout_.is_known ? 320 : 560;  // room for the subtitle
    return svg_.Document(std::max(width_, least), bottom_ + kMargin, Title(), Css());
}

}  // namespace

std::string DrawPackage(const Facts& facts, const BScanPinMap* device, std::string_view package) {
    return Drawing(facts, device, package).Document();
}

}  // namespace bscan::drawing
