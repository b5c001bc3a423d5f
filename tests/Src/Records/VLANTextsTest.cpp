// VLANs in words.
#include <quillet/VLAN.h>
#include <quillet/VLANTexts.h>

#include <gtest/gtest.h>

#include <set>

namespace {

TEST(VLANTextsTest, EveryStatusHasAWordAndOthersHaveNone) {
    EXPECT_EQ(CVLANTexts::Status(CVLAN::VlanStatusEnabled), L"enabled");
    EXPECT_EQ(CVLANTexts::Status(CVLAN::VlanStatusNotApplicable), L"not applicable");
    for (LONG status = 1; status <= 5; ++status) {
        EXPECT_NE(CVLANTexts::Status(status), L"") << status;
    }
    for (const LONG status : {LONG{0}, LONG{6}, LONG{-1}, LONG{4711}}) {
        EXPECT_EQ(CVLANTexts::Status(status), L"") << status;
    }
}

TEST(VLANTextsTest, EveryProblemIsASentenceOfItsOwn) {
    EXPECT_TRUE(CVLANTexts::Problems(0).empty());
    const std::vector<std::wstring> all = CVLANTexts::Problems(0x178);
    EXPECT_EQ(std::set<std::wstring>(all.begin(), all.end()).size(), 5u);
    for (const std::wstring& sentence : all) {
        EXPECT_EQ(sentence.find(L"problem"), std::wstring::npos);
        EXPECT_NE(sentence.back(), L'.');
    }
    EXPECT_EQ(CVLANTexts::Problems(CVLAN::IDTaken), std::vector<std::wstring>{L"a VLAN with this ID exists"});
    EXPECT_EQ(CVLANTexts::Problems(CVLAN::IDOutOfRange | CVLAN::IDTaken).front(),
              L"a VLAN with this ID exists")
        << "lowest bit first";
}

TEST(VLANTextsTest, AnUnknownBitIsSaidAllTheSame) {
    EXPECT_EQ(CVLANTexts::Problems(0x8000000000000001ull),
              (std::vector<std::wstring>{L"problem 0 (unknown)", L"problem 63 (unknown)"}));
}

} // namespace
