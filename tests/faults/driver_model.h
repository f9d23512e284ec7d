#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "faults/answers.h"
#include "faults/scenario.h"

/// @file
/// What a client is to see of the plug-in, worked out from what the closed libraries answer.

namespace Osv::faults {

/// The plug-in without threads, locks, memory and pixels: which calls it makes into the closed
/// libraries, and what it tells the client. It shares no line with the plug-in.
class DriverModel {
 public:
  /// @param own_score what the detector gives the finger of the scenario
  DriverModel(const Scenario& scenario, double own_score);

  /// Faults of the steps that come, in place of others; their calls count from now on.
  void plan(const Faults& faults) { m_cAnswers.plan(faults); }
  void plan(const Incident& incident) { m_cAnswers.plan(incident); }
  void plan(const Exhaustion& exhaustion) { m_cAnswers.plan(exhaustion); }

  /// Functions that a library does not have, and all of them again.
  void lack(eFunction function, const Failure& failure) { m_cAnswers.lack(function, failure); }
  void find_all() { m_cAnswers.find_all(); }

  /// The client has no frame grabber but an object that tells of a failure, until it gets it again.
  void make_dummy() { m_bDummy = true; }

  /// What the client notes for a step. A `*` stands for any text.
  std::string run(const Step& step);

  /// The client destroys the frame grabber.
  void destroy();

  const Answers& answers() const { return m_cAnswers; }

  /// The callbacks of all captures in their order, warnings left aside.
  const std::vector<unsigned int>& callbacks() const { return m_vCallbacks; }

  /// Detector instances that could not be destroyed.
  unsigned int lost_detectors() const { return m_nLostDetectors; }

 private:
  struct DetectorFailure : Failure {
    long code = 0;
  };
  struct Listed {
    unsigned int interface = 0;
    std::string serial;
  };
  struct Engine {
    bool sensitive = false;
    std::pair<int, int> raw;  ///< size of the frames that it corrects
    unsigned long final_size = 0;
  };

  /// What belongs to one frame grabber.
  struct State {
    std::string text;  ///< of the last failure
    bool open = false;
    std::optional<unsigned int> chosen;
    unsigned int scan_interface = 0;
    Handle handle;
    bool green = false;
    bool red = false;
    std::vector<std::string> info;
    std::optional<Engine> engine;
    unsigned long calibrated_size = 0;
    unsigned int content = 0;  ///< number of the frame in the bitmap, 0: white
    bool detection = false;
    bool detector_alive = false;
    int level = 1;
    double fake_score = 0;
    double score = 0;
    long score_state = 0;
    unsigned int events = 0;
    unsigned int format = 1;
  };

  // how failures come to the client
  static Failure numbered(long number, const std::string& text);
  static Failure unnumbered(const std::string& text, long worker_number);
  [[noreturn]] void throw_device(const std::string& text);
  [[noreturn]] void throw_engine(const Effect& effect, long code);
  [[noreturn]] void throw_detector(const Effect& effect, long code);
  std::string description(eFunction giver, const Effect& effect, const char* own);
  unsigned long stored(long number, const std::string& text);
  unsigned long scanner_result(long result);
  unsigned long translated(const std::function<unsigned long()>& operation);

  // device
  long device_error();
  bool is_family(const Handle& handle);
  bool is_family(unsigned int interface);
  std::vector<Listed> list();
  bool initialize_device();
  void close_device();
  bool select_interface(unsigned int interface);
  void restore_leds();
  bool fetch_frame();
  bool fetch_lit_frame(eFunction function);
  std::pair<int, int> frames_of(const Handle& handle) const;
  bool read_size(std::pair<int, int>& size);
  bool read_serial(const Handle& handle, std::string& serial);

  // opening
  long open();
  long choose(unsigned int interface);
  void read_calibration();
  void fill_engine();
  void close_scanner();
  bool judge(long error);

  // images
  void require_size(const std::pair<int, int>& size);
  std::pair<int, int> known_size();
  long shape();
  void shape_for_frames();
  void require_engine() const;
  bool fits_engine(const std::pair<int, int>& size) const;
  void calibrate(unsigned long& size, bool is_raw_frame);
  void frame();
  void plain_frame();
  void scored_frame();
  void capture_and_score();
  void fetch_and_score(const std::pair<int, int>& size);
  void evaluate(bool complete);
  void set_option();
  bool is_sensitive();

  // fake finger detection
  void detect(eFunction function);
  void reset_detection();
  void switch_detection(unsigned int value);
  void start_detection();
  void stop_detection();
  double threshold();
  double rate_at(unsigned int score, double sign);
  std::string read_property(const std::string& own);
  std::string read_property_into(const std::string& own, std::size_t room);

  // steps
  std::string run_on_dummy(const Step& step);
  unsigned long run_list(std::string& value);
  unsigned long run_info(std::string& value);
  void read_info();
  unsigned long run_snap(std::string& value);
  unsigned long contamination(std::string& value);
  unsigned long run_property(const Step& step, std::string& value);
  void set_property(const Step& step);
  unsigned int get_property(const Step& step);
  unsigned long run_feature(const Step& step, std::string& value);
  void send_bytes(eFunction function, const char* text);
  unsigned long run_capture(const Step& step, std::string& value);
  void worker(const Step& step, std::string& value);
  void act_inside(const Step& step, unsigned int callback);
  void take_events(const Step& step, std::string& value);

  Answers m_cAnswers;
  std::vector<unsigned int> m_vCallbacks;
  State m_s;
  double m_dOwnScore;
  bool m_bDummy = false;
  bool m_bCodeIsSet = false;
  bool m_bUnplugged = false;  // inside a callback of this capture
  unsigned int m_nFrames = 0;
  unsigned int m_nLostDetectors = 0;
};

}  // namespace Osv::faults
