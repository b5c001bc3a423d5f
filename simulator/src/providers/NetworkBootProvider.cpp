// Boot agents: flash memory, image files, and the places of the ports in booting from iSCSI.
#include "providers/ClassProvider.h"
#include "machine/MachineState.h"

#include <quillet-simulator/FlashImage.h>
#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>

namespace quillet::simulator {

namespace {

constexpr const wchar_t* kAgentClass = L"Zorel_BootAgent";
constexpr const wchar_t* kListClass = L"Zorel_BootAgent_iSCSI_Adapters";

/// The follow-up of a change that counts from the next start on.
constexpr LONG kRestartAdapter = 1;

/// Values of "iSCSI_Status".
enum Place { Disabled = 0, Primary = 1, Secondary = 2 };

/// "RetCode" of SetiSCSI_Status.
enum class PlaceCode { Done = 0, NoSuchPlace = 1, NotInTheList = 2 };

/// The bits of "InstalledFlashImageTypes".
constexpr std::array<const wchar_t*, 3> kKnownTypes{L"PXE", L"EFI", L"iSCSI"};

FlashBytes BytesOf(const Instance& parameters, const wchar_t* name) {
    const Value* value = parameters.Find(name);
    const Value::Bytes* bytes = value != nullptr ? value->AsBytes() : nullptr;
    return bytes != nullptr ? FlashBytes(*bytes) : FlashBytes();
}

/// The images of a file that are asked for; all of them when none is named. Nothing when one is missing.
std::optional<std::vector<BootImage>> Chosen(const std::vector<BootImage>& images, const Value* types) {
    const Value::Array names = types != nullptr ? types->Elements() : Value::Array();
    if (names.empty()) {
        return images;
    }
    std::vector<BootImage> chosen;
    for (const auto& name : names) {
        const auto* text = name ? std::get_if<std::wstring>(&*name) : nullptr;
        const auto found = std::find_if(images.begin(), images.end(), [&](const BootImage& image) {
            return text != nullptr && image.type == *text;
        });
        if (found == images.end()) {
            return std::nullopt;
        }
        chosen.push_back(*found);
    }
    return chosen;
}

FlashCode Examine(const MethodCall& call, const wchar_t* dataName, std::vector<BootImage>& chosen) {
    std::vector<BootImage> images;
    const FlashCode code = ReadFlashImage(BytesOf(call.in, dataName), images, ImageContents::Leave);
    if (code != FlashCode::Good) {
        return code;
    }
    auto wanted = Chosen(images, call.in.Find(L"ImageType"));
    if (!wanted) {
        return FlashCode::TypeMissing;
    }
    chosen = *std::move(wanted);
    return FlashCode::Good;
}

/// 1.3.72 as 0x010348: what "VersionNumber" holds; nothing for a text of another form.
std::optional<std::int64_t> VersionNumber(const std::wstring& version) {
    std::int64_t number = 0;
    std::size_t begin = 0;
    for (int part = 0; part < 3; ++part) {
        const std::size_t end = part < 2 ? version.find(L'.', begin) : version.size();
        const auto value =
            end == std::wstring::npos ? std::nullopt : ParseDecimal(version.substr(begin, end - begin));
        if (!value || value->negative || value->magnitude > (part == 0 ? 0x7FFFu : 0xFFu)) {
            return std::nullopt;
        }
        number = number << 8 | static_cast<std::int64_t>(value->magnitude);
        begin = end + 1;
    }
    return number;
}

/// "FlashImageType" of a set of images; nothing for one that has no code.
std::optional<std::int64_t> ImageTypeCode(std::uint64_t mask) {
    switch (mask) {
    case 0:
        return 0;
    case 1:
        return 1;
    case 2:
        return 2;
    case 4:
        return 3;
    case 5:
        return 4;
    case 7:
        return 5;
    default:
        return std::nullopt;
    }
}

Value NumberOrNull(std::optional<std::int64_t> number) {
    return number ? Value::Signed(*number) : Value();
}

/// What a boot agent says of itself after these images were written.
void Describe(Instance& agent, const std::vector<BootImage>& images) {
    std::uint64_t mask = 0;
    for (std::size_t bit = 0; bit < kKnownTypes.size(); ++bit) {
        const bool there = std::any_of(images.begin(), images.end(), [&](const BootImage& image) {
            return image.type == kKnownTypes[bit];
        });
        mask |= there ? std::uint64_t{1} << bit : 0;
    }
    agent.Set(L"Version", Value::Text(images.front().version));
    agent.Set(L"VersionNumber", NumberOrNull(VersionNumber(images.front().version)));
    agent.Set(L"UpdateAvailable", Value::Bool(false));
    agent.Set(L"InstalledFlashImageTypes", Value::Signed(static_cast<std::int64_t>(mask)));
    agent.Set(L"FlashImageType", NumberOrNull(ImageTypeCode(mask)));
}

class NetworkBootProvider final : public ClassProvider {
  public:
    HRESULT ExecMethod(MethodCall& call) override {
        using Handler = HRESULT (*)(MethodCall&);
        static const std::map<std::wstring, Handler, NameLess> kHandlers = {
            {L"ReadFlash", ReadFlash},         {L"ProgramFlashEx", ProgramFlash},
            {L"ReadImageFile", ReadImageFile}, {L"VerifyImageType", VerifyImageType},
            {L"SetiSCSI_Status", SetPlace},
        };
        const auto handler = kHandlers.find(call.method.name);
        if (handler == kHandlers.end()) {
            return ClassProvider::ExecMethod(call);
        }
        return call.instance != nullptr ? handler->second(call) : HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }

    std::chrono::milliseconds Duration(const MethodCall& call) const override {
        // Erasing takes its time whatever the size; then 8 KiB are written in a millisecond.
        constexpr std::size_t kBytesPerMillisecond = 8192;
        if (call.instance == nullptr || !SameName(call.method.name, L"ProgramFlashEx")) {
            return {};
        }
        return std::chrono::milliseconds(500 +
                                         BytesOf(call.in, L"NewFlashData").size() / kBytesPerMillisecond);
    }

  private:
    static HRESULT Finish(MethodCall& call, FlashCode code) {
        call.Answer(L"FlashRetCode", static_cast<std::int64_t>(code));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT ReadFlash(MethodCall& call) {
        if (const Value* flash = call.instance->Find(L"FlashImage")) {
            call.out.Set(L"FlashData", *flash);
        }
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT ProgramFlash(MethodCall& call) {
        if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
            return allowed;
        }
        std::vector<BootImage> images;
        if (const FlashCode code = Examine(call, L"NewFlashData", images); code != FlashCode::Good) {
            return Finish(call, code);
        }
        // The memory changes as a whole, with the last step.
        Instance agent = *call.instance;
        agent.Set(L"FlashImage", *call.in.Find(L"NewFlashData"));
        Describe(agent, images);
        if (const HRESULT stored =
                call.request.Target().Store().PutInstance(std::move(agent), WriteMode::UpdateOnly);
            FAILED(stored)) {
            return stored;
        }
        call.request.RequireFollowup(kRestartAdapter);
        return Finish(call, FlashCode::Good);
    }

    static HRESULT ReadImageFile(MethodCall& call) {
        std::vector<BootImage> images;
        const FlashCode code = ReadFlashImage(BytesOf(call.in, L"FlashData"), images, ImageContents::Leave);
        if (code == FlashCode::Good) {
            Value::Array types;
            Value::Array versions;
            Value::Array groups;
            Value::Array exposeLevels;
            for (const BootImage& image : images) {
                types.emplace_back(Scalar(image.type));
                versions.emplace_back(Scalar(image.version));
                groups.emplace_back(Scalar(std::int64_t{image.group}));
                exposeLevels.emplace_back(Scalar(std::int64_t{image.exposeLevel}));
            }
            call.out.Set(L"ImageType", Value(std::move(types)));
            call.out.Set(L"ImageVersionNumber", Value(std::move(versions)));
            call.out.Set(L"ImageGroupNumber", Value(std::move(groups)));
            call.out.Set(L"ImageExposeLevel", Value(std::move(exposeLevels)));
        }
        return Finish(call, code);
    }

    static HRESULT VerifyImageType(MethodCall& call) {
        std::vector<BootImage> images;
        return Finish(call, Examine(call, L"FlashData", images));
    }

    /// An entry of the list, or a boot agent, of a port; null when it has none.
    static InstancePtr OfPort(const Repository& store, const wchar_t* className, const std::wstring& port) {
        ObjectPath path{{}, {}, className, {}, false};
        path.keys.push_back({L"Name", Scalar(port)});
        return store.FindInstance(path);
    }

    static void Put(Repository& store, const std::wstring& port, std::int64_t place) {
        for (const wchar_t* className : {kAgentClass, kListClass}) {
            if (const auto found = OfPort(store, className, port)) {
                Instance changed = *found;
                changed.Set(L"iSCSI_Status", Value::Signed(place));
                store.PutInstance(std::move(changed), WriteMode::UpdateOnly);
            }
        }
    }

    static HRESULT Answer(MethodCall& call, PlaceCode code) {
        call.Answer(L"RetCode", static_cast<std::int64_t>(code));
        call.Answer(L"ReturnValue", 0);
        return S_OK;
    }

    static HRESULT SetPlace(MethodCall& call) {
        if (const HRESULT allowed = call.request.Change(); FAILED(allowed)) {
            return allowed;
        }
        auto& store = call.request.Target().Store();
        const std::wstring port = call.instance->Text(L"Name");
        const auto entry = OfPort(store, kListClass, port);
        const auto place = call.in.Number(L"iSCSI_State", -1);
        if (place < Disabled || place > Secondary) {
            return Answer(call, PlaceCode::NoSuchPlace);
        }
        if (entry == nullptr) {
            return Answer(call, PlaceCode::NotInTheList);
        }
        // There is one primary port: the earlier one takes the place that this one leaves.
        const auto earlier = entry->Number(L"iSCSI_Status");
        if (place == Primary) {
            for (const auto& other : store.Instances(kListClass)) {
                if (other->Number(L"iSCSI_Status") == Primary && other->Text(L"Name") != port) {
                    Put(store, other->Text(L"Name"), earlier);
                }
            }
        }
        Put(store, port, place);
        call.request.RequireFollowup(kRestartAdapter);
        return Answer(call, PlaceCode::Done);
    }
};

} // namespace

std::unique_ptr<ClassProvider> MakeNetworkBootProvider() {
    return std::make_unique<NetworkBootProvider>();
}

} // namespace quillet::simulator
