// One IWbemClassObject for each object that is a value.
#include "objects/EmbeddedObjects.h"

#include "objects/ClassObject.h"

#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

namespace {

IUnknown* Made(const SessionPtr& session, bool amended, const std::optional<Scalar>& scalar) {
    const auto* embedded = scalar ? std::get_if<Embedded>(&*scalar) : nullptr;
    if (embedded == nullptr) {
        return nullptr;
    }
    return static_cast<IWbemClassObject*>(
        new ClassObject(session, {embedded->object->definition, embedded->object}, amended));
}

/// The object behind an interface; nothing for one that is not of this layer, or is a class.
std::optional<Scalar> Behind(IUnknown* unknown) {
    void* object = nullptr;
    if (unknown == nullptr || FAILED(unknown->QueryInterface(IID_IWbemClassObject, &object))) {
        return std::nullopt;
    }
    const ComOwner<IWbemClassObject> owner(static_cast<IWbemClassObject*>(object));
    const ComOwner<ClassObject> own = ClassObject::Behind(owner.get());
    if (own == nullptr || !own->IsInstance()) {
        return std::nullopt;
    }
    return Scalar(Embedded{std::make_shared<const Instance>(own->Values())});
}

HRESULT ElementsFrom(SAFEARRAY* array, Value::Array& elements) {
    LONG lower = 0;
    LONG upper = -1;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        return HRESULT(WBEM_E_TYPE_MISMATCH);
    }
    for (LONG i = lower; i <= upper; ++i) {
        IUnknown* unknown = nullptr;
        if (FAILED(SafeArrayGetElement(array, &i, &unknown))) {
            return HRESULT(WBEM_E_TYPE_MISMATCH);
        }
        const ComOwner<IUnknown> owner(unknown);
        std::optional<Scalar> scalar = Behind(unknown);
        if (!scalar) {
            return HRESULT(WBEM_E_TYPE_MISMATCH);
        }
        elements.push_back(std::move(scalar));
    }
    return S_OK;
}

} // namespace

HRESULT FillObjects(const SessionPtr& session, bool amended, const Value& value, VARIANT* variant) {
    VariantInit(variant);
    V_VT(variant) = VT_NULL;
    if (value.IsNull()) {
        return S_OK;
    }
    const Value::Array* elements = value.AsArray();
    if (elements == nullptr) {
        V_UNKNOWN(variant) = Made(session, amended, *value.AsScalar());
        V_VT(variant) = VT_UNKNOWN;
        return S_OK;
    }
    SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, static_cast<ULONG>(elements->size()));
    if (array == nullptr) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    V_VT(variant) = VT_ARRAY | VT_UNKNOWN;
    V_ARRAY(variant) = array;
    LONG place = 0;
    for (const std::optional<Scalar>& element : *elements) {
        const ComOwner<IUnknown> object(Made(session, amended, element));
        if (object != nullptr && FAILED(SafeArrayPutElement(array, &place, object.get()))) {
            VariantClear(variant);
            return HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
        ++place;
    }
    return S_OK;
}

HRESULT FromObjects(const VARIANT& variant, CIMTYPE type, Value& value) {
    if (V_VT(&variant) == VT_NULL) {
        value = Value();
        return S_OK;
    }
    const bool isArray = (type & CIM_FLAG_ARRAY) != 0;
    if (isArray && V_VT(&variant) == (VT_ARRAY | VT_UNKNOWN)) {
        Value::Array elements;
        const HRESULT read = ElementsFrom(V_ARRAY(&variant), elements);
        value = SUCCEEDED(read) ? Value(std::move(elements)) : Value();
        return read;
    }
    std::optional<Scalar> scalar =
        !isArray && V_VT(&variant) == VT_UNKNOWN ? Behind(V_UNKNOWN(&variant)) : std::nullopt;
    if (!scalar) {
        return HRESULT(WBEM_E_TYPE_MISMATCH);
    }
    value = Value(*std::move(scalar));
    return S_OK;
}

} // namespace quillet::wmi
