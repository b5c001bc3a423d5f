// Wide formatting with the Windows meaning of the conversions.
#include "Format.h"
#include "Text.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

namespace quillet::platform {
namespace {

/// Counts all, keeps what there is room for; a huge width costs no time.
class Output {
  public:
    Output(wchar_t* buffer, std::size_t room) : m_buffer(buffer), m_room(room) {}

    void Put(std::wstring_view text) {
        if (const std::size_t kept = std::min(text.size(), Left())) {
            std::copy_n(text.begin(), kept, m_buffer + m_length);
        }
        m_length += text.size();
    }
    void Put(wchar_t character, std::size_t count) {
        if (const std::size_t kept = std::min(count, Left())) {
            std::fill_n(m_buffer + m_length, kept, character);
        }
        m_length += count;
    }
    std::size_t Length() const { return m_length; }

  private:
    /// Where nothing is left there may be no buffer at all, when only the length is asked for.
    std::size_t Left() const { return m_length < m_room ? m_room - m_length : 0; }

    wchar_t* m_buffer;
    std::size_t m_room;
    std::size_t m_length = 0;
};

enum class Size { Default, Char, Short, Long, Bits64, Wide };
constexpr Size kPointerSize = sizeof(void*) == 8 ? Size::Bits64 : Size::Long;

/// The digits of a number, which take no memory of their own: every trace line has eight numbers in its head.
class DigitText {
  public:
    DigitText(unsigned long long value, unsigned base, bool upper) {
        const wchar_t* const symbols = upper ? L"0123456789ABCDEF" : L"0123456789abcdef";
        for (; value; value /= base) {
            Prepend(symbols[value % base]);
        }
    }
    void Prepend(wchar_t digit) { m_text[--m_first] = digit; }
    bool Empty() const { return m_first == kCapacity; }
    std::wstring_view View() const { return {m_text + m_first, kCapacity - m_first}; }

  private:
    /// 64 bits in octal, and a zero before them.
    static constexpr std::size_t kCapacity = 23;

    wchar_t m_text[kCapacity]{};
    std::size_t m_first = kCapacity;
};

struct Conversion {
    bool left = false;
    bool plus = false;
    bool space = false;
    bool alternative = false;
    bool zero = false;
    std::size_t width = 0;
    int precision = -1;
    Size size = Size::Default;
};

struct Arguments {
    va_list list;
};

class Formatter {
  public:
    Formatter(Output& output, const wchar_t* format, Arguments& arguments)
        : m_output(output), m_at(format), m_arguments(arguments) {}

    void Run() {
        while (*m_at) {
            const wchar_t* const end = std::wcschr(m_at, L'%');
            m_output.Put(end ? std::wstring_view(m_at, static_cast<std::size_t>(end - m_at))
                             : std::wstring_view(m_at));
            if (!end) {
                return;
            }
            m_at = end + 1;
            Convert(ReadConversion());
        }
    }

  private:
    Conversion ReadConversion() {
        Conversion conversion;
        for (;; ++m_at) {
            if (*m_at == L'-') {
                conversion.left = true;
            } else if (*m_at == L'+') {
                conversion.plus = true;
            } else if (*m_at == L' ') {
                conversion.space = true;
            } else if (*m_at == L'#') {
                conversion.alternative = true;
            } else if (*m_at == L'0') {
                conversion.zero = true;
            } else {
                break;
            }
        }
        const int width = ReadCount();
        if (width < 0) {
            conversion.left = true;
        }
        conversion.width = static_cast<std::size_t>(width < 0 ? -static_cast<long>(width) : width);
        if (*m_at == L'.') {
            ++m_at;
            conversion.precision = std::max(-1, ReadCount());
        }
        conversion.size = ReadSize();
        return conversion;
    }
    /// A number or * in the format; without either 0.
    int ReadCount() {
        if (*m_at == L'*') {
            ++m_at;
            return va_arg(m_arguments.list, int);
        }
        int count = 0;
        constexpr int kMost = 1 << 28;
        for (; *m_at >= L'0' && *m_at <= L'9'; ++m_at) {
            count = count < kMost / 10 ? count * 10 + static_cast<int>(*m_at - L'0') : kMost;
        }
        return count;
    }
    /// Moves behind a text of the format if it stands here.
    bool Accept(std::wstring_view text) {
        for (std::size_t index = 0; index < text.size(); ++index) {
            if (m_at[index] != text[index]) {
                return false;
            }
        }
        m_at += text.size();
        return true;
    }
    Size ReadSize() {
        switch (*m_at) {
        case L'I':
            if (Accept(L"I64")) {
                return Size::Bits64;
            }
            if (Accept(L"I32")) {
                return Size::Long;
            }
            // A lone I is a size only before an integer conversion; elsewhere it is a conversion that there
            // is not.
            return m_at[1] && std::wcschr(L"diouxX", m_at[1]) && Accept(L"I") ? kPointerSize : Size::Default;
        case L'z':
        case L't':
            ++m_at;
            return kPointerSize;
        case L'l':
            if (Accept(L"ll")) {
                return Size::Bits64;
            }
            ++m_at;
            return Size::Long;
        case L'h':
            if (Accept(L"hh")) {
                return Size::Char;
            }
            ++m_at;
            return Size::Short;
        case L'j':
            ++m_at;
            return Size::Bits64;
        case L'w':
            ++m_at;
            return Size::Wide;
        case L'L':
            ++m_at;
            return Size::Default;
        default:
            return Size::Default;
        }
    }

    void Convert(const Conversion& conversion) {
        const wchar_t kind = *m_at;
        if (!kind) {
            return;
        }
        ++m_at;
        switch (kind) {
        case L'd':
        case L'i':
            Signed(conversion);
            break;
        case L'u':
            Unsigned(conversion, 10, false);
            break;
        case L'o':
            Unsigned(conversion, 8, false);
            break;
        case L'x':
            Unsigned(conversion, 16, false);
            break;
        case L'X':
            Unsigned(conversion, 16, true);
            break;
        case L'p':
            Pointer(conversion);
            break;
        case L's':
            if (conversion.size == Size::Short) {
                NarrowText(conversion);
            } else {
                WideText(conversion);
            }
            break;
        case L'S':
            if (conversion.size == Size::Long || conversion.size == Size::Wide) {
                WideText(conversion);
            } else {
                NarrowText(conversion);
            }
            break;
        case L'c':
            Character(conversion, conversion.size != Size::Short);
            break;
        case L'C':
            Character(conversion, conversion.size == Size::Long || conversion.size == Size::Wide);
            break;
        case L'e':
        case L'E':
        case L'f':
        case L'F':
        case L'g':
        case L'G':
        case L'a':
        case L'A':
            Real(conversion, static_cast<char>(kind));
            break;
        case L'n':
            // Takes its argument and writes nowhere: a format must not be able to change memory.
            static_cast<void>(va_arg(m_arguments.list, void*));
            break;
        default:
            m_output.Put(kind, 1);
            break;
        }
    }

    void Padded(const Conversion& conversion, std::wstring_view text) {
        const std::size_t padding = conversion.width > text.size() ? conversion.width - text.size() : 0;
        // Texts too are filled with zeros where the format asks for them.
        if (!conversion.left) {
            m_output.Put(conversion.zero ? L'0' : L' ', padding);
        }
        m_output.Put(text);
        if (conversion.left) {
            m_output.Put(L' ', padding);
        }
    }

    /// Puts sign or prefix, zeros and digits into the width.
    void Digits(const Conversion& conversion, std::wstring_view prefix, std::wstring_view digits) {
        std::size_t zeros = 0;
        if (conversion.precision >= 0 && static_cast<std::size_t>(conversion.precision) > digits.size()) {
            zeros = static_cast<std::size_t>(conversion.precision) - digits.size();
        }
        const std::size_t length = prefix.size() + digits.size();
        // The zero flag gives way to a precision.
        if (conversion.zero && !conversion.left && conversion.precision < 0 && conversion.width > length) {
            zeros = conversion.width - length;
        }
        const std::size_t padding = conversion.width > length + zeros ? conversion.width - length - zeros : 0;
        if (!conversion.left) {
            m_output.Put(L' ', padding);
        }
        m_output.Put(prefix);
        m_output.Put(L'0', zeros);
        m_output.Put(digits);
        if (conversion.left) {
            m_output.Put(L' ', padding);
        }
    }

    static DigitText DigitsOf(const Conversion& conversion, unsigned long long value, unsigned base,
                              bool upper) {
        DigitText digits(value, base, upper);
        // Only a precision of 0 makes nothing of a zero.
        if (digits.Empty() && conversion.precision != 0) {
            digits.Prepend(L'0');
        }
        return digits;
    }

    void Signed(const Conversion& conversion) {
        long long value = conversion.size == Size::Bits64 ? va_arg(m_arguments.list, long long)
                                                          : va_arg(m_arguments.list, int);
        if (conversion.size == Size::Short) {
            value = static_cast<short>(value);
        } else if (conversion.size == Size::Char) {
            value = static_cast<std::int8_t>(value);
        }
        const auto magnitude = static_cast<unsigned long long>(value);
        const wchar_t* const prefix = value < 0          ? L"-"
                                      : conversion.plus  ? L"+"
                                      : conversion.space ? L" "
                                                         : L"";
        Digits(conversion, prefix,
               DigitsOf(conversion, value < 0 ? 0 - magnitude : magnitude, 10, false).View());
    }

    void Unsigned(const Conversion& conversion, unsigned base, bool upper) {
        unsigned long long value = conversion.size == Size::Bits64
                                       ? va_arg(m_arguments.list, unsigned long long)
                                       : va_arg(m_arguments.list, unsigned);
        if (conversion.size == Size::Short) {
            value = static_cast<unsigned short>(value);
        } else if (conversion.size == Size::Char) {
            value = static_cast<unsigned char>(value);
        }
        DigitText digits = DigitsOf(conversion, value, base, upper);
        std::wstring_view prefix;
        if (conversion.alternative && base == 16 && value) {
            prefix = upper ? L"0X" : L"0x";
        }
        if (conversion.alternative && base == 8 && (digits.Empty() || digits.View().front() != L'0')) {
            digits.Prepend(L'0');
        }
        Digits(conversion, prefix, digits.View());
    }

    void Pointer(Conversion conversion) {
        const auto value = reinterpret_cast<std::uintptr_t>(va_arg(m_arguments.list, void*));
        conversion.precision = static_cast<int>(2 * sizeof value);
        Digits(conversion, {}, DigitText(value, 16, true).View());
    }

    void WideText(const Conversion& conversion) {
        const wchar_t* text = va_arg(m_arguments.list, const wchar_t*);
        if (!text) {
            text = L"(null)";
        }
        // Up to a precision the text need not be terminated.
        std::size_t length = 0;
        while ((conversion.precision < 0 || length < static_cast<std::size_t>(conversion.precision)) &&
               text[length]) {
            ++length;
        }
        Padded(conversion, {text, length});
    }

    void NarrowText(const Conversion& conversion) {
        const char* text = va_arg(m_arguments.list, const char*);
        if (!text) {
            text = "(null)";
        }
        const std::size_t length = conversion.precision < 0
                                       ? std::strlen(text)
                                       : strnlen(text, static_cast<std::size_t>(conversion.precision));
        Padded(conversion, WideFromUtf8({text, length}));
    }

    void Character(const Conversion& conversion, bool wide) {
        const int value = va_arg(m_arguments.list, int);
        const wchar_t character =
            wide ? static_cast<wchar_t>(value) : static_cast<wchar_t>(static_cast<unsigned char>(value));
        Padded(conversion, {&character, 1});
    }

    void Real(const Conversion& conversion, char kind) {
        const double value = va_arg(m_arguments.list, double);
        std::string format = "%";
        if (conversion.plus) {
            format += '+';
        }
        if (conversion.space) {
            format += ' ';
        }
        if (conversion.alternative) {
            format += '#';
        }
        if (conversion.zero && !conversion.left) {
            format += '0';
        }
        format += "*.*";
        format += kind;
        // No double has more digits than this, and a caller's width must not cost memory.
        constexpr int kMost = 1200;
        const int precision = std::min(conversion.precision, kMost);
        const int width =
            static_cast<int>(std::min<std::size_t>(conversion.width, conversion.zero ? kMost : 0));
        char text[3 * kMost];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        const int length = std::snprintf(text, sizeof text, format.c_str(), width, precision, value);
#pragma GCC diagnostic pop
        const std::size_t kept = std::min(static_cast<std::size_t>(std::max(0, length)), sizeof text - 1);
        Padded(conversion, std::wstring(text, text + kept));
    }

    Output& m_output;
    const wchar_t* m_at;
    Arguments& m_arguments;
};

} // namespace

std::size_t FormatWide(wchar_t* buffer, std::size_t room, const wchar_t* format, va_list arguments) {
    Output output(buffer, room);
    Arguments copy{};
    va_copy(copy.list, arguments);
    Formatter(output, format, copy).Run();
    va_end(copy.list);
    return output.Length();
}

} // namespace quillet::platform
