// The bar, and the time beside it.
#include <terminal/Progress.h>

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <sstream>
#include <string>
#include <thread>

namespace {

TEST(BarTest, MovesThereAndBack) {
    EXPECT_EQ(quilletctl::BarPicture(0), "[####                ]");
    EXPECT_EQ(quilletctl::BarPicture(1), "[ ####               ]");
    EXPECT_EQ(quilletctl::BarPicture(16), "[                ####]");
    EXPECT_EQ(quilletctl::BarPicture(17), "[               #### ]");
    EXPECT_EQ(quilletctl::BarPicture(32), quilletctl::BarPicture(0));
}

TEST(BarTest, WithPieces_FillsUp) {
    EXPECT_EQ(quilletctl::BarPicture(quilletctl::Pieces{0, 10}), "[                    ]");
    EXPECT_EQ(quilletctl::BarPicture(quilletctl::Pieces{5, 10}), "[##########          ]");
    EXPECT_EQ(quilletctl::BarPicture(quilletctl::Pieces{10, 10}), "[####################]");
    EXPECT_EQ(quilletctl::BarPicture(quilletctl::Pieces{3, 0}), "[                    ]");
}

TEST(BarTest, TimeLeft_IsToldWhereItCanBeKnown) {
    using quilletctl::Pieces;
    using quilletctl::TimeText;
    using namespace std::chrono_literals;
    EXPECT_EQ(TimeText(7s, std::nullopt), "7 s");
    EXPECT_EQ(TimeText(185s, std::nullopt), "3 min 5 s");
    EXPECT_EQ(TimeText(10s, Pieces{1, 4}), "10 s, about 30 s left");
    EXPECT_EQ(TimeText(90s, Pieces{2, 4}), "1 min 30 s, about 1 min 30 s left");
    EXPECT_EQ(TimeText(1s, Pieces{1, 4}), "1 s") << "too early to tell";
    EXPECT_EQ(TimeText(10s, Pieces{0, 4}), "10 s");
    EXPECT_EQ(TimeText(10s, Pieces{4, 4}), "10 s");
}

TEST(BarTest, KeepsMovingWhileACallDoesNotReturn) {
    std::ostringstream out;
    const quilletctl::Terminal terminal{.out = out, .err = out, .outIsTerminal = true, .width = 30};
    {
        const quilletctl::ProgressWhileBusy progress(terminal,
                                                     "a text that is longer than the terminal is wide");
        std::this_thread::sleep_for(std::chrono::milliseconds(450));
    }
    std::istringstream frames(out.str());
    std::string frame;
    std::set<std::string> pictures;
    while (std::getline(frames, frame, '\r')) {
        if (frame.starts_with("[")) {
            EXPECT_LT(frame.size(), 33u) << "cut, with three bytes of an ellipsis";
            pictures.insert(frame);
        }
    }
    EXPECT_GE(pictures.size(), 3u);
    EXPECT_TRUE(out.str().ends_with("\r" + std::string(29, ' ') + "\r"));
}

} // namespace
