// What keeps exceptions inside the library.
#pragma once

#include <bscan/result.h>

#include <type_traits>
#include <utility>

namespace bscan::detail {

// Runs the body of a public operation. The inner code throws only when memory is exhausted; such
// an operation returns `failure`.
template <class Body, class Result = std::invoke_result_t<Body>>
Result Guarded(Body&& body, Result failure) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return failure;
    }
}

// For operations that return a result code.
template <class Body>
int GuardedCode(Body&& body) noexcept {
    return Guarded(std::forward<Body>(body), static_cast<int>(kOutOfMemory));
}

// For operations without a result: the body changes nothing when it throws.
template <class Body>
void GuardedQuietly(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (...) {  // NOLINT(bugprone-empty-catch): nothing changed, and nobody to tell
    }
}

}  // namespace bscan::detail
