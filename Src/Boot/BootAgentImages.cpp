// Image files before they are written: which images one holds, and whether it is right.
#include <quillet/Quillet.h>

#include "Boot/FlashImage.h"
#include "Provider/MakeRecord.h"
#include "Variants/VariantValue.h"

using ATL::CComBSTR;

namespace {

/// Appends one setting for each image type. A list that is shorter than that of the types leaves the member
/// of the others as it is.
HRESULT AppendImages(const std::vector<CComBSTR>& types, const std::vector<CComBSTR>& versions,
                     const std::vector<LONG>& groups, const std::vector<LONG>& exposeLevels,
                     CSettings& images) {
    HRESULT result = S_OK;
    for (std::size_t i = 0; i < types.size() && SUCCEEDED(result); ++i) {
        result = AppendRecord<CSettingString>(images, L"pSetting == NULL", [&](CSettingString& image) {
            image.m_wsCaption = TextOf(types[i]);
            if (i < versions.size()) {
                image.m_wsCurrentValue = TextOf(versions[i]);
            }
            if (i < groups.size()) {
                image.m_lGroupId = groups[i];
            }
            if (i < exposeLevels.size()) {
                image.m_wsExposeLevel = std::to_wstring(exposeLevels[i]);
            }
            return S_OK;
        });
    }
    return result;
}

} // namespace

HRESULT CQuillet::ReadBootAgentImageFile(const std::wstring& bootAgentId, const LONG& size,
                                         unsigned char* data, CSettings& images, int& returnCode) {
    const OperationTrace trace(L"ReadBootAgentImageFile");
    const ProviderSession session(*this, FlashImage::NoImage(bootAgentId, size, data));
    _variant_t bytes;
    HRESULT result = session.Failed() ? session.Result() : FlashImage::MakeBytes(size, data, bytes);
    if (FAILED(result)) {
        return result;
    }
    FlashImage::Method method(session, L_METHOD_BOOTAGENT_READIMAGEFILE);
    PropertyReader read =
        method.Put(L_PARAM_BOOTAGENT_IMAGEFILE_FLASHDATA, bytes)
            .Exec(bootAgentId, L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READIMAGEFILE");
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
    constexpr auto whole = PropertyReader::Gaps::Fail;
    read.Array(L_PARAM_BOOTAGENT_IMAGETYPE, types, whole, failure)
        .Array(L_PARAM_BOOTAGENT_IMAGEVERSIONNUMBER, versions, whole, failure)
        .Array(L_PARAM_BOOTAGENT_IMAGEGROUPNUMBER, groups, whole, failure)
        .Array(L_PARAM_BOOTAGENT_IMAGEEXPOSELEVEL, exposeLevels, whole, failure);
    return read.Failed() ? read.Result() : AppendImages(types, versions, groups, exposeLevels, images);
}

HRESULT CQuillet::VerifyImageType(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                                  CSettings& imageTypes, int& returnCode) {
    const OperationTrace trace(L"VerifyImageType");
    const ProviderSession session(*this, FlashImage::NoImage(bootAgentId, size, data));
    _variant_t types;
    _variant_t bytes;
    HRESULT result = session.Failed() ? session.Result() : FlashImage::MakeTypes(imageTypes, types);
    if (SUCCEEDED(result)) {
        result = FlashImage::MakeBytes(size, data, bytes);
    }
    if (FAILED(result)) {
        return result;
    }
    FlashImage::Method method(session, L_METHOD_BOOTAGENT_VERIFYIMAGETYPE);
    PropertyReader read =
        method.Put(L_PARAM_BOOTAGENT_IMAGEFILE_FLASHDATA, bytes)
            .Put(L_PARAM_BOOTAGENT_IMAGEFILE_IMAGETYPE, types)
            .Exec(bootAgentId, L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_VERIFYIMAGETYPE");
    return SuccessOr(FlashImage::ReadReturnCode(read, returnCode));
}
