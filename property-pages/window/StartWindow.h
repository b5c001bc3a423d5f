// The start window: the machine's adapters, teams and VLANs, and what can be done with them.
#pragma once

#include "model/MachineTree.h"
#include "window/Dialog.h"

#include <map>

namespace quillet::pages {

class Application;

class StartWindow : public Dialog {
  public:
    explicit StartWindow(Application& application) : m_application(application) {}
    ~StartWindow() override;

    void Show();
    bool Takes(MSG& message);

  private:
    bool OnInit() override;
    void OnCommand(int id, unsigned code) override;
    bool OnNotify(const NMHDR& told, LRESULT& result) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void Refresh();
    void AddNodes(const std::vector<Node>& nodes, HTREEITEM parent);
    void EnableActions() const;
    const Node* Chosen() const;
    void OpenProperties();
    void Delete();
    void ShowMenu(POINT place) const;
    void Arrange(int width, int height);

    Application& m_application;
    std::vector<ObjectId> m_ids; ///< what the tree's items stand for, by their lParam
    SIZE m_least{};              ///< the size that the template gives it
    SIZE m_arranged{};           ///< the client size that its controls are placed for
};

} // namespace quillet::pages
