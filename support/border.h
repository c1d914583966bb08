// What keeps exceptions inside the library.
#pragma once

#include <bscan/result.h>

#include <new>
#include <type_traits>
#include <utility>

namespace bscan::detail {

// Runs the body of a public operation. The inner code throws only when memory is exhausted; such
// an operation returns `failure`. Nothing else is caught: a thread that is cancelled while it waits
// for a file unwinds through here, which a handler for everything, or noexcept, would turn into the
// end of the process.
template <class Body, class Result = std::invoke_result_t<Body>>
Result Guarded(Body&& body, Result failure) {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return failure;
    }
}

// For operations that return a result code.
template <class Body>
int GuardedCode(Body&& body) {
    return Guarded(std::forward<Body>(body), static_cast<int>(kOutOfMemory));
}

// For operations without a result: the body changes nothing when it throws.
template <class Body>
void GuardedQuietly(Body&& body) {
    try {
        std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): nothing changed, and nobody
                                       // to tell
    }
}

}  // namespace bscan::detail
