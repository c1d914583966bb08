// What the module raises.
#pragma once

#include <pybind11/pybind11.h>
#include <stdexcept>
#include <string>

namespace bscan::python {

/// Becomes an exception of Python: a class of bscan._errors, made with a code and a sentence.
class Problem : public std::runtime_error {
public:
    /// @param kind  the class, such as Error.
    Problem(const char* kind, int code, const std::string& sentence)
        : std::runtime_error(sentence), kind_(kind), code_(code) {}

    const char* Kind() const { return kind_; }
    int Code() const { return code_; }

private:
    const char* kind_;
    int code_;
};

void BindProblems();

}  // namespace bscan::python
