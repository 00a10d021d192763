// Operations on texts, some of which share a body, in several code pages.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/TextModel.h"

using namespace kit;

namespace {

constexpr std::uint32_t kCodePages[] = {0, 932, 1252, 1208, 64999, 65001, 54936};
constexpr std::size_t kTexts = 4;

/// Some texts, and what they ought to be.
class Bench {
  public:
    explicit Bench(Case& input) : m_input(input) {
        for (std::size_t index = 0; index < kTexts; ++index) {
            Make(index);
        }
    }

    void Step() {
        const std::size_t a = m_input.Below(kTexts);
        const std::size_t b = m_input.Below(kTexts);
        const std::size_t c = m_input.Below(kTexts);
        switch (m_input.Below(22)) {
        case 0: Make(a); break;
        case 1: Copy(a, b); break;
        case 2: SetCodePage(a, b); break;
        case 3: Append(a, b); break;
        case 4: Insert(a, b); break;
        case 5: Replace(a, b, c); break;
        case 6: ReplaceCharacter(a); break;
        case 7: Trim(a, b); break;
        case 8: Delete(a); break;
        case 9: Upper(a); break;
        case 10: Part(a, b); break;
        case 11: Add(a, b, c); break;
        case 12: Format(a, b); break;
        case 13: Find(a); break;
        case 14: FindLastOf(a, b); break;
        case 15: Compare(a, b); break;
        case 16: LookAtNarrow(a); break;
        case 17: LookAtWide(a); break;
        case 18: LookAtTheRest(a); break;
        case 19: Slash(a); break;
        case 20: Move(a, b); break;
        default: TrimCharacters(a); break;
        }
    }

    void LookAtAll() {
        for (std::size_t index = 0; index < kTexts; ++index) {
            LookAtTheRest(index);
            LookAtNarrow(index);
            LookAtWide(index);
            LookAtTheRest(index);
        }
    }

  private:
    static std::string Name(std::size_t index) { return {static_cast<char>('a' + index)}; }
    template<class... Words>
    void Say(const Words&... words) {
        m_input.Say([&] { return (std::string() + ... + words) + ";"; });
    }
    /// A position or a length, sometimes past the end.
    std::size_t Position() { return m_input.OnceIn(8) ? static_cast<std::size_t>(-1) : m_input.Length(70); }
    static std::string Number(std::size_t number) {
        return number == static_cast<std::size_t>(-1) ? "SIZE_MAX" : std::to_string(number);
    }
    /// A character that a text has, or some other one.
    wchar_t Character() {
        const std::wstring& units = m_input.OnceIn(2) ? m_some : m_last;
        return units.empty() || m_input.OnceIn(3) ? static_cast<wchar_t>(m_input.Below(0x180))
                                                  : m_input.OneOf(units);
    }

    void Make(std::size_t to) {
        if (m_input.OnceIn(3)) {
            const std::wstring units = m_input.WideText(200);
            Say("OString ", Name(to), "(", Literal(units), ")");
            m_texts[to] = OString(units.c_str());
            m_models[to] = TextModel::Wide(units);
            m_last = units;
        } else {
            std::string bytes = m_input.Text(200);
            std::uint32_t codePage = m_input.OneOf(kCodePages);
            if (m_input.OnceIn(
                    12)) { // as many bytes as there is room for, of which the last one makes two units
                bytes = std::string(30 + 32 * m_input.Below(3), 'x') + "\xF0";
                codePage = kUtf8;
            }
            Say("OString ", Name(to), "(", Literal(bytes), ", ", std::to_string(codePage), ")");
            m_texts[to] = OString(bytes.c_str(), codePage);
            m_models[to] = TextModel::Narrow(bytes, codePage);
            m_some = WideOf(bytes, codePage);
        }
    }
    void Copy(std::size_t to, std::size_t from) {
        Say(Name(to), " = ", Name(from));
        m_texts[to] = m_texts[from];
        m_models[to] = m_models[from];
    }
    void Move(std::size_t to, std::size_t from) {
        Say(Name(to), " = OString(", Name(from), ")");
        m_texts[to] = OString(m_texts[from]);
        m_models[to] = m_models[from];
    }
    void SetCodePage(std::size_t to, std::size_t from) {
        const std::uint32_t codePage = m_input.OneOf(kCodePages);
        Say(Name(to), " = ", Name(from), ".InCodePage(", std::to_string(codePage), ")");
        m_texts[to] = m_texts[from].InCodePage(codePage);
        m_models[to] = m_models[from].InCodePage(codePage);
    }
    void Append(std::size_t to, std::size_t added) {
        if (m_models[to].Length() > 2000) {
            return;
        }
        Say(Name(to), ".Append(", Name(added), ")");
        m_texts[to].Append(m_texts[added]);
        m_models[to].Append(m_models[added]);
    }
    void Slash(std::size_t to) {
        Say(Name(to), ".AppendSlash()");
        m_texts[to].AppendSlash();
        m_models[to].Append(TextModel::Wide(L"/"));
    }
    void Insert(std::size_t to, std::size_t added) {
        if (m_models[to].Length() > 2000) {
            return;
        }
        const std::size_t position = Position();
        Say(Name(to), ".Insert(", Number(position), ", ", Name(added), ")");
        m_texts[to].Insert(position, m_texts[added]);
        m_models[to].Insert(position, m_models[added]);
    }
    void Replace(std::size_t in, std::size_t what, std::size_t with) {
        if (m_models[with].Length() > 100 || m_models[in].Length() > 500) {
            return;
        }
        Say(Name(in), ".ReplaceAll(", Name(what), ", ", Name(with), ")");
        m_texts[in].ReplaceAll(m_texts[what], m_texts[with]);
        m_models[in].ReplaceAll(m_models[what], m_models[with]);
    }
    void ReplaceCharacter(std::size_t in) {
        const std::wstring what(1, Character());
        const std::wstring with = m_input.WideText(3);
        if (what[0] == 0 || m_models[in].Length() > 500) {
            return;
        }
        Say(Name(in), ".ReplaceAll(", Literal(what), ", ", Literal(with), ")");
        m_texts[in].ReplaceAll(what.c_str(), with.c_str());
        m_models[in].ReplaceAll(TextModel::Wide(what), TextModel::Wide(with));
    }
    void Trim(std::size_t of, std::size_t set) {
        Say(Name(of), ".TrimRight(", Name(set), ")");
        m_texts[of].TrimRight(m_texts[set]);
        m_models[of].TrimRight(m_models[set]);
    }
    void TrimCharacters(std::size_t of) {
        const std::string set = m_input.Text(12);
        Say(Name(of), ".TrimRight(", Literal(set), ")");
        m_texts[of].TrimRight(set.c_str());
        m_models[of].TrimRight(TextModel::Narrow(set, 0));
    }
    void Delete(std::size_t of) {
        const std::size_t position = Position();
        const std::size_t count = Position();
        Say(Name(of), ".Delete(", Number(position), ", ", Number(count), ")");
        m_texts[of].Delete(position, count);
        m_models[of].Delete(position, count);
    }
    void Upper(std::size_t of) {
        Say(Name(of), ".ToUpper()");
        m_texts[of].ToUpper();
        m_models[of].ToUpper();
    }
    void Part(std::size_t to, std::size_t from) {
        const std::size_t position = Position();
        const std::size_t count = Position();
        constexpr std::size_t kAll = static_cast<std::size_t>(-1);
        switch (m_input.Below(3)) {
        case 0:
            Say(Name(to), " = ", Name(from), ".Left(", Number(count), ")");
            m_texts[to] = m_texts[from].Left(count);
            m_models[to] = m_models[from].Middle(0, count);
            break;
        case 1:
            Say(Name(to), " = ", Name(from), ".From(", Number(position), ")");
            m_texts[to] = m_texts[from].From(position);
            m_models[to] = m_models[from].Middle(position, kAll);
            break;
        default:
            Say(Name(to), " = ", Name(from), ".Middle(", Number(position), ", ", Number(count), ")");
            m_texts[to] = m_texts[from].Middle(position, count);
            m_models[to] = m_models[from].Middle(position, count);
            break;
        }
    }
    void Add(std::size_t to, std::size_t left, std::size_t right) {
        if (m_models[left].Length() + m_models[right].Length() > 2000) {
            return;
        }
        Say(Name(to), " = ", Name(left), " + ", Name(right));
        m_texts[to] = m_texts[left] + m_texts[right];
        TextModel sum = m_models[left];
        sum.Append(m_models[right]);
        m_models[to] = sum;
    }
    void Format(std::size_t to, std::size_t argument) {
        const std::wstring units = m_models[argument].WideForm().substr(0, 900);
        const auto number = static_cast<unsigned>(m_input.Bits());
        Say(Name(to), ".Format(L\"%u: %s\", ", std::to_string(number), "U, ", Literal(units), ")");
        const std::wstring expected = std::to_wstring(number) + L": " + units;
        EXPECT_EQ(m_texts[to].Format(L"%u: %s", number, units.c_str()), static_cast<int>(expected.size()));
        m_models[to].Format(expected);
    }

    void Find(std::size_t in) {
        const wchar_t character = Character();
        const std::size_t from = Position();
        Say(Name(in), ".Find(L'\\x", Hex(character), "', ", Number(from), ")");
        EXPECT_EQ(m_texts[in].Find(character, from), m_models[in].Find(character, from));
    }
    void FindLastOf(std::size_t in, std::size_t set) {
        Say(Name(in), ".FindLastOf(", Name(set), ")");
        EXPECT_EQ(m_texts[in].FindLastOf(m_texts[set]), m_models[in].FindLastOf(m_models[set]));
    }
    void Compare(std::size_t left, std::size_t right) {
        Say(Name(left), ".Compare(", Name(right), ")");
        const int order = m_models[left].Compare(m_models[right]);
        EXPECT_EQ(m_texts[left].Compare(m_texts[right]), order);
        EXPECT_EQ(m_texts[right] < m_texts[left], order > 0);
        EXPECT_EQ(m_texts[right] == m_texts[left], order == 0);
    }
    void LookAtNarrow(std::size_t of) {
        Say(Name(of), ".Narrow()");
        const char* const narrow = m_texts[of].Narrow();
        EXPECT_EQ(narrow, m_models[of].NarrowForm());
        EXPECT_STREQ(m_texts[of].Narrow(), narrow); // what was handed out stays while others ask
    }
    void LookAtWide(std::size_t of) {
        Say(Name(of), ".Wide()");
        const wchar_t* const wide = m_texts[of].Wide();
        EXPECT_EQ(wide, m_models[of].WideForm());
        EXPECT_STREQ(m_texts[of].Wide(), wide);
    }
    void LookAtTheRest(std::size_t of) {
        Say(Name(of), ".GetLength()");
        EXPECT_EQ(m_texts[of].IsEmpty(), m_models[of].IsEmpty());
        EXPECT_EQ(m_texts[of].GetCodePage(), m_models[of].CodePage());
        EXPECT_EQ(m_texts[of].GetLength(), m_models[of].Length());
        EXPECT_EQ(m_texts[of].LastCharacter(), m_models[of].LastCharacter());
    }

    static std::string Hex(wchar_t unit) {
        char text[8];
        std::snprintf(text, sizeof(text), "%04X", static_cast<unsigned>(unit));
        return text;
    }

    Case& m_input;
    std::array<OString, kTexts> m_texts;
    std::array<TextModel, kTexts> m_models;
    std::wstring m_some, m_last; // units of texts made before
};

FUZZ_TARGET(Texts, 2500) {
    Bench bench(input);
    for (std::size_t left = 1 + input.Below(16); left > 0 && !testing::Test::HasFailure(); --left) {
        bench.Step();
    }
    bench.LookAtAll();
}

} // namespace
