#pragma once

#include <new>

#include "core/Result.h"

namespace tessara {

/// What `step` answers, or a failure where the memory that it needs cannot be had.
template <typename Step>
auto WithinMemory(const Step& step) -> decltype(step()) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        return TooBig("no memory for the picture");
    }
}

}  // namespace tessara
