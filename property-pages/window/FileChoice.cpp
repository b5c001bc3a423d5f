// Asking for the name of a file.
#include "window/FileChoice.h"

#include "model/Strings.h"

#include <commdlg.h>

namespace quillet::pages {

std::wstring ChooseFile(HWND owner, FileUse use) {
    constexpr std::size_t kLongestPath = 32768;
    std::wstring filter = Say(TextId::FilesImages) + L'\0' + L"*.bin;*.flb;*.img" + L'\0';
    filter += Say(TextId::FilesAll) + L'\0' + L"*.*" + L'\0';
    std::wstring path(kLongestPath, L'\0');
    OPENFILENAMEW asked{};
    asked.lStructSize = sizeof(asked);
    asked.hwndOwner = owner;
    asked.lpstrFilter = filter.c_str();
    asked.lpstrFile = path.data();
    asked.nMaxFile = DWORD(path.size());
    asked.lpstrDefExt = L"bin";
    asked.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    asked.Flags |= use == FileUse::Read ? OFN_FILEMUSTEXIST : OFN_OVERWRITEPROMPT;
    const BOOL isChosen = use == FileUse::Read ? GetOpenFileNameW(&asked) : GetSaveFileNameW(&asked);
    return isChosen != FALSE ? std::wstring(path.c_str()) : std::wstring();
}

} // namespace quillet::pages
