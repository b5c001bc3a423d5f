// Debugger output on Windows: it is an exception, which whoever comes first may take.
#include "DebugOutput.h"

#include <windows.h>

#include <string_view>

namespace {

constexpr DWORD kDebugPrintNarrow = 0x40010006;
constexpr DWORD kDebugPrintWide = 0x4001000A;

std::vector<std::wstring> texts;
void* handler = nullptr;

LONG CALLBACK Take(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    // The wide form is the newer one. A system that has both is content when the first is taken.
    if (record.ExceptionCode == kDebugPrintWide && record.NumberParameters >= 2) {
        texts.emplace_back(reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]));
    } else if (record.ExceptionCode == kDebugPrintNarrow && record.NumberParameters >= 2) {
        const std::string_view narrow = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
        texts.emplace_back(narrow.begin(), narrow.end()); // the texts of these tests are ASCII
    } else {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

DebugOutput::DebugOutput() {
    texts.clear();
    handler = AddVectoredExceptionHandler(1, Take);
}

DebugOutput::~DebugOutput() {
    RemoveVectoredExceptionHandler(handler);
}

std::vector<std::wstring> DebugOutput::Texts() const {
    return texts;
}
