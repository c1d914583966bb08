#include "drawing/package_layout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>

namespace bscan::drawing {
namespace {

// Rows are lettered without the letters that look like digits or each other.
constexpr std::string_view kRowLetters = "ABCDEFGHJKLMNPRTUVWY";

struct Designator {
    std::string letters;
    int number = 0;
};

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Letters, at most two of them, and a number; the letters may be missing.
std::optional<Designator> Parse(const std::string& pin) {
    std::size_t letters = 0;
    while (letters < pin.size() && IsLetter(pin[letters])) ++letters;
    Designator designator{pin.substr(0, letters), 0};
    for (char& letter : designator.letters) {
        if (letter >= 'a') letter = static_cast<char>(letter - 'a' + 'A');
    }
    const char* end = pin.data() + pin.size();
    const auto [stop, error] = std::from_chars(pin.data() + letters, end, designator.number);
    if (error != std::errc() || stop != end || letters > 2 || designator.number < 0) return {};
    return designator;
}

// The row's place in the alphabet of rows; nothing for letters outside it.
std::optional<int> RowNumber(const std::string& letters) {
    int number = 0;
    for (const char letter : letters) {
        const std::size_t place = kRowLetters.find(letter);
        if (place == std::string_view::npos) return std::nullopt;
        number = number * static_cast<int>(kRowLetters.size()) + static_cast<int>(place) + 1;
    }
    return number;
}

bool ComesBefore(const std::string& left, const std::string& right) {
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

// Places of the rows that occur, from 0. A row without balls between them keeps its place when all
// are rows of the usual alphabet.
std::vector<AxisLabel> Rows(const std::vector<Designator>& designators) {
    std::set<std::string, bool (*)(const std::string&, const std::string&)> names(ComesBefore);
    for (const Designator& designator : designators) names.insert(designator.letters);
    std::vector<AxisLabel> rows;
    rows.reserve(names.size());
    for (const std::string& name : names) rows.push_back({name, static_cast<int>(rows.size())});
    if (rows.empty()) return rows;
    const bool usual = std::all_of(rows.begin(), rows.end(), [](const AxisLabel& row) {
        return RowNumber(row.text).has_value();
    });
    const int span = usual ? *RowNumber(rows.back().text) - *RowNumber(rows.front().text) : 0;
    if (!usual || span >= 2 * static_cast<int>(rows.size()) + 4) return rows;
    const int first = *RowNumber(rows.front().text);
    for (AxisLabel& row : rows) row.position = *RowNumber(row.text) - first;
    return rows;
}

std::vector<AxisLabel> Columns(const std::vector<Designator>& designators) {
    std::set<int> numbers;
    for (const Designator& designator : designators) numbers.insert(designator.number);
    std::vector<AxisLabel> columns;
    columns.reserve(numbers.size());
    const bool dense = !numbers.empty() && *numbers.rbegin() - *numbers.begin() <
                                               2 * static_cast<int>(numbers.size()) + 4;
    for (const int number : numbers) {
        columns.push_back({std::to_string(number),
                           dense ? number - *numbers.begin() : static_cast<int>(columns.size())});
    }
    return columns;
}

using Positions = std::unordered_map<std::string, int>;

Positions ByText(const std::vector<AxisLabel>& labels) {
    Positions positions;
    for (const AxisLabel& label : labels) positions[label.text] = label.position;
    return positions;
}

struct Sorted {
    std::vector<std::string> pins;
    std::vector<Designator> designators;
    std::vector<std::string> elsewhere;
};

Sorted Sort(const std::vector<std::string>& pins, bool lettered) {
    Sorted sorted;
    for (const std::string& pin : pins) {
        const std::optional<Designator> designator = Parse(pin);
        if (designator && designator->letters.empty() != lettered &&
            (lettered || designator->number > 0)) {
            sorted.pins.push_back(pin);
            sorted.designators.push_back(*designator);
        } else {
            sorted.elsewhere.push_back(pin);
        }
    }
    return sorted;
}

void PlaceInGrid(const Sorted& sorted, PackageLayout& layout) {
    layout.row_labels = Rows(sorted.designators);
    layout.column_labels = Columns(sorted.designators);
    const Positions rows = ByText(layout.row_labels);
    const Positions columns = ByText(layout.column_labels);
    for (std::size_t i = 0; i < sorted.pins.size(); ++i) {
        PinPlace place;
        place.pin = sorted.pins[i];
        place.row = rows.at(sorted.designators[i].letters);
        place.column = columns.at(std::to_string(sorted.designators[i].number));
        layout.places.push_back(place);
    }
    if (!layout.row_labels.empty()) layout.rows = layout.row_labels.back().position + 1;
    if (!layout.column_labels.empty()) layout.columns = layout.column_labels.back().position + 1;
}

bool HasAnyOf(const std::string& name, const std::vector<std::string_view>& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](std::string_view part) { return name.find(part) != std::string::npos; });
}

enum class Outline { kUnknown, kTwoSides, kFourSides, kChipCarrier };

// Leads of chip carriers begin in the middle of the upper side.
Outline OutlineOf(const std::string& package) {
    if (HasAnyOf(package, {"plcc", "clcc", "jlcc", "lcc"})) return Outline::kChipCarrier;
    if (HasAnyOf(package, {"qf", "mlf", "qn", "cq", "tq"})) return Outline::kFourSides;
    if (HasAnyOf(package, {"so", "dip", "dil", "dw"})) return Outline::kTwoSides;
    return Outline::kUnknown;
}

// Positions counter-clockwise along the sides, from 0 for pin 1.
struct Ring {
    bool four_sides = false;
    int slots = 0;
    int turned = 0;  // how far pin 1 is from the upper left corner

    void Place(int position, PinPlace& place) const {
        constexpr std::array<Side, 4> kFour = {Side::kLeft, Side::kBottom, Side::kRight,
                                               Side::kTop};
        constexpr std::array<Side, 2> kTwo = {Side::kLeft, Side::kRight};
        const int at = (position + turned) % ((four_sides ? 4 : 2) * slots);
        const auto side = static_cast<std::size_t>(at / slots);
        place.side = four_sides ? kFour[side] : kTwo[side];
        place.slot = at % slots;
    }
};

Ring RingFor(Outline outline, int count) {
    const bool guess_four = outline == Outline::kUnknown && count >= 40 && count % 4 == 0;
    Ring ring;
    ring.four_sides =
        outline == Outline::kFourSides || outline == Outline::kChipCarrier || guess_four;
    ring.slots = ring.four_sides ? (count + 3) / 4 : (count + 1) / 2;
    if (outline == Outline::kChipCarrier) ring.turned = 3 * ring.slots + ring.slots / 2;
    return ring;
}

// Numbers of pins that the package lacks keep their places, unless they would be most of them.
void PlaceAlongSides(const Sorted& sorted, const std::string& package, PackageLayout& layout) {
    const std::vector<AxisLabel> order = Columns(sorted.designators);
    const Outline outline = OutlineOf(package);
    layout.is_known = outline != Outline::kUnknown;
    if (order.empty()) return;
    const int lowest = std::stoi(order.front().text);
    const bool dense = std::stoi(order.back().text) - lowest == order.back().position;
    const int offset = dense && lowest <= static_cast<int>(order.size()) ? lowest - 1 : 0;
    const Ring ring = RingFor(outline, order.back().position + 1 + offset);
    layout.shape = ring.four_sides ? PackageShape::kFourSides : PackageShape::kTwoSides;
    layout.slots = ring.slots;
    PinPlace first;
    ring.Place(0, first);
    layout.first_side = first.side;
    layout.first_slot = first.slot;
    const Positions positions = ByText(order);
    for (std::size_t i = 0; i < sorted.pins.size(); ++i) {
        PinPlace place;
        place.pin = sorted.pins[i];
        ring.Place(positions.at(std::to_string(sorted.designators[i].number)) + offset, place);
        layout.places.push_back(place);
    }
}

}  // namespace

PackageLayout LayOut(const std::vector<std::string>& pins, const std::string& package) {
    const auto lettered = std::count_if(pins.begin(), pins.end(), [](const std::string& pin) {
        const std::optional<Designator> designator = Parse(pin);
        return designator && !designator->letters.empty();
    });
    const bool grid = 2 * static_cast<std::size_t>(lettered) > pins.size();
    const Sorted sorted = Sort(pins, grid);
    PackageLayout layout;
    layout.elsewhere = sorted.elsewhere;
    if (grid) {
        layout.shape = PackageShape::kGrid;
        PlaceInGrid(sorted, layout);
    } else {
        PlaceAlongSides(sorted, package, layout);
    }
    return layout;
}

}  // namespace bscan::drawing
