// What the provider itself calls the codes of its properties.
#pragma once

#include <quillet/Export.h>

#include <windows.h>

#include <memory>
#include <string>

class CQuillet;

/// The display texts that the provider keeps for codes, in the language of the connection: the qualifiers
/// "Values" and "ValueMap" of a property. For clients that meet a code of which they have no text. Each class
/// is fetched once, however many of its texts are wanted; a fetch that failed has failed for all of them.
///
/// For one thread, and ends before the session does.
class QUILLET_API CValueTexts {
  public:
    /// Asks nothing yet. @param quillet the session
    explicit CValueTexts(CQuillet& quillet);
    /// What was fetched is released.
    ~CValueTexts();
    CValueTexts(const CValueTexts&) = delete;
    CValueTexts& operator=(const CValueTexts&) = delete;

    /// The text of a code.
    /// @param[out] text empty when the property has none for it.
    /// @return the code of a class or a property that cannot be read.
    HRESULT GetText(const std::wstring& className, const std::wstring& property, LONG code,
                    std::wstring& text);

  private:
    struct Classes;

    CQuillet& m_quillet;
    const std::unique_ptr<Classes> m_classes;
};
