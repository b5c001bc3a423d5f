// The second half of an assignment that copies first: nothing can fail any more.
#pragma once

#include <tuple>

namespace quillet {

/// Exchanges the members of two records, which are given as `std::tie` yields them.
template <class... TMembers>
void SwapMembers(std::tuple<TMembers&...> left, std::tuple<TMembers&...> right) noexcept {
    left.swap(right);
}

} // namespace quillet
