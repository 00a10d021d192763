// The buffered stream against one that keeps what is pending in a string.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/OStream.h"
#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/TextModel.h"

using namespace kit;

namespace {

using Writes = std::vector<std::string>;

/// How many of so many bytes the n-th write takes: now and then fewer, or none.
std::uint32_t Taken(std::uint64_t pattern, std::size_t write, std::uint32_t count) {
    switch (pattern == 0 ? 7 : pattern * (write + 1) % 8) {
    case 0: return 0;
    case 1: return count / 2;
    default: return count;
    }
}

class Stream : public OCore::OStream {
  public:
    explicit Stream(std::uint64_t pattern) : m_pattern(pattern) {}
    std::uint32_t WriteRaw(const void* bytes, std::uint32_t count) override {
        m_writes.emplace_back(static_cast<const char*>(bytes), count);
        return Taken(m_pattern, m_writes.size(), count);
    }
    const Writes& GetWrites() const { return m_writes; }

  private:
    std::uint64_t m_pattern;
    Writes m_writes;
};

class Model {
  public:
    explicit Model(std::uint64_t pattern) : m_pattern(pattern) {}

    std::uint32_t Write(const std::string& bytes) {
        const auto count = static_cast<std::uint32_t>(bytes.size());
        if (size == 0) {
            return Raw(bytes);
        }
        while (grows && size - pending.size() <= bytes.size()) {
            size *= 2;
        }
        for (const char byte : bytes) {
            pending += byte;
            if (pending.size() == size && Flush() < size) {
                return 0;
            }
        }
        return count;
    }
    std::uint32_t Flush() {
        if (pending.empty()) {
            return 0;
        }
        const std::string bytes = pending;
        pending.clear();
        return Raw(bytes);
    }
    void SetBufferSize(std::uint32_t bytes) {
        Flush();
        size = bytes;
    }

    std::uint32_t size = 1024;
    bool grows = false;
    std::uint32_t codePage = 0;
    std::string pending;
    Writes writes;

  private:
    std::uint32_t Raw(const std::string& bytes) {
        writes.push_back(bytes);
        return Taken(m_pattern, writes.size(), static_cast<std::uint32_t>(bytes.size()));
    }

    std::uint64_t m_pattern;
};

constexpr std::uint32_t kCodePages[] = {0, 0, 932, 1252, 1208, 64999};

/// One operation on both.
void Step(Case& input, Stream& stream, Model& model) {
    switch (input.Below(9)) {
    case 0:
    case 1:
    case 2: {
        const std::string bytes = input.Bytes(input.OnceIn(4) ? 5000 : 200);
        input.Say(
            [&] { return "stream.Write(" + Literal(bytes) + ", " + std::to_string(bytes.size()) + ");"; });
        const std::vector<char> exact(bytes.begin(), bytes.end());
        EXPECT_EQ(stream.Write(exact.data(), static_cast<std::uint32_t>(exact.size())), model.Write(bytes));
        break;
    }
    case 3:
        input.Say([] { return "stream.Flush();"; });
        EXPECT_EQ(stream.Flush(), model.Flush());
        break;
    case 4: {
        constexpr std::uint32_t kSizes[] = {0, 1, 2, 7, 64, 1024, 1025};
        const std::uint32_t size = input.OneOf(kSizes);
        input.Say([&] { return "stream.SetBufferSize(" + std::to_string(size) + ");"; });
        stream.SetBufferSize(size);
        model.SetBufferSize(size);
        break;
    }
    case 5:
        model.grows = input.OnceIn(2);
        input.Say([&] {
            return std::string("stream.SetGrowthMode(OStream::GrowthMode::") +
                   (model.grows ? "Grow);" : "Flush);");
        });
        stream.SetGrowthMode(model.grows ? OCore::OStream::GrowthMode::Grow
                                         : OCore::OStream::GrowthMode::Flush);
        break;
    case 6:
        model.codePage = input.OneOf(kCodePages);
        input.Say([&] { return "stream.SetCodePage(" + std::to_string(model.codePage) + ");"; });
        stream.SetCodePage(model.codePage);
        break;
    case 7:
        input.Say([] { return "stream << OCore::EndOfLine;"; });
        stream << OCore::EndOfLine;
        model.Write("\r\n");
        break;
    default: {
        const bool wide = input.OnceIn(2);
        const std::wstring units = input.WideText(200);
        const std::string bytes = input.Text(200);
        const std::uint32_t codePage = input.OneOf(kCodePages);
        input.Say([&] {
            return "stream << OString(" +
                   (wide ? Literal(units) : Literal(bytes) + ", " + std::to_string(codePage)) + ");";
        });
        const OString text = wide ? OString(units.c_str()) : OString(bytes.c_str(), codePage);
        stream << text;
        const TextModel expected = wide ? TextModel::Wide(units) : TextModel::Narrow(bytes, codePage);
        model.Write(expected.CodePage() == model.codePage ? expected.NarrowForm()
                                                          : NarrowOf(expected.WideForm(), model.codePage));
        break;
    }
    }
}

FUZZ_TARGET(Streams, 4000) {
    const std::uint64_t pattern = input.OnceIn(2) ? 0 : input.Below(1000);
    Stream stream(pattern);
    Model model(pattern);
    for (std::size_t left = 1 + input.Below(16); left > 0 && !testing::Test::HasFailure(); --left) {
        Step(input, stream, model);
        EXPECT_EQ(stream.GetFill(), model.pending.size());
        EXPECT_EQ(stream.GetBufferSize(), model.size);
        EXPECT_EQ(stream.GetCodePage(), model.codePage);
        EXPECT_EQ(stream.GetWrites(), model.writes);
    }
}

} // namespace
