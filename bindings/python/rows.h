// What a device holds, as lists and dictionaries of Python: the fields are those of the JSON that
// the bscan tool prints, as docs/bscan.schema.json tells.
#pragma once

#include "device.h"
#include "values.h"

namespace bscan::python {

/// One row for each port element, in the order of declaration.
py::list PinRows(const Device& device);
/// One row for each declared port, with the place of its first element.
py::list PortRows(const Device& device);
/// One row for each cell, from cell 0.
py::list CellRows(Device& device);
py::list InstructionRows(const Facts& facts);
py::list RegisterRows(const Facts& facts);
py::list PairRows(Device& device);
py::list FindingRows(const Description& description);
py::list AttributeRows(const Facts& facts);
/// What the file tells once, in its own words.
py::dict SingleFacts(Device& device);

}  // namespace bscan::python
