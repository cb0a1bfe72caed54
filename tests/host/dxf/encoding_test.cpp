#include "host/dxf/encoding.h"

#include <gtest/gtest.h>

namespace dxf = vora_host::dxf;

TEST(DxfEncoding, CodePagesWithUnicodeEscapesBeforeR2007) {
  const dxf::TextCodec cp1252("AC1015", "ANSI_1252");
  EXPECT_FALSE(cp1252.utf8());
  EXPECT_EQ(cp1252.decode("Zeichenfl\xe4" "che"), L"Zeichenfl\u00e4che");
  EXPECT_EQ(cp1252.decode("_Zeichenfl\\U+00e4che"), L"_Zeichenfl\u00e4che");
  EXPECT_EQ(cp1252.decode("\\U+00"), L"\\U+00");  // too short: kept as text
  EXPECT_EQ(cp1252.encode(L"fl\u00e4che \u0416 \u20ac"), "fl\xe4" "che \\U+0416 \x80");
  const dxf::TextCodec cp1251("AC1015", "ansi_1251");
  EXPECT_EQ(cp1251.charset(), "CP1251");
  EXPECT_EQ(cp1251.encode(L"\u0416"), "\xc6");
  EXPECT_EQ(cp1251.decode("\xc6"), L"\u0416");
  const dxf::TextCodec sjis("AC1012", "dos932");
  EXPECT_EQ(sjis.charset(), "CP932");
  EXPECT_EQ(sjis.decode("\x93\xfa\x96\x7b"), L"\u65e5\u672c");
  EXPECT_EQ(sjis.encode(L"\u65e5\u672c"), "\x93\xfa\x96\x7b");
  EXPECT_EQ(sjis.decode("a\x93"), L"a\ufffd");  // cut-off double-byte character
  EXPECT_EQ(dxf::TextCodec("AC1018", "MAC-ROMAN").charset(), "MACINTOSH");
  EXPECT_EQ(dxf::TextCodec("AC1018", "no-such-page").charset(), "CP1252");
  EXPECT_EQ(dxf::TextCodec("", "").charset(), "CP1252");
}

TEST(DxfEncoding, Utf8FromR2007) {
  const dxf::TextCodec u("AC1021", "ANSI_1252");
  EXPECT_TRUE(u.utf8());
  EXPECT_EQ(u.decode("fl\xc3\xa4" "che \xe2\x82\xac \xf0\x9f\x98\x80"), L"fl\u00e4che \u20ac \U0001F600");
  EXPECT_EQ(u.encode(L"fl\u00e4che \u20ac \U0001F600"), "fl\xc3\xa4" "che \xe2\x82\xac \xf0\x9f\x98\x80");
  // No escapes are decoded from R2007 on: the text is what the file says.
  EXPECT_EQ(u.decode("\\U+00e4"), L"\\U+00e4");
  EXPECT_EQ(u.decode("a\xff" "b\xc3"), L"a\ufffd" "b\ufffd");
  EXPECT_EQ(u.decode("\xc0\xaf"), L"\ufffd\ufffd");  // overlong form
  EXPECT_TRUE(dxf::isUtf8Version("AC1032"));
  EXPECT_FALSE(dxf::isUtf8Version("AC1018"));
  EXPECT_FALSE(dxf::isUtf8Version(""));
}
