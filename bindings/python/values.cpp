#include "values.h"

#include "drawing/printable.h"
#include "drawing/words.h"

#include <cctype>

namespace bscan::python {

py::str Text(std::string_view text) {
    PyObject* const decoded =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr);
    if (decoded != nullptr) return py::reinterpret_steal<py::str>(decoded);
    PyErr_Clear();
    return py::str(drawing::JsonText(text));
}

py::object TextOrNone(std::string_view text) {
    return text.empty() ? py::object(py::none()) : py::object(Text(text));
}

py::object NumberOrNone(int number, int lowest) {
    return number < lowest ? py::object(py::none()) : py::object(py::int_(number));
}

py::object OneLine(std::string_view text) {
    std::string line;
    for (const char character : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(character)) != 0;
        if (blank && (line.empty() || line.back() == ' ')) continue;
        line += blank ? ' ' : character;
    }
    if (!line.empty() && line.back() == ' ') line.pop_back();
    return TextOrNone(line);
}

py::object Level(eSignal level) {
    if (level == SIG_0 || level == SIG_1) return py::int_(static_cast<int>(level));
    return Text(drawing::Word(level));
}

eSignal SignalOf(int number) {
    if (number == 0 || number == 1) return number == 0 ? SIG_0 : SIG_1;
    return number == 2 ? SIG_Z : SIG_X;
}

py::object NameOrNone(const ElementName& name) {
    if (!name.port.Exists()) return py::none();
    std::string text(name.port.text);
    if (name.index) text += "(" + std::to_string(*name.index) + ")";
    return Text(text);
}

py::str BitText(const ScanBits& bits) { return py::str(bits.Text()); }

ScanBits BitsOf(const std::string& text) {
    const std::optional<ScanBits> bits = ScanBits::FromText(text);
    if (!bits) throw py::value_error("bits are written with 0 and 1, bit 0 first");
    return *bits;
}

}  // namespace bscan::python
