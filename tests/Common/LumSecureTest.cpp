// Bounds-checked copy and concatenation: results, and the lines that tell of them.
#include "LumDebug.h"
#include "LumSecure.h"
#include "TraceFile.h"

#include <cerrno>
#include <cstdlib>
#include <gmock/gmock.h>

using namespace quillet::tests;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

constexpr wchar_t kHandlerCalled[] = L"LumSecureInvalidParameterHandler : ERROR";
constexpr wchar_t kEnteringCheck[] = L"Entering LmuSecureErrorCheckLogging";
constexpr wchar_t kLeavingCheck[] = L"Leaving LmuSecureErrorCheckLogging";
constexpr wchar_t kNullSource[] = L"here.cpp (77): LumSafeCopy ERROR: NULL == strSource";
constexpr wchar_t kNullDestination[] =
    L"..\\..\\Common\\Src\\LumSecure (196): LumSafeCopy ERROR: NULL == strDestination";
constexpr wchar_t kTooSmall[] = L"here.cpp (77): LumSafeCopy ERROR: strDestination size 0, or too small";

class LumSecureTest : public testing::Test {
  protected:
    LumSecureTest() {
        // Whether this is the first use in the process must not change what the tests see.
        wchar_t any[2];
        LumSafeCopy(L"", 0, any, L"");
        m_trace.NewTexts();
    }
    /// The lines since the last call. Whether the run-time calls the handler for a mistake is its own affair;
    /// that it is called where it must be has a test of its own.
    std::vector<std::wstring> Texts() {
        std::vector<std::wstring> texts = m_trace.NewTexts();
        texts.erase(std::remove(texts.begin(), texts.end(), kHandlerCalled), texts.end());
        return texts;
    }

    TraceFile m_trace;
    wchar_t m_target[8] = L"old";
};

TEST_F(LumSecureTest, CopyThatFits_CopiesAndTracesTheWay) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, m_target, std::size_t{8}, L"1234567"), 0);
    EXPECT_STREQ(m_target, L"1234567");
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCopy : Dynamic", kEnteringCheck, kLeavingCheck,
                                     L"Leaving LumSafeCopy : Dynamic : 0"));
}

TEST_F(LumSecureTest, CopyOfTheEmptyText_EmptiesTheDestination) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, m_target, std::size_t{8}, L""), 0);
    EXPECT_STREQ(m_target, L"");
}

TEST_F(LumSecureTest, CopyThatDoesNotFit_Gives34) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, m_target, std::size_t{8}, L"12345678"), 34);
    EXPECT_STREQ(m_target, L"");
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCopy : Dynamic", kEnteringCheck, kTooSmall,
                                     kLeavingCheck, L"Leaving LumSafeCopy : Dynamic : 34"));
}

TEST_F(LumSecureTest, CopyOfNull_Gives22AndNamesTheSource) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, m_target, std::size_t{8}, nullptr), 22);
    EXPECT_STREQ(m_target, L"");
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCopy : Dynamic", kEnteringCheck, kNullSource,
                                     kLeavingCheck, L"Leaving LumSafeCopy : Dynamic : 22"));
}

TEST_F(LumSecureTest, CopyToNull_Gives22AndNamesTheDestination) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, nullptr, std::size_t{8}, L"x"), 22);
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCopy : Dynamic", kEnteringCheck, kNullDestination,
                                     kLeavingCheck, L"Leaving LumSafeCopy : Dynamic : 22"));
}

TEST_F(LumSecureTest, CopyToADestinationOfNoSize_Gives22AndTouchesNothing) {
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, m_target, std::size_t{0}, L"x"), 22);
    EXPECT_STREQ(m_target, L"old");
    EXPECT_THAT(Texts(), Contains(kNullSource));
}

TEST_F(LumSecureTest, CatThatFits_AppendsAndTracesTheWay) {
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, m_target, std::size_t{8}, L"+new"), 0);
    EXPECT_STREQ(m_target, L"old+new");
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCat : Dynamic", kEnteringCheck, kLeavingCheck,
                                     L"Leaving LumSafeCat : Dynamic : 0"));
}

TEST_F(LumSecureTest, CatThatDoesNotFit_Gives34) {
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, m_target, std::size_t{8}, L"+more"), 34);
    EXPECT_STREQ(m_target, L"");
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCat : Dynamic", kEnteringCheck, kTooSmall,
                                     kLeavingCheck, L"Leaving LumSafeCat : Dynamic : 34"));
}

TEST_F(LumSecureTest, CatOfNull_Gives22AndNamesTheSource) {
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, m_target, std::size_t{8}, nullptr), 22);
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCat : Dynamic", kEnteringCheck, kNullSource,
                                     kLeavingCheck, L"Leaving LumSafeCat : Dynamic : 22"));
}

TEST_F(LumSecureTest, CatToNull_Gives22AndNamesTheDestination) {
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, nullptr, std::size_t{8}, L"x"), 22);
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCat : Dynamic", kEnteringCheck, kNullDestination,
                                     kLeavingCheck, L"Leaving LumSafeCat : Dynamic : 22"));
}

TEST_F(LumSecureTest, ArrayOf260_PassesItsSize) {
    wchar_t path[260];
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, path, std::wstring(259, L'p').c_str()), 0);
    EXPECT_EQ(path, std::wstring(259, L'p'));
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCopy : Static", L"Entering LumSafeCopy : Dynamic",
                                     kEnteringCheck, kLeavingCheck, L"Leaving LumSafeCopy : Dynamic : 0",
                                     L"Leaving LumSafeCopy : Static : 0"));
    EXPECT_EQ(LumSafeCopy(L"here.cpp", 77, path, std::wstring(260, L'p').c_str()), 34);
    EXPECT_THAT(Texts(), Contains(L"Leaving LumSafeCopy : Static : 34"));
}

TEST_F(LumSecureTest, ArrayOf1024_PassesItsSize) {
    wchar_t text[1024] = L"";
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, text, std::wstring(1000, L't').c_str()), 0);
    Texts();
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, text, std::wstring(23, L't').c_str()), 0);
    EXPECT_EQ(text, std::wstring(1023, L't'));
    EXPECT_THAT(Texts(), ElementsAre(L"Entering LumSafeCat : Static", L"Entering LumSafeCat : Dynamic",
                                     kEnteringCheck, kLeavingCheck, L"Leaving LumSafeCat : Dynamic : 0",
                                     L"Leaving LumSafeCat : Static : 0"));
    EXPECT_EQ(LumSafeCat(L"here.cpp", 77, text, L"t"), 34);
    EXPECT_THAT(Texts(), Contains(L"Leaving LumSafeCat : Static : 34"));
}

TEST_F(LumSecureTest, AtLevelTwo_OnlyTheMistakeIsTold) {
    const TraceFile errors(2);
    LumSafeCopy(L"here.cpp", 77, m_target, L"far too long");
    const auto lines = errors.Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, kTooSmall);
}

TEST_F(LumSecureTest, ForeignHandler_IsReplacedBeforeTheFirstCopy) {
    const auto foreign = [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {};
    const auto ours = _set_invalid_parameter_handler(foreign);
    LumSafeCopy(L"here.cpp", 77, m_target, L"x");
    EXPECT_EQ(_get_invalid_parameter_handler(), ours);
    const auto texts = m_trace.NewTexts();
    EXPECT_THAT(texts, Contains(testing::AllOf(testing::StartsWith(L"..\\..\\Common\\Src\\LumSecure ("),
                                               testing::EndsWith(L"): Setting invalid parameter handler to: "
                                                                 L"LumSecureInvalidParameterHandler"))));
    LumSafeCopy(L"here.cpp", 77, m_target, L"x");
    EXPECT_THAT(Texts(), Not(Contains(testing::HasSubstr(L"Setting invalid parameter handler"))));
}

TEST_F(LumSecureTest, Handler_OnlyTraces) {
    _get_invalid_parameter_handler()(nullptr, nullptr, nullptr, 0, 0);
    EXPECT_THAT(m_trace.NewTexts(), ElementsAre(kHandlerCalled));
}

} // namespace
