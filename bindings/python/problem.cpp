#include "problem.h"

#include "values.h"

#include <exception>

namespace bscan::python {

void BindProblems() {
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
