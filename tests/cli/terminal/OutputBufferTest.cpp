// What becomes of output that cannot be written.
#include <terminal/OutputBuffer.h>

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

using namespace quilletctl;

namespace {

/// A stream whose other end answers as a test tells it.
struct Pipe {
    Written answer = Written::All;
    std::vector<std::string> received;
    OutputBuffer buffer{[this](std::string_view bytes) {
        received.emplace_back(bytes);
        return answer;
    }};
    std::ostream stream{&buffer};
};

TEST(OutputBufferTest, HandsOnWhatWasCollected) {
    Pipe pipe;
    pipe.stream << "one" << 1 << '\n';
    EXPECT_TRUE(pipe.received.empty());
    pipe.stream.flush();
    pipe.stream.flush();
    EXPECT_EQ(pipe.received, std::vector<std::string>{"one1\n"});
    EXPECT_TRUE(pipe.stream.good());
}

TEST(OutputBufferTest, ALongAnswerIsNotKeptWhole) {
    Pipe pipe;
    pipe.stream << std::string(100000, 'x');
    ASSERT_EQ(pipe.received.size(), 1u);
    EXPECT_EQ(pipe.received.front().size(), 100000u);
}

TEST(OutputBufferTest, WhatIsLeftIsHandedOnInTheEnd) {
    std::string received;
    {
        OutputBuffer buffer([&](std::string_view bytes) {
            received += bytes;
            return Written::All;
        });
        std::ostream(&buffer) << "last";
    }
    EXPECT_EQ(received, "last");
}

TEST(OutputBufferTest, AReaderWhoLeftHasSeenEnough) {
    Pipe pipe;
    pipe.answer = Written::ReaderLeft;
    pipe.stream << "first" << std::flush << "second" << std::flush;
    EXPECT_TRUE(pipe.stream.good());
    EXPECT_EQ(pipe.received, std::vector<std::string>{"first"})
        << "nothing is written to a closed pipe again";
}

TEST(OutputBufferTest, WhatCannotBeWrittenFailsTheStream) {
    Pipe pipe;
    pipe.answer = Written::Failed;
    pipe.stream << "first";
    EXPECT_TRUE(pipe.stream.good());
    pipe.stream.flush();
    EXPECT_TRUE(pipe.stream.bad());
    Pipe full;
    full.answer = Written::Failed;
    full.stream << std::string(100000, 'x');
    EXPECT_TRUE(full.stream.bad());
}

} // namespace
