// The arrays against the standard vector and the rules of their growth.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/OArray.h"
#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"

using namespace kit;

namespace {

/// Makes elements of the three kinds, and new empty ones.
template<class T>
T MakeElement(Case& input);
template<>
std::uint32_t MakeElement(Case& input) {
    return static_cast<std::uint32_t>(input.Bits());
}
template<>
OString MakeElement(Case& input) {
    return OString(input.Text(40).c_str());
}
template<>
std::shared_ptr<int> MakeElement(Case& input) {
    return std::make_shared<int>(static_cast<int>(input.Bits() >> 33));
}

/// An array and what it ought to be.
template<class T>
class Bench {
  public:
    explicit Bench(Case& input, const char* type) : m_input(input) {
        m_input.Say([&] { return "OTypedArray<" + std::string(type) + "> array;"; });
    }

    void Step() {
        switch (m_input.Below(9)) {
        case 0:
        case 1: Append(); break;
        case 2:
        case 3: InsertAt(); break;
        case 4: RemoveAt(); break;
        case 5: RemoveAll(); break;
        case 6: Put(); break;
        case 7: SetSizeTooLarge(); break;
        default: SetSize(); break;
        }
        Compare();
    }

  private:
    std::int32_t Size() const { return static_cast<std::int32_t>(m_model.size()); }
    void Say(const std::string& call) {
        m_input.Say([&] { return "array." + call + ";"; });
    }

    /// What the rules say of the capacity when there are to be so many elements.
    void Resize(std::int32_t size, std::int32_t growBy) {
        const std::int32_t step = growBy != 0 ? growBy : std::min(std::max(Size() / 8, 4), 1024);
        if (size == 0) {
            m_capacity = 0;
        } else if (m_capacity == 0) {
            m_capacity = size;
        } else if (size > m_capacity) {
            m_capacity = std::max(size, m_capacity + step);
        }
        m_growBy = growBy;
    }

    void SetSize() {
        const auto size = static_cast<std::int32_t>(m_input.Length(m_input.OnceIn(20) ? 20'000 : 100)) -
                          (m_input.OnceIn(20) ? 50 : 0);
        constexpr std::int32_t kSteps[] = {-1, -1, 0, 1, 7, 100};
        const std::int32_t growBy = m_input.OneOf(kSteps);
        Say("SetSize(" + std::to_string(size) + ", " + std::to_string(growBy) + ")");
        EXPECT_EQ(m_array.SetSize(size, growBy), size >= 0);
        if (size >= 0) {
            Resize(size, growBy == -1 ? m_growBy : growBy);
            m_model.resize(static_cast<std::size_t>(size));
        }
    }
    /// More than can be counted: nothing changes.
    void SetSizeTooLarge() {
        if (m_capacity > 0) {
            const std::int32_t size = m_capacity + 1;
            Say("SetSize(" + std::to_string(size) + ", INT32_MAX)");
            EXPECT_FALSE(m_array.SetSize(size, INT32_MAX));
        }
    }
    void InsertAt(std::size_t position, const char* call) {
        const T element = MakeElement<T>(m_input);
        Say(call);
        Resize(Size() + 1, m_growBy);
        EXPECT_TRUE(m_array.InsertAt(static_cast<std::int32_t>(position), element));
        m_model.insert(m_model.begin() + static_cast<std::ptrdiff_t>(position), element);
    }
    void InsertAt() {
        const std::size_t position = m_input.Below(m_model.size() + 1);
        InsertAt(position, ("InsertAt(" + std::to_string(position) + ", element)").c_str());
    }
    void Append() {
        const T element = MakeElement<T>(m_input);
        Say("Append(element)");
        Resize(Size() + 1, m_growBy);
        EXPECT_TRUE(m_array.Append(element));
        m_model.push_back(element);
    }
    void RemoveAt() {
        if (m_model.empty()) {
            return;
        }
        const std::size_t position = m_input.Below(m_model.size());
        Say("RemoveAt(" + std::to_string(position) + ")");
        m_array.RemoveAt(static_cast<std::int32_t>(position));
        Resize(Size() - 1, m_growBy);
        m_model.erase(m_model.begin() + static_cast<std::ptrdiff_t>(position));
    }
    void RemoveAll() {
        Say("RemoveAll()");
        m_array.RemoveAll();
        Resize(0, m_growBy);
        m_model.clear();
    }
    void Put() {
        if (m_model.empty()) {
            return;
        }
        const std::size_t position = m_input.Below(m_model.size());
        Say("operator[](" + std::to_string(position) + ") = element");
        m_array[static_cast<std::int32_t>(position)] = m_model[position] = MakeElement<T>(m_input);
    }

    void Compare() {
        EXPECT_EQ(m_array.GetSize(), Size());
        EXPECT_EQ(m_array.GetCapacity(), m_capacity);
        EXPECT_EQ(m_array.GetGrowBy(), m_growBy);
        EXPECT_TRUE(std::equal(m_array.begin(), m_array.end(), m_model.begin(), m_model.end()));
    }

    Case& m_input;
    OTypedArray<T> m_array;
    std::vector<T> m_model;
    std::int32_t m_capacity = 0;
    std::int32_t m_growBy = 0;
};

template<class T>
void RunSteps(Case& input, const char* type) {
    Bench<T> bench(input, type);
    for (std::size_t left = 1 + input.Below(24); left > 0 && !testing::Test::HasFailure(); --left) {
        bench.Step();
    }
}

FUZZ_TARGET(Arrays, 5000) {
    switch (input.Below(3)) {
    case 0: RunSteps<std::uint32_t>(input, "std::uint32_t"); break;
    case 1: RunSteps<OString>(input, "OString"); break;
    default: RunSteps<std::shared_ptr<int>>(input, "std::shared_ptr<int>"); break;
    }
}

} // namespace
