// Random input for one part of the program at a time.
//
// A target makes an input from what a `Case` draws, gives it to the code under test and compares the outcome
// with a model's. What a case draws depends on the seed and the case's number alone. While it runs, blocks of
// memory come from the guarded heap; after it, none of them may be left.
//
//     KEMBA_FUZZ_CASES     how many cases each target runs; without it a short run
//     KEMBA_FUZZ_SEED      the seed, 1 without it
//     KEMBA_FUZZ_ONLY      the number of the one case to run; it says its input, statement by statement
//     KEMBA_FUZZ_PATIENCE  seconds, 60 without it: after these, or twice as many, a case does not end
//
// A case that fails, crashes or does not end is told by target, seed and number, and is run once more to say
// its input. To repeat it, from the folder of the sources:
//
//     KEMBA_FUZZ_SEED=1 KEMBA_FUZZ_ONLY=4711 cmake/start-wine build/mingw-debug/bin/fuzz_tests.exe
//         --gtest_filter=Fuzz.TheTarget </dev/null
//
// What it says is C++ that fits into a plain test of the part; there it stays.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace kit {

/// One case: a source of draws, and the place where it says its input.
class Case {
  public:
    Case(std::uint64_t seed, std::uint64_t number, bool says);

    std::uint64_t Number() const { return m_number; }

    std::uint64_t Bits();
    /// From 0 to `limit` - 1; 0 for a limit of 0.
    std::size_t Below(std::size_t limit);
    /// True once in `times`.
    bool OnceIn(std::size_t times) { return Below(times) == 0; }
    /// One of the elements.
    template<class Elements>
    decltype(auto) OneOf(const Elements& elements) {
        return std::begin(elements)[Below(std::size(elements))];
    }
    /// A length of at most `most`: mostly a short one, often one next to a multiple of 32.
    std::size_t Length(std::size_t most);

    /// Bytes and UTF-16 units, none of them zero: printable ones, ones beyond ASCII, control characters,
    /// halves of pairs.
    std::string Text(std::size_t most);
    std::wstring WideText(std::size_t most);
    /// A text of ASCII letters, digits, and blanks.
    std::wstring Name(std::size_t most);
    /// Any bytes.
    std::string Bytes(std::size_t most);

    /// Says a statement of the input, if this run is to say it; `make` returns its text. To be called before
    /// the statement is carried out, which may end the program.
    template<class Make>
    void Say(Make&& make) {
        if (m_says) {
            Say(std::string_view(make()));
        }
    }

  private:
    static void Say(std::string_view statement);

    std::uint64_t m_state;
    std::uint64_t m_number;
    bool m_says;
};

/// Literals as they stand in a source: "a\033b", L"\xD83D".
std::string Literal(std::string_view bytes);
std::string Literal(std::wstring_view units);

/// Whether a case may leave blocks of memory behind.
enum class Leftovers { None, Any };

/// Runs the cases of a target, `shortRun` of them if the environment asks for no other number.
void RunCases(const char* target, void (*body)(Case&), std::uint64_t shortRun,
              Leftovers leftovers = Leftovers::None);

} // namespace kit

/// Defines a target, a function of the case `input`.
#define FUZZ_TARGET(name, shortRun)                                                                          \
    static void name##Case(Case& input);                                                                     \
    TEST(Fuzz, name) {                                                                                       \
        RunCases(#name, name##Case, shortRun);                                                               \
    }                                                                                                        \
    static void name##Case(Case& input)
