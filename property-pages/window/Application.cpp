// What all windows of the program share.
#include "window/Application.h"

#include "window/SheetWindow.h"
#include "window/StartWindow.h"

namespace quillet::pages {

namespace {

constexpr UINT kAnswer = WM_APP + 1;
constexpr const wchar_t* kReceiverClass = L"QuilletAnswers";
/// How long the program waits for a provider when it ends.
constexpr std::chrono::seconds kPatience{5};

void RestartWindows() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token) != FALSE) {
        TOKEN_PRIVILEGES privilege{};
        privilege.PrivilegeCount = 1;
        LookupPrivilegeValueW(nullptr, SE_SHUTDOWN_NAME, &privilege.Privileges[0].Luid);
        privilege.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
        AdjustTokenPrivileges(token, FALSE, &privilege, 0, nullptr, nullptr);
        CloseHandle(token);
    }
    ExitWindowsEx(EWX_REBOOT,
                  SHTDN_REASON_MAJOR_HARDWARE | SHTDN_REASON_MINOR_NETWORKCARD | SHTDN_REASON_FLAG_PLANNED);
}

HWND MakeReceiver(WNDPROC procedure) {
    WNDCLASSW described{};
    described.lpfnWndProc = procedure;
    described.hInstance = GetModuleHandleW(nullptr);
    described.lpszClassName = kReceiverClass;
    RegisterClassW(&described);
    return CreateWindowExW(0, kReceiverClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, described.hInstance,
                           nullptr);
}

/// Whether a key is for a control that can do nothing with it, so that the system's own search for one that
/// can may never end.
bool IsForNobody(const MSG& message) {
    if (message.message == WM_CHAR &&
        (SendMessageW(message.hwnd, WM_GETDLGCODE, 0, 0) & (DLGC_WANTCHARS | DLGC_WANTALLKEYS)) == 0) {
        // A letter without Alt, on a control that takes none: Wine looks for whose letter it is.
        return true;
    }
    // Pressed before the control was disabled.
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    return isKey && IsWindowEnabled(message.hwnd) == FALSE;
}

/// Whatever loop a dialog runs in, it shows the messages here before it looks for what they are for.
LRESULT CALLBACK Filter(int code, WPARAM wide, LPARAM parameter) {
    if (code == MSGF_DIALOGBOX && IsForNobody(*reinterpret_cast<const MSG*>(parameter))) {
        return 1;
    }
    return CallNextHookEx(nullptr, code, wide, parameter);
}

} // namespace

Application::Application(Connect connect)
    : restart(RestartWindows), m_receiver(MakeReceiver(Receive)), m_tree(std::make_shared<MachineTree>()),
      m_filter(SetWindowsHookExW(WH_MSGFILTER, Filter, nullptr, GetCurrentThreadId())),
      m_worker(std::move(connect), [this](Answer answer) { Post(std::move(answer)); }) {}

Application::~Application() {
    m_sheet.reset();
    m_start.reset();
    if (!m_worker.Leave(kPatience)) {
        // A provider that does not return holds the thread, and nothing can take it away: the process ends
        // without it.
        TerminateProcess(GetCurrentProcess(), ERROR_TIMEOUT);
    }
    // What was answered and not heard any more.
    MSG message{};
    while (PeekMessageW(&message, m_receiver, kAnswer, kAnswer, PM_REMOVE) != FALSE) {
        delete reinterpret_cast<Answer*>(message.lParam);
    }
    DestroyWindow(m_receiver);
    UnhookWindowsHookEx(m_filter);
}

void Application::Post(Answer answer) const {
    auto owned = std::make_unique<Answer>(std::move(answer));
    if (PostMessageW(m_receiver, kAnswer, 0, reinterpret_cast<LPARAM>(owned.get())) != FALSE) {
        owned.release(); // Receive() has it
    }
}

LRESULT CALLBACK Application::Receive(HWND window, UINT message, WPARAM wide, LPARAM parameter) {
    if (message != kAnswer) {
        return DefWindowProcW(window, message, wide, parameter);
    }
    const std::unique_ptr<Answer> answer(reinterpret_cast<Answer*>(parameter));
    (*answer)();
    return 0;
}

void Application::ReadTree() {
    m_worker.Ask(m_tree, m_tree->Reading(), [tree = m_tree.get()](const std::wstring& reason) {
        tree->SetNotice(Say(TextId::NotRead, {reason}));
    });
}

void Application::ShowStart() {
    m_start = std::make_unique<StartWindow>(*this);
    m_start->Show();
}

void Application::ShowSheet(const Node& node, HWND owner) {
    if (m_sheet == nullptr) {
        m_sheet = std::make_unique<SheetWindow>(*this, node, owner);
    }
}

void Application::ShowAdapter(const std::wstring& name) {
    m_isAlone = true;
    // By way of a message: what is told of a change must not take itself away.
    m_tree->changed = [this, name] { Post([this, name] { ShowAlone(name); }); };
    ReadTree();
}

void Application::ShowAlone(const std::wstring& name) {
    m_tree->changed = nullptr;
    if (const Node* node = m_tree->FindAdapter(name)) {
        ShowSheet(*node, nullptr);
        return;
    }
    Tell(nullptr, m_tree->Notice().empty() ? Say(TextId::NoSuchAdapter, {name}) : m_tree->Notice());
    PostQuitMessage(1);
}

bool Application::IsForDialog(MSG& message) const {
    if (m_sheet != nullptr && m_sheet->Takes(message)) {
        return true;
    }
    return m_start != nullptr && m_start->Takes(message);
}

void Application::CloseEnded() {
    if (m_sheet != nullptr && m_sheet->IsEnded()) {
        m_sheet.reset();
        ReadTree();
        if (m_isAlone) {
            PostQuitMessage(0);
        }
    }
}

int Application::Run() {
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!IsForDialog(message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        CloseEnded();
    }
    return int(message.wParam);
}

void Application::OfferRestart(HWND owner) const {
    if (Ask(owner, Say(TextId::RestartNeeded))) {
        restart();
    }
}

bool Application::Ask(HWND owner, const std::wstring& question) {
    return MessageBoxW(owner, question.c_str(), Say(TextId::ProgramName).c_str(),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void Application::Tell(HWND owner, const std::wstring& text) {
    MessageBoxW(owner, text.c_str(), Say(TextId::ProgramName).c_str(), MB_OK | MB_ICONINFORMATION);
}

} // namespace quillet::pages
