#include "host/dxf/tags.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <filesystem>
#include <limits>
#include <random>

#include "host/dxf/corpus.h"

namespace dxf = vora_host::dxf;
using vora_test::CorpusFile;

namespace {

dxf::TagFile tagsOf(std::string bytes) {
  dxf::TagFile f;
  f.bytes = std::move(bytes);
  dxf::tagize(f);
  return f;
}

// The line and reason of the error that tagging bytes gives; line -1 when it succeeds.
std::pair<long, std::string> errorOf(std::string bytes) {
  try {
    tagsOf(std::move(bytes));
  } catch (const dxf::DxfError& e) {
    return {static_cast<long>(e.line()), e.reason()};
  }
  return {-1, ""};
}

std::string rewrite(const dxf::TagFile& f) {
  std::string out;
  dxf::TagWriter w(out, f.crlf);
  for (const auto& t : f.tags) w.tag(t.code, f.value(t));
  return out;
}

class CorpusTags : public testing::TestWithParam<CorpusFile> {};

TEST_P(CorpusTags, GoodFilesTagInAndOutIdenticalMalformedOnesNameTheirLine) {
  const CorpusFile& c = GetParam();
  if (c.binary()) {
    try {
      dxf::readTagFile(c.path());
      FAIL() << "binary DXF accepted";
    } catch (const dxf::DxfError& e) {
      EXPECT_NE(std::string(e.what()).find("binary DXF"), std::string::npos) << e.what();
    }
    return;
  }
  if (c.defectLine) {
    try {
      dxf::readTagFile(c.path());
      FAIL() << "malformed file accepted";
    } catch (const dxf::DxfError& e) {
      EXPECT_EQ(static_cast<long>(e.line()), c.defectLine) << e.what();
    }
    return;
  }
  const dxf::TagFile in = dxf::readTagFile(c.path());
  ASSERT_GT(in.tags.size(), 2u);
  EXPECT_EQ(in.crlf, c.encoding.find("CRLF") != std::string::npos);
  const dxf::TagFile out = tagsOf(rewrite(in));
  ASSERT_EQ(out.tags.size(), in.tags.size());
  for (std::size_t i = 0; i < in.tags.size(); ++i) {
    ASSERT_EQ(out.tags[i].code, in.tags[i].code) << "tag " << i;
    ASSERT_EQ(out.value(i), in.value(i)) << "line " << dxf::TagFile::lineOf(i);
  }
  // Written again, the text is stable.
  EXPECT_EQ(rewrite(out), rewrite(in));
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusTags, testing::ValuesIn(vora_test::corpusFiles()),
                         [](const auto& info) { return vora_test::corpusTestName(info.param.name); });

TEST(DxfTags, LineEndsValuesAndLineNumbers) {
  // CR LF and LF, leading blanks in group codes, trailing blanks and empty values kept.
  const auto f = tagsOf("  0\r\nSECTION\r\n  2\r\nENTITIES\r\n  0\r\nLINE\r\n  8\r\nwall  \r\n  1\r\n\r\n"
                        "  0\r\nENDSEC\r\n  0\r\nEOF\r\n");
  EXPECT_TRUE(f.crlf);
  ASSERT_EQ(f.tags.size(), 7u);
  EXPECT_EQ(f.tags[3].code, 8);
  EXPECT_EQ(f.value(3), "wall  ");
  EXPECT_EQ(f.value(4), "");
  EXPECT_EQ(dxf::TagFile::lineOf(3), 7u);
  // A CR in the middle of an LF-ended value is text, not a line end.
  const auto g = tagsOf("0\nSECTION\n2\nX\n1\na\rb\n0\nENDSEC\n0\nEOF");
  EXPECT_FALSE(g.crlf);
  EXPECT_EQ(g.value(2), "a\rb");
  // Whatever follows 0/EOF is not read.
  EXPECT_EQ(tagsOf("0\nEOF\n\n\ngarbage").tags.size(), 1u);
}

TEST(DxfTags, StrictErrorsNameLineAndReason) {
  const std::string head = "0\nSECTION\n2\nENTITIES\n0\nLINE\n";  // lines 1-6
  struct Case {
    std::string body;
    long line;
    const char* reason;
  } cases[] = {
      {"1O\n0.0\n0\nENDSEC\n0\nEOF\n", 7, "not an integer"},
      {"\n0.0\n0\nENDSEC\n0\nEOF\n", 7, "not an integer"},
      {"2000\nx\n0\nENDSEC\n0\nEOF\n", 7, "out of range"},
      {"10\n1,5\n0\nENDSEC\n0\nEOF\n", 8, "decimal comma"},
      {"10\nnan\n0\nENDSEC\n0\nEOF\n", 8, "not a number"},
      {"10\n1e\n0\nENDSEC\n0\nEOF\n", 8, "not a number"},
      {"70\n1.0\n0\nENDSEC\n0\nEOF\n", 8, "not an integer"},
      {"70\n70000\n0\nENDSEC\n0\nEOF\n", 8, "out of range"},
      {"290\n2\n0\nENDSEC\n0\nEOF\n", 8, "out of range"},
      {"330\nXYZ\n0\nENDSEC\n0\nEOF\n", 8, "hexadecimal handle"},
      {"310\n0G\n0\nENDSEC\n0\nEOF\n", 8, "binary"},
      {"10\n", 7, "no value line"},
      {"10\n1.0\n", 8, "without ENDSEC"},
      {"0\nENDSEC\n", 8, "without 0/EOF"},
      {"0\nENDSEC\n0\nLINE\n", 9, "expected 0/SECTION"},
      {"0\nSECTION\n", 7, "before ENDSEC"},
      {"0\nEOF\n", 7, "before ENDSEC"},
  };
  for (const auto& c : cases) {
    const auto [line, reason] = errorOf(head + c.body);
    EXPECT_EQ(line, c.line) << c.body;
    EXPECT_NE(reason.find(c.reason), std::string::npos) << c.body << " -> " << reason;
  }
  EXPECT_EQ(errorOf("0\nSECTION\n0\nENDSEC\n0\nEOF\n").first, 3);  // a section without a name
  EXPECT_EQ(errorOf("").first, 1);
  EXPECT_NE(errorOf(std::string("AutoCAD Binary DXF\r\n\x1a\0", 22) + "xx").second.find("binary DXF"),
            std::string::npos);
  // Accepted: blanks around numbers, unsigned readings of flags, exponents.
  EXPECT_EQ(errorOf(head + "10\n -1.5E+03 \n70\n65535\n62\n  -7\n0\nENDSEC\n0\nEOF\n").first, -1);
}

TEST(DxfTags, NumbersRoundTripAsShortestText) {
  EXPECT_EQ(dxf::formatDouble(0.1), "0.1");
  EXPECT_EQ(dxf::formatDouble(1.0), "1.0");
  EXPECT_EQ(dxf::formatDouble(-0.0), "-0.0");
  EXPECT_EQ(dxf::formatDouble(1e300), "1e+300");
  EXPECT_EQ(dxf::formatDouble(123456789012.0), "123456789012.0");
  std::mt19937_64 rng(20261123);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = rng();
    double v;
    std::memcpy(&v, &bits, sizeof v);
    if (!std::isfinite(v)) continue;
    double back = 0;
    const std::string s = dxf::formatDouble(v);
    ASSERT_TRUE(dxf::parseDouble(s, back)) << s;
    ASSERT_EQ(std::memcmp(&back, &v, sizeof v), 0) << s;
  }
  double d = 0;
  EXPECT_TRUE(dxf::parseDouble(" +2.5 ", d));
  EXPECT_EQ(d, 2.5);
  EXPECT_FALSE(dxf::parseDouble("2,5", d));
  EXPECT_FALSE(dxf::parseDouble("inf", d));
  EXPECT_FALSE(dxf::parseDouble("1e999", d));
  std::uint64_t h = 0;
  EXPECT_TRUE(dxf::parseHex("1F", h));
  EXPECT_EQ(h, 0x1Fu);
  EXPECT_FALSE(dxf::parseHex("", h));
  EXPECT_FALSE(dxf::parseHex("12345678901234567", h));
  std::string out;
  dxf::TagWriter w(out, true);
  w.tagHex(5, 0x2fa);
  w.tagInt(70, -3);
  w.point(10, 1, 2.5, 0);
  EXPECT_EQ(out, "  5\r\n2FA\r\n 70\r\n-3\r\n 10\r\n1.0\r\n 20\r\n2.5\r\n 30\r\n0.0\r\n");
}

TEST(DxfTags, AtomicSaveReplacesOrLeavesTheOldFile) {
  namespace fs = std::filesystem;
  const fs::path dir = fs::temp_directory_path() / ("vora_atomic_" + std::to_string(::getpid()));
  fs::create_directories(dir);
  const std::string path = (dir / "a.dxf").string();
  dxf::writeFileAtomically(path, "first");
  EXPECT_EQ(dxf::readFileBytes(path), "first");
  dxf::writeFileAtomically(path, "second, longer");
  EXPECT_EQ(dxf::readFileBytes(path), "second, longer");
  // A save into a directory that cannot be written fails and leaves nothing behind.
  EXPECT_THROW(dxf::writeFileAtomically((dir / "missing" / "b.dxf").string(), "x"), dxf::DxfError);
  // Renaming over a directory fails after the temporary file is written: the
  // temporary file is removed and the target is untouched.
  fs::create_directories(dir / "target.dxf");
  EXPECT_THROW(dxf::writeFileAtomically((dir / "target.dxf").string(), "x"), dxf::DxfError);
  EXPECT_TRUE(fs::is_directory(dir / "target.dxf"));
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) ++entries;
  EXPECT_EQ(entries, 2u);  // a.dxf and target.dxf, no temporary files
  EXPECT_EQ(dxf::readFileBytes(path), "second, longer");
  EXPECT_THROW(dxf::readFileBytes((dir / "nope.dxf").string()), dxf::DxfError);
  fs::remove_all(dir);
}

}  // namespace
