// The UTF-8 converter.
#include <string>

#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/Utf8Model.h"
#include "tests/kit/Narrow.h"

using namespace kit;

namespace {

FUZZ_TARGET(Utf8, 8000) {
    const std::string bytes = input.OnceIn(2) ? input.Bytes(200) : input.Text(200);
    input.Say([&] { return "Wide(" + Literal(bytes) + ");"; });
    const std::wstring decoded = Wide(bytes);
    EXPECT_EQ(std::u16string(decoded.begin(), decoded.end()), DecodedByModel(bytes));

    const std::wstring units = input.WideText(200);
    input.Say([&] { return "Narrow(" + Literal(units) + ");"; });
    const std::string encoded = Narrow(units);
    EXPECT_EQ(encoded, EncodedByModel(std::u16string(units.begin(), units.end())));
    EXPECT_EQ(Wide(encoded), units);
}

} // namespace
