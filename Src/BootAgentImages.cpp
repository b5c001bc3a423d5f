// Image files before they are written: which images one holds, and whether it is right.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "FlashImage.h"
#include "VariantValue.h"

#include <memory>

using ATL::CComBSTR;

namespace {

/// Appends one setting for each image type. A list that is shorter than that of the types leaves the member
/// of the others as it is.
void AppendImages(const std::vector<CComBSTR>& types, const std::vector<CComBSTR>& versions,
                  const std::vector<LONG>& groups, const std::vector<LONG>& exposeLevels, CSettings& images) {
    for (std::size_t i = 0; i < types.size(); ++i) {
        auto image = std::make_unique<CSettingString>();
        image->m_wsCaption = TextOf(types[i]);
        if (i < versions.size()) {
            image->m_wsCurrentValue = TextOf(versions[i]);
        }
        if (i < groups.size()) {
            image->m_lGroupId = groups[i];
        }
        if (i < exposeLevels.size()) {
            image->m_wsExposeLevel = std::to_wstring(exposeLevels[i]);
        }
        AddRecord(images, std::move(image));
    }
}

} // namespace

HRESULT CQuillet::ReadBootAgentImageFile(const std::wstring& bootAgentId, const LONG& size,
                                         unsigned char* data, CSettings& images, int& returnCode) {
    const OperationTrace trace(L"ReadBootAgentImageFile");
    HRESULT result = FlashImage::CheckArguments(bootAgentId, size, data);
    if (FAILED(result)) {
        return result;
    }
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    _variant_t bytes;
    result = FlashImage::MakeBytes(size, data, bytes);
    if (FAILED(result)) {
        return result;
    }
    ProviderMethod method(session, L_CLASS_ZOREL_BOOTAGENT, L_METHOD_BOOTAGENT_READIMAGEFILE,
                          ProviderMethod::ClassFetch::WithContext, FlashImage::SIGNATURE_NOTE);
    PropertyReader read = method.Put(L_PARAM_BOOTAGENT_IMAGEFILE_FLASHDATA, bytes, FlashImage::PUT_STEP)
                              .Exec(bootAgentId.c_str(), L"wsBootAgtID",
                                    L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READIMAGEFILE")
                              .NeedAnswer(FlashImage::NO_ANSWER)
                              .Read(L"pIWbemClassObject_OutParams");
    bool unreadable = false;
    result = FlashImage::ReadReturnCode(read, returnCode, &unreadable);
    if (FAILED(result)) {
        return result;
    }
    if (unreadable) {
        return S_OK;
    }
    // The line names another operation on purpose: whoever searches trace files knows it so.
    const wchar_t* failure = L"GetEnumSetting -> GetPropertyArray -> pIWbemSetting, L_PROP_SETTING_NAMES";
    std::vector<CComBSTR> types;
    std::vector<CComBSTR> versions;
    std::vector<LONG> groups;
    std::vector<LONG> exposeLevels;
    read.WholeArray(L_PARAM_BOOTAGENT_IMAGETYPE, types, failure)
        .WholeArray(L_PARAM_BOOTAGENT_IMAGEVERSIONNUMBER, versions, failure)
        .WholeArray(L_PARAM_BOOTAGENT_IMAGEGROUPNUMBER, groups, failure)
        .WholeArray(L_PARAM_BOOTAGENT_IMAGEEXPOSELEVEL, exposeLevels, failure);
    if (read.Failed()) {
        return read.Result();
    }
    AppendImages(types, versions, groups, exposeLevels, images);
    return S_OK;
}

HRESULT CQuillet::VerifyImageType(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                                  CSettings& imageTypes, int& returnCode) {
    const OperationTrace trace(L"VerifyImageType");
    HRESULT result = FlashImage::CheckArguments(bootAgentId, size, data);
    if (FAILED(result)) {
        return result;
    }
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    _variant_t types;
    _variant_t bytes;
    result = FlashImage::MakeTypes(imageTypes, types);
    if (SUCCEEDED(result)) {
        result = FlashImage::MakeBytes(size, data, bytes);
    }
    if (FAILED(result)) {
        return result;
    }
    ProviderMethod method(session, L_CLASS_ZOREL_BOOTAGENT, L_METHOD_BOOTAGENT_VERIFYIMAGETYPE,
                          ProviderMethod::ClassFetch::WithContext, FlashImage::SIGNATURE_NOTE);
    PropertyReader read = method.Put(L_PARAM_BOOTAGENT_IMAGEFILE_FLASHDATA, bytes, FlashImage::PUT_STEP)
                              .Put(L_PARAM_BOOTAGENT_IMAGEFILE_IMAGETYPE, types, FlashImage::PUT_STEP)
                              .Exec(bootAgentId.c_str(), L"wsBootAgtID",
                                    L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_VERIFYIMAGETYPE")
                              .NeedAnswer(FlashImage::NO_ANSWER)
                              .Read(L"pIWbemClassObject_OutParams");
    return SuccessOr(FlashImage::ReadReturnCode(read, returnCode));
}
