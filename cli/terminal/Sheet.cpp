// Labels and values, aligned.
#include "terminal/Sheet.h"

#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

Sheet& Sheet::Add(const std::string& label, const std::string& value) {
    m_lines.emplace_back(label + ':', value.empty() ? "-" : Printable(value));
    return *this;
}

void Sheet::Print(const Terminal& terminal) const {
    constexpr std::size_t kGap = 2;
    std::size_t width = 0;
    for (const auto& [label, value] : m_lines) {
        width = std::max(width, DisplayWidth(label));
    }
    for (const auto& [label, value] : m_lines) {
        terminal.out << label << std::string(width - DisplayWidth(label) + kGap, ' ') << value << '\n';
    }
}

} // namespace quilletctl
