// tests/engine/input_test.cpp - lines on their way from the reading thread to the loop.
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "engine/input_reader.h"

namespace vatro {
namespace {

using Event = InputQueue::Event;

/// The lines of a closed queue; a line that was too long is marked.
std::vector<std::string> drain(InputQueue& queue) {
    std::vector<std::string> lines;
    InputLine line;
    while (queue.next(line) == Event::Line) {
        lines.push_back((line.tooLong ? "long: " : "") + line.text);
    }
    return lines;
}

TEST(LineSplitter, CutsLinesWhereverBlocksEnd) {
    const std::string stream =
        "one\n\ntwo words\r\n" + std::string(1023, 'a') + "\n" + std::string(1024, 'b') + "\nlast";
    const std::vector<std::string> expected = {
        "one", "", "two words\r", std::string(1023, 'a'), "long: " + std::string(1023, 'b'),
        "last"};
    for (const std::size_t blockSize : {1UL, 2UL, 7UL, 1023UL, 1024UL, 5000UL}) {
        InputQueue queue;
        LineSplitter splitter(queue);
        for (std::size_t at = 0; at < stream.size(); at += blockSize) {
            EXPECT_TRUE(splitter.feed(std::string_view(stream).substr(at, blockSize)));
        }
        splitter.finish();
        EXPECT_EQ(expected, drain(queue)) << blockSize;
    }
}

TEST(LineSplitter, AddsNoLineAfterALastLineFeed) {
    InputQueue queue;
    LineSplitter splitter(queue);
    splitter.feed("one\n");
    splitter.finish();
    EXPECT_EQ(std::vector<std::string>({"one"}), drain(queue));
}

TEST(InputQueue, ServesLinesThenTheEndThenWakeUps) {
    InputQueue queue;
    queue.wake();
    queue.push({"line"});
    InputLine line;
    EXPECT_EQ(Event::Line, queue.next(line));
    EXPECT_EQ(Event::Woken, queue.next(line));
    queue.wake();
    queue.close();
    EXPECT_EQ(Event::End, queue.next(line));
}

TEST(InputQueue, TellsWhenTheFirstEndCame) {
    using Clock = InputQueue::Clock;
    const auto start = Clock::now();
    InputQueue queue;
    for (const char* const line : {"perft 9", "quit now", "Quit", ""}) {
        queue.push({line});
    }
    queue.push({"quit", true});  // the beginning of a longer line
    EXPECT_FALSE(queue.endCameAfter(start - std::chrono::seconds(1)));
    queue.push({"quit  \r"});
    const auto afterQuit = Clock::now();
    EXPECT_TRUE(queue.endCameAfter(start - std::chrono::seconds(1)));
    queue.close();
    queue.push({"quit"});
    EXPECT_FALSE(queue.endCameAfter(afterQuit));
}

TEST(InputThreads, HoldBackAWriterThatIsTooFast) {
    int ends[2];
    ASSERT_EQ(0, ::pipe(ends));
    const auto queue = std::make_shared<InputQueue>();
    ASSERT_TRUE(startInputReader(queue, ends[0]));
    constexpr int Count = 20000;
    std::thread writer([&ends] {
        for (int i = 0; i < Count; ++i) {
            const std::string text = std::to_string(i) + '\n';
            ASSERT_EQ(static_cast<ssize_t>(text.size()),
                      ::write(ends[1], text.data(), text.size()));
        }
        ::close(ends[1]);
    });
    std::thread waker([&queue] {
        for (int i = 0; i < 1000; ++i) {
            queue->wake();
        }
    });
    int expected = 0;
    InputLine line;
    for (Event event; (event = queue->next(line)) != Event::End;) {
        if (event == Event::Woken) continue;
        EXPECT_EQ(std::to_string(expected++), line.text);
    }
    EXPECT_EQ(Count, expected);
    writer.join();
    waker.join();
    ::close(ends[0]);
}

TEST(InputThreads, StopReadingWhenTheLoopHasEnded) {
    int ends[2];
    ASSERT_EQ(0, ::pipe(ends));
    auto queue = std::make_shared<InputQueue>();
    const std::weak_ptr<InputQueue> observer = queue;
    ASSERT_TRUE(startInputReader(queue, ends[0]));
    const std::string lines(4 * InputQueue::Capacity, '\n');
    ASSERT_EQ(static_cast<ssize_t>(lines.size()), ::write(ends[1], lines.data(), lines.size()));
    queue->abandon();
    queue.reset();  // only the reader holds it now
    for (int i = 0; i < 1000 && !observer.expired(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_TRUE(observer.expired());
    ::close(ends[1]);  // the other end stays open: the reader may still be reading it
}

}  // namespace
}  // namespace vatro
