// Finds records in the order in which something else names them. Both lists mostly come in the same order, so
// each search goes on behind the last find, and a list of n is joined in n steps instead of n * n / 2.
#pragma once

#include <cstddef>
#include <optional>

class CircularSearch {
  public:
    /// Over the positions 0 to count - 1.
    explicit CircularSearch(std::size_t count) : m_count(count) {}

    /// The first position that matches, from the one behind the last find (at first 0) around to where it
    /// began; nothing when none does, and then the next search begins where this one did.
    template <class Matches>
    std::optional<std::size_t> Find(Matches matches) {
        for (std::size_t step = 0; step < m_count; ++step) {
            const std::size_t position = (m_start + step) % m_count;
            if (matches(position)) {
                m_start = (position + 1) % m_count;
                return position;
            }
        }
        return std::nullopt;
    }

  private:
    std::size_t m_count;
    std::size_t m_start = 0;
};
