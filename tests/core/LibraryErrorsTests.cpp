// Errors of the standard library's own code: of which two kinds they are.
#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "core/LibraryErrors.h"

namespace {

/// What the work throws: its words for a length error, "memory", "other" for one without a text, the name of
/// any other, or "nothing".
std::string ErrorOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const OCore::LengthError& error) {
        return error.what();
    } catch (const std::bad_alloc&) {
        return "memory";
    } catch (const std::exception& error) {
        return typeid(error) == typeid(std::exception) ? "other" : typeid(error).name();
    }
    return "nothing";
}

TEST(LibraryErrors, OfWhatIsTooLongAreLengthErrorsWithTheirWordsAndCountAsShortMemory) {
    std::wstring text;
    EXPECT_EQ(ErrorOf([&] { text.append(text.max_size() + 1, L' '); }), "basic_string::_M_replace_aux");
    std::vector<int> numbers;
    EXPECT_EQ(ErrorOf([&] { numbers.reserve(numbers.max_size() + 1); }), "vector::reserve");
    EXPECT_THROW(numbers.reserve(numbers.max_size() + 1), std::bad_alloc);
    EXPECT_EQ(ErrorOf([] { static_cast<void>(std::allocator<int>().allocate(SIZE_MAX / sizeof(int))); }),
              "memory");
    EXPECT_EQ(ErrorOf([] { static_cast<void>(std::allocator<int>().allocate(SIZE_MAX)); }), "memory");
}

TEST(LibraryErrors, OfMistakesCarryNoText) {
    EXPECT_EQ(ErrorOf([] { static_cast<void>(std::wstring_view(L"abc").substr(4)); }), "other");
    EXPECT_EQ(ErrorOf([] { static_cast<void>(std::wstring(L"abc").erase(4)); }), "other");
    EXPECT_EQ(ErrorOf([] { static_cast<void>(std::vector<int>().at(0)); }), "other");
    EXPECT_EQ(ErrorOf([] { std::function<void()>()(); }), "other");
    EXPECT_EQ(ErrorOf([] { std::unique_lock<std::mutex>().lock(); }), "other");
    const wchar_t* volatile none = nullptr;
    EXPECT_EQ(ErrorOf([&] { std::wstring text(none); }), "other");
}

} // namespace
