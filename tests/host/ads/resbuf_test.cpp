#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <string>

#include "vora/arx.h"
#include "vora/arx/vorahost.h"

namespace {

TEST(Resbuf, LayoutIsTheSdks) {
  static_assert(sizeof(resbuf) == 40);
  static_assert(offsetof(resbuf, rbnext) == 0);
  static_assert(offsetof(resbuf, restype) == 8);
  static_assert(offsetof(resbuf, resval) == 16);
  static_assert(sizeof(ads_u_val) == 24);
  static_assert(RTNORM == 5100 && RTERROR == -5001 && RTCAN == -5002 && RTDXF0 == 5020 && RTINT64 == 5031);
}

TEST(Resbuf, BuildListTakesPairsAndUnpairedCodes) {
  const double pt[3] = {1.5, -2.0, 3.25};
  ads_name name = {0x1234, 0};
  resbuf* rb = acutBuildList(RTDXF0, L"LINE", 8, L"0", 10, pt, 40, 2.5, 70, 3, 90, -70000, RTLB, RTSHORT, 7,
                             RTLE, -3, 1001, L"APP", RTENAME, name, 160, static_cast<std::int64_t>(1) << 40,
                             RTNONE);
  ASSERT_NE(rb, nullptr);
  const int expectedTypes[] = {0, 8, 10, 40, 70, 90, RTLB, RTSHORT, RTLE, -3, 1001, RTENAME, 160};
  const resbuf* p = rb;
  for (int t : expectedTypes) {
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->restype, t);
    p = p->rbnext;
  }
  EXPECT_EQ(p, nullptr);
  EXPECT_STREQ(rb->resval.rstring, L"LINE");
  const resbuf* p10 = rb->rbnext->rbnext;
  EXPECT_EQ(p10->resval.rpoint[0], 1.5);
  EXPECT_EQ(p10->resval.rpoint[2], 3.25);
  EXPECT_EQ(p10->rbnext->resval.rreal, 2.5);
  EXPECT_EQ(p10->rbnext->rbnext->resval.rint, 3);
  EXPECT_EQ(p10->rbnext->rbnext->rbnext->resval.rlong, -70000);

  resbuf* copy = nullptr;
  ASSERT_EQ(acutRbDup(rb, &copy), RTNORM);
  EXPECT_NE(copy->resval.rstring, rb->resval.rstring);
  EXPECT_STREQ(copy->resval.rstring, L"LINE");
  EXPECT_EQ(acutRelRb(rb), RTNORM);
  EXPECT_EQ(acutRelRb(copy), RTNORM);
}

TEST(Resbuf, EmptyOrUnknownListsGiveNull) {
  EXPECT_EQ(acutBuildList(0), nullptr);
  EXPECT_EQ(acutBuildList(RTNONE), nullptr);
  EXPECT_EQ(acutBuildList(1000, L"a", 12345, 1, 0), nullptr);
  EXPECT_EQ(acutRelRb(nullptr), RTERROR);
}

TEST(Resbuf, ReleasesStringsOfItsOwnAndFromTheCHeap) {
  resbuf* rb = acutNewRb(RTSTR);
  rb->resval.rstring = static_cast<ACHAR*>(std::malloc(4 * sizeof(ACHAR)));
  std::wcscpy(rb->resval.rstring, L"abc");
  rb->rbnext = acutNewRb(310);
  rb->rbnext->resval.rbinary.clen = 3;
  rb->rbnext->resval.rbinary.buf = static_cast<char*>(std::malloc(3));
  EXPECT_EQ(acutRelRb(rb), RTNORM);
}

TEST(Printf, WideConversionsFollowTheProgramAndGoToTheSink) {
  std::wstring captured;
  vorahost::PrintSink previous = vorahost::setPrintSink([&](const ACHAR* text) { captured += text; });
  const int n = acutPrintf(L"\n%s=%d %ls %hs %c %5.2f%%", L"ABC", 42, L"wide", "narrow", L'z', 3.14159);
  vorahost::setPrintSink(previous);
  EXPECT_EQ(captured, L"\nABC=42 wide narrow z  3.14%");
  EXPECT_EQ(n, static_cast<int>(captured.size()));
}

}  // namespace
