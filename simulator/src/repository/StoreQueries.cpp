// What class providers ask the store again and again, and the making of object IDs.
#include "repository/StoreQueries.h"

namespace quillet::simulator {

namespace {

/// 64 bits that depend on every character of a text (FNV-1a), and on where the calculation starts.
std::uint64_t Hash(std::wstring_view text, std::uint64_t start) noexcept {
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t hash = start;
    for (const wchar_t character : text) {
        // Two bytes of each character, which is what it has on every host.
        for (const unsigned shift : {0u, 8u}) {
            hash = (hash ^ ((static_cast<std::uint32_t>(character) >> shift) & 0xFF)) * kPrime;
        }
    }
    return hash;
}

std::wstring GuidText(std::uint64_t high, std::uint64_t low) {
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    std::wstring text = L"{";
    for (unsigned position = 0; position < 32; ++position) {
        if (position == 8 || position == 12 || position == 16 || position == 20) {
            text += L'-';
        }
        const std::uint64_t half = position < 16 ? high : low;
        text += kDigits[(half >> (60 - 4 * (position % 16))) & 0xF];
    }
    return text + L'}';
}

} // namespace

std::wstring PathByKey(const wchar_t* className, const wchar_t* key, const std::wstring& value) {
    ObjectPath path;
    path.className = className;
    path.keys.push_back({key, Scalar(value)});
    return path.Relative();
}

std::vector<InstancePtr> InstancesWhere(const Repository& store, const wchar_t* className,
                                        const wchar_t* property, const std::wstring& text) {
    WqlQuery query;
    query.className = className;
    query.where.emplace();
    query.where->property = property;
    query.where->literal = Scalar(text);
    std::vector<InstancePtr> found;
    store.Select(query, found);
    return found;
}

std::vector<InstancePtr> ReferencesTo(const Repository& store, const std::wstring& path,
                                      const wchar_t* className) {
    WqlQuery query;
    query.kind = WqlQuery::Kind::References;
    query.objectPath = path;
    query.resultClass = className;
    std::vector<InstancePtr> found;
    store.Associations(query, found);
    return found;
}

std::wstring NewObjectId(const Repository& store, const wchar_t* className, const wchar_t* key,
                         const std::wstring& seed) {
    for (unsigned attempt = 0;; ++attempt) {
        const std::wstring text = seed + L'/' + std::to_wstring(attempt);
        std::wstring id = GuidText(Hash(text, 0xCBF29CE484222325), Hash(L'/' + text, 0x9E3779B97F4A7C15));
        if (store.FindInstance(PathByKey(className, key, id)) == nullptr) {
            return id;
        }
    }
}

} // namespace quillet::simulator
