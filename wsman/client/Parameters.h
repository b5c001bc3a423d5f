// The parameters of methods.
#pragma once

#include "soap/Values.h"

#include <quillet-wmi/Connection.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::wsman {

/// What a machine is called in object paths that are texts. Clients and the machine itself may have different
/// names for it; references do not tell them, but some methods take and answer paths as texts.
class PathTexts {
  public:
    /// @param server the name that paths in this namespace are to have
    /// @param isMeant whether it is to take the place of another; asked during calls only
    PathTexts(std::wstring_view namespaceName, std::wstring_view server,
              std::function<bool(std::wstring_view)> isMeant)
        : m_namespaceName(namespaceName), m_server(server), m_isMeant(std::move(isMeant)) {}

    /// The value with that name; nothing for one that has no such path.
    std::optional<wmi::Value> Changed(const wmi::Value& value) const;
    void Change(wmi::Instance& parameters) const;

  private:
    std::optional<wmi::Scalar> Changed(const wmi::Scalar& scalar) const;

    const std::wstring m_namespaceName;
    const std::wstring m_server;
    const std::function<bool(std::wstring_view)> m_isMeant;
};

/// The names of those that are arrays of bytes.
std::vector<std::string> ByteArraysOf(const std::vector<wmi::Property>& properties);

/// The in-parameters: those that the client put, in its order, then what else has a value.
std::string InputBody(const std::string& method, const std::string& resource, const wmi::Filled* in,
                      const Namespace& space, const PathTexts& paths);

} // namespace quillet::wsman
