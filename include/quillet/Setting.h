// Advanced settings of an adapter, team, VLAN or boot agent: one class for each shape of value.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>
#include <vector>

/// One advanced setting, whatever its value looks like.
///
/// The accessors are overloads by the type of the value; one that does not fit the setting's kind returns
/// false and leaves its argument alone.
class QUILLET_API CSetting {
  public:
    /// The kind of a setting. There is no kind 5; callers switch on the numbers.
    enum tagSettingType : LONG {
        SettingTypeInt = 0,
        SettingTypeEnum = 1,
        SettingTypeSlider = 2,
        SettingTypeString = 3,
        SettingTypeMultiSelection = 4,
        SettingTypeMultiString = 6
    };

    /// The keyword that every look-up goes by, such as "*JumboPacket" ("Caption").
    std::wstring m_wsCaption;
    /// A short help text ("MiniHelp").
    std::wstring m_wsMiniHelp;
    /// The display name ("Description").
    std::wstring m_wsDescription;
    /// The instance's object path, by which the setting is written back ("__PATH").
    std::wstring m_wsPath;
    /// "ExposeLevel" as decimal text; see `GetExposeLevel`.
    std::wstring m_wsExposeLevel;
    /// False for a setting that can only be read ("Writable").
    bool m_bWritable = false;
    /// Whether the setting belongs to a group ("Grouped").
    bool m_bGrouped = false;
    /// Travels with the setting; the operations that read settings leave it empty.
    std::wstring m_wsExtra;
    /// The group's number, 0 for a setting without a group ("GroupId").
    LONG m_lGroupId = 0;

    CSetting() = default;
    CSetting(const CSetting&) = default;
    CSetting& operator=(const CSetting&) = default;
    virtual ~CSetting();

    /// The current values of a setting with a list of texts.
    virtual bool GetCurrentVal(std::vector<std::wstring>& rvecValues) const;
    /// The current value of a setting with a number.
    virtual bool GetCurrentVal(LONG& rlValue) const;
    /// The current value of a setting with a text.
    virtual bool GetCurrentVal(std::wstring& rwsValue) const;
    /// A new copy of the same kind that the caller owns; null for a kind that does not say how it is copied.
    virtual CSetting* Copy() const;
    /// The current value as text, whatever its type: numbers in decimal, lists joined with ",".
    virtual std::wstring CurrentValueToSTRING() const;
    /// The same as `CurrentValueToSTRING`.
    virtual std::wstring GetCurrentValue() const;
    /// Takes over the other setting's current value if it is of the same kind, else does nothing (as for
    /// null).
    virtual void SetCurrentValue(const CSetting* pOther);
    /// Sets the current value from text. Text that is no number counts as 0 where a number is wanted, and a
    /// number beyond 32 bits as the nearest one within.
    virtual void SetCurrentValue(const std::wstring& rwsValue);
    /// The level of user that the setting is meant for; 0 if the text is no number.
    virtual LONG GetExposeLevel() const;
    /// Empties the values that were read; false if the kind keeps them.
    virtual bool ClearValues();
    /// The kind, by which a caller may cast to the class.
    virtual tagSettingType GetSettingType() const = 0;
};

/// A number within a range.
class QUILLET_API CSettingInt : public CSetting {
  public:
    LONG m_lBase = 0;         ///< "Base": the radix to display the number in
    LONG m_lCurrentValue = 0; ///< "CurrentValue"
    LONG m_lDefaultValue = 0; ///< "DefaultValue"
    LONG m_lMax = 0;          ///< "Max"
    LONG m_lMin = 0;          ///< "Min"
    LONG m_lStep = 0;         ///< "Step"
    LONG m_lScale = 0;        ///< "Scale"

    CSettingInt() = default;
    CSettingInt(const CSettingInt&) = default;
    CSettingInt& operator=(const CSettingInt&) = default;
    ~CSettingInt() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(LONG& rlValue) const override;
    CSettingInt* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    void SetCurrentValue(const std::wstring& rwsValue) override;
    tagSettingType GetSettingType() const override;
    /// Stores the number, within the range or not.
    void SetCurrentValue(LONG lValue);
};

/// One of several values, each with a text for the user.
class QUILLET_API CSettingEnum : public CSetting {
  public:
    LONG m_lCurrentValue = 0;                      ///< "CurrentValue"
    LONG m_lDefaultValue = 0;                      ///< "DefaultValue"
    std::vector<std::wstring> m_vecPossibleValues; ///< "PossibleValues": the numbers as text
    std::vector<std::wstring> m_vecDescriptionMap; ///< "DescriptionMap": the texts, in the same order

    CSettingEnum() = default;
    CSettingEnum(const CSettingEnum&) = default;
    CSettingEnum& operator=(const CSettingEnum&) = default;
    ~CSettingEnum() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(LONG& rlValue) const override;
    CSettingEnum* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    void SetCurrentValue(const std::wstring& rwsValue) override;
    bool ClearValues() override;
    tagSettingType GetSettingType() const override;
    /// Stores the number, listed in the possible values or not.
    void SetCurrentValue(LONG lValue);

    /// The number that stands for "enabled", by the setting's caption (case counts); 1 for a caption that is
    /// not known.
    LONG GetEnabledValue() const;
    /// The number that stands for "disabled", by the setting's caption (case counts); 0 for a caption that is
    /// not known.
    LONG GetDisabledValue() const;
    /// Makes the enabled or the disabled value the current one.
    void Enable(bool bEnable);
    /// Whether the current value is the enabled one.
    bool IsEnabled() const;
    /// The text of a possible value (case does not count); empty if there is none.
    std::wstring GetDesc(const std::wstring& rwsValue) const;
    /// The possible value of a text (case does not count); empty if there is none.
    std::wstring GetValue(const std::wstring& rwsDesc) const;
    /// The text of the current value; empty if there is none.
    std::wstring GetDescForCurrentValue() const;
};

/// One of several numbers on a scale with a label at each end.
class QUILLET_API CSettingSlider : public CSetting {
  public:
    LONG m_lCurrentValue = 0;              ///< "CurrentValue"
    LONG m_lDefaultValue = 0;              ///< "DefaultValue"
    std::wstring m_wsFirstLabel;           ///< "FirstLabel"
    std::wstring m_wsLastLabel;            ///< "LastLabel"
    std::vector<LONG> m_vecPossibleValues; ///< "PossibleValues"

    CSettingSlider() = default;
    CSettingSlider(const CSettingSlider&) = default;
    CSettingSlider& operator=(const CSettingSlider&) = default;
    ~CSettingSlider() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(LONG& rlValue) const override;
    CSettingSlider* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    void SetCurrentValue(const std::wstring& rwsValue) override;
    bool ClearValues() override;
    tagSettingType GetSettingType() const override;
};

/// A text.
class QUILLET_API CSettingString : public CSetting {
  public:
    std::wstring m_wsCurrentValue; ///< "CurrentValue"
    std::wstring m_wsDefaultValue; ///< "DefaultValue"
    std::wstring m_wsMaxLength;    ///< "MaxLength": the most characters, as decimal text

    CSettingString() = default;
    CSettingString(const CSettingString&) = default;
    CSettingString& operator=(const CSettingString&) = default;
    ~CSettingString() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(std::wstring& rwsValue) const override;
    CSettingString* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    void SetCurrentValue(const std::wstring& rwsValue) override;
    bool ClearValues() override;
    tagSettingType GetSettingType() const override;
};

/// Any number of several values at once, as the bits of one number.
class QUILLET_API CSettingMultiSelection : public CSetting {
  public:
    LONG m_lCurrentValue = 0;                      ///< "CurrentValue"
    LONG m_lDefaultValue = 0;                      ///< "DefaultValue"
    std::vector<std::wstring> m_vecPossibleValues; ///< "PossibleValues": the numbers as text
    std::vector<std::wstring> m_vecDescriptionMap; ///< "DescriptionMap": the texts, in the same order

    CSettingMultiSelection() = default;
    CSettingMultiSelection(const CSettingMultiSelection&) = default;
    CSettingMultiSelection& operator=(const CSettingMultiSelection&) = default;
    ~CSettingMultiSelection() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(LONG& rlValue) const override;
    CSettingMultiSelection* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    void SetCurrentValue(const std::wstring& rwsValue) override;
    bool ClearValues() override;
    tagSettingType GetSettingType() const override;
};

/// A list of texts.
class QUILLET_API CSettingMultiString : public CSetting {
  public:
    std::vector<std::wstring> m_vecCurrentValues; ///< "CurrentValues"
    std::wstring m_wsDefaultValue;                ///< "DefaultValue"
    std::wstring m_wsMaxLength;                   ///< "MaxLength": the most characters, as decimal text

    CSettingMultiString() = default;
    CSettingMultiString(const CSettingMultiString&) = default;
    CSettingMultiString& operator=(const CSettingMultiString&) = default;
    ~CSettingMultiString() override;

    using CSetting::GetCurrentVal;
    using CSetting::SetCurrentValue;
    bool GetCurrentVal(std::vector<std::wstring>& rvecValues) const override;
    CSettingMultiString* Copy() const override;
    std::wstring CurrentValueToSTRING() const override;
    void SetCurrentValue(const CSetting* pOther) override;
    /// Splits the text at every "," (empty pieces count). A text without "," empties the list: a single value
    /// is not stored.
    void SetCurrentValue(const std::wstring& rwsValue) override;
    bool ClearValues() override;
    tagSettingType GetSettingType() const override;
};

/// The advanced settings of one owner, of any kind.
class QUILLET_API CSettings : public CPointerArray<CSetting*> {
  public:
    /// A new deep copy that the caller owns, every setting of its kind; null for a null collection (see
    /// `CPointerArray`).
    CSettings* Copy() const;
    /// The first setting with the caption (case does not count); null if there is none. The collection keeps
    /// it.
    CSetting* GetSettingByCaption(const std::wstring& rwsCaption) const;
};
