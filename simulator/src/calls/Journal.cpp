// The journal of calls, and one entry as a line for people.
#include <quillet-simulator/Journal.h>

#include <quillet-wmi/ReadMostlyMutex.h>

#include <algorithm>
#include <array>
#include <deque>
#include <iterator>
#include <mutex>

namespace quillet::simulator {

namespace {

constexpr std::size_t kLongestText = 120;
constexpr std::size_t kLongestArray = 8;

std::wstring Hexadecimal(std::uint32_t number, int digits) {
    static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    std::wstring text = L"0x";
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
        text += kDigits[(number >> shift) & 0xF];
    }
    return text;
}

/// A text on one line whatever it holds.
void AppendOneLine(std::wstring& line, std::wstring_view text) {
    for (const wchar_t character : text) {
        line += character < L' ' || character == 0x7F ? L'?' : character;
    }
}

void AppendText(std::wstring& line, const std::wstring& text) {
    if (text == L"***") {
        line += text;
        return;
    }
    line += L'"';
    AppendOneLine(line, std::wstring_view(text).substr(0, kLongestText));
    if (text.size() > kLongestText) {
        line += L"\u2026";
    }
    line += L'"';
}

void AppendScalar(std::wstring& line, const std::optional<Scalar>& scalar) {
    if (!scalar) {
        line += L"null";
    } else if (const auto* text = std::get_if<std::wstring>(&*scalar)) {
        AppendText(line, *text);
    } else if (const auto* flag = std::get_if<bool>(&*scalar)) {
        line += *flag ? L"true" : L"false";
    } else if (const auto* whole = std::get_if<std::int64_t>(&*scalar)) {
        line += std::to_wstring(*whole);
    } else if (const auto* natural = std::get_if<std::uint64_t>(&*scalar)) {
        line += std::to_wstring(*natural);
    } else {
        const auto* real = std::get_if<double>(&*scalar);
        line += real != nullptr ? std::to_wstring(*real) : L"object";
    }
}

void AppendValue(std::wstring& line, const Value& value) {
    if (value.IsArray()) {
        const auto* array = value.AsArray();
        line += L'{';
        for (std::size_t index = 0; index < value.Size() && index < kLongestArray; ++index) {
            line += index == 0 ? L"" : L", ";
            if (array != nullptr) {
                AppendScalar(line, (*array)[index]);
            } else {
                line += std::to_wstring((*value.AsBytes())[index]);
            }
        }
        if (value.Size() > kLongestArray) {
            line += L", \u2026 " + std::to_wstring(value.Size()) + L" elements";
        }
        line += L'}';
    } else if (const auto* scalar = value.AsScalar()) {
        AppendScalar(line, *scalar);
    } else {
        line += L"null";
    }
}

} // namespace

const NamedValue* JournalEntry::Argument(std::wstring_view name) const noexcept {
    return FindNamed(arguments, name);
}

const NamedValue* JournalEntry::ContextValue(std::wstring_view name) const noexcept {
    return FindNamed(context, name);
}

std::wstring JournalEntry::Line() const {
    std::wstring line = OperationName(operation);
    if (!target.empty()) {
        line += L' ';
        AppendOneLine(line, target);
    }
    if (!method.empty()) {
        line += target.empty() ? L" " : L", ";
        line += method;
    }
    if (!arguments.empty() || operation == Operation::ExecMethod) {
        line += L'(';
        for (const auto& argument : arguments) {
            line += &argument == &arguments.front() ? L"" : L", ";
            line += argument.name + L'=';
            AppendValue(line, argument.value);
        }
        line += L')';
    }
    if (flags != 0) {
        line += L", flags " + Hexadecimal(static_cast<std::uint32_t>(flags), 5);
    }
    line += L" -> " + Hexadecimal(static_cast<std::uint32_t>(result), 8);
    if (!note.empty()) {
        line += L" (" + note + L')';
    }
    return line;
}

/// The calls of the threads that have this part, in their order.
struct alignas(64) Journal::Part {
    struct Numbered {
        std::uint64_t number; ///< among the calls of all threads
        JournalEntry entry;
    };
    std::mutex mutex;
    std::deque<Numbered> calls; // grows without moving what is there
};

/// Threads write into parts of their own, and share no more than the number that puts their calls into one
/// order.
struct Journal::Parts {
    std::array<Part, OwnPart::kCount> all;
    alignas(64) std::atomic<std::uint64_t> next{0};

    /// While they are held no thread has a number without having written its call.
    std::vector<std::unique_lock<std::mutex>> Lock() {
        std::vector<std::unique_lock<std::mutex>> locks;
        locks.reserve(all.size());
        for (Part& part : all) {
            locks.emplace_back(part.mutex);
        }
        return locks;
    }
};

Journal::Journal() : m_parts(std::make_unique<Parts>()) {}

Journal::~Journal() = default;

void Journal::Add(JournalEntry entry) {
    Part& own = m_parts->all[OwnPart::Index()];
    const std::lock_guard lock(own.mutex);
    own.calls.push_back({m_parts->next.fetch_add(1, std::memory_order_relaxed), std::move(entry)});
}

void Journal::Clear() {
    const auto locks = m_parts->Lock();
    for (Part& part : m_parts->all) {
        part.calls.clear();
    }
}

std::vector<JournalEntry> Journal::Take() {
    std::vector<Part::Numbered> taken;
    {
        const auto locks = m_parts->Lock();
        for (Part& part : m_parts->all) {
            std::move(part.calls.begin(), part.calls.end(), std::back_inserter(taken));
            part.calls.clear();
        }
    }
    std::sort(taken.begin(), taken.end(),
              [](const auto& left, const auto& right) { return left.number < right.number; });
    std::vector<JournalEntry> calls;
    calls.reserve(taken.size());
    for (Part::Numbered& call : taken) {
        calls.push_back(std::move(call.entry));
    }
    return calls;
}

std::vector<JournalEntry> Journal::Those(const std::function<bool(const JournalEntry&)>& wanted) const {
    const auto locks = m_parts->Lock();
    std::vector<const Part::Numbered*> found;
    for (const Part& part : m_parts->all) {
        for (const Part::Numbered& call : part.calls) {
            if (wanted(call.entry)) {
                found.push_back(&call);
            }
        }
    }
    std::sort(found.begin(), found.end(),
              [](const auto* left, const auto* right) { return left->number < right->number; });
    std::vector<JournalEntry> calls;
    calls.reserve(found.size());
    for (const Part::Numbered* call : found) {
        calls.push_back(call->entry);
    }
    return calls;
}

std::vector<JournalEntry> Journal::All() const {
    return Those([](const JournalEntry&) { return true; });
}

std::vector<JournalEntry> Journal::ProviderCalls() const {
    return Those([](const JournalEntry& call) { return IsProviderCall(call.operation); });
}

std::vector<JournalEntry> Journal::Of(Operation operation) const {
    return Those([operation](const JournalEntry& call) { return call.operation == operation; });
}

std::size_t Journal::Size() const {
    const auto locks = m_parts->Lock();
    std::size_t size = 0;
    for (const Part& part : m_parts->all) {
        size += part.calls.size();
    }
    return size;
}

} // namespace quillet::simulator
