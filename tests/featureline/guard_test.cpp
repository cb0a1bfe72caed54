#include "featureline/guard.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "vora/arx.h"
#include "vora/arx/vorahost.h"

namespace {

class GuardOutput {
public:
  GuardOutput() : saved_(vorahost::setPrintSink([this](const ACHAR* t) { text_ += t; })) {}
  ~GuardOutput() { vorahost::setPrintSink(saved_); }
  std::string take() {
    std::string s(text_.begin(), text_.end());
    text_.clear();
    return s;
  }

private:
  std::wstring text_;
  vorahost::PrintSink saved_;
};

TEST(FeaturelineGuard, EachCaughtKindPrintsItsMessageAndGivesItsCode) {
  GuardOutput out;
  EXPECT_EQ(guarded([] {}), 0);
  EXPECT_EQ(out.take(), "");
  EXPECT_EQ(guarded([] { throw VORA_FEATURELINE_NO_POINTS; }), -12);
  EXPECT_EQ(out.take(), "\nAn error (-12) occured during the execution.\n;");
  EXPECT_EQ(guarded([] { throw FeaturelineError::eOutOfBounds; }), -100);
  EXPECT_EQ(out.take(), "\nA featureline error (4) occured.\n;");
  // The number, not the name, even for values outside the table.
  EXPECT_EQ(guarded([] { throw static_cast<FeaturelineError>(42); }), -100);
  EXPECT_EQ(out.take(), "\nA featureline error (42) occured.\n;");
  EXPECT_EQ(guarded([] { throw Acad::eWasOpenForWrite; }), -1000);
  EXPECT_EQ(out.take(), "\nAn error (eWasOpenForWrite) occured during the execution.\n;");
  EXPECT_EQ(guarded([] { throw std::out_of_range("endIndex >= vertices.size())"); }), -100000);
  EXPECT_EQ(out.take(), "\nAn error occured during the execution of the command\n;");
  EXPECT_EQ(guarded([] { throw 7; }), -100000);
  EXPECT_EQ(out.take(), "\nAn error occured during the execution of the command\n;");
}

}  // namespace
