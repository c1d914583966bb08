#include "problem.h"

#include "values.h"

#include <exception>

namespace bscan::python {

void BindProblems() {
    // The library that calls it hands the pointer over by value.
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    py::register_exception_translator([](std::exception_ptr pointer) {
        try {
            if (pointer) std::rethrow_exception(pointer);
        } catch (const Problem& problem) {
            const py::object kind = py::module_::import("bscan._errors").attr(problem.Kind());
            const py::object error = kind(problem.Code(), Text(problem.what()));
            PyErr_SetObject(kind.ptr(), error.ptr());
        }
    });
}

}  // namespace bscan::python
