// What a machine is called in parameters that are texts.
#include <client/Parameters.h>

#include <quillet-wmi/Text.h>

#include <gtest/gtest.h>
#include <wbemidl.h>

namespace quillet::tests {

namespace {

using wmi::Value;
using wsman::PathTexts;

/// For a machine that is called by its address here.
PathTexts ToTheMachine() {
    return {L"ROOT\\MarloLUM2", L".", [](std::wstring_view server) { return server == L"127.0.1.1"; }};
}

TEST(ParametersTest, APathOfThisMachine_IsToldWithoutTheNameThatItHasHere) {
    const std::wstring rest = LR"(\root\marlolum2:T.K="\\\\127.0.1.1\\ROOT\\MarloLUM2:O.K=1")";
    EXPECT_TRUE(ToTheMachine().Changed(Value::Text(L"\\\\127.0.1.1" + rest)) == Value::Text(L"\\\\." + rest));
    EXPECT_TRUE(ToTheMachine().Changed(Value::Text(LR"(\\127.0.1.1\ROOT\MarloLUM2:T)")) ==
                Value::Text(LR"(\\.\ROOT\MarloLUM2:T)"));
}

TEST(ParametersTest, OtherTexts_StayAsTheyAre) {
    for (const wchar_t* text :
         {L"", L"\\\\", L"\\\\127.0.1.1", L"127.0.1.1", L"T.K=\"a\"", LR"(\\127.0.1.1\share\a file)",
          LR"(\\127.0.1.2\ROOT\MarloLUM2:T.K="a")", LR"(\\127.0.1.1\ROOT\cimv2:T.K="a")",
          LR"(x\\127.0.1.1\ROOT\MarloLUM2:T.K="a")", LR"(\\127.0.1.1\ROOT\MarloLUM2:T.K=)"}) {
        EXPECT_FALSE(ToTheMachine().Changed(Value::Text(text))) << wmi::ToUtf8(text);
    }
    EXPECT_FALSE(ToTheMachine().Changed(Value()));
    EXPECT_FALSE(ToTheMachine().Changed(Value::Unsigned(127)));
    EXPECT_FALSE(ToTheMachine().Changed(Value(Value::Bytes{127, 0})));
    EXPECT_FALSE(ToTheMachine().Changed(Value(Value::Array{})));
    EXPECT_FALSE(ToTheMachine().Changed(Value(Value::Array{std::nullopt, L"x"})));
}

TEST(ParametersTest, InAnArray_EachPathIsChanged) {
    const Value::Array before{L"x", LR"(\\127.0.1.1\ROOT\MarloLUM2:T.K="a")", std::nullopt,
                              LR"(\\127.0.1.1\ROOT\MarloLUM2:T.K="b")"};
    const Value::Array after{L"x", LR"(\\.\ROOT\MarloLUM2:T.K="a")", std::nullopt,
                             LR"(\\.\ROOT\MarloLUM2:T.K="b")"};
    EXPECT_TRUE(ToTheMachine().Changed(Value(before)) == Value(after));
}

TEST(ParametersTest, WhatTheMachineTells_HasItsNameHere) {
    wmi::Instance told;
    told.values = {Value::Text(LR"(\\SERVER01\ROOT\MarloLUM2:T.K="a")"), Value::Text(L"SERVER01")};
    PathTexts(L"ROOT\\MarloLUM2", L"127.0.1.1", [](std::wstring_view) { return true; }).Change(told);
    EXPECT_TRUE(told.values[0] == Value::Text(LR"(\\127.0.1.1\ROOT\MarloLUM2:T.K="a")"));
    EXPECT_TRUE(told.values[1] == Value::Text(L"SERVER01"));
}

} // namespace

} // namespace quillet::tests
