// The simulated device application: its copy of the settings, zeroing data and ballistic
// profiles, its sensors, and how it answers the UI's frames.
//
// Everything here is plain computation on frames and time; the queues and the terminal live in
// devsim.cpp, so tests can drive a Device directly.
#ifndef SCOPE_TOOLS_DEVSIM_DEVICE_MODEL_H
#define SCOPE_TOOLS_DEVSIM_DEVICE_MODEL_H

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "common/status_records.h"

namespace devsim {

using Frame = std::vector<uint8_t>;

// A plausible .308 rifle: 175 grain bullet at 790 m/s, G1 BC 0.505, 3x thermal sight 4.5 cm over
// the bore, zeroed at 100 m. Five profiles differ in bullet and load.
Inf_DevStatus default_settings();
Inf_IR_Cursor default_zeroing();
Info_ballistics default_profile(int index);

struct Solution {
  double moaV;  // vertical hold, MOA, positive: aim higher
  double moaH;  // horizontal hold, MOA, positive: aim right
};

// Point-mass solution with quadratic drag scaled by the ballistic coefficient and the air
// density of the profile's weather; gravity drop against the sight line zeroed at the
// profile's zero range, and wind drift by the lag rule. Range in metres.
Solution solve(const Info_ballistics& profile, double range_m);

// Builders of the frames the device sends to the UI.
Frame key_frame(uint8_t button);
Frame battery_frame(int value);
Frame battery_type_frame(int type);
Frame compass_frame(int angle, int value);  // angle: 0 azimuth, 1 pitch, 2 cant
Frame wind_frame(int mm_per_s);
Frame distance_frame(int decimetres);  // negative: a failed measurement
Frame zoom_frame(int hundredths);
Frame menu_query_frame();
Frame record_frame(uint8_t command, uint8_t profile, const void* record, size_t size);
Frame solution_frame(const Solution& solution);
Frame video_total_frame(uint64_t frames, uint16_t rate);
Frame video_position_frame(uint64_t frames);

class Device {
 public:
  using Sender = std::function<void(const Frame&)>;
  using Printer = std::function<void(const std::string&)>;

  Device(Sender send, Printer print);

  // Start-up records: settings, zeroing, then the five profiles, the last one index 4.
  void send_startup_records();
  // A frame received from the UI (already checked).
  void on_frame(const Frame& frame);
  // Scheduled work: sensors, continuous ranging, playback. `now_ms` is a monotonic clock.
  void tick(uint64_t now_ms);

  void set_schedule(bool on) { schedule_ = on; }
  void set_target_decimetres(int dm) { target_dm_ = dm; }
  void send_battery();
  void send_compass();
  void send_wind();
  void send_distance();
  void send_solution();
  void select_profile(int index);  // a profile load that makes `index` current

  // ---- system pages: settings kept, card, factory reset, restart, shut-down, firmware upgrade
  // (device_menus.cpp) ----
  enum class System { REBOOT, SHUT_DOWN };  // what the scope's power does when asked
  enum class Upgrade { OK, NO_FIRMWARE, FAIL_STEP_1, FAIL_STEP_2, FAIL_STEP_3 };
  // Called when the scope restarts (the UI with it) or powers off.
  void set_system_hook(std::function<void(System)> hook) { system_hook_ = std::move(hook); }
  // The device tree standing in for the scope's root: formatting empties its usrdata/media.
  void set_root(const std::string& root) { root_ = root; }
  // The battery stays at `value` (no slow discharge).
  void set_fixed_battery(int value);
  // Fills the card (usrdata/media) to leave 150 MiB ("full": the UI's card-full rule) or
  // 400 MiB ("low") free, or removes the filling ("ok"). False with a reason when it cannot.
  bool set_card(const std::string& state, std::string* error);
  // Fills the card some other way than with a file on the device tree (a test's own card): given
  // the free bytes wanted (0: the card's own contents again), true when done, else false with a
  // reason. Replaces the file filling of set_card.
  void set_card_filler(std::function<bool(uint64_t free_bytes, std::string* error)> filler) {
    card_filler_ = std::move(filler);
  }
  // The device stops answering until `until_ms` (on the clock of tick): no readings, no scheduled
  // frames, and its host reads nothing from the UI (the UI's frames wait in their queue and are
  // answered late once it comes back). What a script sends on purpose still goes.
  void silence_until(uint64_t until_ms) { silent_until_ms_ = until_ms; }
  bool silent(uint64_t now_ms) const { return now_ms < silent_until_ms_; }
  // Plays a firmware upgrade: the start notice, then the states the UI's answers lead to.
  void start_upgrade(Upgrade outcome);
  bool rebooting() const { return rebooting_; }
  // ---- accessories (device_accessory.cpp): compass calibration and declination, wind meter,
  // recoil-activated video ----
  // The recoil sensor fires: a type-28 frame when recoil video is on (else only a line).
  void shot();
  bool compass_calibrating() const { return calibration_turn_ >= 0; }
  bool wind_meter_connected() const { return wind_connected_; }

  // ---- reticle alignment and blind pixels (device_reticle.cpp) ----
  // How long a blind-pixel save takes before the device reports it; negative: it never does.
  void set_blind_save_delay(int ms) { blind_save_delay_ms_ = ms; }
  struct BlindCursor {
    bool on;
    int x, y;     // on the sensor, 640 x 512
    int marked;   // pixels marked for repair since the last save
    bool saving;  // a save waits to be reported
  };
  BlindCursor blind_cursor() const {
    return {blind_on_, blind_x_, blind_y_, blind_marked_, blind_saving_};
  }
  bool frozen() const { return frozen_; }

  const Inf_DevStatus& settings() const { return settings_; }
  const Info_ballistics& profile(int index) const { return profiles_[index]; }
  int current_profile() const;
  int menu_level() const { return menu_level_; }

 private:
  void on_ballistic(const Frame& frame);
  void on_range(uint8_t what, uint8_t value);
  void on_tap(const Frame& frame);
  void maybe_solve();
  // device_menus.cpp
  void on_system_frame(const Frame& frame);
  void tick_system();
  void on_upgrade_answer(uint8_t command, uint8_t value);
  void restart_later();
  void later(uint64_t delay_ms, Frame frame, std::string note);
  int format_card();
  void factory_reset();
  // Accessories (device_accessory.cpp).
  void on_compass(const Frame& frame);
  void on_accessory_basic(uint8_t index, uint8_t value);
  void on_recoil(const Frame& frame);
  void tick_accessory();
  void finish_calibration_turn(bool stopped_by_ui);
  int reported_azimuth() const;
  int wind_reading();

  // device_reticle.cpp
  void on_reticle(const Frame& frame);
  void on_blind(const Frame& frame);
  void on_infrared(const Frame& frame);
  void tick_reticle(uint64_t now_ms);

  Sender send_;
  Printer print_;
  Inf_DevStatus settings_;
  Inf_IR_Cursor zeroing_;
  Info_ballistics profiles_[5];

  bool schedule_ = true;
  uint64_t now_ms_ = 0;
  uint64_t next_battery_ms_ = 0;
  uint64_t next_compass_ms_ = 0;
  uint64_t next_wind_ms_ = 0;
  int battery_ = 790;
  int azimuth_ = 0;
  int pitch_ = 0;
  int cant_ = 0;
  int wind_mm_s_ = 3000;
  int target_dm_ = 3274;
  int last_distance_dm_ = 0;
  unsigned noise_ = 12345;
  bool range_on_ = true;
  bool ranging_continuous_ = false;
  uint64_t next_range_ms_ = 0;
  int menu_level_ = -1;

  // device_menus.cpp
  std::function<void(System)> system_hook_;
  std::function<bool(uint64_t, std::string*)> card_filler_;
  uint64_t silent_until_ms_ = 0;
  std::string root_;
  bool battery_fixed_ = false;
  bool rebooting_ = false;      // the UI restarts: nothing is sent until it is ready again
  uint64_t restart_at_ms_ = 0;  // a restart asked for, 0 = none
  bool upgrading_ = false;
  Upgrade upgrade_ = Upgrade::OK;
  struct Pending {
    uint64_t at_ms;
    Frame frame;
    std::string note;
  };
  std::deque<Pending> pending_;  // frames of the upgrade, in time order
  // Accessories: the turn the simulated user makes during a compass calibration (-1: none; 0
  // level, 1 vertical), its step and the sectors it covered; the wind meter; recent wind samples.
  int calibration_turn_ = -1;
  int calibration_step_ = 0;
  unsigned calibration_sectors_ = 0;
  uint64_t next_calibration_ms_ = 0;
  bool wind_meter_on_ = false;
  bool wind_connected_ = false;
  bool wind_averaging_ = false;
  uint64_t wind_connect_at_ms_ = 0;
  int wind_samples_[5] = {0, 0, 0, 0, 0};
  int wind_sample_count_ = 0;

  // ---- media: playback, photos and recordings (device_media.cpp) ----
 public:
  // The card's media directory (device_path of /usrdata/media/): where photos taken and videos
  // recorded are written, and videos are played from. Written to only under SCOPE_UI_ROOT.
  void set_media_dir(std::string dir) { media_dir_ = std::move(dir); }
  bool playing() const { return playing_; }

 private:
  void tick_playback(uint64_t now_ms);
  void take_photo();
  void finish_recording();
  std::string new_media_name(const char* dir, const char* extension) const;
  bool playing_ = false;
  uint64_t play_frames_ = 0;
  uint64_t play_total_ = 0;
  unsigned play_fps_ = 30;
  uint64_t play_started_ms_ = 0;  // when frame play_from_ was shown
  uint64_t play_from_ = 0;
  uint64_t next_play_ms_ = 0;
  std::string media_dir_;
  bool recording_ = false;
  uint64_t recording_since_ms_ = 0;
  int media_written_ = 0;

  // reticle alignment and blind pixels
  int blind_save_delay_ms_ = 1500;
  bool blind_on_ = false;
  int blind_x_ = 320;
  int blind_y_ = 256;
  int blind_marked_ = 0;
  bool blind_saving_ = false;
  uint64_t blind_save_at_ms_ = 0;
  bool frozen_ = false;
};

}  // namespace devsim

#endif  // SCOPE_TOOLS_DEVSIM_DEVICE_MODEL_H
