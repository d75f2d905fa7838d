#include "readers/printable_text.h"

#include <gtest/gtest.h>

namespace tarn::program {
namespace {

TEST(PrintableText, ControlCharactersAreWrittenAsTheirBytes) {
    EXPECT_EQ(Printable("a\n\x1b[31m\x7f"), "a\\x0a\\x1b[31m\\x7f");
    EXPECT_EQ(Printable("\xc2\x80\xc2\x9b!\xc2\x9f"), "\\xc2\\x80\\xc2\\x9b!\\xc2\\x9f");
    EXPECT_EQ(Printable("\u202a|\u202e|\u2066|\u2069|\u2028"),
              "\\xe2\\x80\\xaa|\\xe2\\x80\\xae|\\xe2\\x81\\xa6|\\xe2\\x81\\xa9|\\xe2\\x80\\xa8");
    for (const char* const text :
         {"", "bolt", "\u00a0\u00e4", "\u2027\u202f\u2065\u206a", "\xc2", "\xe2\x80"})
        EXPECT_EQ(Printable(text), text);
}

TEST(PrintableText, ExcerptsEndBehindAWholeCharacter) {
    const std::string begin(38, 'b');
    EXPECT_EQ(Excerpt(begin + "\u00e4"), begin + "\u00e4");
    EXPECT_EQ(Excerpt(begin + "\u00e4x"), begin + "\u00e4...");
    EXPECT_EQ(Excerpt(begin + "x\u00e4"), begin + "x...");
    EXPECT_EQ(Excerpt(begin + "\u20ac"), begin + "...");
    EXPECT_EQ(Excerpt(begin + "\U0001f529"), begin + "...");
    EXPECT_EQ(Excerpt(std::string(50, '\x80')), std::string(40, '\x80') + "...");
}

}  // namespace
}  // namespace tarn::program
