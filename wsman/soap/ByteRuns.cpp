// Folding runs of bytes.
#include "soap/ByteRuns.h"

#include <algorithm>
#include <optional>

namespace quillet::wsman {

namespace {

constexpr std::size_t kLongestTag = 256;
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kBlanks = " \t\r\n";

/// What stands at a place: enough to know, too little, or something else.
enum class Sight { Byte, Unknown, Other };

/// Whether an element "<name>byte</name>" stands at the beginning of a text. @param length what it takes
Sight Look(std::string_view text, std::string_view name, unsigned& byte, std::size_t& length) {
    std::size_t place = 0;
    const auto expect = [&](std::string_view wanted) {
        const std::string_view there = text.substr(place, wanted.size());
        if (there != wanted.substr(0, there.size())) {
            return Sight::Other;
        }
        place += there.size();
        return there.size() == wanted.size() ? Sight::Byte : Sight::Unknown;
    };
    for (const std::string_view part : {std::string_view("<"), name, std::string_view(">")}) {
        if (const Sight seen = expect(part); seen != Sight::Byte) {
            return seen;
        }
    }
    const std::size_t digits = place;
    byte = 0;
    while (place < text.size() && text[place] >= '0' && text[place] <= '9' && place - digits < 4) {
        byte = byte * 10 + static_cast<unsigned>(text[place++] - '0');
    }
    const std::size_t count = place - digits;
    if (place == text.size()) {
        return count <= 3 ? Sight::Unknown : Sight::Other;
    }
    if (count == 0 || count > 3 || byte > 255) {
        return Sight::Other;
    }
    for (const std::string_view part : {std::string_view("</"), name, std::string_view(">")}) {
        if (const Sight seen = expect(part); seen != Sight::Byte) {
            return seen;
        }
    }
    length = place;
    return Sight::Byte;
}

std::optional<unsigned> DigitOf(char digit) {
    const std::size_t value = kDigits.find(digit);
    return value == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(value));
}

} // namespace

bool ByteRuns::IsByteName(std::string_view name) const {
    const std::string_view local = name.substr(name.find(':') + 1);
    return std::find(m_names.begin(), m_names.end(), local) != m_names.end();
}

void ByteRuns::Append(std::string_view piece, std::string& kept) {
    if (m_isOff || m_names.empty()) {
        kept += piece;
        return;
    }
    m_held += piece;
    while (m_place < m_held.size() && !m_isOff && Step(kept)) {
    }
    m_held.erase(0, m_place);
    m_place = 0;
    if (m_isOff) {
        kept += m_held;
        m_held.clear();
    }
}

void ByteRuns::Finish(std::string& kept) {
    if (!m_name.empty()) {
        kept += "\"/>";
        m_name.clear();
    }
    kept += m_held;
    m_held.clear();
}

bool ByteRuns::StepInRun(std::string& kept) {
    const std::string_view rest = std::string_view(m_held).substr(m_place);
    const std::size_t blanks = std::min(rest.find_first_not_of(kBlanks), rest.size());
    unsigned byte = 0;
    std::size_t length = 0;
    const Sight seen = Look(rest.substr(blanks), m_name, byte, length);
    if (seen == Sight::Unknown) {
        return false;
    }
    if (seen == Sight::Byte) {
        kept += kDigits[byte >> 4];
        kept += kDigits[byte & 0xF];
        m_place += blanks + length;
    } else {
        kept += "\"/>";
        m_name.clear();
    }
    return true;
}

bool ByteRuns::Step(std::string& kept) {
    if (!m_name.empty()) {
        return StepInRun(kept);
    }
    const std::string_view rest = std::string_view(m_held).substr(m_place);
    const std::size_t tag = rest.find('<');
    if (tag != 0) {
        const std::size_t text = std::min(tag, rest.size());
        m_isOff = rest.substr(0, text).find('\0') != std::string_view::npos; // UTF-16
        kept += rest.substr(0, text);
        m_place += text;
        return true;
    }
    if (rest.size() < 2) {
        return false;
    }
    if (rest[1] == '!') { // behind which a tag may be none
        m_isOff = true;
        return true;
    }
    const std::size_t end = rest.find('>');
    if (end == std::string_view::npos) {
        m_isOff = rest.size() > (std::size_t{1} << 20);
        return m_isOff;
    }
    const std::string_view name = rest.substr(1, end - 1);
    if (name.size() <= kLongestTag && IsByteName(name)) {
        unsigned byte = 0;
        std::size_t length = 0;
        const Sight seen = Look(rest, name, byte, length);
        if (seen == Sight::Unknown) {
            return false;
        }
        if (seen == Sight::Byte) {
            m_name = name;
            kept += '<';
            kept.append(m_name).append(" ").append(kRunAttribute).append("=\"");
            return true; // the byte itself is the first of the run
        }
    }
    kept += rest.substr(0, end + 1);
    m_place += end + 1;
    return true;
}

bool DecodeRun(std::string_view digits, std::vector<unsigned char>& bytes) {
    if (digits.size() % 2 != 0) {
        return false;
    }
    bytes.reserve(bytes.size() + digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const auto high = DigitOf(digits[i]);
        const auto low = DigitOf(digits[i + 1]);
        if (!high || !low) {
            return false;
        }
        bytes.push_back(static_cast<unsigned char>(*high << 4 | *low));
    }
    return true;
}

} // namespace quillet::wsman
