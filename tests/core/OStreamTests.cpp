// Streams: buffering, growth, and text in the stream's code page.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "core/OStream.h"
#include "core/OString.h"
#include "tests/core/VirtualSlots.h"

using namespace kit;

namespace {

using OCore::OStream;

/// Keeps what is written past the buffer, one entry for each time.
struct RecordingStream : OStream {
    std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) override {
        const std::uint32_t taken = std::min(count, room);
        writes.emplace_back(static_cast<const char*>(bytes), taken);
        return taken;
    }
    std::string Written() const {
        std::string all;
        for (const std::string& write : writes) {
            all += write;
        }
        return all;
    }
    std::uint32_t WriteBytes(const std::string& bytes) {
        return Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }

    std::vector<std::string> writes;
    std::uint32_t room = std::numeric_limits<std::uint32_t>::max(); // the most that one write takes
};

/// Bytes that differ from their neighbours.
std::string Pattern(std::size_t size) {
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(),
                  [value = 0]() mutable { return static_cast<char>(value++ * 7); });
    return bytes;
}

TEST(OStream, HasItsOperationsInOrder) {
    EXPECT_EQ(SlotOf(&OStream::WriteRaw), 2);
    EXPECT_EQ(SlotOf(&OStream::Write), 3);
    EXPECT_EQ(SlotOf(&OStream::Flush), 4);
}

TEST(OStream, StartsEmptyWith1024BytesInTheAnsiCodePage) {
    const RecordingStream stream;
    EXPECT_EQ(stream.GetBufferSize(), 1024U);
    EXPECT_EQ(stream.GetFill(), 0U);
    EXPECT_EQ(stream.GetCodePage(), 0U);
}

TEST(OStream, KeepsAWriteThatFits) {
    RecordingStream stream;
    EXPECT_EQ(stream.WriteBytes(Pattern(1023)), 1023U);
    EXPECT_EQ(stream.GetFill(), 1023U);
    EXPECT_TRUE(stream.writes.empty());
}

TEST(OStream, FlushesWhenTheBufferBecomesFull) {
    RecordingStream stream;
    EXPECT_EQ(stream.WriteBytes(Pattern(1024)), 1024U);
    EXPECT_EQ(stream.GetFill(), 0U);
    EXPECT_EQ(stream.writes, std::vector<std::string>{Pattern(1024)});
}

TEST(OStream, Flushes3000BytesTwiceAndKeepsTheRest) {
    RecordingStream stream;
    EXPECT_EQ(stream.WriteBytes(Pattern(3000)), 3000U);
    ASSERT_EQ(stream.writes.size(), 2U);
    EXPECT_EQ(stream.writes[0].size(), 1024U);
    EXPECT_EQ(stream.writes[1].size(), 1024U);
    EXPECT_EQ(stream.GetFill(), 952U);
    EXPECT_EQ(stream.GetBufferSize(), 1024U);
    EXPECT_EQ(stream.Flush(), 952U);
    EXPECT_EQ(stream.Written(), Pattern(3000));
}

TEST(OStream, InGrowthModeGrowsFor3000BytesAndFlushesNothing) {
    RecordingStream stream;
    stream.SetGrowthMode(OStream::GrowthMode::Grow);
    EXPECT_EQ(stream.WriteBytes(Pattern(3000)), 3000U);
    EXPECT_EQ(stream.GetBufferSize(), 4096U);
    EXPECT_EQ(stream.GetFill(), 3000U);
    EXPECT_TRUE(stream.writes.empty());
    EXPECT_EQ(stream.Flush(), 3000U);
    EXPECT_EQ(stream.Written(), Pattern(3000));
}

TEST(OStream, InGrowthModeDoublesUntilMoreThanTheWriteIsFree) {
    const struct {
        std::uint32_t before;
        std::uint32_t count;
        std::uint32_t size;
    } rows[] = {{0, 1023, 1024}, {0, 1024, 2048},  {0, 2047, 2048},
                {0, 2048, 4096}, {1000, 23, 1024}, {1000, 24, 2048}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.before << " + " << row.count);
        RecordingStream stream;
        stream.SetGrowthMode(OStream::GrowthMode::Grow);
        stream.WriteBytes(Pattern(row.before));
        EXPECT_EQ(stream.WriteBytes(Pattern(row.count)), row.count);
        EXPECT_EQ(stream.GetBufferSize(), row.size);
        stream.Flush();
        EXPECT_EQ(stream.Written(), Pattern(row.before) + Pattern(row.count));
    }
}

TEST(OStream, InGrowthModeRefusesMoreThanABufferCanBecome) {
    RecordingStream stream;
    stream.SetGrowthMode(OStream::GrowthMode::Grow);
    EXPECT_EQ(stream.Write("x", std::numeric_limits<std::uint32_t>::max()), 0U);
    EXPECT_EQ(stream.GetBufferSize(), 1024U);
    EXPECT_EQ(stream.GetFill(), 0U);
}

TEST(OStream, FlushOfAnEmptyBufferWritesNothing) {
    RecordingStream stream;
    EXPECT_EQ(stream.Flush(), 0U);
    EXPECT_TRUE(stream.writes.empty());
}

TEST(OStream, FlushEmptiesTheBufferAndTellsWhatWasWritten) {
    RecordingStream stream;
    stream.room = 3;
    stream.WriteBytes("abcde");
    EXPECT_EQ(stream.Flush(), 3U);
    EXPECT_EQ(stream.GetFill(), 0U);
    EXPECT_EQ(stream.Written(), "abc");
}

TEST(OStream, WriteFailsWhenAFlushWasIncomplete) {
    RecordingStream stream;
    stream.room = 1023;
    EXPECT_EQ(stream.WriteBytes(Pattern(3000)), 0U);
    EXPECT_EQ(stream.writes.size(), 1U);
    EXPECT_EQ(stream.GetFill(), 0U);
}

TEST(OStream, WithoutABufferWritesStraightThrough) {
    RecordingStream stream;
    stream.SetBufferSize(0);
    EXPECT_EQ(stream.WriteBytes("abc"), 3U);
    stream.room = 1;
    EXPECT_EQ(stream.WriteBytes("def"), 1U);
    EXPECT_EQ(stream.writes, (std::vector<std::string>{"abc", "d"}));
    stream.SetGrowthMode(OStream::GrowthMode::Grow);
    EXPECT_EQ(stream.WriteBytes("ghi"), 1U);
    EXPECT_EQ(stream.GetBufferSize(), 0U);
}

TEST(OStream, SettingTheBufferSizeFlushesFirst) {
    RecordingStream stream;
    stream.WriteBytes("abc");
    stream.SetBufferSize(2);
    EXPECT_EQ(stream.Written(), "abc");
    EXPECT_EQ(stream.GetBufferSize(), 2U);
    stream.WriteBytes("defgh");
    EXPECT_EQ(stream.writes, (std::vector<std::string>{"abc", "de", "fg"}));
    stream.SetBufferSize(2);
    EXPECT_EQ(stream.GetFill(), 0U);
    EXPECT_EQ(stream.Written(), "abcdefgh");
}

TEST(OStream, WritesNothingForNoText) {
    RecordingStream stream;
    stream.WriteText(static_cast<const char*>(nullptr));
    stream.WriteText("");
    stream.WriteText(OString());
    EXPECT_EQ(stream.GetFill(), 0U);
}

TEST(OStream, WritesAnEightBitTextAsItIs) {
    RecordingStream stream;
    stream.SetCodePage(OCore::kCodePageUtf8);
    stream.WriteText("\x80");
    stream.Flush();
    EXPECT_EQ(stream.Written(), "\x80");
}

TEST(OStream, WritesATextInItsOwnCodePage) {
    const struct {
        std::uint32_t textCodePage;
        const char* text;
        std::uint32_t streamCodePage;
        const char* written;
    } rows[] = {
        {1252, "\x80", OCore::kCodePageUtf8, "\xE2\x82\xAC"},
        {1252, "\x80", 1251, "\x88"},
        {1252, "\x80", 1252, "\x80"},
        {932, "\x83\x5C", OCore::kCodePageUtf8, "\xE3\x82\xBD"},
        {OCore::kCodePageUtf8, "\xC3\xA4", 1252, "\xE4"},
        {OCore::kCodePageUtf8, "\xC3\xA4", 64999, "\xE4"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.textCodePage << " to " << row.streamCodePage);
        RecordingStream stream;
        stream.SetCodePage(row.streamCodePage);
        const OString text(row.text, row.textCodePage);
        stream.WriteText(text);
        stream.Flush();
        EXPECT_EQ(stream.Written(), row.written);
        EXPECT_STREQ(text.Narrow(), row.text);
        EXPECT_EQ(text.GetCodePage(), row.textCodePage);
    }
}

TEST(OStream, WritesATextOfTheAnsiCodePageAsUtf8) {
    RecordingStream stream;
    stream.SetCodePage(OCore::kCodePageUtf8);
    stream << OString("\xC3\xA4 in whatever code page the system has");
    stream.Flush();
    wchar_t wide[64] = {};
    MultiByteToWideChar(CP_ACP, 0, "\xC3\xA4 in whatever code page the system has", -1, wide, 64);
    char utf8[256] = {};
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, 256, nullptr, nullptr);
    EXPECT_EQ(stream.Written(), utf8);
}

TEST(OStream, EndsALineWithoutFlushing) {
    RecordingStream stream;
    stream << "one" << OCore::EndOfLine << OString(L"two") << OCore::EndOfLine;
    EXPECT_TRUE(stream.writes.empty());
    stream.Flush();
    EXPECT_EQ(stream.Written(), "one\r\ntwo\r\n");
}

OStream& Exclaim(OStream& stream) {
    return stream << "!";
}

TEST(OStream, CallsAManipulatorWithItself) {
    RecordingStream stream;
    EXPECT_EQ(&(stream << Exclaim), &stream);
    stream.Flush();
    EXPECT_EQ(stream.Written(), "!");
}

} // namespace
