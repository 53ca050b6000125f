// The digit editor on its own: splitting values into digits and composing them back for every
// kind of number the pages use (hostile values included), and the frame, arrows and digit wrap
// on a small window opened from XML under the test clock.
#include "common/digit_editor.h"

#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "msg/msghandler.h"
#include "page_fixture.h"
#include "tk_testing.h"

namespace {

using Digits = std::vector<int>;

// The kinds of number of the ballistic pages and the magnetic declination.
constexpr digit_number_t SPEED{0, 3, 10.0, false, true};    // d d . d
constexpr digit_number_t INTEGER4{0, 4, 1.0, false, true};  // d d d d
constexpr digit_number_t TWO_DECIMALS{0, 4, 100.0, false, true};
constexpr digit_number_t THREE_DECIMALS{0, 4, 1000.0, false, true};
constexpr digit_number_t COEFFICIENT{0, 5, 10000.0, false, true};
constexpr digit_number_t WRAPPING3{0, 3, 1.0, false, false};  // weight: only the last 3 digits
constexpr digit_number_t SIGNED3{0, 4, 1.0, true, true};      // sign, d d d
constexpr digit_number_t TENTHS4{0, 4, 10.0, false, true};    // d d d . d

Digits split(const digit_number_t& number, double value, bool* ok = nullptr) {
  std::array<uint8_t, DIGITS_MAX> bitval{};
  bitval.fill(0xEE);
  const bool result = digit_split(number, value, bitval);
  if (ok != nullptr) *ok = result;
  return Digits(bitval.begin() + number.first, bitval.begin() + number.first + number.count);
}

double compose(const digit_number_t& number, const Digits& digits) {
  std::array<uint8_t, DIGITS_MAX> bitval{};
  for (size_t i = 0; i < digits.size(); ++i)
    bitval[number.first + i] = static_cast<uint8_t>(digits[i]);
  return digit_compose(number, bitval);
}

TEST(DigitSplit, EveryKindOfNumberRoundsHalfAwayAndSaturatesItsLeadingDigit) {
  struct Case {
    const char* what;
    const digit_number_t& number;
    double value;
    Digits digits;
  } cases[] = {
      {"wind speed", SPEED, 12.3, {1, 2, 3}},
      {"wind speed over 99.9: leading digit held at 9", SPEED, 123.4, {9, 3, 4}},
      {"wind speed, half a tenth rounds up", SPEED, 0.25, {0, 0, 3}},
      {"negative speed shows its magnitude", SPEED, -7.5, {0, 7, 5}},
      {"zero distance", INTEGER4, 100, {0, 1, 0, 0}},
      {"zero distance 12345: leading 9, the rest remainders", INTEGER4, 12345, {9, 3, 4, 5}},
      {"sight height 5.01", TWO_DECIMALS, 5.01, {0, 5, 0, 1}},
      {"twist rate 99.99", TWO_DECIMALS, 99.99, {9, 9, 9, 9}},
      {"length 1.24", THREE_DECIMALS, 1.24, {1, 2, 4, 0}},
      {"coefficient 0.5", COEFFICIENT, 0.5, {0, 5, 0, 0, 0}},
      {"coefficient 0.505", COEFFICIENT, 0.505, {0, 5, 0, 5, 0}},
      {"coefficient 12.5: leading 9", COEFFICIENT, 12.5, {9, 5, 0, 0, 0}},
      {"weight 750 shows as stored", WRAPPING3, 750, {7, 5, 0}},
      {"weight 1750 wraps: no saturation", WRAPPING3, 1750, {7, 5, 0}},
      {"temperature -55", SIGNED3, -55, {1, 0, 5, 5}},
      {"temperature 150", SIGNED3, 150, {0, 1, 5, 0}},
      {"temperature -0.3: sign kept, magnitude 0", SIGNED3, -0.3, {1, 0, 0, 0}},
      {"declination -125 tenths", SIGNED3, -125, {1, 1, 2, 5}},
      {"pressure 29.9 (a float)", TENTHS4, static_cast<float>(29.9), {0, 2, 9, 9}},
      {"pressure 101.3", TENTHS4, static_cast<float>(101.3), {1, 0, 1, 3}},
  };
  for (const Case& c : cases) {
    bool ok = false;
    EXPECT_EQ(split(c.number, c.value, &ok), c.digits) << c.what;
    EXPECT_TRUE(ok) << c.what;
  }
}

TEST(DigitSplit, HostileValuesSaturateWithOneLineAndNoUndefinedConversion) {
  struct Case {
    const char* what;
    const digit_number_t& number;
    double value;
    Digits digits;
    const char* line;
  } cases[] = {
      {"NaN", SPEED, std::nan(""), {0, 0, 0}, "is not a number, shown as zeros"},
      {"-NaN, signed", SIGNED3, -std::nan(""), {0, 0, 0, 0}, "is not a number"},
      {"+inf", INTEGER4, INFINITY, {9, 9, 9, 9}, "value inf is out of range, shown as nines"},
      {"-inf, signed", SIGNED3, -INFINITY, {1, 9, 9, 9}, "value -inf is out of range"},
      {"1e300", COEFFICIENT, 1e300, {9, 9, 9, 9, 9}, "value 1e+300 is out of range"},
      {"DBL_MAX times the scale overflows", COEFFICIENT, DBL_MAX, {9, 9, 9, 9, 9}, "out of range"},
      {"1e300 without saturation", WRAPPING3, -1e300, {9, 9, 9}, "out of range"},
      {"just below the limit", INTEGER4, 9.99e14, {9, 0, 0, 0}, nullptr},
  };
  for (const Case& c : cases) {
    bool ok = true;
    const std::string out =
        page_test::printed([&] { EXPECT_EQ(split(c.number, c.value, &ok), c.digits) << c.what; });
    if (c.line != nullptr) {
      EXPECT_FALSE(ok) << c.what;
      EXPECT_NE(out.find(c.line), std::string::npos) << c.what << ": " << out;
      EXPECT_EQ(out.find("digit_split"), out.rfind("digit_split")) << c.what << ": one line";
    } else {
      EXPECT_TRUE(ok) << c.what;
      EXPECT_EQ(out.find("digit_split"), std::string::npos) << c.what;
    }
  }
}

TEST(DigitCompose, DigitsComposeByPlaceValueWithTheSign) {
  struct Case {
    const digit_number_t& number;
    Digits digits;
    double value;
  } cases[] = {
      {SPEED, {4, 0, 1}, 40.1},
      {INTEGER4, {1, 0, 0, 0}, 1000},
      {TWO_DECIMALS, {0, 5, 0, 1}, 5.01},
      {THREE_DECIMALS, {6, 0, 0, 0}, 6.0},
      {COEFFICIENT, {0, 5, 0, 5, 0}, 0.505},
      {WRAPPING3, {7, 5, 0}, 750},
      {SIGNED3, {1, 0, 5, 5}, -55},
      {TENTHS4, {1, 0, 1, 3}, 101.3},
  };
  for (const Case& c : cases)
    EXPECT_DOUBLE_EQ(compose(c.number, c.digits), c.value);
  // "-000" is 0, not negative zero.
  const double zero = compose(SIGNED3, {1, 0, 0, 0});
  EXPECT_EQ(zero, 0.0);
  EXPECT_FALSE(std::signbit(zero));
}

// Every digit combination of every kind survives compose-then-split: no place value or rounding
// loses a digit (0.29 x 100 is 28.999..., which only rounding brings back to 29).
TEST(DigitCompose, EveryCombinationSplitsBackToTheSameDigits) {
  for (const digit_number_t* number : {&SPEED, &INTEGER4, &TWO_DECIMALS, &THREE_DECIMALS,
                                       &COEFFICIENT, &WRAPPING3, &SIGNED3, &TENTHS4}) {
    const int magnitude = number->count - (number->sign ? 1 : 0);
    const int combinations = static_cast<int>(std::pow(10, magnitude));
    int failures = 0;
    for (int sign = 0; sign <= (number->sign ? 1 : 0); ++sign) {
      for (int n = 0; n < combinations && failures < 5; ++n) {
        Digits digits(number->count);
        if (number->sign) digits[0] = sign;
        for (int i = 0, rest = n; i < magnitude; ++i, rest /= 10)
          digits[number->count - 1 - i] = rest % 10;
        const Digits back = split(*number, compose(*number, digits));
        if (sign == 1 && n == 0) digits[0] = 0;  // "-000" comes back as "+000"
        if (back != digits) {
          ADD_FAILURE() << "scale " << number->scale << " combination " << n;
          failures++;
        }
      }
    }
  }
}

// ---- frame, arrows and wrap on a window ----

constexpr digit_t DIGITS[] = {{"label_d0", 0, 1}, {"label_d1", 16, 9}, {"label_d2", 48, 9}};
constexpr digit_number_t NUMBERS[] = {{0, 3, 10.0, false, true}};
constexpr digit_row_t ROW{DIGITS, NUMBERS, "view_arrow", "image_up", "image_down", "view_sel",
                          0,      2,       true};

// The magnetic declination as a row: sign, tens, units, tenths of a degree, value in tenths.
constexpr digit_t DECLINATION_DIGITS[] = {
    {"label_sign", 0, 1}, {"label_tens", 16, 9}, {"label_units", 32, 9}, {"label_tenths", 64, 9}};
constexpr digit_number_t DECLINATION_NUMBER[] = {{0, 4, 1.0, true, true}};
constexpr digit_row_t DECLINATION{DECLINATION_DIGITS,
                                  DECLINATION_NUMBER,
                                  "view_arrow",
                                  "image_up",
                                  "image_down",
                                  "view_sel",
                                  0,
                                  3};

class DigitRow : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    win_ = tk_testing_open_xml("digits", R"(<window name="digits" w="1280" h="1024">
        <view name="group" x="100" y="100" w="240" h="48">
          <view name="view_sel" x="0" y="0" w="20" h="40" visible="false"/>
          <label name="label_d0" x="0" y="0" w="16" h="48"/>
          <label name="label_d1" x="16" y="0" w="16" h="48"/>
          <label name="label_d2" x="48" y="0" w="16" h="48"/>
          <label name="label_sign" x="0" y="0" w="16" h="48"/>
          <label name="label_tens" x="16" y="0" w="16" h="48"/>
          <label name="label_units" x="32" y="0" w="16" h="48"/>
          <label name="label_tenths" x="64" y="0" w="16" h="48"/>
          <view name="view_arrow" x="0" y="0" w="12" h="54" visible="false">
            <image name="image_up" x="0" y="0" w="12" h="12"/>
            <image name="image_down" x="0" y="42" w="12" h="12"/>
          </view>
        </view></window>)");
    ASSERT_NE(win_, nullptr);
    tk_testing_advance(0);
  }
  void TearDown() override {
    EXPECT_EQ(tk_testing_failed_lookups(), 0u);
    tk_testing_reset();
  }
  widget_t* w(const char* name) { return widget_lookup(win_, name, TRUE); }
  std::string state(const char* name) { return w(name)->state; }
  std::string text(const char* name) {
    char buf[16] = {0};
    widget_get_text_utf8(w(name), buf, sizeof(buf));
    return buf;
  }
  std::string image(const char* name) { return widget_get_prop_str(w(name), "image", ""); }
  page_test::Box box(const char* name) { return {w(name)->x, w(name)->y, w(name)->w, w(name)->h}; }

  widget_t* win_ = nullptr;
};

TEST_F(DigitRow, SelectionFrameAndArrowsSitOnTheDigitAndBrowsingHidesThem) {
  std::array<uint8_t, DIGITS_MAX> bitval{0, 4, 2};
  digit_row_browse(win_, ROW, bitval);
  EXPECT_EQ(text("label_d0") + text("label_d1") + text("label_d2"), "042");
  for (int index = 0; index < 3; ++index) {
    const int x = DIGITS[index].x;
    digit_row_select(win_, ROW, index);
    EXPECT_TRUE(w("view_sel")->visible);
    EXPECT_FALSE(w("view_arrow")->visible);
    EXPECT_EQ(box("view_sel"), (page_test::Box{x - 2, 4, 20, 40}));
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(state(DIGITS[i].label), i == index ? "focused" : "normal") << index;

    digit_row_change(win_, ROW, bitval, index, GUI_KEY_RANGE_S);
    EXPECT_TRUE(w("view_arrow")->visible);
    EXPECT_EQ(box("view_arrow"), (page_test::Box{x + 2, -3, 12, 54}));
    EXPECT_EQ(image("image_up"), "hold_menu_arrow_up_sel");
    EXPECT_EQ(image("image_down"), "hold_menu_arrow_down_def");
    digit_row_change(win_, ROW, bitval, index, GUI_KEY_PHOTO_S);
    EXPECT_EQ(image("image_up"), "hold_menu_arrow_up_def");
    EXPECT_EQ(image("image_down"), "hold_menu_arrow_down_sel");
    EXPECT_EQ(state(DIGITS[index].label), "focused");
  }
  digit_row_browse(win_, ROW, bitval);
  EXPECT_FALSE(w("view_sel")->visible);
  EXPECT_FALSE(w("view_arrow")->visible);
  for (const digit_t& d : DIGITS)
    EXPECT_EQ(state(d.label), "normal");
}

TEST_F(DigitRow, DigitsWrapInsideTheirRangeAndTheLeadingMaxHoldsTheRest) {
  struct Case {
    const char* what;
    std::array<uint8_t, DIGITS_MAX> before;
    int index;
    int key;
    int after;
  } cases[] = {
      {"9 up wraps to 0", {0, 9, 0}, 1, GUI_KEY_RANGE_S, 0},
      {"0 down wraps to 9", {0, 0, 0}, 2, GUI_KEY_PHOTO_S, 9},
      {"5 up is 6", {0, 0, 5}, 2, GUI_KEY_RANGE_S, 6},
      {"a capped leading digit runs 0..1", {1, 0, 0}, 0, GUI_KEY_RANGE_S, 0},
      {"... and 0 down is 1", {0, 0, 0}, 0, GUI_KEY_PHOTO_S, 1},
      {"leading at its max holds the tens at 0", {1, 0, 0}, 1, GUI_KEY_RANGE_S, 0},
      {"... the units too", {1, 0, 0}, 2, GUI_KEY_PHOTO_S, 0},
      {"a digit above the hold steps up to 0", {1, 5, 0}, 1, GUI_KEY_RANGE_S, 0},
  };
  for (Case& c : cases) {
    const std::string out =
        page_test::printed([&] { digit_row_change(win_, ROW, c.before, c.index, c.key); });
    EXPECT_EQ(c.before[c.index], c.after) << c.what;
    EXPECT_EQ(text(DIGITS[c.index].label), std::to_string(c.after)) << c.what;
    EXPECT_NE(out.find("edit_mode = 2\nbit[" + std::to_string(c.index) +
                       "] = " + std::to_string(c.after) + "\n"),
              std::string::npos)
        << c.what << ": " << out;
  }
}

TEST_F(DigitRow, OkSelectsTheFirstSelectableDigitThenCyclesThroughThem) {
  constexpr digit_row_t DIRECTION_ONLY{
      DIGITS, NUMBERS, "view_arrow", "image_up", "image_down", "view_sel", 1, 2};
  EXPECT_EQ(digit_next_index(DIRECTION_ONLY, EDIT_BROWSE, 0), 1);
  EXPECT_EQ(digit_next_index(DIRECTION_ONLY, EDIT_SELECTED, 1), 2);
  EXPECT_EQ(digit_next_index(DIRECTION_ONLY, EDIT_CHANGING, 2), 1);
  EXPECT_EQ(digit_next_index(ROW, EDIT_BROWSE, 2), 0);
}

TEST_F(DigitRow, ASignedTenthsRowShowsItsSignAndComposesBack) {
  std::array<uint8_t, DIGITS_MAX> bitval{};
  const double values[] = {-125};
  const std::string out = page_test::printed([&] { digit_split_row(DECLINATION, values, bitval); });
  EXPECT_NE(out.find("paraval = -125.000000 \n"), std::string::npos) << out;
  digit_row_browse(win_, DECLINATION, bitval);
  EXPECT_EQ(text("label_sign") + text("label_tens") + text("label_units") + text("label_tenths"),
            "-125");
  // Sign up: 1 wraps to 0, "+".
  digit_row_change(win_, DECLINATION, bitval, 0, GUI_KEY_RANGE_S);
  EXPECT_EQ(text("label_sign"), "+");
  EXPECT_EQ(digit_compose(DECLINATION_NUMBER[0], bitval), 125);
  digit_row_change(win_, DECLINATION, bitval, 3, GUI_KEY_PHOTO_S);
  EXPECT_EQ(digit_compose(DECLINATION_NUMBER[0], bitval), 124);
  digit_row_select(win_, DECLINATION, 3);
  EXPECT_EQ(box("view_sel"), (page_test::Box{62, 4, 20, 40}));
}

}  // namespace
