// The registry: keys and values in memory, filled from an export file.
#include "Counters.h"
#include "RegFile.h"
#include "Text.h"

#include <windows.h>
#include <quillet-platform/TestHooks.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>

namespace {

using namespace quillet::platform;

struct Value {
    std::wstring name;
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

/// The maps are keyed by the name without regard to case.
struct Key {
    std::wstring name;
    bool deleted = false;
    std::map<std::wstring, std::shared_ptr<Key>> children;
    std::map<std::wstring, Value> values;

    void MarkDeleted() {
        deleted = true;
        for (const auto& child : children) {
            child.second->MarkDeleted();
        }
    }
};

struct Handle {
    std::shared_ptr<Key> key;
    REGSAM access;
};

struct Hive {
    std::mutex lock;
    bool filled = false;
    std::map<HKEY, std::shared_ptr<Key>> roots;
    std::map<HKEY, std::unique_ptr<Handle>> open;

    void Clear() {
        for (const auto& root : roots) {
            root.second->MarkDeleted();
        }
        roots.clear();
        for (const HKEY root :
             {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CURRENT_CONFIG}) {
            roots.emplace(root, std::make_shared<Key>());
        }
    }
};

/// The next name of a path, or an empty one at its end.
std::wstring_view TakeName(std::wstring_view& path) {
    while (!path.empty() && path.front() == L'\\') {
        path.remove_prefix(1);
    }
    const std::wstring_view name = path.substr(0, path.find(L'\\'));
    path.remove_prefix(name.size());
    return name;
}

std::shared_ptr<Key> FindKey(std::shared_ptr<Key> key, std::wstring_view path) {
    for (std::wstring_view name = TakeName(path); key && !name.empty(); name = TakeName(path)) {
        const auto found = key->children.find(FoldCase(name));
        key = found == key->children.end() ? nullptr : found->second;
    }
    return key;
}

std::shared_ptr<Key> MakeKey(std::shared_ptr<Key> key, std::wstring_view path) {
    for (std::wstring_view name = TakeName(path); !name.empty(); name = TakeName(path)) {
        auto& child = key->children[FoldCase(name)];
        if (!child) {
            child = std::make_shared<Key>();
            child->name = name;
        }
        key = child;
    }
    return key;
}

/// The key above `path`, and the last name of `path`.
std::pair<std::shared_ptr<Key>, std::wstring> FindParent(const std::shared_ptr<Key>& key,
                                                         std::wstring_view path) {
    while (!path.empty() && path.back() == L'\\') {
        path.remove_suffix(1);
    }
    const std::size_t separator = path.rfind(L'\\');
    const bool nested = separator != std::wstring_view::npos;
    return {FindKey(key, nested ? path.substr(0, separator) : std::wstring_view()),
            FoldCase(nested ? path.substr(separator + 1) : path)};
}

bool RemoveTree(const std::shared_ptr<Key>& key, std::wstring_view path) {
    const auto [parent, name] = FindParent(key, path);
    if (!parent) {
        return false;
    }
    const auto found = parent->children.find(name);
    if (found == parent->children.end()) {
        return false;
    }
    found->second->MarkDeleted();
    parent->children.erase(found);
    return true;
}

void Apply(Hive& hive, std::vector<RegOperation> operations) {
    for (RegOperation& operation : operations) {
        const std::shared_ptr<Key>& root = hive.roots.at(operation.root);
        switch (operation.kind) {
        case RegOperation::Kind::CreateKey:
            MakeKey(root, operation.path);
            break;
        case RegOperation::Kind::DeleteKey:
            RemoveTree(root, operation.path);
            break;
        case RegOperation::Kind::SetValue:
            MakeKey(root, operation.path)->values[FoldCase(operation.name)] = {operation.name, operation.type,
                                                                               std::move(operation.data)};
            break;
        case RegOperation::Kind::DeleteValue:
            MakeKey(root, operation.path)->values.erase(FoldCase(operation.name));
            break;
        }
    }
}

void Fill(Hive& hive, const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string bytes;
    char block[4096];
    // What can be opened need not be a file that can be read; a failed read is no exception here.
    while (stream.read(block, sizeof block) || stream.gcount() > 0) {
        bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.is_open() || stream.bad()) {
        std::fprintf(stderr, "%s: the registry file cannot be read; the registry is empty\n", file.c_str());
        return;
    }
    auto parsed = ParseRegFile(bytes);
    if (const auto* const error = std::get_if<RegFileError>(&parsed)) {
        std::fprintf(stderr, "%s:%zu: %s; the registry file is ignored\n", file.c_str(), error->line,
                     error->message.c_str());
        return;
    }
    Apply(hive, std::move(std::get<std::vector<RegOperation>>(parsed)));
}

Hive& UnfilledHive() {
    // Never destroyed, because objects with static lifetime may still read it at exit.
    static Hive& hive = *new Hive;
    return hive;
}

/// The hive under its lock, filled.
class LockedHive {
  public:
    LockedHive() : m_hive(UnfilledHive()), m_guard(m_hive.lock) {
        if (m_hive.filled) {
            return;
        }
        m_hive.filled = true;
        m_hive.Clear();
        const char* const file = std::getenv("QUILLET_REGISTRY");
        if (file && *file) {
            Fill(m_hive, file);
        }
    }
    Hive* operator->() const { return &m_hive; }

    /// The live key of a handle that was opened with a right.
    LSTATUS Resolve(HKEY handle, REGSAM right, std::shared_ptr<Key>& key) const {
        const auto root = m_hive.roots.find(handle);
        if (root != m_hive.roots.end()) {
            key = root->second;
            return ERROR_SUCCESS;
        }
        const auto found = m_hive.open.find(handle);
        if (found == m_hive.open.end()) {
            return ERROR_INVALID_HANDLE;
        }
        if (found->second->key->deleted) {
            return ERROR_KEY_DELETED;
        }
        if (!(found->second->access & (right | MAXIMUM_ALLOWED)) && right) {
            return ERROR_ACCESS_DENIED;
        }
        key = found->second->key;
        return ERROR_SUCCESS;
    }

    HKEY Open(std::shared_ptr<Key> key, REGSAM access) const {
        auto handle = std::make_unique<Handle>(Handle{std::move(key), access});
        const HKEY name = reinterpret_cast<HKEY>(handle.get());
        m_hive.open.emplace(name, std::move(handle));
        g_counters.registryKeys.Add(1);
        return name;
    }

  private:
    Hive& m_hive;
    std::lock_guard<std::mutex> m_guard;
};

} // namespace

namespace quillet::platform {

void ResetRegistry(const std::string& file) {
    Hive& hive = UnfilledHive();
    const std::lock_guard guard(hive.lock);
    hive.filled = true;
    hive.Clear();
    if (!file.empty()) {
        Fill(hive, file);
    }
}

} // namespace quillet::platform

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM access, PHKEY result) {
    if (!result) {
        return ERROR_INVALID_PARAMETER;
    }
    *result = nullptr;
    if (subKey && *subKey == L'\\') {
        return ERROR_BAD_PATHNAME;
    }
    const LockedHive hive;
    std::shared_ptr<Key> parent;
    const LSTATUS status = hive.Resolve(key, 0, parent);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const std::shared_ptr<Key> found = FindKey(parent, subKey ? subKey : L"");
    if (!found) {
        return ERROR_FILE_NOT_FOUND;
    }
    *result = hive.Open(found, access);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR, DWORD, REGSAM access,
                               LPSECURITY_ATTRIBUTES, PHKEY result, LPDWORD disposition) {
    if (!result || !subKey || reserved) {
        return ERROR_INVALID_PARAMETER;
    }
    *result = nullptr;
    if (*subKey == L'\\') {
        return ERROR_BAD_PATHNAME;
    }
    const LockedHive hive;
    std::shared_ptr<Key> parent;
    const LSTATUS status = hive.Resolve(key, 0, parent);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const bool exists = FindKey(parent, subKey) != nullptr;
    if (!exists) {
        const LSTATUS allowed = hive.Resolve(key, KEY_CREATE_SUB_KEY, parent);
        if (allowed != ERROR_SUCCESS) {
            return allowed;
        }
    }
    *result = hive.Open(MakeKey(parent, subKey), access);
    if (disposition) {
        *disposition = exists ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size) {
    if (reserved || (data && !size)) {
        return ERROR_INVALID_PARAMETER;
    }
    const LockedHive hive;
    std::shared_ptr<Key> opened;
    const LSTATUS status = hive.Resolve(key, KEY_QUERY_VALUE, opened);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const auto found = opened->values.find(FoldCase(name ? name : L""));
    if (found == opened->values.end()) {
        return ERROR_FILE_NOT_FOUND;
    }
    const Value& value = found->second;
    if (type) {
        *type = value.type;
    }
    if (!size) {
        return ERROR_SUCCESS;
    }
    const DWORD room = *size;
    *size = static_cast<DWORD>(value.data.size());
    if (!data) {
        return ERROR_SUCCESS;
    }
    if (room < value.data.size()) {
        return ERROR_MORE_DATA;
    }
    std::copy(value.data.begin(), value.data.end(), data);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size) {
    if (reserved || (!data && size)) {
        return ERROR_INVALID_PARAMETER;
    }
    const LockedHive hive;
    std::shared_ptr<Key> opened;
    const LSTATUS status = hive.Resolve(key, KEY_SET_VALUE, opened);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const std::wstring text = name ? name : L"";
    opened->values[FoldCase(text)] = {text, type, std::vector<BYTE>(data, data + size)};
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name) {
    const LockedHive hive;
    std::shared_ptr<Key> opened;
    const LSTATUS status = hive.Resolve(key, KEY_SET_VALUE, opened);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    return opened->values.erase(FoldCase(name ? name : L"")) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
    if (!subKey || !*subKey) {
        return ERROR_INVALID_PARAMETER;
    }
    const LockedHive hive;
    std::shared_ptr<Key> parent;
    const LSTATUS status = hive.Resolve(key, 0, parent);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const std::shared_ptr<Key> found = FindKey(parent, subKey);
    if (!found) {
        return ERROR_FILE_NOT_FOUND;
    }
    if (!found->children.empty()) {
        return ERROR_ACCESS_DENIED;
    }
    RemoveTree(parent, subKey);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
    const LockedHive hive;
    std::shared_ptr<Key> parent;
    const LSTATUS status = hive.Resolve(key, 0, parent);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    if (subKey && *subKey) {
        return RemoveTree(parent, subKey) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    }
    for (const auto& child : parent->children) {
        child.second->MarkDeleted();
    }
    parent->children.clear();
    parent->values.clear();
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                             LPWSTR keyClass, LPDWORD classLength, FILETIME* lastWrite) {
    if (!name || !nameLength || reserved) {
        return ERROR_INVALID_PARAMETER;
    }
    const LockedHive hive;
    std::shared_ptr<Key> opened;
    const LSTATUS status = hive.Resolve(key, KEY_ENUMERATE_SUB_KEYS, opened);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    if (index >= opened->children.size()) {
        return ERROR_NO_MORE_ITEMS;
    }
    const std::wstring& found = std::next(opened->children.begin(), index)->second->name;
    if (*nameLength <= found.size()) {
        return ERROR_MORE_DATA;
    }
    std::copy(found.begin(), found.end(), name);
    name[found.size()] = L'\0';
    *nameLength = static_cast<DWORD>(found.size());
    // Keys have neither classes nor times here.
    if (keyClass && classLength && *classLength) {
        *keyClass = L'\0';
    }
    if (classLength) {
        *classLength = 0;
    }
    if (lastWrite) {
        *lastWrite = {};
    }
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCloseKey(HKEY key) {
    const LockedHive hive;
    if (hive->roots.count(key)) {
        return ERROR_SUCCESS;
    }
    if (hive->open.erase(key) == 0) {
        return ERROR_INVALID_HANDLE;
    }
    g_counters.registryKeys.Add(-1);
    return ERROR_SUCCESS;
}
