// The message of an error.
#include <quillet/client/Error.h>

#include <quillet/client/Text.h>

namespace quillet {

Error::Error(std::int32_t code, std::string operation, const std::wstring& about)
    : Error(code, std::move(operation), ToUtf8(about)) {}

Error::Error(std::int32_t code, std::string operation, std::string about)
    : std::system_error(code, ResultCategory(), about.empty() ? operation : operation + ' ' + about),
      m_operation(std::move(operation)), m_about(std::move(about)) {}

} // namespace quillet
