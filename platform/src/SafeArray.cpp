// SAFEARRAY: creation, access and the ownership of its elements.
#include "SafeArray.h"

#include <quillet-platform/TestHooks.h>
#include "Counters.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

namespace quillet::platform {

ULONG ElementSize(VARTYPE type) noexcept {
    switch (type) {
    case VT_I1:
    case VT_UI1:
        return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
        return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_DATE:
    case VT_CY:
        return 8;
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
        return sizeof(void*);
    case VT_DECIMAL:
        return sizeof(DECIMAL);
    case VT_VARIANT:
        return sizeof(VARIANT);
    default:
        return 0;
    }
}

} // namespace quillet::platform

namespace {

using quillet::platform::ElementSize;
using quillet::platform::g_counters;

// Stands before each descriptor that was allocated here; the type is not part of the public layout.
struct Hidden {
    VARTYPE type;
    ULONG padding[3];
};
static_assert(sizeof(Hidden) % alignof(SAFEARRAY) == 0);

// One array is limited to what a signed 32-bit count of bytes can name.
constexpr ULONGLONG kMaxBytes = std::numeric_limits<LONG>::max();

Hidden* HiddenOf(SAFEARRAY* array) noexcept {
    return reinterpret_cast<Hidden*>(reinterpret_cast<char*>(array) - sizeof(Hidden));
}

bool BoundFits(const SAFEARRAYBOUND& bound) noexcept {
    return static_cast<LONGLONG>(bound.lLbound) + bound.cElements - 1 <= std::numeric_limits<LONG>::max();
}

/// Elements of all dimensions; none if they are more than one array can have.
std::optional<ULONG> CellCount(const SAFEARRAYBOUND* bounds, UINT dimensions, ULONG elementSize) noexcept {
    ULONGLONG cells = 1;
    for (UINT i = 0; i < dimensions; ++i) {
        if (!BoundFits(bounds[i])) {
            return std::nullopt;
        }
        cells *= bounds[i].cElements;
        if (cells * elementSize > kMaxBytes) {
            return std::nullopt;
        }
    }
    return static_cast<ULONG>(cells);
}

ULONG Cells(SAFEARRAY* array) noexcept {
    // The bounds are the caller's to change through the public layout; what was never allocated has no cells.
    return array->pvData ? CellCount(array->rgsabound, array->cDims, array->cbElements).value_or(0) : 0;
}

const SAFEARRAYBOUND& BoundOf(const SAFEARRAY* array, UINT dimension) noexcept {
    return array->rgsabound[array->cDims - dimension];
}

void ClearElements(SAFEARRAY* array, ULONG first, ULONG end) noexcept {
    if (array->fFeatures & FADF_BSTR) {
        auto* const texts = static_cast<BSTR*>(array->pvData);
        for (ULONG i = first; i < end; ++i) {
            SysFreeString(texts[i]);
        }
    } else if (array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) {
        auto* const objects = static_cast<IUnknown**>(array->pvData);
        for (ULONG i = first; i < end; ++i) {
            if (objects[i]) {
                objects[i]->Release();
            }
        }
    } else if (array->fFeatures & FADF_VARIANT) {
        auto* const variants = static_cast<VARIANT*>(array->pvData);
        for (ULONG i = first; i < end; ++i) {
            VariantClear(&variants[i]);
        }
    }
}

void ZeroElements(SAFEARRAY* array, ULONG first, ULONG end) noexcept {
    if (end > first) {
        std::memset(static_cast<char*>(array->pvData) + static_cast<std::size_t>(first) * array->cbElements,
                    0, static_cast<std::size_t>(end - first) * array->cbElements);
    }
}

/// Whether elements are just their bytes.
bool IsPlain(const SAFEARRAY* array) noexcept {
    return (array->fFeatures & (FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT)) == 0;
}

/// Copies one element into a place that holds nothing.
HRESULT CopyElement(const SAFEARRAY* array, void* destination, const void* source) noexcept {
    if (array->fFeatures & FADF_BSTR) {
        const BSTR text = *static_cast<const BSTR*>(source);
        BSTR copy = nullptr;
        if (text) {
            copy = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), SysStringByteLen(text));
            if (!copy) {
                return E_OUTOFMEMORY;
            }
        }
        *static_cast<BSTR*>(destination) = copy;
    } else if (array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) {
        IUnknown* const object = *static_cast<IUnknown* const*>(source);
        if (object) {
            object->AddRef();
        }
        *static_cast<IUnknown**>(destination) = object;
    } else if (array->fFeatures & FADF_VARIANT) {
        auto* const copy = static_cast<VARIANT*>(destination);
        VariantInit(copy);
        return VariantCopy(copy, static_cast<const VARIANT*>(source));
    } else {
        std::memcpy(destination, source, array->cbElements);
    }
    return S_OK;
}

/// Which of the arrays that the thread creates is to fail, for tests; 0 when none is.
thread_local unsigned long g_failIn = 0;

bool CreationMustFail() noexcept {
    return g_failIn != 0 && --g_failIn == 0;
}

SAFEARRAY* AllocateDescriptor(VARTYPE type, UINT dimensions) noexcept {
    const std::size_t bytes = sizeof(Hidden) + sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
    auto* const block = static_cast<char*>(std::calloc(1, bytes));
    if (!block) {
        return nullptr;
    }
    auto* const array = reinterpret_cast<SAFEARRAY*>(block + sizeof(Hidden));
    HiddenOf(array)->type = type;
    array->cDims = static_cast<USHORT>(dimensions);
    array->cbElements = ElementSize(type);
    switch (type) {
    case VT_BSTR:
        array->fFeatures = FADF_BSTR | FADF_HAVEVARTYPE;
        break;
    case VT_UNKNOWN:
        array->fFeatures = FADF_UNKNOWN | FADF_HAVEIID;
        break;
    case VT_DISPATCH:
        array->fFeatures = FADF_DISPATCH | FADF_HAVEIID;
        break;
    case VT_VARIANT:
        array->fFeatures = FADF_VARIANT | FADF_HAVEVARTYPE;
        break;
    default:
        array->fFeatures = FADF_HAVEVARTYPE;
        break;
    }
    return array;
}

enum class Contents { Zero, Open };

/// @param contents Open: the caller writes every element at once; only for plain ones.
SAFEARRAY* Create(VARTYPE type, UINT dimensions, const SAFEARRAYBOUND* bounds, bool reversed,
                  Contents contents = Contents::Zero) noexcept {
    if (ElementSize(type) == 0) {
        return nullptr;
    }
    const auto cells = CellCount(bounds, dimensions, ElementSize(type));
    if (!cells) {
        return nullptr;
    }
    SAFEARRAY* const array = AllocateDescriptor(type, dimensions);
    if (!array) {
        return nullptr;
    }
    for (UINT i = 0; i < dimensions; ++i) {
        array->rgsabound[i] = bounds[reversed ? dimensions - 1 - i : i];
    }
    const std::size_t bytes = static_cast<std::size_t>(*cells) * array->cbElements;
    if (!CreationMustFail()) {
        array->pvData =
            contents == Contents::Open ? std::malloc(bytes ? bytes : 1) : std::calloc(1, bytes ? bytes : 1);
    }
    if (!array->pvData) {
        std::free(HiddenOf(array));
        return nullptr;
    }
    g_counters.safeArrays.Add(1);
    return array;
}

HRESULT FindElement(SAFEARRAY* array, const LONG* indices, void** address) noexcept {
    std::size_t cell = 0;
    std::size_t stride = 1;
    for (UINT dimension = 1; dimension <= array->cDims; ++dimension) {
        const SAFEARRAYBOUND& bound = BoundOf(array, dimension);
        const LONGLONG offset = static_cast<LONGLONG>(indices[dimension - 1]) - bound.lLbound;
        if (offset < 0 || offset >= bound.cElements) {
            return DISP_E_BADINDEX;
        }
        cell += static_cast<std::size_t>(offset) * stride;
        stride *= bound.cElements;
    }
    // The data may have been destroyed and the descriptor kept.
    if (!array->pvData) {
        return E_INVALIDARG;
    }
    *address = static_cast<char*>(array->pvData) + cell * array->cbElements;
    return S_OK;
}

} // namespace

namespace quillet::platform {

void FailArrayAllocation(unsigned long nth) noexcept {
    g_failIn = nth;
}

} // namespace quillet::platform

SAFEARRAY* WINAPI SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
    if (!bounds || dimensions == 0 || dimensions > std::numeric_limits<USHORT>::max()) {
        return nullptr;
    }
    return Create(type, dimensions, bounds, true);
}

SAFEARRAY* WINAPI SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements) {
    const SAFEARRAYBOUND bound = {elements, lowerBound};
    return Create(type, 1, &bound, false);
}

HRESULT WINAPI SafeArrayDestroyData(SAFEARRAY* array) {
    if (!array) {
        return E_INVALIDARG;
    }
    if (array->cLocks) {
        return DISP_E_ARRAYISLOCKED;
    }
    if (array->pvData) {
        ClearElements(array, 0, Cells(array));
        if (array->fFeatures & FADF_STATIC) {
            ZeroElements(array, 0, Cells(array));
        } else {
            std::free(array->pvData);
            array->pvData = nullptr;
        }
    }
    return S_OK;
}

HRESULT WINAPI SafeArrayDestroy(SAFEARRAY* array) {
    if (!array) {
        return S_OK;
    }
    const HRESULT hr = SafeArrayDestroyData(array);
    if (FAILED(hr)) {
        return hr;
    }
    std::free(HiddenOf(array));
    g_counters.safeArrays.Add(-1);
    return S_OK;
}

HRESULT WINAPI SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) {
    if (!copy) {
        return E_INVALIDARG;
    }
    *copy = nullptr;
    if (!array) {
        return S_OK;
    }
    VARTYPE type = VT_EMPTY;
    const HRESULT typed = SafeArrayGetVartype(array, &type);
    if (FAILED(typed)) {
        return typed;
    }
    // Without cells there is nothing that would be copied over what is in the new array.
    const ULONG cells = Cells(array);
    const bool inOnePiece = IsPlain(array) && cells != 0;
    SAFEARRAY* const made =
        Create(type, array->cDims, array->rgsabound, false, inOnePiece ? Contents::Open : Contents::Zero);
    if (!made) {
        return E_OUTOFMEMORY;
    }
    if (inOnePiece) {
        std::memcpy(made->pvData, array->pvData, static_cast<std::size_t>(cells) * array->cbElements);
        *copy = made;
        return S_OK;
    }
    const auto* const from = static_cast<const char*>(array->pvData);
    auto* const to = static_cast<char*>(made->pvData);
    for (ULONG i = 0; i < cells; ++i) {
        const std::size_t offset = static_cast<std::size_t>(i) * array->cbElements;
        const HRESULT hr = CopyElement(array, to + offset, from + offset);
        if (FAILED(hr)) {
            SafeArrayDestroy(made);
            return hr;
        }
    }
    *copy = made;
    return S_OK;
}

HRESULT WINAPI SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* bound) {
    if (!array || !bound || (array->fFeatures & (FADF_STATIC | FADF_FIXEDSIZE))) {
        return E_INVALIDARG;
    }
    if (array->cLocks) {
        return DISP_E_ARRAYISLOCKED;
    }
    const ULONG before = Cells(array);
    const SAFEARRAYBOUND old = array->rgsabound[0];
    // Elements of the last dimension are farthest apart, so it grows and shrinks at the end of the data.
    array->rgsabound[0] = *bound;
    const auto after = CellCount(array->rgsabound, array->cDims, array->cbElements);
    if (!after) {
        array->rgsabound[0] = old;
        return E_OUTOFMEMORY;
    }
    if (*after < before) {
        ClearElements(array, *after, before);
    }
    const std::size_t bytes = static_cast<std::size_t>(*after) * array->cbElements;
    void* const data = std::realloc(array->pvData, bytes ? bytes : 1);
    if (!data) {
        array->rgsabound[0] = old;
        return E_OUTOFMEMORY;
    }
    array->pvData = data;
    if (*after > before) {
        std::memset(static_cast<char*>(data) + static_cast<std::size_t>(before) * array->cbElements, 0,
                    static_cast<std::size_t>(*after - before) * array->cbElements);
    }
    return S_OK;
}

UINT WINAPI SafeArrayGetDim(SAFEARRAY* array) {
    return array ? array->cDims : 0;
}

UINT WINAPI SafeArrayGetElemsize(SAFEARRAY* array) {
    return array ? array->cbElements : 0;
}

HRESULT WINAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (!array || !bound) {
        return E_INVALIDARG;
    }
    if (dimension == 0 || dimension > array->cDims) {
        return DISP_E_BADINDEX;
    }
    *bound = BoundOf(array, dimension).lLbound;
    return S_OK;
}

HRESULT WINAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (!array || !bound) {
        return E_INVALIDARG;
    }
    if (dimension == 0 || dimension > array->cDims) {
        return DISP_E_BADINDEX;
    }
    const SAFEARRAYBOUND& dim = BoundOf(array, dimension);
    *bound = static_cast<LONG>(static_cast<LONGLONG>(dim.lLbound) + dim.cElements - 1);
    return S_OK;
}

HRESULT WINAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
    if (!array || !type) {
        return E_INVALIDARG;
    }
    if (array->fFeatures & FADF_UNKNOWN) {
        *type = VT_UNKNOWN;
    } else if (array->fFeatures & FADF_DISPATCH) {
        *type = VT_DISPATCH;
    } else if (array->fFeatures & FADF_HAVEVARTYPE) {
        *type = HiddenOf(array)->type;
    } else if (array->fFeatures & FADF_BSTR) {
        *type = VT_BSTR;
    } else if (array->fFeatures & FADF_VARIANT) {
        *type = VT_VARIANT;
    } else {
        return E_INVALIDARG;
    }
    return S_OK;
}

HRESULT WINAPI SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* element) {
    if (!array || !indices || !element) {
        return E_INVALIDARG;
    }
    void* place = nullptr;
    const HRESULT hr = FindElement(array, indices, &place);
    return FAILED(hr) ? hr : CopyElement(array, element, place);
}

HRESULT WINAPI SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* element) {
    if (!array || !indices) {
        return E_INVALIDARG;
    }
    void* place = nullptr;
    HRESULT hr = FindElement(array, indices, &place);
    if (FAILED(hr)) {
        return hr;
    }
    const bool byPointer = (array->fFeatures & (FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH)) != 0;
    if (!element && !byPointer) {
        return E_INVALIDARG;
    }
    // The copy is made before the old element goes, so that a failure changes nothing.
    alignas(VARIANT) char copy[sizeof(VARIANT)] = {};
    hr = CopyElement(array, copy, byPointer ? static_cast<const void*>(&element) : element);
    if (FAILED(hr)) {
        return hr;
    }
    const auto cell = static_cast<ULONG>(
        static_cast<std::size_t>(static_cast<char*>(place) - static_cast<char*>(array->pvData)) /
        array->cbElements);
    ClearElements(array, cell, cell + 1);
    ZeroElements(array, cell, cell + 1);
    std::memcpy(place, copy, array->cbElements);
    return S_OK;
}

HRESULT WINAPI SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** address) {
    if (!array || !indices || !address) {
        return E_INVALIDARG;
    }
    return FindElement(array, indices, address);
}

HRESULT WINAPI SafeArrayLock(SAFEARRAY* array) {
    if (!array) {
        return E_INVALIDARG;
    }
    if (array->cLocks == std::numeric_limits<USHORT>::max()) {
        return E_UNEXPECTED;
    }
    ++array->cLocks;
    return S_OK;
}

HRESULT WINAPI SafeArrayUnlock(SAFEARRAY* array) {
    if (!array) {
        return E_INVALIDARG;
    }
    if (array->cLocks == 0) {
        return E_UNEXPECTED;
    }
    --array->cLocks;
    return S_OK;
}

HRESULT WINAPI SafeArrayAccessData(SAFEARRAY* array, void** data) {
    if (!array || !data) {
        return E_INVALIDARG;
    }
    const HRESULT hr = SafeArrayLock(array);
    *data = SUCCEEDED(hr) ? array->pvData : nullptr;
    return hr;
}

HRESULT WINAPI SafeArrayUnaccessData(SAFEARRAY* array) {
    return SafeArrayUnlock(array);
}
