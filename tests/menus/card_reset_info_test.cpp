// The card page, the format and factory-reset confirmations with their shared two buttons, the
// progress screens that send their command once whatever keys arrive, and the information page
// read from the tree's version file.
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;
using page_test::g_free_mib;

class CardResetInfoTest : public menus_test::MenusTest {
 protected:
  // "left" when the left button shows selected, "right" for the right one.
  std::string chosen(const char* left) const {
    const bool l =
        image(left) == "Zavo_btn_left_sel" && image("image_Cancel") == "Zavo_btn_right_def";
    const bool r =
        image(left) == "Zavo_btn_left_def" && image("image_Cancel") == "Zavo_btn_right_sel";
    return l ? "left" : r ? "right" : "both or none";
  }
};

// Every key the scope can send, repeated, while a progress screen waits.
const uint32_t EVERY_KEY[] = {
    GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_L,     GUI_KEY_PHOTO_S,      GUI_KEY_RANGE_S,
    GUI_KEY_POWER_S,   GUI_KEY_POWER_L,       GUI_KEY_POWER_L_POP,  GUI_KEY_PHOTO_L,
    GUI_KEY_RANGE_L,   GUI_KEY_FOCUS_UP_S,    GUI_KEY_FOCUS_DOWN_S, GUI_KEY_PHOTO_FUCTION_S,
    GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_L_POP, GUI_KEY_UP_POWER_L,   GUI_KEY_FUCTION_S,
};

TEST_F(CardResetInfoTest, CardPageShowsItsUseAndTheButtonsToggle) {
  g_free_mib = 2700;  // of an 8 GiB card
  open("Zavo_SDcard");
  EXPECT_EQ(text("label_storage_used"), "Used 5.4G");
  EXPECT_EQ(text("label_storage_total"), "Total 8.0G");
  EXPECT_EQ(widget_get_value_int(w("progress_bar")), 67);
  EXPECT_EQ(Zavo_SDcard_index, 0);
  EXPECT_EQ(chosen("image_Format"), "right");  // Cancel at entry
  for (uint32_t k : {GUI_KEY_PHOTO_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_S}) {
    const std::string before = chosen("image_Format");
    key(k);
    EXPECT_NE(chosen("image_Format"), before);
    EXPECT_NE(chosen("image_Format"), "both or none");
  }
  EXPECT_EQ(Zavo_SDcard_index, 1);
  key(GUI_KEY_FUCTION_L);  // ignored on this page
  EXPECT_EQ(top_name(), "Zavo_SDcard");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(top_name(), "Zavo_formatting");
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(CardResetInfoTest, ACardThatCannotBeReadShowsNoFigures) {
  Get_StorageData_set_statfs([](const char*, struct statfs*) { return -1; });
  std::string out = printed([&] { open("Zavo_SDcard"); });
  EXPECT_NE(out.find("Zavo_SDcard: the card cannot be read"), std::string::npos) << out;
  EXPECT_EQ(text("label_storage_used"), "Used --");
  EXPECT_EQ(text("label_storage_total"), "Total --");
  EXPECT_EQ(widget_get_value_int(w("progress_bar")), 0);
  key(GUI_KEY_PHOTO_S);  // formatting stays possible
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(top_name(), "Zavo_formatting");
}

TEST_F(CardResetInfoTest, TheConfirmationsGoBackOnCancelAndOnTheLongFunctionKey) {
  struct Case {
    const char* page;
    const char* left;
    std::vector<uint32_t> keys;
    Lines windows;
  };
  const Case cases[] = {
      {"Zavo_SDcard", "image_Format", {GUI_KEY_FUCTION_S}, {"Zavo_home_page_1"}},
      {"Zavo_formatting", "image_OK", {GUI_KEY_FUCTION_S}, {"Zavo_home_page_1"}},
      {"Zavo_formatting", "image_OK", {GUI_KEY_FUCTION_L}, {"Zavo_home_page_1"}},
      {"Zavo_formatting",
       "image_OK",
       {GUI_KEY_RANGE_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S},
       {"Zavo_home_page_1"}},
      {"Zavo_Reset", "image_OK", {GUI_KEY_FUCTION_S}, {"Zavo_home_page_1"}},
      {"Zavo_Reset", "image_OK", {GUI_KEY_FUCTION_L}, {"Zavo_home_page_1"}},
      {"Zavo_Reset", "image_OK", {GUI_KEY_POWER_S}, {"Zavo_home_page_1"}},
      {"Zavo_Reset",
       "image_OK",
       {GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S},
       {"Zavo_home_page_1", "Zavo_Reset", "Zavo_Restoring"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.page) + " " + std::to_string(c.keys.size()));
    restart_at_home();
    open(c.page);
    EXPECT_EQ(chosen(c.left), "right");
    for (uint32_t k : c.keys)
      key(k);
    advance(0);
    EXPECT_EQ(windows(), c.windows);
  }
}

TEST_F(CardResetInfoTest, FormattingSendsItsCommandOnceAfterStoppingTheRecording) {
  stUIStatus.s8RecordingState = 1;
  record_status.status = 1;
  open("Zavo_SDcard");
  keys({GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S});  // Format
  keys({GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S});  // OK
  ASSERT_EQ(top_name(), "Zavo_format_restart");
  EXPECT_EQ(sent(), (Lines{"TAP TAP_PICTURE_RECORD TAP_RECORD_STOP", "PARAM SAVE_ALLPARAM"}));
  EXPECT_EQ(stUIStatus.s8RecordingState, 0);
  advance(199);
  EXPECT_EQ(sent(), Lines{});
  advance(1);
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_STORAGE_FORMAT value=1"});
  // Whatever keys arrive while the device works, nothing more is sent and the screen stays.
  for (int round = 0; round < 3; ++round) {
    for (uint32_t k : EVERY_KEY)
      key(k);
    advance(1000);
  }
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(top_name(), "Zavo_format_restart");
}

TEST_F(CardResetInfoTest, ResetLeavesUsbModeAndSendsItsCommandOnceASecondLater) {
  stUIStatus.s8UsbMode = 1;
  open("Zavo_Reset");
  // OK pressed twice at once: the second press reaches the restoring screen, which has no keys.
  keys({GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_S});
  ASSERT_EQ(top_name(), "Zavo_Restoring");
  EXPECT_EQ(stUIStatus.s8UsbMode, 0);
  EXPECT_EQ(sent(), (Lines{"BASIC BASIC_USB_TYPE value=0", "PARAM SAVE_ALLPARAM"}));
  for (uint32_t k : EVERY_KEY)
    key(k);
  advance(999);
  EXPECT_EQ(sent(), Lines{});
  advance(1);
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_RESET_MODE value=1"});
  for (uint32_t k : EVERY_KEY)
    key(k);
  advance(5000);
  EXPECT_EQ(sent(), Lines{});
  // The link's long power press never opens the countdown over it.
  button(KEY_POWER_L);
  EXPECT_EQ(top_name(), "Zavo_Restoring");
}

TEST_F(CardResetInfoTest, InformationShowsTheVersionFileAndTheFixedInterfaceVersion) {
  const auto tree = device_tree();
  std::ofstream(tree / "tmp" / "apps.version")
      << "PN:\t [ZVT35-6401]\nSN:\t [25061417]\n"
         "FPA1:\t [IRD640-12U-0417]\nFPA2:\t [VIS1080-P2]\n"
         "SW:\t [V3.1.4.0]\n";
  open("Zavo_Info");
  EXPECT_EQ(text("PN_value"), "ZVT35-6401");
  EXPECT_EQ(text("SN_value"), "25061417");
  EXPECT_EQ(text("FPA1_value"), "IRD640-12U-0417");
  EXPECT_EQ(text("FPA2_value"), "VIS1080-P2");
  EXPECT_EQ(text("SW_value"), "V1.2.8");
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);

  // Entries missing or unusable: empty, with a line each; never the values read before.
  std::ofstream(tree / "tmp" / "apps.version") << "PN: [ZVT35-6401]\nFPA1: ]broken[\n";
  std::string out = printed([&] { open("Zavo_Info"); });
  EXPECT_EQ(text("PN_value"), "ZVT35-6401");
  EXPECT_EQ(text("SN_value"), "");
  EXPECT_EQ(text("FPA1_value"), "");
  EXPECT_EQ(text("FPA2_value"), "");
  EXPECT_NE(out.find("version key <SN>"), std::string::npos) << out;
  key(GUI_KEY_FUCTION_L);
  advance(0);

  std::filesystem::remove(tree / "tmp" / "apps.version");
  out = printed([&] { open("Zavo_Info"); });
  EXPECT_NE(out.find("apps.version open error"), std::string::npos) << out;
  EXPECT_EQ(text("PN_value"), "");
  EXPECT_EQ(text("SW_value"), "V1.2.8");
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

}  // namespace
