// The owning list under every collection that the library hands out.
#pragma once

#include <quillet/Export.h>

#include <concepts>
#include <utility>
#include <vector>

template <class T>
class CPointerArray;

/// A list that owns the objects it points to.
///
/// Callers append with `m_vecItems.push_back(new T(...))` and read by index; every non-null pointer in the
/// list is deleted with it. A copy of a list is deep, so that any list may be copied, returned and kept
/// without regard to the one it came from.
///
/// The collections whose elements can copy themselves have a `Copy()` that may be called through a null
/// pointer and returns null then, so that a client can copy a collection that an operation has not made yet,
/// as in `adapter.m_pTeamModes->Copy()`. The library is built so that this holds however it is optimised. The
/// language does not know such calls: a compiler may conclude from one that the pointer is not null, so that
/// a client tests the pointer before the call, or the result, and not the pointer after it.
template <class T>
class QUILLET_TEMPLATE_API CPointerArray<T*> {
  public:
    /// The elements in insertion order; null entries are allowed and count as elements.
    std::vector<T*> m_vecItems;

    /// An empty list.
    CPointerArray() = default;

    /// Copies every element: by the element's own `Copy()` where it has one (so that a derived element keeps
    /// its type), else by its copy constructor. A null entry stays a null entry.
    CPointerArray(const CPointerArray& rOther) : CPointerArray() {
        m_vecItems.reserve(rOther.m_vecItems.size());
        for (const T* pItem : rOther.m_vecItems) {
            m_vecItems.push_back(pItem == nullptr ? nullptr : CopyItem(*pItem));
        }
    }

    /// Takes the elements over and leaves the other list empty.
    CPointerArray(CPointerArray&& rOther) noexcept : m_vecItems(std::exchange(rOther.m_vecItems, {})) {}

    /// Replaces the elements with deep copies. If a copy can not be made, the list stays as it was.
    CPointerArray& operator=(const CPointerArray& rOther) {
        if (this != &rOther) {
            CPointerArray copy(rOther);
            m_vecItems.swap(copy.m_vecItems);
        }
        return *this;
    }

    /// Deletes the elements and takes the other list's over.
    CPointerArray& operator=(CPointerArray&& rOther) noexcept {
        CPointerArray taken(std::move(rOther));
        m_vecItems.swap(taken.m_vecItems);
        return *this;
    }

    virtual ~CPointerArray() { RemoveAll(); }

    /// Deletes every element and empties the list.
    void RemoveAll() noexcept {
        for (T* pItem : m_vecItems) {
            delete pItem;
        }
        m_vecItems.clear();
    }

  private:
    static T* CopyItem(const T& rItem) {
        if constexpr (requires {
                          { rItem.Copy() } -> std::convertible_to<T*>;
                      }) {
            return rItem.Copy();
        } else {
            return new T(rItem);
        }
    }
};
