#include "params/value_rules.h"

#include <gtest/gtest.h>

#include "protocol/frame.h"

namespace talvex::params {
namespace {

struct CommitCase {
  const ValueRule* rule;
  const char* text;
  double value;
  int position;
  const char* shown;
};

TEST(ValueRulesTest, shouldClampAndSnapTypedValuesWithHalfwayGoingDown) {
  const CommitCase cases[] = {
      {&rule::kInputLevel, "0.27", 0.3, 147, "0.3"},
      {&rule::kInputLevel, "0.25", 0.2, 148, "0.2"},  // exactly halfway: the lower step
      {&rule::kInputLevel, "0,25", 0.2, 148, "0.2"},
      {&rule::kInputLevel, "-0.05", -0.1, 151, "-0.1"},
      {&rule::kInputLevel, "15", 15, 0, "15"},
      {&rule::kOutputLevel, "100", 6, 0, "6"},
      {&rule::kOutputLevel, "-100", -12, 180, "-12"},
      {&rule::kOutputLevel, "-3.5", -3.5, 95, "-3.5"},
      {&rule::kBandGain, "0.26", 0.5, 29, "0.5"},
      {&rule::kBandGain, "0.25", 0, 30, "0"},
      {&rule::kLimiterThreshold, "20", 20, 0, "20"},
      {&rule::kLimiterThreshold, "-10", -10, 150, "-10"},
      {&rule::kLimiterThreshold, "0.3", 0.2, 99, "0.2"},
      {&rule::kAttack, "0.75", 0.5, 0, "0.5"},
      {&rule::kAttack, "45", 40, 40, "40"},
      {&rule::kAttack, "46", 50, 41, "50"},
      {&rule::kAttack, "1000", 200, 51, "200"},
      {&rule::kRelease, "105", 100, 0, "100"},
      {&rule::kRelease, "136", 140, 4, "140"},
      {&rule::kBandQ, "0.325", 0.3, 9, "0.3"},
      {&rule::kBandQ, "0.01", 0.05, 4, "0.05"},
      {&rule::kBandFrequency, "1015", 1000, 136, "1000"},
      {&rule::kCrossoverFrequency, "30000", 20000, 240, "20000"},
      {&rule::kCrossoverFrequency, "5", 20, 0, "20"},
      {&rule::kTemperature, "20", 20, 40, "20"},
  };
  for (const CommitCase& c : cases) {
    const RuledValue ruled = CommitText(*c.rule, c.text);
    ASSERT_TRUE(ruled.Ok()) << c.text;
    EXPECT_DOUBLE_EQ(ruled.value, c.value) << c.text;
    EXPECT_EQ(ruled.position, c.position) << c.text;
    EXPECT_EQ(FormatRuled(*c.rule, ruled.value), c.shown) << c.text;
  }
}

TEST(ValueRulesTest, shouldReportClampingOnlyForValuesOutsideTheRange) {
  EXPECT_TRUE(CommitText(rule::kOutputLevel, "6.01").clamped);
  EXPECT_FALSE(CommitText(rule::kOutputLevel, "6").clamped);
  EXPECT_TRUE(CommitText(rule::kBandFrequency, "19.9").clamped);
}

TEST(ValueRulesTest, shouldRefuseTextThatIsNotANumberWithTheBoxMessage) {
  const std::pair<const ValueRule*, std::string_view> cases[] = {
      {&rule::kInputLevel, "  Incorrect value"},
      {&rule::kAttack, "  Incorrect value"},
      {&rule::kBandFrequency, "  Incorrect frequency value"},
      {&rule::kBandQ, "  Incorrect Q value"},
      {&rule::kCrossoverFrequency, "  Incorrect f value"},
  };
  for (const auto& [rule, message] : cases)
    for (const char* text : {"abc", "?", "", "1.2.3", "1e3", "-", "12?"})
      EXPECT_EQ(CommitText(*rule, text).error, message) << text;
}

TEST(ValueRulesTest, shouldReadNumbersWithEitherDecimalMark) {
  const std::pair<const char*, double> cases[] = {{"  -3.5 ", -3.5}, {"+2", 2},      {".5", 0.5},
                                                  {"7.", 7},         {"0,05", 0.05}, {"-0", 0}};
  for (const auto& [text, value] : cases)
    EXPECT_EQ(ParseNumber(text), value) << text;
}

TEST(ValueRulesTest, shouldFormatWithoutTrailingZerosInTheLocaleMark) {
  EXPECT_EQ(FormatNumber(6, 1), "6");
  EXPECT_EQ(FormatNumber(-3.5, 1, DecimalMark::Comma), "-3,5");
  EXPECT_EQ(FormatNumber(-0.04, 1), "0");
  EXPECT_EQ(FormatNumber(20.6, 1), "20.6");
  EXPECT_EQ(FormatNumber(10.005, 3), "10.005");
}

TEST(ValueRulesTest, shouldTurnSliderPositionsIntoValuesTopHighest) {
  EXPECT_EQ(ValueAtPosition(rule::kInputLevel, 0), 15);
  EXPECT_EQ(ValueAtPosition(rule::kInputLevel, 300), -15);
  EXPECT_EQ(ValueAtPosition(rule::kOutputLevel, 0), 6);
  EXPECT_EQ(ValueAtPosition(rule::kOutputLevel, 180), -12);
  EXPECT_DOUBLE_EQ(ValueAtPosition(rule::kOutputLevel, 95), -3.5);
  EXPECT_EQ(ValueAtPosition(rule::kLimiterThreshold, 0), 20);
  EXPECT_EQ(ValueAtPosition(rule::kBandGain, 60), -15);
  EXPECT_EQ(ValueAtPosition(rule::kAttack, 19), 19);
  EXPECT_EQ(ValueAtPosition(rule::kBandQ, 4), 0.05);
  EXPECT_EQ(ValueAtPosition(rule::kTemperature, 0), -20);
  EXPECT_THROW(ValueAtPosition(rule::kOutputLevel, 181), IndexError);
  EXPECT_THROW(ValueAtPosition(rule::kBandQ, 3), IndexError);
}

TEST(DelayRulesTest, shouldShowDistanceOrTimeCutToThousandths) {
  EXPECT_DOUBLE_EQ(SpeedOfSound(40), 343.3);
  struct Case {
    DelaySteps steps;
    int unit;
    int temperature;
    double shown;
  };
  const Case cases[] = {
      {{1, 0}, kDelayUnitMs, 40, 0.990},  // 0.34 / 0.3433 = 0.99038..
      {{0, 1}, kDelayUnitMetres, 40, 0.007},
      {{10, 5}, kDelayUnitMs, 40, 10.005},  // 3.435 / 0.3433 = 10.0058..
      {{10, 5}, kDelayUnitMetres, 40, 3.435},
      {{1000, 0}, kDelayUnitMs, 20, 1026.26},  // c = 331.3 at position 20
  };
  for (const Case& c : cases)
    EXPECT_DOUBLE_EQ(ShownDelay(c.steps, c.unit, c.temperature), c.shown) << c.steps.coarse;
}

TEST(DelayRulesTest, shouldTakeTheFirstStepCountThatReachesTheTypedValue) {
  struct Case {
    const char* text;
    DelaySteps steps;
    double shown;
    bool clamped;
  };
  const Case cases[] = {
      {"10", {10, 5}, 10.005, false},  {"0.990", {1, 0}, 0.990, false},
      {"0.991", {1, 1}, 1.010, false}, {"0", {0, 0}, 0, false},
      {"-5", {0, 0}, 0, true},         {"5000", {1000, 0}, 990.387, true},
  };
  for (const Case& c : cases) {
    const RuledDelay delay = CommitDelayText(c.text, kDelayUnitMs, 40);
    ASSERT_TRUE(delay.Ok()) << c.text;
    EXPECT_EQ(delay.steps, c.steps) << c.text;
    EXPECT_DOUBLE_EQ(delay.value, c.shown) << c.text;
    EXPECT_EQ(delay.clamped, c.clamped) << c.text;
  }
  EXPECT_EQ(CommitDelayText("x", kDelayUnitMs, 40).error, "  Incorrect value");
  EXPECT_EQ(DelaySteps::FromSamples(48000), (DelaySteps{1000, 0}));
  EXPECT_THROW(DelaySteps::FromSamples(48001), IndexError);
}

}  // namespace
}  // namespace talvex::params
