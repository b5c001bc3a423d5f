// Bounds-checked string functions of the run-time library, wrapped so that misuse ends in the trace log
// instead of ending the process.
#include "LumSecure.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cwchar>

namespace {

constexpr wchar_t kThisFile[] = L"..\\..\\Common\\Src\\LumSecure";
/// The position under which a missing destination is reported: the caller's own is not used for it.
constexpr unsigned kNullDestinationLine = 196;

void LumSecureInvalidParameterHandler(const wchar_t*, const wchar_t*, const wchar_t*, unsigned,
                                      std::uintptr_t) {
    LumTrace().PrintText(L"LumSecureInvalidParameterHandler : ERROR");
}

/// Installs the handler above, and takes it away again when the library is unloaded and its code with it.
class InvalidParameterHandler {
  public:
    void Install() noexcept {
        if (_get_invalid_parameter_handler() == LumSecureInvalidParameterHandler) {
            return;
        }
        LumTrace().Error(kThisFile, __LINE__,
                         L"Setting invalid parameter handler to: LumSecureInvalidParameterHandler");
        const auto previous = _set_invalid_parameter_handler(LumSecureInvalidParameterHandler);
        // Another thread may have been here first; what it replaced is then the one to go back to.
        if (previous != LumSecureInvalidParameterHandler) {
            m_previous = previous;
        }
    }
    ~InvalidParameterHandler() {
        if (_get_invalid_parameter_handler() == LumSecureInvalidParameterHandler) {
            _set_invalid_parameter_handler(m_previous);
        }
    }

  private:
    std::atomic<_invalid_parameter_handler> m_previous{nullptr};
};

/// First used after a trace line, hence gone before the trace log is.
InvalidParameterHandler& Handler() {
    static InvalidParameterHandler handler;
    return handler;
}

void LogError(int error, const wchar_t* sourceFile, unsigned line, const wchar_t* destination) {
    LumTrace().PrintText(L"Entering LmuSecureErrorCheckLogging");
    if (error == EINVAL && destination != nullptr) {
        LumTrace().Error(sourceFile, line, L"LumSafeCopy ERROR: NULL == strSource");
    } else if (error == EINVAL) {
        LumTrace().Error(kThisFile, kNullDestinationLine, L"LumSafeCopy ERROR: NULL == strDestination");
    } else if (error == ERANGE) {
        LumTrace().Error(sourceFile, line, L"LumSafeCopy ERROR: strDestination size 0, or too small");
    }
    LumTrace().PrintText(L"Leaving LmuSecureErrorCheckLogging");
}

} // namespace

int LumSafeCopy(const wchar_t* sourceFile, unsigned line, wchar_t* destination, std::size_t destinationCount,
                const wchar_t* source) {
    LumTrace().PrintText(L"Entering LumSafeCopy : Dynamic");
    Handler().Install();
    const int error = wcscpy_s(destination, destinationCount, source);
    LogError(error, sourceFile, line, destination);
    LumTrace().Print(L"Leaving LumSafeCopy : Dynamic : %d", error);
    return error;
}

int LumSafeCat(const wchar_t* sourceFile, unsigned line, wchar_t* destination, std::size_t destinationCount,
               const wchar_t* source) {
    LumTrace().PrintText(L"Entering LumSafeCat : Dynamic");
    Handler().Install();
    const int error = wcscat_s(destination, destinationCount, source);
    LogError(error, sourceFile, line, destination);
    LumTrace().Print(L"Leaving LumSafeCat : Dynamic : %d", error);
    return error;
}
