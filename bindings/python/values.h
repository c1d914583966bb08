// Values of the library as Python has them.
#pragma once

#include <bscan/facts.h>
#include <bscan/scan_bits.h>
#include <bscan/signal.h>

#include <pybind11/pybind11.h>
#include <string>
#include <string_view>

namespace bscan::python {

namespace py = pybind11;

/// A text of the file; bytes that are not UTF-8 become \xNN.
py::str Text(std::string_view text);
/// The same, and None for an empty one.
py::object TextOrNone(std::string_view text);
py::object NumberOrNone(int number, int lowest);

/// Text with its runs of white space turned into single blanks; None for none.
py::object OneLine(std::string_view text);

/// A level: the numbers 0 and 1, and the word of the language for any other.
py::object Level(eSignal level);
/// 0, 1 and Z by what Python passes to the module: 0, 1 and 2; anything else is SIG_X.
eSignal SignalOf(int number);

/// The name of a port element as the file writes it, such as D(3); None for none.
py::object NameOrNone(const ElementName& name);

/// Bits as text, bit 0 first.
py::str BitText(const ScanBits& bits);
/// @return the bits of a text of 0 and 1, bit 0 first; throws ValueError for another character.
ScanBits BitsOf(const std::string& text);

}  // namespace bscan::python
