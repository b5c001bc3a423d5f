// The last error of each thread, the texts of codes, and the memory that they are returned in.
#include <windows.h>
#include <wbemidl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

thread_local DWORD g_lastError = ERROR_SUCCESS;

struct CodeText {
    DWORD code;
    std::wstring_view text;
};

constexpr DWORD Code(HRESULT hr) {
    return static_cast<DWORD>(hr);
}

// Sorted by code.
constexpr CodeText kTexts[] = {
    {ERROR_SUCCESS, L"The operation completed successfully."},
    {ERROR_INVALID_FUNCTION, L"Incorrect function."},
    {ERROR_FILE_NOT_FOUND, L"The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, L"The system cannot find the path specified."},
    {ERROR_ACCESS_DENIED, L"Access is denied."},
    {ERROR_INVALID_HANDLE, L"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, L"Not enough memory is available for this command."},
    {ERROR_INVALID_DATA, L"The data is invalid."},
    {ERROR_OUTOFMEMORY, L"Not enough memory is available for this operation."},
    {ERROR_NOT_SUPPORTED, L"The request is not supported."},
    {ERROR_FILE_EXISTS, L"The file exists."},
    {ERROR_INVALID_PARAMETER, L"The parameter is incorrect."},
    {ERROR_BUFFER_OVERFLOW, L"The file name is too long."},
    {ERROR_CALL_NOT_IMPLEMENTED, L"This function is not supported on this system."},
    {ERROR_INSUFFICIENT_BUFFER, L"The data area passed to a system call is too small."},
    {ERROR_MOD_NOT_FOUND, L"The specified module could not be found."},
    {ERROR_BAD_PATHNAME, L"The specified path is invalid."},
    {ERROR_ALREADY_EXISTS, L"Cannot create a file when that file already exists."},
    {ERROR_ENVVAR_NOT_FOUND, L"The environment variable was not found."},
    {ERROR_MORE_DATA, L"More data is available."},
    {ERROR_NO_MORE_ITEMS, L"No more data is available."},
    {ERROR_MR_MID_NOT_FOUND, L"There is no text for this message number."},
    {ERROR_INVALID_FLAGS, L"Invalid flags."},
    {ERROR_KEY_DELETED, L"The registry key has been marked for deletion."},
    {ERROR_NO_UNICODE_TRANSLATION, L"A character has no Unicode form."},
    {ERROR_NOT_FOUND, L"Element not found."},
    {ERROR_CANCELLED, L"The operation was canceled by the user."},
    {ERROR_NOT_ALL_ASSIGNED, L"Not all privileges referenced are assigned to the caller."},
    {ERROR_NO_SUCH_PRIVILEGE, L"A specified privilege does not exist."},
    {ERROR_PRIVILEGE_NOT_HELD, L"A required privilege is not held by the client."},
    {ERROR_TIMEOUT, L"The timeout period expired before the operation was complete."},
    {RPC_S_SERVER_UNAVAILABLE, L"The RPC server is unavailable."},
    {Code(E_NOTIMPL), L"Not implemented."},
    {Code(E_NOINTERFACE), L"No such interface supported."},
    {Code(E_POINTER), L"Invalid pointer."},
    {Code(E_ABORT), L"Operation aborted."},
    {Code(E_FAIL), L"Unspecified error."},
    {Code(E_UNEXPECTED), L"Catastrophic failure."},
    {Code(RPC_E_CALL_REJECTED), L"The call was rejected by the callee."},
    {Code(RPC_E_CHANGED_MODE), L"The thread mode cannot be changed after it is set."},
    {Code(RPC_E_DISCONNECTED), L"The object invoked has disconnected from its clients."},
    {Code(RPC_E_WRONG_THREAD), L"The interface was marshalled for a different thread."},
    {Code(RPC_E_TOO_LATE), L"Security must be initialized before any interfaces are used."},
    {Code(DISP_E_UNKNOWNINTERFACE), L"Unknown interface."},
    {Code(DISP_E_MEMBERNOTFOUND), L"Member not found."},
    {Code(DISP_E_PARAMNOTFOUND), L"Parameter not found."},
    {Code(DISP_E_TYPEMISMATCH), L"Type mismatch."},
    {Code(DISP_E_UNKNOWNNAME), L"Unknown name."},
    {Code(DISP_E_BADVARTYPE), L"Bad variable type."},
    {Code(DISP_E_EXCEPTION), L"Exception occurred."},
    {Code(DISP_E_OVERFLOW), L"Out of present range."},
    {Code(DISP_E_BADINDEX), L"Invalid index."},
    {Code(DISP_E_ARRAYISLOCKED), L"Memory is locked."},
    {Code(CLASS_E_NOAGGREGATION), L"Class does not support aggregation."},
    {Code(CLASS_E_CLASSNOTAVAILABLE), L"The class factory cannot supply the requested class."},
    {Code(REGDB_E_CLASSNOTREG), L"Class not registered."},
    {Code(REGDB_E_IIDNOTREG), L"Interface not registered."},
    {Code(CO_E_NOTINITIALIZED), L"CoInitialize has not been called."},
    {Code(CO_E_ALREADYINITIALIZED), L"CoInitialize has already been called."},
    {Code(CO_E_CLASSSTRING), L"Invalid class string."},
    {Code(CO_E_IIDSTRING), L"Invalid interface string."},
    {Code(CO_E_OBJNOTREG), L"Object is not registered."},
    {Code(CO_E_OBJISREG), L"Object is already registered."},
    {Code(CO_E_OBJNOTCONNECTED), L"Object is not connected to server."},
    {WBEM_E_FAILED, L"Generic failure."},
    {WBEM_E_NOT_FOUND, L"Not found."},
    {WBEM_E_ACCESS_DENIED, L"Access denied."},
    {WBEM_E_PROVIDER_FAILURE, L"Provider failure."},
    {WBEM_E_TYPE_MISMATCH, L"Type mismatch."},
    {WBEM_E_OUT_OF_MEMORY, L"Out of memory."},
    {WBEM_E_INVALID_CONTEXT, L"Invalid context."},
    {WBEM_E_INVALID_PARAMETER, L"Invalid parameter."},
    {WBEM_E_NOT_AVAILABLE, L"Not available."},
    {WBEM_E_CRITICAL_ERROR, L"Critical error."},
    {WBEM_E_NOT_SUPPORTED, L"Not supported."},
    {WBEM_E_INVALID_SUPERCLASS, L"Invalid superclass."},
    {WBEM_E_INVALID_NAMESPACE, L"Invalid namespace."},
    {WBEM_E_INVALID_OBJECT, L"Invalid object."},
    {WBEM_E_INVALID_CLASS, L"Invalid class."},
    {WBEM_E_PROVIDER_NOT_FOUND, L"Provider not found."},
    {WBEM_E_PROVIDER_LOAD_FAILURE, L"Provider load failure."},
    {WBEM_E_INITIALIZATION_FAILURE, L"Initialization failure."},
    {WBEM_E_TRANSPORT_FAILURE, L"Transport failure."},
    {WBEM_E_INVALID_OPERATION, L"Invalid operation."},
    {WBEM_E_INVALID_QUERY, L"Invalid query."},
    {WBEM_E_INVALID_QUERY_TYPE, L"Invalid query type."},
    {WBEM_E_ALREADY_EXISTS, L"Already exists."},
    {WBEM_E_UNEXPECTED, L"Unexpected error."},
    {WBEM_E_ILLEGAL_OPERATION, L"Illegal operation."},
    {WBEM_E_READ_ONLY, L"Read only."},
    {WBEM_E_PROVIDER_NOT_CAPABLE, L"Provider is not capable of the attempted operation."},
    {WBEM_E_ILLEGAL_NULL, L"Illegal null value."},
    {WBEM_E_VALUE_OUT_OF_RANGE, L"Value out of range."},
    {WBEM_E_INVALID_METHOD, L"Invalid method."},
    {WBEM_E_INVALID_METHOD_PARAMETERS, L"Invalid method parameters."},
    {WBEM_E_INVALID_PROPERTY, L"Invalid property."},
    {WBEM_E_CALL_CANCELLED, L"Call canceled."},
    {WBEM_E_SHUTTING_DOWN, L"Shutting down."},
    {WBEM_E_INVALID_OBJECT_PATH, L"Invalid object path."},
    {WBEM_E_METHOD_NOT_IMPLEMENTED, L"This method is not implemented in any class."},
    {WBEM_E_METHOD_DISABLED, L"This method is disabled."},
    {WBEM_E_UNPARSABLE_QUERY, L"The query cannot be parsed."},
    {WBEM_E_PRIVILEGE_NOT_HELD, L"Privilege not held."},
    {WBEM_E_LOCAL_CREDENTIALS, L"User credentials cannot be used for local connections."},
    {WBEM_E_TIMED_OUT, L"Timed out."},
    {WBEM_E_QUOTA_VIOLATION, L"Quota violation."},
    {Code(E_ACCESSDENIED), L"Access is denied."},
    {Code(E_OUTOFMEMORY), L"Not enough memory is available to complete this operation."},
};

constexpr bool IsSorted() {
    for (std::size_t i = 1; i < std::size(kTexts); ++i) {
        if (kTexts[i - 1].code >= kTexts[i].code) {
            return false;
        }
    }
    return true;
}
static_assert(IsSorted());

std::wstring_view FindText(DWORD code) {
    const auto* const found =
        std::lower_bound(std::begin(kTexts), std::end(kTexts), code,
                         [](const CodeText& entry, DWORD key) { return entry.code < key; });
    if (found != std::end(kTexts) && found->code == code) {
        return found->text;
    }
    // A wrapped Win32 error has the text of what it wraps.
    return code >> 16 == 0x8007u ? FindText(code & 0xffffu) : std::wstring_view();
}

} // namespace

DWORD WINAPI GetLastError() noexcept {
    return g_lastError;
}

void WINAPI SetLastError(DWORD error) noexcept {
    g_lastError = error;
}

HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T bytes) noexcept {
    const SIZE_T size = bytes ? bytes : 1;
    return flags & LMEM_ZEROINIT ? std::calloc(1, size) : std::malloc(size);
}

HLOCAL WINAPI LocalFree(HLOCAL memory) noexcept {
    std::free(memory);
    return nullptr;
}

DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID, DWORD messageId, DWORD, LPWSTR buffer, DWORD size, void*) {
    if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM) || (flags & FORMAT_MESSAGE_FROM_STRING) || !buffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
        *reinterpret_cast<LPWSTR*>(buffer) = nullptr;
    }
    const std::wstring_view text = FindText(messageId);
    if (text.empty()) {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    constexpr std::wstring_view kLineEnd = L"\r\n";
    const std::size_t length = text.size() + kLineEnd.size();
    LPWSTR target = buffer;
    if (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) {
        target =
            static_cast<LPWSTR>(LocalAlloc(LMEM_FIXED, std::max<SIZE_T>(size, length + 1) * sizeof(WCHAR)));
        if (!target) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return 0;
        }
        *reinterpret_cast<LPWSTR*>(buffer) = target;
    } else if (size <= length) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(text.begin(), text.end(), target);
    std::copy(kLineEnd.begin(), kLineEnd.end(), target + text.size());
    target[length] = L'\0';
    return static_cast<DWORD>(length);
}
