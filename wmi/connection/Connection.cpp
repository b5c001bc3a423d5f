// What a connection does unless it says otherwise, and the small parts of a call.
#include <quillet-wmi/Connection.h>
#include <quillet-wmi/ObjectPath.h>

#include <algorithm>

namespace quillet::wmi {

namespace {

/// Objects that are there already. Copies of the stream share them.
class ReadyObjects final : public ObjectStream {
  public:
    explicit ReadyObjects(std::shared_ptr<const std::vector<Object>> objects, std::size_t position = 0)
        : m_objects(std::move(objects)), m_position(position) {}

    HRESULT Next(LONG timeout, std::span<Object> objects, ULONG& returned) override {
        returned = 0;
        if (objects.empty() || timeout < kInfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::size_t count = std::min(objects.size(), m_objects->size() - m_position);
        std::copy_n(m_objects->begin() + static_cast<std::ptrdiff_t>(m_position), count, objects.begin());
        m_position += count;
        returned = static_cast<ULONG>(count);
        return count == objects.size() ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE);
    }

    HRESULT Skip(LONG timeout, ULONG count) override {
        if (timeout < kInfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::size_t left = m_objects->size() - m_position;
        m_position += std::min<std::size_t>(count, left);
        return count <= left ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE);
    }

    HRESULT Reset() override {
        m_position = 0;
        return S_OK;
    }

    std::unique_ptr<ObjectStream> Clone() const override {
        return std::make_unique<ReadyObjects>(m_objects, m_position);
    }

  private:
    const std::shared_ptr<const std::vector<Object>> m_objects;
    std::size_t m_position;
};

} // namespace

const NamedValue* FindNamed(const std::vector<NamedValue>& values, std::wstring_view name) noexcept {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [name](const NamedValue& value) { return SameName(value.name, name); });
    return found != values.end() ? &*found : nullptr;
}

HRESULT Outcome::Returned(const CallContext& context) const noexcept {
    const bool later = context.callResult && told != Told::AtOnce &&
                       (context.Semisynchronous() || told == Told::ByCallResult);
    return later ? HRESULT(S_OK) : status;
}

HRESULT ObjectStream::Skip(LONG timeout, ULONG count) {
    Object passedOver;
    HRESULT result = WBEM_S_NO_ERROR;
    for (ULONG returned = 0; count != 0 && result == WBEM_S_NO_ERROR; --count) {
        result = Next(timeout, {&passedOver, 1}, returned);
    }
    return result;
}

HRESULT ObjectStream::Reset() {
    return HRESULT(WBEM_E_INVALID_OPERATION);
}

std::unique_ptr<ObjectStream> ObjectStream::Clone() const {
    return nullptr;
}

std::unique_ptr<ObjectStream> MakeStream(std::vector<Object> objects) {
    return std::make_unique<ReadyObjects>(std::make_shared<const std::vector<Object>>(std::move(objects)));
}

Outcome Connection::OpenNamespace(const CallContext&, std::wstring_view, std::shared_ptr<Connection>&) {
    return HRESULT(WBEM_E_INVALID_NAMESPACE);
}

std::wstring Connection::WholePath(std::wstring_view reference) const {
    const auto path = ObjectPath::Parse(reference);
    if (!path || !path->server.empty()) {
        return std::wstring(reference);
    }
    return path->Full(ServerName(), path->namespacePath.empty() ? NamespaceName() : path->namespacePath);
}

std::wstring FullPathOf(const Connection& connection, std::wstring_view relative) {
    return FullPath(connection.ServerName(), connection.NamespaceName(), relative);
}

std::vector<NamedValue> ConnectArguments::Named() const {
    std::vector<NamedValue> named;
    const auto add = [&named](const wchar_t* name, const std::optional<std::wstring_view>& text) {
        NamedValue value{name, VT_BSTR, CIM_STRING, Value()};
        if (text) {
            value.value = Value::Text(std::wstring(*text));
        }
        named.push_back(std::move(value));
    };
    add(L"User", user);
    add(L"Password", password ? std::optional<std::wstring_view>(L"***") : std::nullopt);
    add(L"Locale", locale);
    add(L"Authority", authority);
    return named;
}

bool NamesNamespace(std::wstring_view path, std::wstring_view namespaceName) {
    std::wstring text(path);
    std::replace(text.begin(), text.end(), L'/', L'\\');
    std::wstring_view rest(text);
    if (rest.substr(0, 2) == L"\\\\") {
        const auto end = rest.find(L'\\', 2);
        if (end == std::wstring_view::npos || end == 2) {
            return false;
        }
        rest.remove_prefix(end + 1);
    }
    return SameName(rest, namespaceName);
}

} // namespace quillet::wmi
