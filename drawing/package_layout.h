// Where the pins of a package are, as far as their designators tell.
#pragma once

#include <string>
#include <vector>

namespace bscan::drawing {

enum class PackageShape {
    kGrid,       ///< balls in rows of letters and columns of numbers
    kTwoSides,   ///< numbered pins, down the left side and up the right
    kFourSides,  ///< numbered pins, counter-clockwise from the upper left corner, or from the
                 ///< middle of the upper side
};

enum class Side { kLeft, kBottom, kRight, kTop };

struct PinPlace {
    std::string pin;
    int row = 0;     ///< kGrid: row from the top
    int column = 0;  ///< kGrid: column from the left
    Side side = Side::kLeft;
    int slot = 0;  ///< otherwise: position along the side, in counter-clockwise order
};

struct AxisLabel {
    std::string text;
    int position = 0;
};

struct PackageLayout {
    PackageShape shape = PackageShape::kTwoSides;
    bool is_known = true;  ///< false when neither designators nor name tell the shape: a guess
    Side first_side = Side::kLeft;  ///< where pin 1 is, when its pins are on sides
    int first_slot = 0;             ///< and at which position
    int rows = 0;                   ///< kGrid
    int columns = 0;                ///< kGrid
    int slots = 0;                  ///< otherwise: positions along each side
    std::vector<PinPlace> places;
    std::vector<AxisLabel> row_labels;
    std::vector<AxisLabel> column_labels;
    std::vector<std::string> elsewhere;  ///< designators that fit no place, such as a pad's
};

/// Lays out the pins of a package. Most designators decide whether it is a grid; the package's name
/// or, failing that, the number of pins whether numbered pins are on two sides or four.
///
/// @param pins  designators, each once.
/// @param package  its name, in lower case.
PackageLayout LayOut(const std::vector<std::string>& pins, const std::string& package);

}  // namespace bscan::drawing
