// The UTF-8 converter.
#include <string>
#include <string_view>

#include "core/Utf8.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/Utf8Model.h"

using namespace kit;

namespace {

FUZZ_TARGET(Utf8, 8000) {
    const std::string bytes = input.OnceIn(2) ? input.Bytes(200) : input.Text(200);
    input.Say([&] { return "OCore::DecodeUtf8(" + Literal(bytes) + ");"; });
    const std::wstring decoded = OCore::DecodeUtf8(std::string_view(bytes));
    EXPECT_EQ(std::u16string(decoded.begin(), decoded.end()), DecodedByModel(bytes));

    const std::wstring units = input.WideText(200);
    input.Say([&] { return "OCore::EncodeUtf8(" + Literal(units) + ");"; });
    const std::string encoded = OCore::EncodeUtf8(units);
    EXPECT_EQ(encoded, EncodedByModel(std::u16string(units.begin(), units.end())));
    EXPECT_EQ(OCore::DecodeUtf8(encoded), units);
}

} // namespace
