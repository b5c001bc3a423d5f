// The pages of one object, and the one client set in which they are applied.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// The pages of an object, in the order of their tabs.
using PageList = std::vector<std::shared_ptr<Page>>;

/// How an Apply went.
struct Applied {
    bool isDone = false;        ///< whether everything that was wanted was written
    bool restartNeeded = false; ///< whether the machine must be restarted for it
};

/// A property sheet without its window.
class Sheet : public std::enable_shared_from_this<Sheet> {
  public:
    Sheet(Worker& worker, PageList pages);

    const PageList& Pages() const noexcept { return m_pages; }

    /// Reads a page; what fails is the page's notice.
    void Read(const std::shared_ptr<Page>& page);
    /// Reads all pages that have been read before.
    void ReadAgain();

    /// Whether any page has something to apply.
    bool IsChanged() const;
    /// Whether an Apply is under way, or something else that must come to its end.
    bool IsBusy() const;
    /// The first page with a mistake; null where there is none.
    std::shared_ptr<Page> FirstMistake() const;
    /// What the user should know before the changes are made.
    std::vector<std::wstring> Warnings() const;

    /// Looks whether somebody else has changed what the user changed; then writes the changes of all pages in
    /// one client set, and reads the pages again. What went wrong stands in the notice of the page that it
    /// belongs to, and nothing that was typed is lost.
    void Apply(const std::function<void(const Applied&)>& done);

  private:
    using Done = std::function<void(const Applied&)>;

    PageList ChangedPages() const;
    Failed Failing(const PageList& pages, const Done& done);
    void Write(const PageList& pages, const Done& done);
    void End(const Applied& applied, const Done& done);

    Worker& m_worker;
    PageList m_pages;
    bool m_isBusy = false;
};

} // namespace quillet::pages
